// An effect that renders by rectangles alone, at every depth: it inverts the part of its input that lies in
// the rows from a first one on, and leaves RENDER to others.
#include <cstdio>
#include <type_traits>

#include "PF_Entry.h"
#include "PF_Params.h"
#include "PF_SmartRender.h"
#include "PF_Values.h"

namespace {

enum Index : A_long { kInput, kFirstRow, kParameterCount };

constexpr A_long kInputId = 5;

PF_Err declareParameters(const PF_InData& in, PF_OutData& out) {
    PF_ParamDef definition{};
    definition.param_type = PF_Param_SLIDER;
    std::snprintf(definition.name, sizeof definition.name, "First Row");
    definition.u.sd.valid_max = definition.u.sd.slider_max = 1000;
    out.num_params = kParameterCount;
    return in.inter.add_param(in.effect_ref, -1, &definition);
}

PF_Err preRender(const PF_InData& in, PF_ParamDef* params[], const PF_PreRenderExtra& extra) {
    PF_RenderRequest request = extra.input->output_request;
    const A_long first = params[kFirstRow]->u.sd.value;
    if (request.rect.top < first) request.rect.top = first;
    PF_CheckoutResult input{};
    const PF_Err code = extra.cb->checkout_layer(in.effect_ref, kInput, kInputId, &request, in.current_time,
                                                 in.time_step, in.time_scale, &input);
    extra.output->result_rect = input.result_rect;
    extra.output->max_result_rect = input.max_result_rect;
    return code;
}

// `white` minus each colour; alpha stays.
template <typename P, typename Channel>
void invert(const PF_EffectWorld& from, const PF_EffectWorld& to, Channel white) {
    for (A_long y = 0; y < to.height; ++y) {
        const void* const source =
            reinterpret_cast<const char*>(from.data) + std::ptrdiff_t{y} * from.rowbytes;
        void* const target = reinterpret_cast<char*>(to.data) + std::ptrdiff_t{y} * to.rowbytes;
        const P* const in = static_cast<const P*>(source);
        P* const out = static_cast<P*>(target);
        for (A_long x = 0; x < to.width; ++x) {
            const auto turned = [white](auto c) { return static_cast<decltype(c)>(white - c); };
            out[x] = {in[x].alpha, turned(in[x].red), turned(in[x].green), turned(in[x].blue)};
        }
    }
}

PF_Err render(const PF_InData& in, const PF_SmartRenderExtra& extra) {
    PF_EffectWorld* input = nullptr;
    PF_EffectWorld* output = nullptr;
    if (const PF_Err code = extra.cb->checkout_layer_pixels(in.effect_ref, kInputId, &input)) return code;
    if (const PF_Err code = extra.cb->checkout_output(in.effect_ref, &output)) return code;
    if (input == nullptr || output == nullptr) return PF_Err_NONE;
    if (extra.input->bitdepth == 32) {
        invert<PF_PixelFloat>(*input, *output, 1.0F);
    } else if (extra.input->bitdepth == 16) {
        invert<PF_Pixel16>(*input, *output, 32768);
    } else {
        invert<PF_Pixel>(*input, *output, 255);
    }
    return extra.cb->checkin_layer_pixels(in.effect_ref, kInputId);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data,
                                                                    PF_OutData* out_data,
                                                                    PF_ParamDef* params[],
                                                                    PF_LayerDef* /*output*/, void* extra) {
    switch (cmd) {
        case PF_Cmd_GLOBAL_SETUP:
            out_data->out_flags = PF_OutFlag_DEEP_COLOR_AWARE;
            out_data->out_flags2 = PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_FLOAT_COLOR_AWARE;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP:
            return declareParameters(*in_data, *out_data);
        case PF_Cmd_SMART_PRE_RENDER:
            return preRender(*in_data, params, *static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            return render(*in_data, *static_cast<PF_SmartRenderExtra*>(extra));
        default:
            return PF_Err_NONE;
    }
}
