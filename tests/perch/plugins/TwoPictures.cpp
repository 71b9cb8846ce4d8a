// An effect that renders both ways, and by smart rendering another picture where the channels have
// DIFFERING_BITS: white there, black everywhere else. RENDER adds a white margin of MARGIN pixels.
#include "PF_Entry.h"
#include "PF_SmartRender.h"
#include "PF_Values.h"

namespace {

PF_Err fillWith(const PF_InData& in, bool isWhite, const PF_Rect* area, PF_EffectWorld& world) {
    if ((world.world_flags & PF_WorldFlag_DEEP) == 0) {
        const A_u_char level = isWhite ? 255 : 0;
        const PF_Pixel color{255, level, level, level};
        return in.utils->fill(in.effect_ref, &color, area, &world);
    }
    const A_u_short level = isWhite ? 32768 : 0;
    const PF_Pixel16 color{32768, level, level, level};
    return in.utils->fill16(in.effect_ref, &color, area, &world);
}

PF_Err setUpFrame(PF_OutData& out, const PF_LayerDef& asked) {
    if (MARGIN == 0) return PF_Err_NONE;
    out.width = asked.width + 2 * MARGIN;
    out.height = asked.height + 2 * MARGIN;
    out.origin = {MARGIN, MARGIN};
    return PF_Err_NONE;
}

PF_Err renderWithMargin(const PF_InData& in, PF_EffectWorld& output) {
    if (const PF_Err code = fillWith(in, true, nullptr, output)) return code;
    const PF_Rect frame{MARGIN, MARGIN, output.width - MARGIN, output.height - MARGIN};
    return fillWith(in, false, &frame, output);
}

PF_Err preRender(const PF_PreRenderExtra& extra) {
    extra.output->result_rect = extra.output->max_result_rect = extra.input->output_request.rect;
    return PF_Err_NONE;
}

PF_Err renderSmart(const PF_InData& in, const PF_SmartRenderExtra& extra) {
    PF_EffectWorld* output = nullptr;
    if (const PF_Err code = extra.cb->checkout_output(in.effect_ref, &output)) return code;
    return fillWith(in, extra.input->bitdepth == DIFFERING_BITS, nullptr, *output);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data,
                                                                    PF_OutData* out_data, PF_ParamDef**,
                                                                    PF_LayerDef* output, void* extra) {
    switch (cmd) {
        case PF_Cmd_GLOBAL_SETUP:
            out_data->out_flags = PF_OutFlag_DEEP_COLOR_AWARE | PF_OutFlag_I_EXPAND_BUFFER;
            out_data->out_flags2 = PF_OutFlag2_SUPPORTS_SMART_RENDER;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP:
            out_data->num_params = 1;
            return PF_Err_NONE;
        case PF_Cmd_FRAME_SETUP:
            return setUpFrame(*out_data, *output);
        case PF_Cmd_RENDER:
            return renderWithMargin(*in_data, *output);
        case PF_Cmd_SMART_PRE_RENDER:
            return preRender(*static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            return renderSmart(*in_data, *static_cast<PF_SmartRenderExtra*>(extra));
        default:
            return PF_Err_NONE;
    }
}
