/*
 * Channels that a layer may have beside alpha and colour: depth, normals, object numbers. Types are
 * four-character codes, the first character in the highest byte. Every call is [main-thread].
 */
#pragma once

#include "PF_Types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct PF_ChannelRef {
    A_intptr_t opaque[8];
} PF_ChannelRef;
PF_LAYOUT(PF_ChannelRef, 64, 8);
typedef PF_ChannelRef* PF_ChannelRefPtr;

typedef struct PF_ChannelDesc {
    PF_ChannelType channel_type;
    A_char name[64];
    PF_DataType data_type;
    A_long dimension; /* planes of that type per pixel */
} PF_ChannelDesc;
PF_LAYOUT(PF_ChannelDesc, 76, 4);
PF_AT(PF_ChannelDesc, name, 4);
PF_AT(PF_ChannelDesc, data_type, 68);
PF_AT(PF_ChannelDesc, dimension, 72);

typedef struct PF_ChannelChunk {
    PF_ChannelRef channel_ref;
    A_long widthL;
    A_long heightL;
    A_long dimensionL;
    A_long row_bytesL;
    PF_DataType data_type;
    PF_Handle dataH;
    void* dataPV; /* never null */
} PF_ChannelChunk;
PF_LAYOUT(PF_ChannelChunk, 104, 8);
PF_AT(PF_ChannelChunk, widthL, 64);
PF_AT(PF_ChannelChunk, heightL, 68);
PF_AT(PF_ChannelChunk, dimensionL, 72);
PF_AT(PF_ChannelChunk, row_bytesL, 76);
PF_AT(PF_ChannelChunk, data_type, 80);
PF_AT(PF_ChannelChunk, dataH, 88);
PF_AT(PF_ChannelChunk, dataPV, 96);

/* "PF AE Channel Suite" version 1 */
typedef struct PF_ChannelSuite1 {
    PF_Err (*PF_GetLayerChannelCount)(PF_ProgPtr effect_ref, PF_ParamIndex param_index,
                                      A_long* num_channelsPL);
    PF_Err (*PF_GetLayerChannelIndexedRefAndDesc)(PF_ProgPtr effect_ref, PF_ParamIndex param_index,
                                                  PF_ChannelIndex channel_index, PF_Boolean* foundPB,
                                                  PF_ChannelRef* channel_refP, PF_ChannelDesc* channel_descP);
    PF_Err (*PF_GetLayerChannelTypedRefAndDesc)(PF_ProgPtr effect_ref, PF_ParamIndex param_index,
                                                PF_ChannelType channel_type, PF_Boolean* foundPB,
                                                PF_ChannelRef* channel_refP, PF_ChannelDesc* channel_descP);
    /* Balanced by the check-in. */
    PF_Err (*PF_CheckoutLayerChannel)(PF_ProgPtr effect_ref, PF_ChannelRefPtr channel_refP, A_long what_time,
                                      A_long duration, A_u_long time_scale, PF_DataType data_type,
                                      PF_ChannelChunk* channel_chunkP);
    PF_Err (*PF_CheckinLayerChannel)(PF_ProgPtr effect_ref, PF_ChannelRefPtr channel_refP,
                                     PF_ChannelChunk* channel_chunkP);
} PF_ChannelSuite1;
PF_LAYOUT(PF_ChannelSuite1, 40, 8);
PF_AT(PF_ChannelSuite1, PF_GetLayerChannelIndexedRefAndDesc, 8);
PF_AT(PF_ChannelSuite1, PF_GetLayerChannelTypedRefAndDesc, 16);
PF_AT(PF_ChannelSuite1, PF_CheckoutLayerChannel, 24);
PF_AT(PF_ChannelSuite1, PF_CheckinLayerChannel, 32);

#ifdef __cplusplus
}
#endif
