/* Scalars, tokens, geometry and pixels of the interface. Natural alignment everywhere: no packing. */
#pragma once

#include <stdint.h>

#include "PF_Layout.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Scalars of the interface: their widths are the same on every target. */
typedef int32_t A_long;
typedef uint32_t A_u_long;
typedef int16_t A_short;
typedef uint16_t A_u_short;
typedef char A_char;
typedef uint8_t A_u_char;
typedef uint8_t A_Boolean;
typedef uint64_t A_u_longlong;
typedef double A_FpLong;
typedef float A_FpShort;
typedef A_long A_Err;
typedef A_long A_AppID;

typedef A_long PF_Err;
typedef A_long PF_Cmd;
typedef A_long PF_ParamIndex;
typedef A_long PF_ParamValue;
typedef A_long PF_Fixed;    /* 16.16: 65536 is 1 */
typedef A_u_long PF_UFixed; /* 16.16, unsigned */
typedef uint8_t PF_Boolean;
typedef double PF_FpLong;
typedef float PF_FpShort;

typedef A_long PF_Quality;
typedef A_long PF_Field;
typedef A_long PF_ModeFlags;
typedef A_long PF_TransferMode;
typedef A_long PF_XferMode;
typedef A_long PF_ParamType;
typedef A_long PF_ParamFlags;
typedef A_long PF_ParamUIFlags;
typedef A_long PF_ChangeFlags;
typedef A_long PF_OutFlags;
typedef A_long PF_OutFlags2;
typedef A_long PF_InFlags;
typedef A_long PF_WorldFlags;
typedef A_long PF_NewWorldFlags;
typedef A_long PF_MaskFlags;
typedef A_long PF_KernelFlags;
typedef A_long PF_CallbackID;
typedef A_long PF_PlatDataID;
typedef A_long PF_TimeDir;
typedef A_long PF_KeyIndex;
typedef A_long PF_PixelFormat;
typedef A_long PF_ChannelMask;
typedef A_long PF_GPU_Framework;
typedef A_long PF_FunctionSelector;
typedef A_long PF_ArbCompareResult;
typedef A_long PF_ArbPrintFlags;
typedef A_long PF_CustomEventFlags;
typedef A_long PF_UIAlignment;
typedef A_long PF_ChannelType;
typedef A_long PF_DataType;
typedef A_long PF_ChannelIndex;
typedef A_long PF_CursorType;
typedef A_long AEGP_PluginID;
typedef A_u_long PF_FSliderFlags;
typedef A_u_long AEGP_DynStreamFlags;
typedef A_u_long PF_PathID;
typedef A_short PF_Precision;
typedef A_short PF_ValueDisplayFlags;
typedef A_short PF_SoundChannels;
typedef A_short PF_SoundFormat;
typedef A_short PF_SoundSampleSize;
typedef A_short PF_RenderOutputFlags;
typedef A_short PF_App_ColorType;
typedef A_short PF_EyeDropperSampleMode;
typedef intptr_t A_intptr_t;
#ifdef _WIN32
typedef A_long PF_FontStyleSheet;
#else
typedef A_u_char PF_FontStyleSheet;
#endif

/* A relocatable block: *handle is its address, and stays so until the handle is resized. */
typedef A_char** PF_Handle;
typedef const A_char* const* PF_ConstHandle;
/* What it holds only the effect knows, which makes and fills it. */
typedef PF_Handle PF_ArbitraryH;

/* Tokens of the host, never dereferenced by an effect. */
typedef struct PF_EffectToken* PF_ProgPtr;
typedef struct PF_LayerAudioToken* PF_LayerAudio;
typedef struct AEGP_EffectToken* AEGP_EffectRefH;
typedef struct AEGP_StreamToken* AEGP_StreamRefH;
typedef struct AEGP_LayerToken* AEGP_LayerH;
typedef struct AEGP_GlobalRefconToken* AEGP_GlobalRefcon;
typedef void* PF_SndSamplePtr;
typedef struct PF_CustomUIInfo PF_CustomUIInfo;
typedef struct PF_ContextToken** PF_ContextH;
typedef void (*PF_CallbackFunc)(void);
/* A slot of a table whose function is not declared here; never called. */
typedef void (*PF_UnusedSlot)(void);

typedef struct PF_Point {
    A_long h; /* to the right */
    A_long v; /* downwards */
} PF_Point;
PF_LAYOUT(PF_Point, 8, 4);
PF_AT(PF_Point, v, 4);

/* Right and bottom are exclusive. */
typedef struct PF_Rect {
    A_long left;
    A_long top;
    A_long right;
    A_long bottom;
} PF_Rect;
PF_LAYOUT(PF_Rect, 16, 4);
PF_AT(PF_Rect, top, 4);
PF_AT(PF_Rect, right, 8);
PF_AT(PF_Rect, bottom, 12);
typedef PF_Rect PF_UnionableRect;
typedef PF_Rect PF_LRect;

typedef struct PF_RationalScale {
    A_long num;
    A_u_long den;
} PF_RationalScale;
PF_LAYOUT(PF_RationalScale, 8, 4);
PF_AT(PF_RationalScale, den, 4);

typedef struct PF_SpecVersion {
    A_short major;
    A_short minor;
} PF_SpecVersion;
PF_LAYOUT(PF_SpecVersion, 4, 2);
PF_AT(PF_SpecVersion, minor, 2);

/* A time in units of 1 / scale seconds. */
typedef struct A_Time {
    A_long value;
    A_u_long scale;
} A_Time;
PF_LAYOUT(A_Time, 8, 4);
PF_AT(A_Time, scale, 4);

typedef struct A_FloatPoint {
    A_FpLong x;
    A_FpLong y;
} A_FloatPoint;
PF_LAYOUT(A_FloatPoint, 16, 8);
PF_AT(A_FloatPoint, y, 8);

typedef struct A_Matrix4 {
    A_FpLong mat[4][4];
} A_Matrix4;
PF_LAYOUT(A_Matrix4, 128, 8);

/* Straight colour; full intensity is 255. */
typedef struct PF_Pixel {
    A_u_char alpha;
    A_u_char red;
    A_u_char green;
    A_u_char blue;
} PF_Pixel;
PF_LAYOUT(PF_Pixel, 4, 1);
PF_AT(PF_Pixel, red, 1);
PF_AT(PF_Pixel, green, 2);
PF_AT(PF_Pixel, blue, 3);
typedef PF_Pixel PF_Pixel8;
typedef PF_Pixel PF_UnionablePixel;
typedef PF_Pixel* PF_PixelPtr;

/* Full intensity is 32768. */
typedef struct PF_Pixel16 {
    A_u_short alpha;
    A_u_short red;
    A_u_short green;
    A_u_short blue;
} PF_Pixel16;
PF_LAYOUT(PF_Pixel16, 8, 2);
PF_AT(PF_Pixel16, red, 2);
PF_AT(PF_Pixel16, green, 4);
PF_AT(PF_Pixel16, blue, 6);

/* Full intensity is 1. */
typedef struct PF_PixelFloat {
    PF_FpShort alpha;
    PF_FpShort red;
    PF_FpShort green;
    PF_FpShort blue;
} PF_PixelFloat;
PF_LAYOUT(PF_PixelFloat, 16, 4);
PF_AT(PF_PixelFloat, red, 4);
PF_AT(PF_PixelFloat, green, 8);
PF_AT(PF_PixelFloat, blue, 12);

#ifdef __cplusplus
}
#endif
