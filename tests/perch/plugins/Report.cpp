// An effect with a parameter of every type. Copies its input and reports the values that it was given as its
// message, so that a test can tell what reached it. It can fail or wait for a cancel on demand.
#include <chrono>
#include <cstdio>
#include <cstring>

#include "PF_Entry.h"
#include "PF_Params.h"
#include "PF_Values.h"
#include "PiPL.h"

namespace {

enum Index : A_long {
    kInput,
    kMatte,
    kAmount,
    kSoftness,
    kDirection,
    kInvertControl,
    kTint,
    kCentre,
    kBlurType,
    kGroup,
    kGain,
    kGroupEnd,
    kReset,
    kPosition,
    kOutput,
    kSecondAmount,
    kFailWith,
    kWaitForCancel,
    kParameterCount,
};

constexpr PF_Fixed kFixedOne = 65536;

PF_ParamDef parameter(PF_ParamType type, const char* name) {
    PF_ParamDef definition{};
    definition.param_type = type;
    std::snprintf(definition.name, sizeof definition.name, "%s", name);
    return definition;
}

PF_ParamDef slider(const char* name, A_long minimum, A_long maximum, A_long value) {
    PF_ParamDef definition = parameter(PF_Param_SLIDER, name);
    PF_SliderDef& sd = definition.u.sd;
    sd.valid_min = sd.slider_min = minimum;
    sd.valid_max = sd.slider_max = maximum;
    sd.dephault = value;
    return definition;
}

PF_ParamDef fixedSlider(const char* name, PF_Fixed minimum, PF_Fixed maximum, PF_Fixed value) {
    PF_ParamDef definition = parameter(PF_Param_FIX_SLIDER, name);
    PF_FixedSliderDef& fd = definition.u.fd;
    fd.valid_min = fd.slider_min = minimum;
    fd.valid_max = fd.slider_max = maximum;
    fd.dephault = value;
    fd.precision = 1;
    return definition;
}

PF_ParamDef floatSlider(const char* name, float minimum, float maximum, float value) {
    PF_ParamDef definition = parameter(PF_Param_FLOAT_SLIDER, name);
    PF_FloatSliderDef& fs = definition.u.fs_d;
    fs.valid_min = fs.slider_min = minimum;
    fs.valid_max = fs.slider_max = maximum;
    fs.dephault = value;
    fs.precision = 2;
    return definition;
}

PF_ParamDef angle(const char* name, A_long degrees) {
    PF_ParamDef definition = parameter(PF_Param_ANGLE, name);
    definition.u.ad.dephault = degrees * kFixedOne;
    return definition;
}

PF_ParamDef checkBox(const char* name, const char* label) {
    PF_ParamDef definition = parameter(PF_Param_CHECKBOX, name);
    definition.u.bd.u.nameptr = label;
    return definition;
}

PF_ParamDef color(const char* name, PF_Pixel value) {
    PF_ParamDef definition = parameter(PF_Param_COLOR, name);
    definition.u.cd.dephault = value;
    return definition;
}

PF_ParamDef point(const char* name, A_long percentX, A_long percentY) {
    PF_ParamDef definition = parameter(PF_Param_POINT, name);
    definition.u.td.x_dephault = percentX * kFixedOne;
    definition.u.td.y_dephault = percentY * kFixedOne;
    return definition;
}

PF_ParamDef popup(const char* name, const char* items, A_short count, A_short value) {
    PF_ParamDef definition = parameter(PF_Param_POPUP, name);
    definition.u.pd.num_choices = count;
    definition.u.pd.dephault = value;
    definition.u.pd.u.namesptr = items;
    return definition;
}

PF_ParamDef button(const char* name, const char* label) {
    PF_ParamDef definition = parameter(PF_Param_BUTTON, name);
    definition.u.button_d.u.namesptr = label;
    return definition;
}

PF_Err declareParameters(const PF_InData& in, PF_OutData& out) {
    PF_ParamDef definitions[] = {
        parameter(PF_Param_LAYER, "Matte"),
        slider("Amount", 0, 100, 25),
        fixedSlider("Softness", 0, 10 * kFixedOne, kFixedOne / 2),
        angle("Direction", 90),
        checkBox("Invert Control", "Invert"),
        color("Tint", {255, 255, 128, 0}),
        point("Centre", 50, 25),
        popup("Blur Type", "Fast|Fine|Very fine", 3, 2),
        parameter(PF_Param_GROUP_START, "More"),
        floatSlider("Gain (dB)", 0.1F, 2.5F, 1.0F),
        parameter(PF_Param_GROUP_END, ""),
        button("Reset", "Reset All"),
        parameter(PF_Param_POINT_3D, "Position"),
        slider("Output", 0, 9, 1),
        slider("Amount", -5, 5, 0),
        slider("Fail With", 0, 1000, 0),
        checkBox("Wait for Cancel", ""),
    };
    for (PF_ParamDef& definition : definitions) {
        if (const PF_Err error = in.inter.add_param(in.effect_ref, -1, &definition); error != 0) return error;
    }
    out.num_params = kParameterCount;
    return PF_Err_NONE;
}

// A host that goes by another name than perch is told so.
void reportApplication(A_long application, PF_OutData& out) {
    if (application == static_cast<A_long>(PF_FOUR_CC('p', 'r', 'c', 'h'))) return;
    const std::size_t length = std::strlen(out.return_msg);
    std::snprintf(out.return_msg + length, sizeof out.return_msg - length, ", application %c%c%c%c",
                  application >> 24 & 255, application >> 16 & 255, application >> 8 & 255,
                  application & 255);
}

void report(PF_ParamDef* params[], PF_OutData& out) {
    const auto value = [&](Index index) -> const PF_ParamDefUnion& { return params[index]->u; };
    const PF_Pixel tint = value(kTint).cd.value;
    const PF_PointDef& centre = value(kCentre).td;
    const PF_Point3DDef& position = value(kPosition).point3d_d;
    std::snprintf(
        out.return_msg, sizeof out.return_msg,
        "amount %d, softness %d, direction %d, invert %d, tint %d.%d.%d.%d, centre %d.%d, type %d, gain %g, "
        "position %g.%g.%g, output %d, second amount %d",
        value(kAmount).sd.value, value(kSoftness).fd.value, value(kDirection).ad.value,
        value(kInvertControl).bd.value, tint.alpha, tint.red, tint.green, tint.blue, centre.x_value,
        centre.y_value, value(kBlurType).pd.value, value(kGain).fs_d.value, position.x_value,
        position.y_value, position.z_value, value(kOutput).sd.value, value(kSecondAmount).sd.value);
}

// Until the host passes a cancel on, or for so long that no test can take it for one.
PF_Err waitForCancel(const PF_InData& in) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < end) {
        if (const PF_Err error = in.inter.abort(in.effect_ref); error != 0) return error;
    }
    return PF_Err_INTERNAL_STRUCT_DAMAGED;
}

void copyPixels(const PF_LayerDef& from, const PF_LayerDef& to) {
    const std::size_t pixelSize =
        (to.world_flags & PF_WorldFlag_DEEP) != 0 ? sizeof(PF_Pixel16) : sizeof(PF_Pixel);
    const auto* source = reinterpret_cast<const char*>(from.data);
    auto* target = reinterpret_cast<char*>(to.data);
    for (A_long y = 0; y < to.height; ++y) {
        std::memcpy(target, source, static_cast<std::size_t>(to.width) * pixelSize);
        source += from.rowbytes;
        target += to.rowbytes;
    }
}

PF_Err render(const PF_InData& in, PF_OutData& out, PF_ParamDef* params[], const PF_LayerDef& output) {
    if (params[kWaitForCancel]->u.bd.value != 0) return waitForCancel(in);
    if (const PF_Err error = params[kFailWith]->u.sd.value; error != 0) {
        std::snprintf(out.return_msg, sizeof out.return_msg, "Error %d in Report", error);
        return error;
    }
    copyPixels(params[kInput]->u.ld, output);
    report(params, out);
    reportApplication(in.appl_id, out);
    return PF_Err_NONE;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data,
                                                                    PF_OutData* out_data,
                                                                    PF_ParamDef* params[],
                                                                    PF_LayerDef* output, void* /*extra*/) {
    switch (cmd) {
        case PF_Cmd_GLOBAL_SETUP:
            out_data->my_version = PF_VERSION(9, 2, 1, PF_Stage_BETA, 7);
            out_data->out_flags = PF_OutFlag_DEEP_COLOR_AWARE | PF_OutFlag_PIX_INDEPENDENT;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP:
            return declareParameters(*in_data, *out_data);
        case PF_Cmd_RENDER:
            return render(*in_data, *out_data, params, *output);
        default:
            return PF_Err_NONE;
    }
}
