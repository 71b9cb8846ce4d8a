/* Parameters: one definition per type, and the record that holds any of them. */
#pragma once

#include "PF_Types.h"
#include "PF_World.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct PF_SliderDef {
    PF_ParamValue value;
    A_char value_str[32];
    A_char value_desc[32];
    PF_ParamValue valid_min;
    PF_ParamValue valid_max;
    PF_ParamValue slider_min;
    PF_ParamValue slider_max;
    PF_ParamValue dephault;
} PF_SliderDef;
PF_LAYOUT(PF_SliderDef, 88, 4);
PF_AT(PF_SliderDef, value_str, 4);
PF_AT(PF_SliderDef, value_desc, 36);
PF_AT(PF_SliderDef, valid_min, 68);
PF_AT(PF_SliderDef, valid_max, 72);
PF_AT(PF_SliderDef, slider_min, 76);
PF_AT(PF_SliderDef, slider_max, 80);
PF_AT(PF_SliderDef, dephault, 84);

/* Values are 16.16. */
typedef struct PF_FixedSliderDef {
    PF_Fixed value;
    A_char value_str[32];
    A_char value_desc[32];
    PF_Fixed valid_min;
    PF_Fixed valid_max;
    PF_Fixed slider_min;
    PF_Fixed slider_max;
    PF_Fixed dephault;
    PF_Precision precision; /* digits shown after the point */
    PF_ValueDisplayFlags display_flags;
} PF_FixedSliderDef;
PF_LAYOUT(PF_FixedSliderDef, 92, 4);
PF_AT(PF_FixedSliderDef, value_str, 4);
PF_AT(PF_FixedSliderDef, value_desc, 36);
PF_AT(PF_FixedSliderDef, valid_min, 68);
PF_AT(PF_FixedSliderDef, valid_max, 72);
PF_AT(PF_FixedSliderDef, slider_min, 76);
PF_AT(PF_FixedSliderDef, slider_max, 80);
PF_AT(PF_FixedSliderDef, dephault, 84);
PF_AT(PF_FixedSliderDef, precision, 88);
PF_AT(PF_FixedSliderDef, display_flags, 90);

typedef struct PF_AngleDef {
    PF_Fixed value; /* 16.16 degrees */
    PF_Fixed dephault;
    PF_Fixed valid_min;
    PF_Fixed valid_max;
} PF_AngleDef;
PF_LAYOUT(PF_AngleDef, 16, 4);
PF_AT(PF_AngleDef, dephault, 4);
PF_AT(PF_AngleDef, valid_min, 8);
PF_AT(PF_AngleDef, valid_max, 12);

typedef struct PF_CheckBoxDef {
    PF_ParamValue value;
    PF_Boolean dephault;
    A_char reserved;
    A_short reserved1;
    union {
        const A_char* nameptr;
    } u; /* label beside the box; kept by pointer, so it must outlive the effect */
} PF_CheckBoxDef;
PF_LAYOUT(PF_CheckBoxDef, 16, 8);
PF_AT(PF_CheckBoxDef, dephault, 4);
PF_AT(PF_CheckBoxDef, reserved, 5);
PF_AT(PF_CheckBoxDef, reserved1, 6);
PF_AT(PF_CheckBoxDef, u, 8);

typedef struct PF_ColorDef {
    PF_UnionablePixel value;
    PF_UnionablePixel dephault;
} PF_ColorDef;
PF_LAYOUT(PF_ColorDef, 8, 1);
PF_AT(PF_ColorDef, dephault, 4);

/* A position in the layer. */
typedef struct PF_PointDef {
    PF_Fixed x_value; /* 16.16 pixels */
    PF_Fixed y_value;
    A_char reserved[3];
    PF_Boolean restrict_bounds;
    PF_Fixed x_dephault; /* 16.16 per cent of the layer */
    PF_Fixed y_dephault;
} PF_PointDef;
PF_LAYOUT(PF_PointDef, 20, 4);
PF_AT(PF_PointDef, y_value, 4);
PF_AT(PF_PointDef, reserved, 8);
PF_AT(PF_PointDef, restrict_bounds, 11);
PF_AT(PF_PointDef, x_dephault, 12);
PF_AT(PF_PointDef, y_dephault, 16);

/* Items count from 1. */
typedef struct PF_PopupDef {
    PF_ParamValue value; /* 1-based */
    A_short num_choices;
    A_short dephault; /* 1-based */
    union {
        const A_char* namesptr;
    } u; /* items separated by a vertical bar; kept by pointer, so it must outlive the effect */
} PF_PopupDef;
PF_LAYOUT(PF_PopupDef, 16, 8);
PF_AT(PF_PopupDef, num_choices, 4);
PF_AT(PF_PopupDef, dephault, 6);
PF_AT(PF_PopupDef, u, 8);

/* The valid range limits what can be typed, the slider range what can be dragged. */
typedef struct PF_FloatSliderDef {
    PF_FpLong value;
    PF_FpLong phase;
    A_char value_desc[32];
    PF_FpShort valid_min;
    PF_FpShort valid_max;
    PF_FpShort slider_min;
    PF_FpShort slider_max;
    PF_FpShort dephault;
    PF_Precision precision; /* digits shown after the point */
    PF_ValueDisplayFlags display_flags;
    PF_FSliderFlags fs_flags;
    PF_FpShort curve_tolerance;
    PF_Boolean useExponent;
    PF_FpShort exponent;
} PF_FloatSliderDef;
PF_LAYOUT(PF_FloatSliderDef, 88, 8);
PF_AT(PF_FloatSliderDef, phase, 8);
PF_AT(PF_FloatSliderDef, value_desc, 16);
PF_AT(PF_FloatSliderDef, valid_min, 48);
PF_AT(PF_FloatSliderDef, valid_max, 52);
PF_AT(PF_FloatSliderDef, slider_min, 56);
PF_AT(PF_FloatSliderDef, slider_max, 60);
PF_AT(PF_FloatSliderDef, dephault, 64);
PF_AT(PF_FloatSliderDef, precision, 68);
PF_AT(PF_FloatSliderDef, display_flags, 70);
PF_AT(PF_FloatSliderDef, fs_flags, 72);
PF_AT(PF_FloatSliderDef, curve_tolerance, 76);
PF_AT(PF_FloatSliderDef, useExponent, 80);
PF_AT(PF_FloatSliderDef, exponent, 84);

typedef struct PF_ArbitraryDef {
    A_short id;
    A_short pad;
    PF_ArbitraryH dephault;
    PF_ArbitraryH value;
    void* refconPV;
} PF_ArbitraryDef;
PF_LAYOUT(PF_ArbitraryDef, 32, 8);
PF_AT(PF_ArbitraryDef, pad, 2);
PF_AT(PF_ArbitraryDef, dephault, 8);
PF_AT(PF_ArbitraryDef, value, 16);
PF_AT(PF_ArbitraryDef, refconPV, 24);

typedef struct PF_PathDef {
    PF_PathID path_id;
    A_long reserved0;
    A_long dephault;
} PF_PathDef;
PF_LAYOUT(PF_PathDef, 12, 4);
PF_AT(PF_PathDef, reserved0, 4);
PF_AT(PF_PathDef, dephault, 8);

typedef struct PF_ButtonDef {
    PF_ParamValue value;
    union {
        const A_char* namesptr;
    } u; /* label; kept by pointer, so it must outlive the effect */
} PF_ButtonDef;
PF_LAYOUT(PF_ButtonDef, 16, 8);
PF_AT(PF_ButtonDef, u, 8);

typedef struct PF_Point3DDef {
    PF_FpLong x_value;
    PF_FpLong y_value;
    PF_FpLong z_value;
    PF_FpLong x_dephault;
    PF_FpLong y_dephault;
    PF_FpLong z_dephault;
    char reserved[16];
} PF_Point3DDef;
PF_LAYOUT(PF_Point3DDef, 64, 8);
PF_AT(PF_Point3DDef, y_value, 8);
PF_AT(PF_Point3DDef, z_value, 16);
PF_AT(PF_Point3DDef, x_dephault, 24);
PF_AT(PF_Point3DDef, y_dephault, 32);
PF_AT(PF_Point3DDef, z_dephault, 40);
PF_AT(PF_Point3DDef, reserved, 48);

typedef union PF_ParamDefUnion {
    PF_LayerDef ld;
    PF_SliderDef sd;
    PF_FixedSliderDef fd;
    PF_AngleDef ad;
    PF_CheckBoxDef bd;
    PF_ColorDef cd;
    PF_PointDef td;
    PF_PopupDef pd;
    PF_FloatSliderDef fs_d;
    PF_ArbitraryDef arb_d;
    PF_PathDef path_d;
    PF_ButtonDef button_d;
    PF_Point3DDef point3d_d;
} PF_ParamDefUnion;
PF_LAYOUT(PF_ParamDefUnion, 120, 8);

/* A parameter: its declaration, and its value where the host hands it out. `u` by param_type. */
typedef struct PF_ParamDef {
    union {
        A_long id;
        PF_ChangeFlags change_flags;
    } uu; /* the effect's identifier when declared, change flags later */
    PF_ParamUIFlags ui_flags;
    A_short ui_width;
    A_short ui_height;
    PF_ParamType param_type;
    A_char name[32]; /* zero-terminated unless all 32 bytes are used */
    PF_ParamFlags flags;
    A_long unused;
    PF_ParamDefUnion u;
} PF_ParamDef;
PF_LAYOUT(PF_ParamDef, 176, 8);
PF_AT(PF_ParamDef, ui_flags, 4);
PF_AT(PF_ParamDef, ui_width, 8);
PF_AT(PF_ParamDef, ui_height, 10);
PF_AT(PF_ParamDef, param_type, 12);
PF_AT(PF_ParamDef, name, 16);
PF_AT(PF_ParamDef, flags, 48);
PF_AT(PF_ParamDef, unused, 52);
PF_AT(PF_ParamDef, u, 56);
typedef PF_ParamDef* PF_ParamDefPtr;

#if defined(__i386__) && !defined(_WIN32)
/* Doubles align to 4 in structures here. */
PF_STATIC_ASSERT(sizeof(PF_ParamDefUnion) == 92, "size of PF_ParamDefUnion");
PF_STATIC_ASSERT(sizeof(PF_ParamDef) == 148, "size of PF_ParamDef");
#endif

#ifdef __cplusplus
}
#endif
