/*
 * Suites about pixels, worlds, memory and parameters. A table is acquired by name and version from the basic
 * suite. Thread tags as in PF_Callbacks.h; a call without a tag has that of its namesake there, or is
 * [main-thread].
 */
#pragma once

#include "PF_Callbacks.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A snapshot of parameters, to be compared only. */
typedef struct PF_State {
    A_long reserved[4];
} PF_State;
PF_LAYOUT(PF_State, 16, 4);

/* "PF Iterate8 Suite" versions 1 and 2: the calls of the same names in PF_UtilCallbacks. */
typedef struct PF_Iterate8Suite1 {
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon, PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                             PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin, void* refcon,
                             PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_lut)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                          PF_EffectWorld* src, const PF_Rect* area, A_u_char* a_lut0, A_u_char* r_lut0,
                          A_u_char* g_lut0, A_u_char* b_lut0, PF_EffectWorld* dst);
    PF_Err (*iterate_origin_non_clip_src)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                                          PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin,
                                          void* refcon, PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_generic)(A_long iterationsL, void* refconPV,
                              PF_Err (*fn_func)(void* refconPV, A_long thread_indexL, A_long i,
                                                A_long iterationsL));
} PF_Iterate8Suite1;
PF_LAYOUT(PF_Iterate8Suite1, 40, 8);
PF_AT(PF_Iterate8Suite1, iterate_origin, 8);
PF_AT(PF_Iterate8Suite1, iterate_lut, 16);
PF_AT(PF_Iterate8Suite1, iterate_origin_non_clip_src, 24);
PF_AT(PF_Iterate8Suite1, iterate_generic, 32);

/* "PF iterate16 Suite" versions 1 and 2: the same over 16-bit worlds. */
typedef struct PF_iterate16Suite1 {
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon, PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                             PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin, void* refcon,
                             PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_origin_non_clip_src)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                                          PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin,
                                          void* refcon, PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst);
} PF_iterate16Suite1;
PF_LAYOUT(PF_iterate16Suite1, 24, 8);
PF_AT(PF_iterate16Suite1, iterate_origin, 8);
PF_AT(PF_iterate16Suite1, iterate_origin_non_clip_src, 16);

/* "PF Param Utils Suite" version 1 */
typedef struct PF_ParamUtilsSuite1 {
    /* [main-thread] USER_CHANGED_PARAM and UPDATE_PARAMS_UI only. Takes the appearance of a control (name,
     * flags, range) from *defP. */
    PF_Err (*PF_UpdateParamUI)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, const PF_ParamDef* defP);
    PF_Err (*PF_GetCurrentStateObsolete)(PF_ProgPtr effect_ref, PF_State* stateP);
    PF_Err (*PF_HasParamChangedObsolete)(PF_ProgPtr effect_ref, const PF_State* stateP,
                                         PF_ParamIndex param_index, PF_Boolean* changedPB);
    PF_Err (*PF_HaveInputsChangedOverTimeSpanObsolete)(PF_ProgPtr effect_ref, const PF_State* stateP,
                                                       const A_Time* startPT0, const A_Time* durationPT0,
                                                       PF_Boolean* changedPB);
    PF_Err (*PF_IsIdenticalCheckout)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long what_time1,
                                     A_long time_step1, A_u_long time_scale1, A_long what_time2,
                                     A_long time_step2, A_u_long time_scale2, PF_Boolean* identicalPB);
    PF_Err (*PF_FindKeyframeTime)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long what_time,
                                  A_u_long time_scale, PF_TimeDir time_dir, PF_Boolean* foundPB,
                                  PF_KeyIndex* key_indexP0, A_long* key_timeP0, A_u_long* key_timescaleP0);
    PF_Err (*PF_GetKeyframeCount)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex* key_countP);
    PF_Err (*PF_CheckoutKeyframe)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex key_index,
                                  A_long* key_timeP0, A_u_long* key_timescaleP0, PF_ParamDef* paramP0);
    PF_Err (*PF_CheckinKeyframe)(PF_ProgPtr effect_ref, PF_ParamDef* paramP);
    PF_Err (*PF_KeyIndexToTime)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex key_indexP,
                                A_long* key_timeP, A_u_long* key_timescaleP);
} PF_ParamUtilsSuite1;
PF_LAYOUT(PF_ParamUtilsSuite1, 80, 8);
PF_AT(PF_ParamUtilsSuite1, PF_GetCurrentStateObsolete, 8);
PF_AT(PF_ParamUtilsSuite1, PF_HasParamChangedObsolete, 16);
PF_AT(PF_ParamUtilsSuite1, PF_HaveInputsChangedOverTimeSpanObsolete, 24);
PF_AT(PF_ParamUtilsSuite1, PF_IsIdenticalCheckout, 32);
PF_AT(PF_ParamUtilsSuite1, PF_FindKeyframeTime, 40);
PF_AT(PF_ParamUtilsSuite1, PF_GetKeyframeCount, 48);
PF_AT(PF_ParamUtilsSuite1, PF_CheckoutKeyframe, 56);
PF_AT(PF_ParamUtilsSuite1, PF_CheckinKeyframe, 64);
PF_AT(PF_ParamUtilsSuite1, PF_KeyIndexToTime, 72);

/* "PF Param Utils Suite" version 3 */
typedef struct PF_ParamUtilsSuite3 {
    /* [main-thread] USER_CHANGED_PARAM and UPDATE_PARAMS_UI only. Takes the appearance of a control (name,
     * flags, range) from *defP. */
    PF_Err (*PF_UpdateParamUI)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, const PF_ParamDef* defP);
    PF_Err (*PF_GetCurrentState)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, const A_Time* startPT0,
                                 const A_Time* durationPT0, PF_State* stateP);
    PF_Err (*PF_AreStatesIdentical)(PF_ProgPtr effect_ref, const PF_State* state1P, const PF_State* state2P,
                                    A_Boolean* samePB);
    PF_Err (*PF_IsIdenticalCheckout)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long what_time1,
                                     A_long time_step1, A_u_long time_scale1, A_long what_time2,
                                     A_long time_step2, A_u_long time_scale2, PF_Boolean* identicalPB);
    PF_Err (*PF_FindKeyframeTime)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long what_time,
                                  A_u_long time_scale, PF_TimeDir time_dir, PF_Boolean* foundPB,
                                  PF_KeyIndex* key_indexP0, A_long* key_timeP0, A_u_long* key_timescaleP0);
    PF_Err (*PF_GetKeyframeCount)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex* key_countP);
    PF_Err (*PF_CheckoutKeyframe)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex key_index,
                                  A_long* key_timeP0, A_u_long* key_timescaleP0, PF_ParamDef* paramP0);
    PF_Err (*PF_CheckinKeyframe)(PF_ProgPtr effect_ref, PF_ParamDef* paramP);
    PF_Err (*PF_KeyIndexToTime)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex key_indexP,
                                A_long* key_timeP, A_u_long* key_timescaleP);
} PF_ParamUtilsSuite3;
PF_LAYOUT(PF_ParamUtilsSuite3, 72, 8);
PF_AT(PF_ParamUtilsSuite3, PF_GetCurrentState, 8);
PF_AT(PF_ParamUtilsSuite3, PF_AreStatesIdentical, 16);
PF_AT(PF_ParamUtilsSuite3, PF_IsIdenticalCheckout, 24);
PF_AT(PF_ParamUtilsSuite3, PF_FindKeyframeTime, 32);
PF_AT(PF_ParamUtilsSuite3, PF_GetKeyframeCount, 40);
PF_AT(PF_ParamUtilsSuite3, PF_CheckoutKeyframe, 48);
PF_AT(PF_ParamUtilsSuite3, PF_CheckinKeyframe, 56);
PF_AT(PF_ParamUtilsSuite3, PF_KeyIndexToTime, 64);

/* "PF ANSI Suite" version 1: the functions of PF_ANSICallbacksBlock in the same order. */
typedef PF_ANSICallbacksBlock PF_ANSICallbacksSuite1;

/* "PF Handle Suite" version 2 */
typedef struct PF_HandleSuite1 {
    /* as the calls of the same names in PF_UtilCallbacks */
    PF_Handle (*host_new_handle)(A_u_longlong size);
    void* (*host_lock_handle)(PF_Handle pf_handle);
    void (*host_unlock_handle)(PF_Handle pf_handle);
    void (*host_dispose_handle)(PF_Handle pf_handle);
    A_u_longlong (*host_get_handle_size)(PF_Handle pf_handle);
    PF_Err (*host_resize_handle)(A_u_longlong new_sizeL, PF_Handle* handlePH);
} PF_HandleSuite1;
PF_LAYOUT(PF_HandleSuite1, 48, 8);
PF_AT(PF_HandleSuite1, host_lock_handle, 8);
PF_AT(PF_HandleSuite1, host_unlock_handle, 16);
PF_AT(PF_HandleSuite1, host_dispose_handle, 24);
PF_AT(PF_HandleSuite1, host_get_handle_size, 32);
PF_AT(PF_HandleSuite1, host_resize_handle, 40);

/* "PF World Suite" version 2 */
typedef struct PF_WorldSuite2 {
    /* [main-thread] As new_world, the depth given as a pixel format. */
    PF_Err (*PF_NewWorld)(PF_ProgPtr effect_ref, A_long widthL, A_long heightL, PF_Boolean clear_pixB,
                          PF_PixelFormat pixel_format, PF_EffectWorld* worldP);
    PF_Err (*PF_DisposeWorld)(PF_ProgPtr effect_ref, PF_EffectWorld* worldP);
    /* [any-thread] */
    PF_Err (*PF_GetPixelFormat)(const PF_EffectWorld* worldP, PF_PixelFormat* pixel_formatP);
} PF_WorldSuite2;
PF_LAYOUT(PF_WorldSuite2, 24, 8);
PF_AT(PF_WorldSuite2, PF_DisposeWorld, 8);
PF_AT(PF_WorldSuite2, PF_GetPixelFormat, 16);

/* "PF World Transform Suite" version 1 */
typedef struct PF_WorldTransformSuite1 {
    /* as the calls of the same names in PF_UtilCallbacks */
    PF_Err (*composite_rect)(PF_ProgPtr effect_ref, PF_Rect* src_rect, A_long src_opacity,
                             PF_EffectWorld* source_wld, A_long dest_x, A_long dest_y, PF_Field field_rdr,
                             PF_XferMode xfer_mode, PF_EffectWorld* dest_wld);
    PF_Err (*blend)(PF_ProgPtr effect_ref, const PF_EffectWorld* src1, const PF_EffectWorld* src2,
                    PF_Fixed ratio, PF_EffectWorld* dst);
    PF_Err (*convolve)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Rect* area, PF_KernelFlags flags,
                       A_long kernel_size, void* a_kernel, void* r_kernel, void* g_kernel, void* b_kernel,
                       PF_EffectWorld* dst);
    PF_Err (*copy)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r,
                   PF_Rect* dst_r);
    /* [main-thread] copy, with filtering when the parts differ in size. */
    PF_Err (*copy_hq)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r,
                      PF_Rect* dst_r);
    PF_Err (*transfer_rect)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                            const PF_Rect* src_rec, const PF_EffectWorld* src_world,
                            const PF_CompositeMode* comp_mode, const PF_MaskWorld* mask_world0, A_long dest_x,
                            A_long dest_y, PF_EffectWorld* dst_world);
    PF_Err (*transform_world)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                              const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                              const PF_MaskWorld* mask_world0, const PF_FloatMatrix* matrices,
                              A_long num_matrices, PF_Boolean src2dst_matrix, const PF_Rect* dest_rect,
                              PF_EffectWorld* dst_world);
} PF_WorldTransformSuite1;
PF_LAYOUT(PF_WorldTransformSuite1, 56, 8);
PF_AT(PF_WorldTransformSuite1, blend, 8);
PF_AT(PF_WorldTransformSuite1, convolve, 16);
PF_AT(PF_WorldTransformSuite1, copy, 24);
PF_AT(PF_WorldTransformSuite1, copy_hq, 32);
PF_AT(PF_WorldTransformSuite1, transfer_rect, 40);
PF_AT(PF_WorldTransformSuite1, transform_world, 48);

/* "PF Fill Matte Suite" version 2 */
typedef struct PF_FillMatteSuite2 {
    /* as the calls of the same names in PF_UtilCallbacks */
    PF_Err (*fill)(PF_ProgPtr effect_ref, const PF_Pixel* color, const PF_Rect* dst_rect,
                   PF_EffectWorld* world);
    PF_Err (*fill16)(PF_ProgPtr effect_ref, const PF_Pixel16* color, const PF_Rect* dst_rect,
                     PF_EffectWorld* world);
    PF_Err (*fill_float)(PF_ProgPtr effect_ref, const PF_PixelFloat* color, const PF_Rect* dst_rect,
                         PF_EffectWorld* world);
    PF_Err (*premultiply)(PF_ProgPtr effect_ref, A_long forward, PF_EffectWorld* dst);
    PF_Err (*premultiply_color)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel* color,
                                A_long forward, PF_EffectWorld* dst);
    PF_Err (*premultiply_color16)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel16* color,
                                  A_long forward, PF_EffectWorld* dst);
    PF_Err (*premultiply_color_float)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_PixelFloat* color,
                                      A_long forward, PF_EffectWorld* dst);
} PF_FillMatteSuite2;
PF_LAYOUT(PF_FillMatteSuite2, 56, 8);
PF_AT(PF_FillMatteSuite2, fill16, 8);
PF_AT(PF_FillMatteSuite2, fill_float, 16);
PF_AT(PF_FillMatteSuite2, premultiply, 24);
PF_AT(PF_FillMatteSuite2, premultiply_color, 32);
PF_AT(PF_FillMatteSuite2, premultiply_color16, 40);
PF_AT(PF_FillMatteSuite2, premultiply_color_float, 48);

/* "PF Pixel Data Suite" version 1 */
typedef struct PF_PixelDataSuite1 {
    /* as the calls of the same names in PF_UtilCallbacks */
    PF_Err (*get_pixel_data8)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel8** pixPP);
    PF_Err (*get_pixel_data16)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel16** pixPP);
    PF_Err (*get_pixel_data_float)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_PixelFloat** pixPP);
} PF_PixelDataSuite1;
PF_LAYOUT(PF_PixelDataSuite1, 24, 8);
PF_AT(PF_PixelDataSuite1, get_pixel_data16, 8);
PF_AT(PF_PixelDataSuite1, get_pixel_data_float, 16);

/* "PF Effect Sequence Data Suite" version 1 */
typedef struct PF_EffectSequenceDataSuite1 {
    /* [any-thread] The sequence data of the calling effect, to be read only. */
    PF_Err (*PF_GetConstSequenceData)(PF_ProgPtr effect_ref, PF_ConstHandle* sequence_data);
} PF_EffectSequenceDataSuite1;
PF_LAYOUT(PF_EffectSequenceDataSuite1, 8, 8);

#ifdef __cplusplus
}
#endif
