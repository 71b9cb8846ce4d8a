#include "AEParam.h"

#include <algorithm>
#include <cstring>
#include <exception>

#include "AEContext.h"
#include "Errors.h"
#include "PF_Values.h"

namespace AELib {

namespace {

PF_Fixed ToFixed(float value) {
    return PILib::TruncToInt32(value * 65536.0F + 0.5F);
}

}  // namespace

AEParam& AEParam::operator=(const PF_ParamDef& def) {
    static_cast<PF_ParamDef&>(*this) = def;
    return *this;
}

void AEParam::setColor(const PILib::Pixel<PILib::Channel8>& color) {
    u.cd.value = {color.alpha, color.red, color.green, color.blue};
}

void AEParam::enable(bool on) {
    if (on) {
        ui_flags &= ~PF_PUI_DISABLED;
    } else {
        ui_flags |= PF_PUI_DISABLED;
    }
}

void AEParam::setName(const char* newName) {
    std::memcpy(name, newName, std::min(std::strlen(newName), sizeof name - 1) + 1);
}

void AEParam::setChanged() {
    uu.change_flags |= PF_ChangeFlag_CHANGED_VALUE;
}

AEParamCreator::AEParamCreator(AEContext& context)
    : nextIndex(1), context(&context), exceptionsAtStart(std::uncaught_exceptions()) {
    reset();
    context.setParamNumber(0, 0);
}

AEParamCreator::~AEParamCreator() noexcept(false) {
    if (hostRefused) return;
    try {
        addParam();
        context->outData->num_params = nextIndex;
    } catch (int) {
        const bool isUnwinding = std::uncaught_exceptions() > exceptionsAtStart;
        if (!isUnwinding) throw;
    }
}

void AEParamCreator::reset() {
    std::memset(&def, 0, sizeof def);
    pending = false;
    def.flags = PF_ParamFlag_START_COLLAPSED;
}

void AEParamCreator::begin(int id, const char* name, PF_ParamType type) {
    addParam();
    def.uu.id = id;
    std::strncpy(def.name, name, sizeof def.name - 1);
    def.param_type = type;
    pending = true;
}

void AEParamCreator::addParam() {
    if (!pending) return;
    context->setParamNumber(def.uu.id, nextIndex);
    const PF_InData& call = *context->inData;
    const PF_Err err = call.inter.add_param == nullptr ? PF_Err_INVALID_CALLBACK
                                                       : call.inter.add_param(call.effect_ref, -1, &def);
    hostRefused = err != PF_Err_NONE;
    PILib::ThrowIfErr(err);
    ++nextIndex;
    reset();
}

void AEParamCreator::layer(int id, const char* name, int dflt) {
    begin(id, name, PF_Param_LAYER);
    def.u.ld.dephault = dflt;
}

void AEParamCreator::slider(int id, const char* name, float sliderMin, float validMin, float sliderMax,
                            float validMax, float dflt, short precision) {
    begin(id, name, PF_Param_FLOAT_SLIDER);
    PF_FloatSliderDef& slider = def.u.fs_d;
    slider.value = dflt;
    slider.valid_min = validMin;
    slider.valid_max = validMax;
    slider.slider_min = sliderMin;
    slider.slider_max = sliderMax;
    slider.dephault = dflt;
    slider.precision = precision;
}

void AEParamCreator::percent(int id, const char* name, float dflt, short precision) {
    slider(id, name, 0, 0, 100, 100, dflt, precision);
    displayPercent();
}

void AEParamCreator::angle(int id, const char* name, float dflt, short /*ignored*/) {
    begin(id, name, PF_Param_ANGLE);
    def.u.ad.value = ToFixed(dflt);
    def.u.ad.dephault = def.u.ad.value;
}

void AEParamCreator::point(int id, const char* name, float x, float y, bool /*ignored*/) {
    begin(id, name, PF_Param_POINT);
    def.u.td.x_dephault = ToFixed(x);
    def.u.td.y_dephault = ToFixed(y);
}

void AEParamCreator::color(int id, const char* name, const PILib::Pixel<PILib::Channel32f>& c) {
    begin(id, name, PF_Param_COLOR);
    const PILib::Pixel<PILib::Channel8> color = c;
    def.u.cd.value = {255, color.red, color.green, color.blue};
    def.u.cd.dephault = def.u.cd.value;
}

void AEParamCreator::checkbox(int id, const char* name, const char* label, bool dflt) {
    begin(id, name, PF_Param_CHECKBOX);
    def.u.bd.dephault = dflt ? 1 : 0;
    def.u.bd.u.nameptr = label;
}

void AEParamCreator::popup(int id, const char* name, int dflt, const char* choices) {
    begin(id, name, PF_Param_POPUP);
    def.u.pd.num_choices = static_cast<A_short>(1 + std::count(choices, choices + std::strlen(choices), '|'));
    def.u.pd.dephault = static_cast<A_short>(dflt + 1);
    def.u.pd.u.namesptr = choices;
}

void AEParamCreator::groupStart(int id, const char* name, bool collapsed) {
    begin(id, name, PF_Param_GROUP_START);
    if (collapsed) def.flags |= PF_ParamFlag_START_COLLAPSED;
}

void AEParamCreator::groupEnd(int id) {
    begin(id, "", PF_Param_GROUP_END);
}

void AEParamCreator::displayPercent() {
    def.u.fs_d.display_flags |= PF_ValueDisplayFlag_PERCENT;
}

void AEParamCreator::displayPixel() {
    def.u.fs_d.display_flags |= PF_ValueDisplayFlag_PIXEL;
}

void AEParamCreator::wantPhase() {
    def.u.fs_d.fs_flags |= PF_FSliderFlag_WANT_PHASE;
}

void AEParamCreator::disable() {
    def.ui_flags |= PF_PUI_DISABLED;
}

void AEParamCreator::supervise() {
    def.flags |= PF_ParamFlag_SUPERVISE;
}

void AEParamCreator::openTwirly() {
    def.flags &= ~PF_ParamFlag_START_COLLAPSED;
}

}  // namespace AELib
