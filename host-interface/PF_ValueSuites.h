/*
 * Values of parameters as floating-point numbers, and the name of the options button. Every call is
 * [main-thread].
 */
#pragma once

#include "PF_Params.h"

#ifdef __cplusplus
extern "C" {
#endif

/* "PF Effect UI Suite" version 1 */
typedef struct PF_EffectUISuite1 {
    /* PARAMS_SETUP only; at most 31 characters. */
    PF_Err (*PF_SetOptionsButtonName)(PF_ProgPtr effect_ref, const A_char* nameZ);
} PF_EffectUISuite1;
PF_LAYOUT(PF_EffectUISuite1, 8, 8);

/* "PF ColorParamSuite" version 1: 0 to 1. */
typedef struct PF_ColorParamSuite1 {
    PF_Err (*PF_GetFloatingPointColorFromColorDef)(PF_ProgPtr effect_ref, const PF_ParamDef* color_defP,
                                                   PF_PixelFloat* fp_colorP);
} PF_ColorParamSuite1;
PF_LAYOUT(PF_ColorParamSuite1, 8, 8);

/* "PF PointParamSuite" version 1: pixels. */
typedef struct PF_PointParamSuite1 {
    PF_Err (*PF_GetFloatingPointValueFromPointDef)(PF_ProgPtr effect_ref, const PF_ParamDef* point_defP,
                                                   A_FloatPoint* fp_pointP);
} PF_PointParamSuite1;
PF_LAYOUT(PF_PointParamSuite1, 8, 8);

/* "PF AngleParamSuite" version 1: degrees. */
typedef struct PF_AngleParamSuite1 {
    PF_Err (*PF_GetFloatingPointValueFromAngleDef)(PF_ProgPtr effect_ref, const PF_ParamDef* angle_defP,
                                                   A_FpLong* fp_valueP);
} PF_AngleParamSuite1;
PF_LAYOUT(PF_AngleParamSuite1, 8, 8);

#ifdef __cplusplus
}
#endif
