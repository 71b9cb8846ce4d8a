// An effect that renders both ways, and by smart rendering another picture where the channels have
// DIFFERING_BITS: white there, black everywhere else.
#include "PF_Entry.h"
#include "PF_SmartRender.h"
#include "PF_Values.h"

namespace {

PF_Err fillWith(const PF_InData& in, bool isWhite, PF_EffectWorld& world) {
    if ((world.world_flags & PF_WorldFlag_DEEP) == 0) {
        const A_u_char level = isWhite ? 255 : 0;
        const PF_Pixel color{255, level, level, level};
        return in.utils->fill(in.effect_ref, &color, nullptr, &world);
    }
    const A_u_short level = isWhite ? 32768 : 0;
    const PF_Pixel16 color{32768, level, level, level};
    return in.utils->fill16(in.effect_ref, &color, nullptr, &world);
}

PF_Err preRender(const PF_PreRenderExtra& extra) {
    extra.output->result_rect = extra.output->max_result_rect = extra.input->output_request.rect;
    return PF_Err_NONE;
}

PF_Err renderSmart(const PF_InData& in, const PF_SmartRenderExtra& extra) {
    PF_EffectWorld* output = nullptr;
    if (const PF_Err code = extra.cb->checkout_output(in.effect_ref, &output)) return code;
    return fillWith(in, extra.input->bitdepth == DIFFERING_BITS, *output);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data,
                                                                    PF_OutData* out_data, PF_ParamDef**,
                                                                    PF_LayerDef* output, void* extra) {
    switch (cmd) {
        case PF_Cmd_GLOBAL_SETUP:
            out_data->out_flags = PF_OutFlag_DEEP_COLOR_AWARE;
            out_data->out_flags2 = PF_OutFlag2_SUPPORTS_SMART_RENDER;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP:
            out_data->num_params = 1;
            return PF_Err_NONE;
        case PF_Cmd_RENDER:
            return fillWith(*in_data, false, *output);
        case PF_Cmd_SMART_PRE_RENDER:
            return preRender(*static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            return renderSmart(*in_data, *static_cast<PF_SmartRenderExtra*>(extra));
        default:
            return PF_Err_NONE;
    }
}
