/* The records of one call of the effect, and its entry point. */
#pragma once

#include "PF_Callbacks.h"
#include "SP_Basic.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct PF_SoundFormatInfo {
    PF_FpLong rateF;
    PF_SoundChannels num_channels;
    PF_SoundFormat format;
    PF_SoundSampleSize sample_size;
} PF_SoundFormatInfo;
PF_LAYOUT(PF_SoundFormatInfo, 16, 8);
PF_AT(PF_SoundFormatInfo, num_channels, 8);
PF_AT(PF_SoundFormatInfo, format, 10);
PF_AT(PF_SoundFormatInfo, sample_size, 12);

typedef struct PF_SoundWorld {
    PF_SoundFormatInfo fi;
    A_long num_samples;
    void* dataP;
} PF_SoundWorld;
PF_LAYOUT(PF_SoundWorld, 32, 8);
PF_AT(PF_SoundWorld, num_samples, 16);
PF_AT(PF_SoundWorld, dataP, 24);

/* What the host tells the effect with every command. The effect reads it, and clears handles that it has
 * disposed. */
struct PF_InData {
    PF_InteractCallbacks inter; /* interaction callbacks of this call */
    PF_UtilCallbacks* utils;    /* host owned; of this call, not to be kept */
    PF_ProgPtr effect_ref;      /* token for the callbacks; never dereferenced */
    PF_Quality quality;
    PF_SpecVersion version; /* version of the interface that the host speaks */
    A_long serial_num;
    A_AppID appl_id;
    A_long num_params; /* declared parameters, the input layer included */
    A_long reserved;
    A_long what_cpu;
    A_long what_fpu;
    A_long current_time;    /* of this frame, in units of 1 / time_scale s */
    A_long time_step;       /* duration of a source frame; negative when playing backwards */
    A_long total_time;      /* duration of the layer */
    A_long local_time_step; /* duration of a frame of the composition; may be negative */
    A_u_long time_scale;    /* units per second */
    PF_Field field;
    PF_Fixed shutter_angle; /* 16.16 degrees */
    A_long width;           /* of the source layer at full resolution, pixels */
    A_long height;
    PF_Rect extent_hint;    /* part of the output that is visible */
    A_long output_origin_x; /* the source's origin in the output, pixels */
    A_long output_origin_y;
    PF_RationalScale downsample_x; /* resolution relative to full size, 1/1 or below */
    PF_RationalScale downsample_y;
    PF_RationalScale pixel_aspect_ratio;
    PF_InFlags in_flags;
    PF_Handle global_data; /* as the effect left it in PF_OutData; likewise the two below */
    PF_Handle sequence_data;
    PF_Handle frame_data;
    A_long start_sampL; /* audio commands only, likewise the next three */
    A_long dur_sampL;
    A_long total_sampL;
    PF_SoundWorld src_snd;
    SPBasicSuite* pica_basicP;         /* null when the host offers no suites */
    A_long pre_effect_source_origin_x; /* origin of the source before other effects, pixels */
    A_long pre_effect_source_origin_y;
    PF_Fixed shutter_phase;
};
PF_LAYOUT(PF_InData, 408, 8);
PF_AT(PF_InData, utils, 176);
PF_AT(PF_InData, effect_ref, 184);
PF_AT(PF_InData, quality, 192);
PF_AT(PF_InData, version, 196);
PF_AT(PF_InData, serial_num, 200);
PF_AT(PF_InData, appl_id, 204);
PF_AT(PF_InData, num_params, 208);
PF_AT(PF_InData, reserved, 212);
PF_AT(PF_InData, what_cpu, 216);
PF_AT(PF_InData, what_fpu, 220);
PF_AT(PF_InData, current_time, 224);
PF_AT(PF_InData, time_step, 228);
PF_AT(PF_InData, total_time, 232);
PF_AT(PF_InData, local_time_step, 236);
PF_AT(PF_InData, time_scale, 240);
PF_AT(PF_InData, field, 244);
PF_AT(PF_InData, shutter_angle, 248);
PF_AT(PF_InData, width, 252);
PF_AT(PF_InData, height, 256);
PF_AT(PF_InData, extent_hint, 260);
PF_AT(PF_InData, output_origin_x, 276);
PF_AT(PF_InData, output_origin_y, 280);
PF_AT(PF_InData, downsample_x, 284);
PF_AT(PF_InData, downsample_y, 292);
PF_AT(PF_InData, pixel_aspect_ratio, 300);
PF_AT(PF_InData, in_flags, 308);
PF_AT(PF_InData, global_data, 312);
PF_AT(PF_InData, sequence_data, 320);
PF_AT(PF_InData, frame_data, 328);
PF_AT(PF_InData, start_sampL, 336);
PF_AT(PF_InData, dur_sampL, 340);
PF_AT(PF_InData, total_sampL, 344);
PF_AT(PF_InData, src_snd, 352);
PF_AT(PF_InData, pica_basicP, 384);
PF_AT(PF_InData, pre_effect_source_origin_x, 392);
PF_AT(PF_InData, pre_effect_source_origin_y, 396);
PF_AT(PF_InData, shutter_phase, 400);

/* What the effect tells the host. The host clears it before every command. */
typedef struct PF_OutData {
    A_u_long my_version; /* packed, see PF_VERSION; set at GLOBAL_SETUP to the value of the PiPL */
    A_char name[32];
    PF_Handle global_data; /* owned by the effect, kept by the host between calls; likewise sequence_data,
                              frame_data */
    A_long num_params;     /* set at PARAMS_SETUP: declared parameters and the input layer */
    PF_Handle sequence_data;
    A_long flat_sdata_size; /* unused; the handle knows its size */
    PF_Handle frame_data;
    A_long width; /* set at FRAME_SETUP to ask for an output of another size */
    A_long height;
    PF_Point origin;        /* of the input in that output */
    PF_OutFlags out_flags;  /* set at GLOBAL_SETUP to the value of the PiPL */
    A_char return_msg[256]; /* zero-terminated; shown to the user after the call, then cleared */
    A_long start_sampL;
    A_long dur_sampL;
    PF_SoundWorld dest_snd;
    PF_OutFlags2 out_flags2; /* as out_flags */
} PF_OutData;
PF_LAYOUT(PF_OutData, 408, 8);
PF_AT(PF_OutData, name, 4);
PF_AT(PF_OutData, global_data, 40);
PF_AT(PF_OutData, num_params, 48);
PF_AT(PF_OutData, sequence_data, 56);
PF_AT(PF_OutData, flat_sdata_size, 64);
PF_AT(PF_OutData, frame_data, 72);
PF_AT(PF_OutData, width, 80);
PF_AT(PF_OutData, height, 84);
PF_AT(PF_OutData, origin, 88);
PF_AT(PF_OutData, out_flags, 96);
PF_AT(PF_OutData, return_msg, 100);
PF_AT(PF_OutData, start_sampL, 356);
PF_AT(PF_OutData, dur_sampL, 360);
PF_AT(PF_OutData, dest_snd, 368);
PF_AT(PF_OutData, out_flags2, 400);

/* The extra record of USER_CHANGED_PARAM. */
typedef struct PF_UserChangedParamExtra {
    PF_ParamIndex param_index; /* the parameter that the user changed */
} PF_UserChangedParamExtra;
PF_LAYOUT(PF_UserChangedParamExtra, 4, 4);

/*
 * The entry point, exported under the name that the PiPL gives. The host calls it on one thread at a time.
 * params[0] is the input layer, params[1 ..] the declared parameters; output is the frame to be written at
 * RENDER.
 */
typedef PF_Err (*PF_EntryPoint)(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                                PF_LayerDef* output, void* extra);

#ifdef __cplusplus
}
#endif
