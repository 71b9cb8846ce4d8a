// What a scripted effect does at the two commands of smart rendering; P is the pixel type.
#pragma once

#include <gtest/gtest.h>

#include "PF_SmartRender.h"
#include "PixelAccess.h"
#include "ScriptedEffect.h"

namespace perch::test {

inline PF_PreRenderExtra& preExtra(const EffectCall& call) {
    return *static_cast<PF_PreRenderExtra*>(call.extra);
}

inline PF_SmartRenderExtra& renderExtra(const EffectCall& call) {
    return *static_cast<PF_SmartRenderExtra*>(call.extra);
}

inline PF_CheckoutResult checkOut(const EffectCall& call, PF_ParamIndex index, A_long id,
                                  const PF_LRect& rect) {
    PF_RenderRequest request = preExtra(call).input->output_request;
    request.rect = rect;
    PF_CheckoutResult result{};
    EXPECT_EQ(
        preExtra(call).cb->checkout_layer(call.in->effect_ref, index, id, &request, call.in->current_time,
                                          call.in->time_step, call.in->time_scale, &result),
        0);
    return result;
}

// Promises what the input gives.
inline PF_Err promiseInput(const EffectCall& call) {
    const PF_PreRenderExtra& extra = preExtra(call);
    const PF_CheckoutResult input = checkOut(call, 0, 0, extra.input->output_request.rect);
    extra.output->result_rect = input.result_rect;
    extra.output->max_result_rect = input.max_result_rect;
    return PF_Err_NONE;
}

template <class P>
P inverted(const P& p) {
    if constexpr (kHasWholeChannels<P>) {
        const auto turned = [](ChannelOf<P> c) { return static_cast<ChannelOf<P>>(kWhite<P> - c); };
        return {p.alpha, turned(p.red), turned(p.green), turned(p.blue)};
    } else {
        return {p.alpha, 1 - p.red, 1 - p.green, 1 - p.blue};
    }
}

// Inverts the first layer that was promised into the output, both of one size.
template <class P>
PF_Err invertInput(const EffectCall& call) {
    const PF_SmartRenderExtra& extra = renderExtra(call);
    PF_EffectWorld* input = nullptr;
    PF_EffectWorld* output = nullptr;
    EXPECT_EQ(extra.cb->checkout_layer_pixels(call.in->effect_ref, 0, &input), 0);
    EXPECT_EQ(extra.cb->checkout_output(call.in->effect_ref, &output), 0);
    for (A_long y = 0; y < output->height; ++y)
        for (A_long x = 0; x < output->width; ++x)
            rowOf<P>(*output, y)[x] = inverted(rowOf<P>(*input, y)[x]);
    return extra.cb->checkin_layer_pixels(call.in->effect_ref, 0);
}

}  // namespace perch::test
