/* The interface as a C compiler sees it, and an effect in C for the C++ test to call. */
#include "InterfaceInC.h"

#include "LayoutChecks.h"
#include "SuiteLayoutChecks.h"
#include "ValueChecks.h"

/* Usable where C asks for a constant. */
static const A_u_long kVersion = PF_VERSION(3, 2, 1, PF_Stage_BETA, 7);

PF_Err EffectInC(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                 PF_LayerDef* output, void* extra) {
    (void)params;
    (void)extra;
    switch (cmd) {
        case PF_Cmd_GLOBAL_SETUP:
            out_data->my_version = kVersion;
            out_data->out_flags = PF_OutFlag_DEEP_COLOR_AWARE;
            out_data->out_flags2 = PF_OutFlag2_SUPPORTS_THREADED_RENDERING;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP: {
            PF_ParamDef def = {0};
            def.uu.id = 17;
            def.param_type = PF_Param_FLOAT_SLIDER;
            def.u.fs_d.valid_max = 250.0F;
            def.u.fs_d.exponent = 2.0F;
            return in_data->inter.add_param(in_data->effect_ref, -1, &def);
        }
        case PF_Cmd_RENDER:
            output->data->blue = 200;
            return in_data->inter.progress(in_data->effect_ref, in_data->current_time, in_data->total_time);
        default:
            return PF_Err_INVALID_CALLBACK;
    }
}

size_t SizeOfInDataInC(void) {
    return sizeof(PF_InData);
}

size_t SizeOfParamDefInC(void) {
    return sizeof(PF_ParamDef);
}
