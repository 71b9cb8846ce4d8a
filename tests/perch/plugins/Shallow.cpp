// An effect for 8 bits per channel alone that leaves its output black, and half transparent.
#include "PF_Entry.h"
#include "PF_Params.h"
#include "PF_Values.h"

extern "C" __attribute__((visibility("default"))) PF_Err PluginMain(PF_Cmd cmd, PF_InData* in_data,
                                                                    PF_OutData* out_data,
                                                                    PF_ParamDef* /*params*/[],
                                                                    PF_LayerDef* output, void* /*extra*/) {
    constexpr PF_Pixel kGlass{128, 0, 0, 0};
    switch (cmd) {
        case PF_Cmd_PARAMS_SETUP:
            out_data->num_params = 1;
            return PF_Err_NONE;
        case PF_Cmd_RENDER:
            return in_data->utils->fill(in_data->effect_ref, &kGlass, nullptr, output);
        default:
            return PF_Err_NONE;
    }
}
