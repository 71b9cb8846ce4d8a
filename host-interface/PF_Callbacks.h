/*
 * What an effect may call. Callbacks return 0 or an error code that the command should return.
 *   [main-thread]  only on the thread that called the entry point, and only until the command returns
 *   [any-thread]   also from the functions that the iterate calls run on worker threads
 * Entries that a host does not offer are null.
 */
#pragma once

#include "PF_Params.h"
#include "PF_Types.h"
#include "PF_World.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Called for one pixel; `in` is null when the call had no source. x and y are those of the destination. */
typedef PF_Err (*PF_IteratePixel8Func)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out);
typedef PF_Err (*PF_IteratePixel16Func)(void* refcon, A_long x, A_long y, PF_Pixel16* in, PF_Pixel16* out);

/* Defined in PF_Entry.h. */
struct PF_InData;
typedef struct PF_InData PF_InData;

/* Progress, cancelling, parameters and checkouts: what concerns the user and the composition. */
typedef struct PF_InteractCallbacks {
    /* [main-thread] From frame set-up to frame set-down. Fills `param` with the value at `what_time`; a layer
     * set to none is all zeros. Every checkout, a failed one included, is balanced by checkin_param before
     * the command returns. */
    PF_Err (*checkout_param)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long what_time, A_long time_step,
                             A_u_long time_scale, PF_ParamDef* param);
    /* [main-thread] Gives back what checkout_param filled; its pixels must not be used any more. */
    PF_Err (*checkin_param)(PF_ProgPtr effect_ref, PF_ParamDef* param);
    /* [main-thread] PARAMS_SETUP only. Copies `def`; index -1 appends. */
    PF_Err (*add_param)(PF_ProgPtr effect_ref, PF_ParamIndex index, PF_ParamDefPtr def);
    /* [main-thread] Non-zero when the user has cancelled: return that code from the command. */
    PF_Err (*abort)(PF_ProgPtr effect_ref);
    /* [main-thread] Share current / total of the command is done. Result as abort. */
    PF_Err (*progress)(PF_ProgPtr effect_ref, A_long current, A_long total);
    /* [main-thread] PARAMS_SETUP only. */
    PF_Err (*register_ui)(PF_ProgPtr effect_ref, PF_CustomUIInfo* cust_info);
    /* [main-thread] Audio commands only, likewise the next two. */
    PF_Err (*checkout_layer_audio)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long start_time,
                                   A_long duration, A_u_long time_scale, PF_UFixed rate,
                                   A_long bytes_per_sample, A_long num_channels, A_long fmt_signed,
                                   PF_LayerAudio* audio);
    PF_Err (*checkin_layer_audio)(PF_ProgPtr effect_ref, PF_LayerAudio audio);
    PF_Err (*get_audio_data)(PF_ProgPtr effect_ref, PF_LayerAudio audio, PF_SndSamplePtr* data0,
                             A_long* num_samples0, PF_UFixed* rate0, A_long* bytes_per_sample0,
                             A_long* num_channels0, A_long* fmt_signed0);
    void* reserved_str[3];
    void* reserved[10];
} PF_InteractCallbacks;
PF_LAYOUT(PF_InteractCallbacks, 176, 8);
PF_AT(PF_InteractCallbacks, checkin_param, 8);
PF_AT(PF_InteractCallbacks, add_param, 16);
PF_AT(PF_InteractCallbacks, abort, 24);
PF_AT(PF_InteractCallbacks, progress, 32);
PF_AT(PF_InteractCallbacks, register_ui, 40);
PF_AT(PF_InteractCallbacks, checkout_layer_audio, 48);
PF_AT(PF_InteractCallbacks, checkin_layer_audio, 56);
PF_AT(PF_InteractCallbacks, get_audio_data, 64);
PF_AT(PF_InteractCallbacks, reserved_str, 72);
PF_AT(PF_InteractCallbacks, reserved, 96);

typedef struct PF_ANSICallbacksBlock {
    /* angles in radians, here and below */
    A_FpLong (*atan)(A_FpLong);
    A_FpLong (*atan2)(A_FpLong y, A_FpLong x);
    A_FpLong (*ceil)(A_FpLong);
    A_FpLong (*cos)(A_FpLong);
    A_FpLong (*exp)(A_FpLong);
    A_FpLong (*fabs)(A_FpLong);
    A_FpLong (*floor)(A_FpLong);
    A_FpLong (*fmod)(A_FpLong x, A_FpLong y);
    A_FpLong (*hypot)(A_FpLong x, A_FpLong y);
    A_FpLong (*log)(A_FpLong);
    A_FpLong (*log10)(A_FpLong);
    A_FpLong (*pow)(A_FpLong x, A_FpLong y);
    A_FpLong (*sin)(A_FpLong);
    A_FpLong (*sqrt)(A_FpLong);
    A_FpLong (*tan)(A_FpLong);
    /* [any-thread] The C function; the caller provides enough room. */
    int (*sprintf)(A_char*, const A_char*, ...);
    A_char* (*strcpy)(A_char*, const A_char*);
    A_FpLong (*asin)(A_FpLong);
    A_FpLong (*acos)(A_FpLong);
    A_long unused_longA[1];
} PF_ANSICallbacksBlock;
PF_LAYOUT(PF_ANSICallbacksBlock, 160, 8);
PF_AT(PF_ANSICallbacksBlock, atan2, 8);
PF_AT(PF_ANSICallbacksBlock, ceil, 16);
PF_AT(PF_ANSICallbacksBlock, cos, 24);
PF_AT(PF_ANSICallbacksBlock, exp, 32);
PF_AT(PF_ANSICallbacksBlock, fabs, 40);
PF_AT(PF_ANSICallbacksBlock, floor, 48);
PF_AT(PF_ANSICallbacksBlock, fmod, 56);
PF_AT(PF_ANSICallbacksBlock, hypot, 64);
PF_AT(PF_ANSICallbacksBlock, log, 72);
PF_AT(PF_ANSICallbacksBlock, log10, 80);
PF_AT(PF_ANSICallbacksBlock, pow, 88);
PF_AT(PF_ANSICallbacksBlock, sin, 96);
PF_AT(PF_ANSICallbacksBlock, sqrt, 104);
PF_AT(PF_ANSICallbacksBlock, tan, 112);
PF_AT(PF_ANSICallbacksBlock, sprintf, 120);
PF_AT(PF_ANSICallbacksBlock, strcpy, 128);
PF_AT(PF_ANSICallbacksBlock, asin, 136);
PF_AT(PF_ANSICallbacksBlock, acos, 144);
PF_AT(PF_ANSICallbacksBlock, unused_longA, 152);

/*
 * Colour conversions of 8-bit pixels. HLS: each from 0 to 1, 16.16; a hue of 1 is the whole circle.
 * YIQ: 16.16, Y from 0 to 1, I to 0.5959 and Q to 0.5227 to both sides. Luminance is 100 times that of the
 * pixel; hue, lightness and saturation alone run from 0 to 255.
 */
typedef struct PF_ColorCallbacks {
    PF_Err (*RGBtoHLS)(PF_ProgPtr effect_ref, PF_Pixel* rgb, PF_Fixed* hls);
    PF_Err (*HLStoRGB)(PF_ProgPtr effect_ref, PF_Fixed* hls, PF_Pixel* rgb);
    PF_Err (*RGBtoYIQ)(PF_ProgPtr effect_ref, PF_Pixel* rgb, PF_Fixed* yiq);
    PF_Err (*YIQtoRGB)(PF_ProgPtr effect_ref, PF_Fixed* yiq, PF_Pixel* rgb);
    PF_Err (*Luminance)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* lum100);
    PF_Err (*Hue)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* hue);
    PF_Err (*Lightness)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* lightness);
    PF_Err (*Saturation)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* saturation);
} PF_ColorCallbacks;
PF_LAYOUT(PF_ColorCallbacks, 64, 8);
PF_AT(PF_ColorCallbacks, HLStoRGB, 8);
PF_AT(PF_ColorCallbacks, RGBtoYIQ, 16);
PF_AT(PF_ColorCallbacks, YIQtoRGB, 24);
PF_AT(PF_ColorCallbacks, Luminance, 32);
PF_AT(PF_ColorCallbacks, Hue, 40);
PF_AT(PF_ColorCallbacks, Lightness, 48);
PF_AT(PF_ColorCallbacks, Saturation, 56);

/* Services of the host; the table is that of the current call and is not to be kept. */
typedef struct PF_UtilCallbacks {
    /* [main-thread] Announces sampling from params->src; ended by end_sampling. */
    PF_Err (*begin_sampling)(PF_ProgPtr effect_ref, PF_Quality qual, PF_ModeFlags mf, PF_SampPB* params);
    /* [any-thread] Bilinear sample at 16.16 pixels; outside the world is transparent. */
    PF_Err (*subpixel_sample)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                              PF_Pixel* dst_pixel);
    /* [any-thread] Mean over the area around a 16.16 position; outside the world is transparent. */
    PF_Err (*area_sample)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                          PF_Pixel* dst_pixel);
    void* get_batch_func_is_deprecated;
    PF_Err (*end_sampling)(PF_ProgPtr effect_ref, PF_Quality qual, PF_ModeFlags mf, PF_SampPB* params);
    /* [main-thread] Composites a part of one world onto another; a null rectangle is the whole source. */
    PF_Err (*composite_rect)(PF_ProgPtr effect_ref, PF_Rect* src_rect, A_long src_opacity,
                             PF_EffectWorld* source_wld, A_long dest_x, A_long dest_y, PF_Field field_rdr,
                             PF_XferMode xfer_mode, PF_EffectWorld* dest_wld);
    /* [main-thread] Mixes two worlds of the size and depth of `dst`, alpha-weighted: ratio 0 gives src1,
     * 65536 gives src2. `dst` may be either. */
    PF_Err (*blend)(PF_ProgPtr effect_ref, const PF_EffectWorld* src1, const PF_EffectWorld* src2,
                    PF_Fixed ratio, PF_EffectWorld* dst);
    /* [main-thread] Convolution with one kernel per channel; a null rectangle is the whole source. */
    PF_Err (*convolve)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Rect* area, PF_KernelFlags flags,
                       A_long kernel_size, void* a_kernel, void* r_kernel, void* g_kernel, void* b_kernel,
                       PF_EffectWorld* dst);
    /* [main-thread] Copies a part of one world to a part of another; a null rectangle is the whole world. */
    PF_Err (*copy)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r,
                   PF_Rect* dst_r);
    /* [main-thread] Fills an 8-bit world; a null colour is transparent black, a null rectangle the whole
     * world. */
    PF_Err (*fill)(PF_ProgPtr effect_ref, const PF_Pixel* color, const PF_Rect* dst_rect,
                   PF_EffectWorld* world);
    PF_Err (*gaussian_kernel)(PF_ProgPtr effect_ref, A_FpLong kRadius, PF_KernelFlags flags,
                              A_FpLong multiplier, A_long* diameter, void* kernel);
    /* [main-thread] Calls pix_fn for every pixel of the area, possibly on several threads. A null source
     * gives null input pixels; a null area is the whole destination. Progress runs from progress_base to
     * progress_final of the bar. */
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon, PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst);
    /* [main-thread] Multiplies colours by alpha (forward non-zero) or divides them by it, in place. */
    PF_Err (*premultiply)(PF_ProgPtr effect_ref, A_long forward, PF_EffectWorld* dst);
    /* [main-thread] The same against a background colour. */
    PF_Err (*premultiply_color)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel* color,
                                A_long forward, PF_EffectWorld* dst);
    /* [main-thread] Allocates a world that the caller gives back with dispose_world in the same command. Rows
     * may be padded; pixels are undefined without CLEAR_PIXELS. */
    PF_Err (*new_world)(PF_ProgPtr effect_ref, A_long width, A_long height, PF_NewWorldFlags flags,
                        PF_EffectWorld* world);
    /* [main-thread] Frees a world made by new_world. */
    PF_Err (*dispose_world)(PF_ProgPtr effect_ref, PF_EffectWorld* world);
    /* [main-thread] iterate with the source shifted by `origin`; the source is clipped to the destination. */
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                             PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin, void* refcon,
                             PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst);
    /* [main-thread] Maps each channel of an 8-bit world through a table of 256 bytes; null leaves the
     * channel. */
    PF_Err (*iterate_lut)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                          PF_EffectWorld* src, const PF_Rect* area, A_u_char* a_lut0, A_u_char* r_lut0,
                          A_u_char* g_lut0, A_u_char* b_lut0, PF_EffectWorld* dst);
    /* [main-thread] Composites with a transfer mode and an optional mask. */
    PF_Err (*transfer_rect)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                            const PF_Rect* src_rec, const PF_EffectWorld* src_world,
                            const PF_CompositeMode* comp_mode, const PF_MaskWorld* mask_world0, A_long dest_x,
                            A_long dest_y, PF_EffectWorld* dst_world);
    /* [main-thread] Draws the source through a 3 x 3 matrix; src2dst_matrix non-zero: it maps source to
     * destination. A null rectangle is the whole destination. PF_Quality_HI filters. */
    PF_Err (*transform_world)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                              const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                              const PF_MaskWorld* mask_world0, const PF_FloatMatrix* matrices,
                              A_long num_matrices, PF_Boolean src2dst_matrix, const PF_Rect* dest_rect,
                              PF_EffectWorld* dst_world);
    /* [main-thread] Null when memory is short. The caller owns the handle; *handle is the data at once,
     * locked or not. */
    PF_Handle (*host_new_handle)(A_u_longlong size);
    /* [main-thread] Fixes the block and returns its address; locks nest. */
    void* (*host_lock_handle)(PF_Handle pf_handle);
    /* [main-thread] Undoes one lock. */
    void (*host_unlock_handle)(PF_Handle pf_handle);
    /* [main-thread] Frees block and handle. */
    void (*host_dispose_handle)(PF_Handle pf_handle);
    /* [main-thread] The function behind a callback number, for the given quality. */
    PF_Err (*get_callback_addr)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags mode_flags,
                                PF_CallbackID which_callback, PF_CallbackFunc* fn_ptr);
    /* [main-thread] Host-specific. */
    PF_Err (*app)(PF_ProgPtr, A_long, ...);
    PF_ANSICallbacksBlock ansi; /* math and text functions of the host */
    PF_ColorCallbacks colorCB;  /* colour conversions of the host */
    /* [main-thread] Windows, menus and paths of the platform. */
    PF_Err (*get_platform_data)(PF_ProgPtr effect_ref, PF_PlatDataID which, void* data);
    /* [main-thread] In bytes. */
    A_u_longlong (*host_get_handle_size)(PF_Handle pf_handle);
    /* [main-thread] iterate_origin without the clip; outside the source is transparent. */
    PF_Err (*iterate_origin_non_clip_src)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                                          PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin,
                                          void* refcon, PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst);
    /* [main-thread] Calls fn_func for i = 0 .. iterationsL - 1, possibly on several threads; -1 asks for one
     * call per processor. thread_indexL is 0 on the calling thread. Returns when all have returned, with the
     * first non-zero result. */
    PF_Err (*iterate_generic)(A_long iterationsL, void* refconPV,
                              PF_Err (*fn_func)(void* refconPV, A_long thread_indexL, A_long i,
                                                A_long iterationsL));
    /* [main-thread] May move the block and replace the handle; keeps the bytes that fit. */
    PF_Err (*host_resize_handle)(A_u_longlong new_sizeL, PF_Handle* handlePH);
    /* [any-thread] The 16-bit forms of the calls above, here and below. */
    PF_Err (*subpixel_sample16)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                                PF_Pixel16* dst_pixel);
    PF_Err (*area_sample16)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                            PF_Pixel16* dst_pixel);
    PF_Err (*fill16)(PF_ProgPtr effect_ref, const PF_Pixel16* color, const PF_Rect* dst_rect,
                     PF_EffectWorld* world);
    PF_Err (*premultiply_color16)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel16* color,
                                  A_long forward, PF_EffectWorld* dst);
    PF_Err (*iterate16)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                        const PF_Rect* area, void* refcon, PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_origin16)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                               PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin, void* refcon,
                               PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_origin_non_clip_src16)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                                            PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin,
                                            void* refcon, PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst);
    /* [any-thread] The address of a pixel, the first one for a null pixel; null when the world is not 8-bit.
     */
    PF_Err (*get_pixel_data8)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel8** pixPP);
    /* [any-thread] The same for 16-bit worlds. */
    PF_Err (*get_pixel_data16)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel16** pixPP);
    A_long reserved[1];
} PF_UtilCallbacks;
PF_LAYOUT(PF_UtilCallbacks, 552, 8);
PF_AT(PF_UtilCallbacks, subpixel_sample, 8);
PF_AT(PF_UtilCallbacks, area_sample, 16);
PF_AT(PF_UtilCallbacks, get_batch_func_is_deprecated, 24);
PF_AT(PF_UtilCallbacks, end_sampling, 32);
PF_AT(PF_UtilCallbacks, composite_rect, 40);
PF_AT(PF_UtilCallbacks, blend, 48);
PF_AT(PF_UtilCallbacks, convolve, 56);
PF_AT(PF_UtilCallbacks, copy, 64);
PF_AT(PF_UtilCallbacks, fill, 72);
PF_AT(PF_UtilCallbacks, gaussian_kernel, 80);
PF_AT(PF_UtilCallbacks, iterate, 88);
PF_AT(PF_UtilCallbacks, premultiply, 96);
PF_AT(PF_UtilCallbacks, premultiply_color, 104);
PF_AT(PF_UtilCallbacks, new_world, 112);
PF_AT(PF_UtilCallbacks, dispose_world, 120);
PF_AT(PF_UtilCallbacks, iterate_origin, 128);
PF_AT(PF_UtilCallbacks, iterate_lut, 136);
PF_AT(PF_UtilCallbacks, transfer_rect, 144);
PF_AT(PF_UtilCallbacks, transform_world, 152);
PF_AT(PF_UtilCallbacks, host_new_handle, 160);
PF_AT(PF_UtilCallbacks, host_lock_handle, 168);
PF_AT(PF_UtilCallbacks, host_unlock_handle, 176);
PF_AT(PF_UtilCallbacks, host_dispose_handle, 184);
PF_AT(PF_UtilCallbacks, get_callback_addr, 192);
PF_AT(PF_UtilCallbacks, app, 200);
PF_AT(PF_UtilCallbacks, ansi, 208);
PF_AT(PF_UtilCallbacks, colorCB, 368);
PF_AT(PF_UtilCallbacks, get_platform_data, 432);
PF_AT(PF_UtilCallbacks, host_get_handle_size, 440);
PF_AT(PF_UtilCallbacks, iterate_origin_non_clip_src, 448);
PF_AT(PF_UtilCallbacks, iterate_generic, 456);
PF_AT(PF_UtilCallbacks, host_resize_handle, 464);
PF_AT(PF_UtilCallbacks, subpixel_sample16, 472);
PF_AT(PF_UtilCallbacks, area_sample16, 480);
PF_AT(PF_UtilCallbacks, fill16, 488);
PF_AT(PF_UtilCallbacks, premultiply_color16, 496);
PF_AT(PF_UtilCallbacks, iterate16, 504);
PF_AT(PF_UtilCallbacks, iterate_origin16, 512);
PF_AT(PF_UtilCallbacks, iterate_origin_non_clip_src16, 520);
PF_AT(PF_UtilCallbacks, get_pixel_data8, 528);
PF_AT(PF_UtilCallbacks, get_pixel_data16, 536);
PF_AT(PF_UtilCallbacks, reserved, 544);

#ifdef __cplusplus
}
#endif
