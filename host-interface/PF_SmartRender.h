/*
 * Rendering in two commands. PF_Cmd_SMART_PRE_RENDER, with a PF_PreRenderExtra, asks which pixels the effect
 * needs and which it can give; PF_Cmd_SMART_RENDER, with a PF_SmartRenderExtra, has it render them. All
 * rectangles are in layer coordinates. Callbacks are [main-thread] and only for the command that they came
 * with.
 */
#pragma once

#include "PF_World.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct PF_RenderRequest {
    PF_LRect rect;
    PF_Field field;
    PF_ChannelMask channel_mask;           /* the channels that count */
    PF_Boolean preserve_rgb_of_zero_alpha; /* keep the colours of transparent pixels */
    char unused[3];
    A_long reserved[4];
} PF_RenderRequest;
PF_LAYOUT(PF_RenderRequest, 44, 4);
PF_AT(PF_RenderRequest, field, 16);
PF_AT(PF_RenderRequest, channel_mask, 20);
PF_AT(PF_RenderRequest, preserve_rgb_of_zero_alpha, 24);
PF_AT(PF_RenderRequest, unused, 25);
PF_AT(PF_RenderRequest, reserved, 28);

typedef struct PF_PreRenderInput {
    PF_RenderRequest output_request;
    short bitdepth; /* 8, 16 or 32 */
    const void* gpu_data;
    PF_GPU_Framework what_gpu;
    A_u_long device_index;
} PF_PreRenderInput;
PF_LAYOUT(PF_PreRenderInput, 64, 8);
PF_AT(PF_PreRenderInput, bitdepth, 44);
PF_AT(PF_PreRenderInput, gpu_data, 48);
PF_AT(PF_PreRenderInput, what_gpu, 56);
PF_AT(PF_PreRenderInput, device_index, 60);

/* The host's function for its own data, or the effect's: releases what pre_render_data points at. */
typedef void (*PF_DeletePreRenderDataFunc)(void* pre_render_data);

/* Zeroed by the host before the command. */
typedef struct PF_PreRenderOutput {
    PF_LRect result_rect; /* what SMART_RENDER will fill; within the request unless RETURNS_EXTRA_PIXELS */
    PF_LRect max_result_rect; /* what a request for everything would give */
    PF_Boolean solid;         /* all of result_rect will be opaque */
    PF_Boolean reserved;
    PF_RenderOutputFlags flags;
    void* pre_render_data; /* the host's to release once the command has returned */
    PF_DeletePreRenderDataFunc delete_pre_render_data_func; /* null: free */
} PF_PreRenderOutput;
PF_LAYOUT(PF_PreRenderOutput, 56, 8);
PF_AT(PF_PreRenderOutput, max_result_rect, 16);
PF_AT(PF_PreRenderOutput, solid, 32);
PF_AT(PF_PreRenderOutput, reserved, 33);
PF_AT(PF_PreRenderOutput, flags, 34);
PF_AT(PF_PreRenderOutput, pre_render_data, 40);
PF_AT(PF_PreRenderOutput, delete_pre_render_data_func, 48);

/* What a layer can give for a request. */
typedef struct PF_CheckoutResult {
    PF_LRect result_rect;     /* may be empty */
    PF_LRect max_result_rect; /* what a request for everything would give */
    PF_RationalScale par;
    PF_Boolean solid;
    PF_Boolean reservedB[3];
    A_long ref_width; /* the layer at full resolution, before effects */
    A_long ref_height;
    A_long reserved[6];
} PF_CheckoutResult;
PF_LAYOUT(PF_CheckoutResult, 76, 4);
PF_AT(PF_CheckoutResult, max_result_rect, 16);
PF_AT(PF_CheckoutResult, par, 32);
PF_AT(PF_CheckoutResult, solid, 40);
PF_AT(PF_CheckoutResult, reservedB, 41);
PF_AT(PF_CheckoutResult, ref_width, 44);
PF_AT(PF_CheckoutResult, ref_height, 48);
PF_AT(PF_CheckoutResult, reserved, 52);

typedef struct PF_PreRenderCallbacks {
    /* Asks for pixels of a layer at SMART_RENDER; index 0 is the input. The effect chooses the id, one for
     * each checkout. An empty request asks for the sizes alone. */
    PF_Err (*checkout_layer)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long checkout_idL,
                             const PF_RenderRequest* req, A_long what_time, A_long time_step,
                             A_u_long time_scale, PF_CheckoutResult* checkout_result);
    /* Mixes bytes into the key by which the frame is cached. */
    PF_Err (*GuidMixInPtr)(PF_ProgPtr effect_ref, A_u_long buf_sizeLu, const void* buf);
} PF_PreRenderCallbacks;
PF_LAYOUT(PF_PreRenderCallbacks, 16, 8);
PF_AT(PF_PreRenderCallbacks, GuidMixInPtr, 8);

typedef struct PF_PreRenderExtra {
    PF_PreRenderInput* input;
    PF_PreRenderOutput* output;
    PF_PreRenderCallbacks* cb;
} PF_PreRenderExtra;
PF_LAYOUT(PF_PreRenderExtra, 24, 8);
PF_AT(PF_PreRenderExtra, output, 8);
PF_AT(PF_PreRenderExtra, cb, 16);

typedef struct PF_SmartRenderInput {
    PF_RenderRequest output_request; /* as at pre-render */
    short bitdepth;
    void* pre_render_data;
    const void* gpu_data;
    PF_GPU_Framework what_gpu;
    A_u_long device_index;
} PF_SmartRenderInput;
PF_LAYOUT(PF_SmartRenderInput, 72, 8);
PF_AT(PF_SmartRenderInput, bitdepth, 44);
PF_AT(PF_SmartRenderInput, pre_render_data, 48);
PF_AT(PF_SmartRenderInput, gpu_data, 56);
PF_AT(PF_SmartRenderInput, what_gpu, 64);
PF_AT(PF_SmartRenderInput, device_index, 68);

typedef struct PF_SmartRenderCallbacks {
    /* Once per id of the pre-render. The world is the host's until the check-in or the end of the command,
     * and may be null with error 0. */
    PF_Err (*checkout_layer_pixels)(PF_ProgPtr effect_ref, A_long checkout_idL, PF_EffectWorld** pixels);
    PF_Err (*checkin_layer_pixels)(PF_ProgPtr effect_ref, A_long checkout_idL);
    /* After at least one layer, unless there is none. May be null with error 0. */
    PF_Err (*checkout_output)(PF_ProgPtr effect_ref, PF_EffectWorld** output);
} PF_SmartRenderCallbacks;
PF_LAYOUT(PF_SmartRenderCallbacks, 24, 8);
PF_AT(PF_SmartRenderCallbacks, checkin_layer_pixels, 8);
PF_AT(PF_SmartRenderCallbacks, checkout_output, 16);

typedef struct PF_SmartRenderExtra {
    PF_SmartRenderInput* input;
    PF_SmartRenderCallbacks* cb;
} PF_SmartRenderExtra;
PF_LAYOUT(PF_SmartRenderExtra, 16, 8);
PF_AT(PF_SmartRenderExtra, cb, 8);

#ifdef __cplusplus
}
#endif
