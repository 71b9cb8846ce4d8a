// An effect with an angle of no range, which it fails at where that is far above zero.
#include "PF_Entry.h"
#include "PF_Params.h"
#include "PF_Values.h"

extern "C" __attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data,
                                                                    PF_OutData* out_data,
                                                                    PF_ParamDef* params[],
                                                                    PF_LayerDef* output, void* /*extra*/) {
    PF_ParamDef angle{};
    switch (cmd) {
        case PF_Cmd_PARAMS_SETUP:
            angle.param_type = PF_Param_ANGLE;
            out_data->num_params = 2;
            return in_data->inter.add_param(in_data->effect_ref, -1, &angle);
        case PF_Cmd_RENDER:
            if (params[1]->u.ad.value > 32000 * 65536) return PF_Err_OUT_OF_MEMORY;
            return in_data->utils->copy(in_data->effect_ref, &params[0]->u.ld, output, nullptr, nullptr);
        default:
            return PF_Err_NONE;
    }
}
