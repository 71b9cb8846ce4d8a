// An effect with habits that no rule forbids: another picture at every render, as it declares; a button that
// answers with a message for the user; and a parameter that it takes for declared whatever the host answers.
#include <atomic>
#include <cstdio>

#include "HostInterface.h"

namespace {

PF_Err declareButton(const PF_InData& in, PF_OutData& out) {
    PF_ParamDef button{};
    button.param_type = PF_Param_BUTTON;
    button.flags = PF_ParamFlag_SUPERVISE;
    std::snprintf(button.name, sizeof button.name, "Reset");
    button.u.button_d.u.namesptr = "Reset";
    in.inter.add_param(in.effect_ref, -1, &button);
    out.num_params = 2;
    return PF_Err_NONE;
}

PF_Err answerPress(PF_OutData& out) {
    std::snprintf(out.return_msg, sizeof out.return_msg, "There is nothing to reset.");
    out.out_flags = PF_OutFlag_DISPLAY_ERROR_MESSAGE;
    return PF_Err_NONE;
}

PF_Err render(const PF_InData& in, PF_EffectWorld& output) {
    static std::atomic<unsigned> renders{0};
    const PF_Pixel color{255, static_cast<A_u_char>(++renders), 0, 0};
    return in.utils->fill(in.effect_ref, &color, nullptr, &output);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data,
                                                                    PF_OutData* out_data, PF_ParamDef**,
                                                                    PF_LayerDef* output, void*) {
    switch (cmd) {
        case PF_Cmd_GLOBAL_SETUP:
            out_data->out_flags = PF_OutFlag_NON_PARAM_VARY;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP:
            return declareButton(*in_data, *out_data);
        case PF_Cmd_USER_CHANGED_PARAM:
            return answerPress(*out_data);
        case PF_Cmd_RENDER:
            return render(*in_data, *output);
        default:
            return PF_Err_NONE;
    }
}
