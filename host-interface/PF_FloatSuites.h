/* The iterate calls over worlds of floating-point pixels. Tags as for their namesakes in PF_Callbacks.h. */
#pragma once

#include "PF_Callbacks.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef PF_Err (*PF_IteratePixelFloatFunc)(void* refconP, A_long xL, A_long yL, PF_PixelFloat* inP,
                                           PF_PixelFloat* outP);

/* "PF iterateFloat Suite" versions 1 and 2 */
typedef struct PF_iterateFloatSuite1 {
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon, PF_IteratePixelFloatFunc pix_fn,
                      PF_EffectWorld* dst);
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                             PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin, void* refcon,
                             PF_IteratePixelFloatFunc pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_origin_non_clip_src)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                                          PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin,
                                          void* refcon, PF_IteratePixelFloatFunc pix_fn, PF_EffectWorld* dst);
} PF_iterateFloatSuite1;
PF_LAYOUT(PF_iterateFloatSuite1, 24, 8);
PF_AT(PF_iterateFloatSuite1, iterate_origin, 8);
PF_AT(PF_iterateFloatSuite1, iterate_origin_non_clip_src, 16);

#ifdef __cplusplus
}
#endif
