// An effect with habits that no rule forbids: another picture at every render, as it declares; a button that
// answers with a message for the user; a parameter that it takes for declared whatever the host answers; and
// a popup with a separator, which no user can choose and which it refuses to render.
#include <atomic>
#include <cstdio>

#include "HostInterface.h"

namespace {

constexpr A_long kSeparator = 2;

PF_Err declareParameters(const PF_InData& in, PF_OutData& out) {
    PF_ParamDef button{};
    button.param_type = PF_Param_BUTTON;
    button.flags = PF_ParamFlag_SUPERVISE;
    std::snprintf(button.name, sizeof button.name, "Reset");
    button.u.button_d.u.namesptr = "Reset";
    in.inter.add_param(in.effect_ref, -1, &button);
    PF_ParamDef popup{};
    popup.param_type = PF_Param_POPUP;
    std::snprintf(popup.name, sizeof popup.name, "Way");
    popup.u.pd.u.namesptr = "Fast|(-|Fine";
    popup.u.pd.num_choices = 3;
    popup.u.pd.value = popup.u.pd.dephault = 1;
    in.inter.add_param(in.effect_ref, -1, &popup);
    out.num_params = 3;
    return PF_Err_NONE;
}

PF_Err answerPress(PF_OutData& out) {
    std::snprintf(out.return_msg, sizeof out.return_msg, "There is nothing to reset.");
    out.out_flags = PF_OutFlag_DISPLAY_ERROR_MESSAGE;
    return PF_Err_NONE;
}

PF_Err render(const PF_InData& in, const PF_ParamDef& way, PF_EffectWorld& output) {
    if (way.u.pd.value == kSeparator) return PF_Err_BAD_CALLBACK_PARAM;
    static std::atomic<unsigned> renders{0};
    const PF_Pixel color{255, static_cast<A_u_char>(++renders), 0, 0};
    return in.utils->fill(in.effect_ref, &color, nullptr, &output);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data,
                                                                    PF_OutData* out_data,
                                                                    PF_ParamDef** params, PF_LayerDef* output,
                                                                    void*) {
    switch (cmd) {
        case PF_Cmd_GLOBAL_SETUP:
            out_data->out_flags = PF_OutFlag_NON_PARAM_VARY;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP:
            return declareParameters(*in_data, *out_data);
        case PF_Cmd_USER_CHANGED_PARAM:
            return answerPress(*out_data);
        case PF_Cmd_RENDER:
            return render(*in_data, *params[2], *output);
        default:
            return PF_Err_NONE;
    }
}
