// An effect that copies its input and reports where in time it was asked to, what it has been set up for, and
// its matte. It can fail at one time, and wait at one for a cancel.
#include <chrono>
#include <cstdio>
#include <cstring>

#include "PF_Entry.h"
#include "PF_Params.h"
#include "PF_Values.h"

namespace {

enum Index : A_long { kInput, kMatte, kFailAt, kWaitAt, kParameterCount };

int globalSetups = 0;
int sequenceSetups = 0;
int frameSetups = 0;

PF_ParamDef parameter(PF_ParamType type, const char* name) {
    PF_ParamDef definition{};
    definition.param_type = type;
    std::snprintf(definition.name, sizeof definition.name, "%s", name);
    return definition;
}

constexpr A_long kNever = -1000;

PF_ParamDef timeSlider(const char* name) {
    PF_ParamDef definition = parameter(PF_Param_SLIDER, name);
    PF_SliderDef& sd = definition.u.sd;
    sd.valid_min = sd.slider_min = sd.dephault = kNever;
    sd.valid_max = sd.slider_max = 1000;
    return definition;
}

PF_Err declareParameters(const PF_InData& in, PF_OutData& out) {
    PF_ParamDef definitions[] = {parameter(PF_Param_LAYER, "Matte"), timeSlider("Fail At"),
                                 timeSlider("Wait At")};
    for (PF_ParamDef& definition : definitions) {
        if (const PF_Err error = in.inter.add_param(in.effect_ref, -1, &definition); error != 0) return error;
    }
    out.num_params = kParameterCount;
    return PF_Err_NONE;
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
    const auto* source = reinterpret_cast<const char*>(from.data);
    auto* target = reinterpret_cast<char*>(to.data);
    for (A_long y = 0; y < to.height; ++y) {
        std::memcpy(target, source, static_cast<std::size_t>(to.width) * sizeof(PF_Pixel));
        source += from.rowbytes;
        target += to.rowbytes;
    }
}

// The red of the matte's first pixel; -1 without a matte.
PF_Err readMatte(const PF_InData& in, int& red) {
    PF_ParamDef matte{};
    red = -1;
    const PF_Err error =
        in.inter.checkout_param(in.effect_ref, kMatte, in.current_time, in.time_step, in.time_scale, &matte);
    if (error != 0) return error;
    if (matte.u.ld.data != nullptr) red = matte.u.ld.data->red;
    return in.inter.checkin_param(in.effect_ref, &matte);
}

PF_Err render(const PF_InData& in, PF_OutData& out, PF_ParamDef* params[], const PF_LayerDef& output) {
    if (params[kWaitAt]->u.sd.value == in.current_time) return waitForCancel(in);
    if (params[kFailAt]->u.sd.value == in.current_time) {
        std::snprintf(out.return_msg, sizeof out.return_msg, "no picture at %d", in.current_time);
        return PF_Err_OUT_OF_MEMORY;
    }
    int matte = 0;
    if (const PF_Err error = readMatte(in, matte); error != 0) return error;
    if (const PF_Err error = in.inter.progress(in.effect_ref, 1, 2); error != 0) return error;
    copyPixels(params[kInput]->u.ld, output);
    std::snprintf(out.return_msg, sizeof out.return_msg, "time %d of %d by %d, set up %d.%d.%d, matte %d",
                  in.current_time, in.total_time, in.time_step, globalSetups, sequenceSetups, frameSetups,
                  matte);
    return PF_Err_NONE;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data,
                                                                    PF_OutData* out_data,
                                                                    PF_ParamDef* params[],
                                                                    PF_LayerDef* output, void* /*extra*/) {
    switch (cmd) {
        case PF_Cmd_GLOBAL_SETUP:
            ++globalSetups;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP:
            return declareParameters(*in_data, *out_data);
        case PF_Cmd_SEQUENCE_SETUP:
            ++sequenceSetups;
            return PF_Err_NONE;
        case PF_Cmd_FRAME_SETUP:
            ++frameSetups;
            return PF_Err_NONE;
        case PF_Cmd_RENDER:
            return render(*in_data, *out_data, params, *output);
        default:
            return PF_Err_NONE;
    }
}
