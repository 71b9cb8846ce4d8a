// A small effect with every kind of parameter: inverts the colours in both depths and mixes them with the
// input's by "Amount", on the layer parameter's picture where one is set.
#include <cstdio>
#include <cstring>

#include "HostInterface.h"

namespace {

enum Parameter {
    kInput,
    kAmount,
    kStrength,
    kSteps,
    kTurn,
    kKeepBlue,
    kTint,
    kCentre,
    kMode,
    kSource,
    kReset,
    kCount
};

PF_ParamDef makeDefinition(PF_ParamType type, const char* name) {
    PF_ParamDef definition{};
    definition.param_type = type;
    std::strncpy(definition.name, name, sizeof definition.name - 1);
    return definition;
}

PF_ParamDef makeAmount() {
    PF_ParamDef amount = makeDefinition(PF_Param_FLOAT_SLIDER, "Amount");
    amount.u.fs_d.valid_max = 100.0F;
    amount.u.fs_d.slider_max = 100.0F;
    amount.u.fs_d.dephault = 100.0F;
    amount.u.fs_d.precision = 1;
    amount.u.fs_d.display_flags = PF_ValueDisplayFlag_PERCENT;
    return amount;
}

PF_ParamDef makeStrength() {
    PF_ParamDef strength = makeDefinition(PF_Param_FIX_SLIDER, "Strength");
    strength.u.fd.valid_max = strength.u.fd.slider_max = 2 << 16;
    strength.u.fd.dephault = 1 << 16;
    strength.u.fd.precision = 2;
    return strength;
}

PF_ParamDef makeSteps() {
    PF_ParamDef steps = makeDefinition(PF_Param_SLIDER, "Steps");
    steps.u.sd.valid_min = steps.u.sd.slider_min = 1;
    steps.u.sd.valid_max = 1000;
    steps.u.sd.slider_max = 10;
    steps.u.sd.dephault = 1;
    return steps;
}

PF_ParamDef makeCheckBox() {
    PF_ParamDef box = makeDefinition(PF_Param_CHECKBOX, "Keep Blue");
    box.u.bd.u.nameptr = "On";
    return box;
}

PF_ParamDef makeTint() {
    PF_ParamDef tint = makeDefinition(PF_Param_COLOR, "Tint");
    tint.u.cd.dephault = {255, 255, 255, 255};
    return tint;
}

PF_ParamDef makeCentre() {
    PF_ParamDef centre = makeDefinition(PF_Param_POINT, "Centre");
    centre.u.td.x_dephault = centre.u.td.y_dephault = 50 << 16;
    return centre;
}

PF_ParamDef makeMode() {
    PF_ParamDef mode = makeDefinition(PF_Param_POPUP, "Mode");
    mode.u.pd.num_choices = 3;
    mode.u.pd.dephault = 1;
    mode.u.pd.u.namesptr = "Invert|Pass Through|Fail";
    return mode;
}

PF_ParamDef makeReset() {
    PF_ParamDef reset = makeDefinition(PF_Param_BUTTON, "Reset");
    reset.u.button_d.u.namesptr = "Reset All";
    return reset;
}

PF_Err globalSetup(PF_OutData* out) {
    out->my_version = PF_VERSION(1, 2, 0, PF_Stage_RELEASE, 3);
    out->out_flags = PF_OutFlag_DEEP_COLOR_AWARE | PF_OutFlag_PIX_INDEPENDENT;
    return PF_Err_NONE;
}

PF_Err paramsSetup(PF_InData* in, PF_OutData* out) {
    PF_ParamDef definitions[] = {
        makeAmount(), makeStrength(), makeSteps(), makeDefinition(PF_Param_ANGLE, "Turn"),   makeCheckBox(),
        makeTint(),   makeCentre(),   makeMode(),  makeDefinition(PF_Param_LAYER, "Source"), makeReset()};
    for (PF_ParamDef& definition : definitions)
        if (const PF_Err code = in->inter.add_param(in->effect_ref, -1, &definition)) return code;
    out->num_params = kCount;
    return PF_Err_NONE;
}

struct Settings {
    double amount;  // 0 to 1
    bool keepsBlue;
};

template <typename T>
T inverted(T value, int full, double amount) {
    return static_cast<T>(value + amount * (full - 2 * value) + 0.5);
}

template <typename P, int full>
PF_Err invertPixel(void* refcon, A_long, A_long, P* in, P* out) {
    const auto& settings = *static_cast<const Settings*>(refcon);
    out->alpha = in->alpha;
    out->red = inverted(in->red, full, settings.amount);
    out->green = inverted(in->green, full, settings.amount);
    out->blue = settings.keepsBlue ? in->blue : inverted(in->blue, full, settings.amount);
    return PF_Err_NONE;
}

PF_Err invert(PF_InData* in, PF_EffectWorld* source, Settings& settings, PF_EffectWorld* output) {
    if ((output->world_flags & PF_WorldFlag_DEEP) != 0)
        return in->utils->iterate16(in, 0, output->height, source, nullptr, &settings,
                                    invertPixel<PF_Pixel16, 32768>, output);
    return in->utils->iterate(in, 0, output->height, source, nullptr, &settings, invertPixel<PF_Pixel, 255>,
                              output);
}

PF_Err render(PF_InData* in, PF_OutData* out, PF_ParamDef* params[], PF_LayerDef* output) {
    enum { kInvert = 1, kPassThrough = 2, kFail = 3 };
    const PF_ParamValue mode = params[kMode]->u.pd.value;
    if (mode == kFail) {
        std::snprintf(out->return_msg, sizeof out->return_msg, "Asked to fail at time %d", in->current_time);
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    PF_ParamDef layer{};
    PF_Err code = in->inter.checkout_param(in->effect_ref, kSource, in->current_time, in->time_step,
                                           in->time_scale, &layer);
    if (code == PF_Err_NONE) {
        PF_EffectWorld* source = layer.u.ld.data != nullptr ? &layer.u.ld : &params[kInput]->u.ld;
        Settings settings{mode == kPassThrough ? 0.0 : params[kAmount]->u.fs_d.value / 100.0,
                          params[kKeepBlue]->u.bd.value != 0};
        code = invert(in, source, settings, output);
    }
    const PF_Err checkin = in->inter.checkin_param(in->effect_ref, &layer);
    return code != PF_Err_NONE ? code : checkin;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd command, PF_InData* in,
                                                                    PF_OutData* out, PF_ParamDef* params[],
                                                                    PF_LayerDef* output, void*) {
    switch (command) {
        case PF_Cmd_ABOUT:
            std::strcpy(out->return_msg, "Invert 1.2");
            return PF_Err_NONE;
        case PF_Cmd_GLOBAL_SETUP:
            return globalSetup(out);
        case PF_Cmd_PARAMS_SETUP:
            return paramsSetup(in, out);
        case PF_Cmd_RENDER:
            return render(in, out, params, output);
        default:
            return PF_Err_NONE;
    }
}
