/* Pictures, and the records that drawing operations take. */
#pragma once

#include "PF_Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * A picture: rows of ARGB pixels, top to bottom, straight colour. Deep worlds hold PF_Pixel16. The host owns
 * the pixels of every world except those that an effect allocated itself.
 */
typedef struct PF_LayerDef {
    void* reserved0;
    void* reserved1;
    PF_WorldFlags world_flags;
    PF_PixelPtr data; /* first byte of row 0; null when the layer has no pixels */
    A_long rowbytes;  /* from one row to the next; at least width times the pixel size */
    A_long width;     /* pixels */
    A_long height;
    PF_UnionableRect extent_hint; /* part of the world that holds something */
    void* platform_ref;           /* host use */
    A_long reserved_long1;
    void* reserved_long4;
    PF_RationalScale pix_aspect_ratio;
    void* reserved_long2;
    A_long origin_x; /* of the layer in the composition, pixels */
    A_long origin_y;
    A_long reserved_long3;
    A_long dephault; /* default layer of a layer parameter: 0 none */
} PF_LayerDef;
PF_LAYOUT(PF_LayerDef, 120, 8);
PF_AT(PF_LayerDef, reserved1, 8);
PF_AT(PF_LayerDef, world_flags, 16);
PF_AT(PF_LayerDef, data, 24);
PF_AT(PF_LayerDef, rowbytes, 32);
PF_AT(PF_LayerDef, width, 36);
PF_AT(PF_LayerDef, height, 40);
PF_AT(PF_LayerDef, extent_hint, 44);
PF_AT(PF_LayerDef, platform_ref, 64);
PF_AT(PF_LayerDef, reserved_long1, 72);
PF_AT(PF_LayerDef, reserved_long4, 80);
PF_AT(PF_LayerDef, pix_aspect_ratio, 88);
PF_AT(PF_LayerDef, reserved_long2, 96);
PF_AT(PF_LayerDef, origin_x, 104);
PF_AT(PF_LayerDef, origin_y, 108);
PF_AT(PF_LayerDef, reserved_long3, 112);
PF_AT(PF_LayerDef, dephault, 116);
typedef PF_LayerDef PF_EffectWorld;

/* How a source is combined with a destination. */
typedef struct PF_CompositeMode {
    PF_TransferMode xfer;
    A_long rand_seed;
    A_u_char opacity;    /* 0 to 255, for 8-bit worlds */
    PF_Boolean rgb_only; /* leaves the alpha of the destination */
    A_u_short opacitySu; /* 0 to 32768, for 16-bit worlds */
} PF_CompositeMode;
PF_LAYOUT(PF_CompositeMode, 12, 4);
PF_AT(PF_CompositeMode, rand_seed, 4);
PF_AT(PF_CompositeMode, opacity, 8);
PF_AT(PF_CompositeMode, rgb_only, 9);
PF_AT(PF_CompositeMode, opacitySu, 10);

typedef struct PF_MaskWorld {
    PF_EffectWorld mask;
    PF_Point offset; /* of the mask in the source */
    PF_MaskFlags what_is_mask;
} PF_MaskWorld;
PF_LAYOUT(PF_MaskWorld, 136, 8);
PF_AT(PF_MaskWorld, offset, 120);
PF_AT(PF_MaskWorld, what_is_mask, 128);

typedef struct PF_FloatMatrix {
    PF_FpLong mat[3][3]; /* row-major, applied to row vectors (x, y, 1): the translation is the bottom row */
} PF_FloatMatrix;
PF_LAYOUT(PF_FloatMatrix, 72, 8);

/* What the sampling callbacks read: the area around a position, and the world. The effect fills it and owns
 * it. */
typedef struct PF_SampPB {
    PF_Fixed x_radius; /* half the width of area_sample, 16.16 pixels */
    PF_Fixed y_radius;
    PF_Fixed area;
    PF_EffectWorld* src;
} PF_SampPB;

#ifdef __cplusplus
}
#endif
