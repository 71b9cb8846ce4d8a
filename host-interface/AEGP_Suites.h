/*
 * Suites that reach beyond the effect: streams, effect references and registration. Every call is
 * [main-thread]. Calls that effects do not make are declared as slots without a type.
 */
#pragma once

#include "PF_Types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* "AEGP Utility Suite" version 7 */
typedef struct AEGP_UtilitySuite3 {
    PF_UnusedSlot AEGP_ReportInfo;
    PF_UnusedSlot AEGP_GetDriverPluginInitFuncVersion;
    PF_UnusedSlot AEGP_GetDriverImplementationVersion;
    PF_UnusedSlot AEGP_StartQuietErrors;
    PF_UnusedSlot AEGP_EndQuietErrors;
    PF_UnusedSlot AEGP_StartUndoGroup;
    PF_UnusedSlot AEGP_EndUndoGroup;
    /* [main-thread] GLOBAL_SETUP only. Hands out the identifier for the other calls here; the name is
     * zero-terminated. */
    A_Err (*AEGP_RegisterWithAEGP)(AEGP_GlobalRefcon global_refcon, const A_char* plugin_nameZ,
                                   AEGP_PluginID* plugin_id);
    PF_UnusedSlot AEGP_GetMainHWND;
    PF_UnusedSlot AEGP_ShowHideAllFloaters;
    PF_UnusedSlot AEGP_PaintPalGetForeColor;
    PF_UnusedSlot AEGP_PaintPalGetBackColor;
    PF_UnusedSlot AEGP_PaintPalSetForeColor;
    PF_UnusedSlot AEGP_PaintPalSetBackColor;
    PF_UnusedSlot AEGP_CharPalGetFillColor;
    PF_UnusedSlot AEGP_CharPalGetStrokeColor;
    PF_UnusedSlot AEGP_CharPalSetFillColor;
    PF_UnusedSlot AEGP_CharPalSetStrokeColor;
    PF_UnusedSlot AEGP_CharPalIsFillColorUIFrontmost;
    PF_UnusedSlot AEGP_ConvertFpLongToHSFRatio;
    PF_UnusedSlot AEGP_ConvertHSFRatioToFpLong;
    PF_UnusedSlot AEGP_CauseIdleRoutinesToBeCalled;
    PF_UnusedSlot AEGP_GetSuppressInteractiveUI;
    PF_UnusedSlot AEGP_WriteToOSConsole;
    PF_UnusedSlot AEGP_WriteToDebugLog;
} AEGP_UtilitySuite3;
PF_LAYOUT(AEGP_UtilitySuite3, 200, 8);
PF_AT(AEGP_UtilitySuite3, AEGP_RegisterWithAEGP, 56);

/* "AEGP PF Interface Suite" version 1 */
typedef struct AEGP_PFInterfaceSuite1 {
    /* [main-thread] The layer that the effect is applied to; null where there is none. */
    A_Err (*AEGP_GetEffectLayer)(PF_ProgPtr effect_pp_ref, AEGP_LayerH* layerPH);
    /* [main-thread] The caller disposes the reference with AEGP_DisposeEffect. */
    A_Err (*AEGP_GetNewEffectForEffect)(AEGP_PluginID aegp_plugin_id, PF_ProgPtr effect_pp_ref,
                                        AEGP_EffectRefH* effect_refPH);
    /* [main-thread] */
    A_Err (*AEGP_ConvertEffectToCompTime)(PF_ProgPtr effect_pp_ref, A_long what_timeL, A_u_long time_scaleLu,
                                          A_Time* comp_timePT);
    /* [main-thread] The layer of the camera in use; null where there is none. */
    A_Err (*AEGP_GetEffectCamera)(PF_ProgPtr effect_pp_ref, const A_Time* comp_timePT,
                                  AEGP_LayerH* camera_layerPH);
    /* [main-thread] */
    A_Err (*AEGP_GetEffectCameraMatrix)(PF_ProgPtr effect_pp_ref, const A_Time* comp_timePT,
                                        A_Matrix4* camera_matrixP, A_FpLong* dist_to_image_planePF,
                                        A_short* image_plane_widthPL, A_short* image_plane_heightPL);
} AEGP_PFInterfaceSuite1;
PF_LAYOUT(AEGP_PFInterfaceSuite1, 40, 8);
PF_AT(AEGP_PFInterfaceSuite1, AEGP_GetNewEffectForEffect, 8);
PF_AT(AEGP_PFInterfaceSuite1, AEGP_ConvertEffectToCompTime, 16);
PF_AT(AEGP_PFInterfaceSuite1, AEGP_GetEffectCamera, 24);
PF_AT(AEGP_PFInterfaceSuite1, AEGP_GetEffectCameraMatrix, 32);

/* "AEGP Stream Suite" version 4 */
typedef struct AEGP_StreamSuite1 {
    PF_UnusedSlot AEGP_IsStreamLegal;
    PF_UnusedSlot AEGP_CanVaryOverTime;
    PF_UnusedSlot AEGP_GetNewLayerStream;
    PF_UnusedSlot AEGP_GetEffectNumParamStreams;
    /* [main-thread] The caller disposes the stream with AEGP_DisposeStream. */
    A_Err (*AEGP_GetNewEffectStreamByIndex)(AEGP_PluginID aegp_plugin_id, AEGP_EffectRefH effect_refH,
                                            PF_ParamIndex param_index, AEGP_StreamRefH* streamPH);
    PF_UnusedSlot AEGP_GetNewMaskStream;
    A_Err (*AEGP_DisposeStream)(AEGP_StreamRefH streamH);
    PF_UnusedSlot AEGP_GetStreamName;
    PF_UnusedSlot AEGP_GetStreamUnitsText;
    PF_UnusedSlot AEGP_GetStreamProperties;
    PF_UnusedSlot AEGP_IsStreamTimevarying;
    PF_UnusedSlot AEGP_GetStreamType;
    PF_UnusedSlot AEGP_GetNewStreamValue;
    PF_UnusedSlot AEGP_DisposeStreamValue;
    PF_UnusedSlot AEGP_SetStreamValue;
    PF_UnusedSlot AEGP_GetLayerStreamValue;
    PF_UnusedSlot AEGP_GetExpressionState;
    PF_UnusedSlot AEGP_SetExpressionState;
    PF_UnusedSlot AEGP_GetExpression;
    PF_UnusedSlot AEGP_SetExpression;
} AEGP_StreamSuite1;
PF_LAYOUT(AEGP_StreamSuite1, 160, 8);
PF_AT(AEGP_StreamSuite1, AEGP_GetNewEffectStreamByIndex, 32);
PF_AT(AEGP_StreamSuite1, AEGP_DisposeStream, 48);

/* "AEGP Dynamic Stream Suite" version 1 */
typedef struct AEGP_DynamicStreamSuite1 {
    PF_UnusedSlot AEGP_GetNewStreamRefForLayer;
    PF_UnusedSlot AEGP_GetStreamDepth;
    PF_UnusedSlot AEGP_GetStreamGroupingType;
    PF_UnusedSlot AEGP_GetNumStreamsInGroup;
    PF_UnusedSlot AEGP_GetDynamicStreamFlags;
    /* [main-thread] */
    A_Err (*AEGP_SetDynamicStreamFlag)(AEGP_StreamRefH streamH, AEGP_DynStreamFlags one_flag, A_Boolean setB);
    PF_UnusedSlot AEGP_GetNewStreamRefByIndex;
    PF_UnusedSlot AEGP_GetNewStreamRefByMatchname;
    PF_UnusedSlot AEGP_DeleteStream;
    PF_UnusedSlot AEGP_ReorderStream;
    PF_UnusedSlot AEGP_DuplicateStream;
    PF_UnusedSlot AEGP_SetStreamName;
    PF_UnusedSlot AEGP_CanAddStream;
    PF_UnusedSlot AEGP_AddStream;
    PF_UnusedSlot AEGP_GetMatchName;
    PF_UnusedSlot AEGP_GetNewParentStreamRef;
    PF_UnusedSlot AEGP_GetStreamIsModified;
} AEGP_DynamicStreamSuite1;
PF_LAYOUT(AEGP_DynamicStreamSuite1, 136, 8);
PF_AT(AEGP_DynamicStreamSuite1, AEGP_SetDynamicStreamFlag, 40);

/* "AEGP Effect Suite" version 1 */
typedef struct AEGP_EffectSuite1 {
    PF_UnusedSlot AEGP_GetLayerNumEffects;
    PF_UnusedSlot AEGP_GetLayerEffectByIndex;
    PF_UnusedSlot AEGP_GetInstalledKeyFromLayerEffect;
    PF_UnusedSlot AEGP_GetEffectParamUnionByIndex;
    PF_UnusedSlot AEGP_GetEffectFlags;
    PF_UnusedSlot AEGP_SetEffectFlags;
    PF_UnusedSlot AEGP_ReorderEffect;
    PF_UnusedSlot AEGP_EffectCallGeneric;
    A_Err (*AEGP_DisposeEffect)(AEGP_EffectRefH effect_refH);
    PF_UnusedSlot AEGP_ApplyEffect;
    PF_UnusedSlot AEGP_DeleteLayerEffect;
    PF_UnusedSlot AEGP_GetNumInstalledEffects;
    PF_UnusedSlot AEGP_GetNextInstalledEffect;
    PF_UnusedSlot AEGP_GetEffectName;
    PF_UnusedSlot AEGP_GetEffectMatchName;
    PF_UnusedSlot AEGP_GetEffectCategory;
} AEGP_EffectSuite1;
PF_LAYOUT(AEGP_EffectSuite1, 128, 8);
PF_AT(AEGP_EffectSuite1, AEGP_DisposeEffect, 64);

/*
 * Newer versions of the suites above. Only the calls known here are declared; the tables of a host continue
 * after them, so their sizes are not asserted.
 */
/* "AEGP Utility Suite" version 13 */
typedef struct AEGP_UtilitySuite13 {
    PF_UnusedSlot unused_0[9];
    A_Err (*AEGP_RegisterWithAEGP)(AEGP_GlobalRefcon global_refcon, const A_char* plugin_nameZ,
                                   AEGP_PluginID* plugin_id);
} AEGP_UtilitySuite13;
PF_AT(AEGP_UtilitySuite13, AEGP_RegisterWithAEGP, 72);

/* "AEGP Stream Suite" version 11 */
typedef struct AEGP_StreamSuite11 {
    PF_UnusedSlot unused_0[5];
    A_Err (*AEGP_GetNewEffectStreamByIndex)(AEGP_PluginID aegp_plugin_id, AEGP_EffectRefH effect_refH,
                                            PF_ParamIndex param_index, AEGP_StreamRefH* streamPH);
    PF_UnusedSlot unused_6[1];
    A_Err (*AEGP_DisposeStream)(AEGP_StreamRefH streamH);
} AEGP_StreamSuite11;
PF_AT(AEGP_StreamSuite11, AEGP_GetNewEffectStreamByIndex, 40);
PF_AT(AEGP_StreamSuite11, AEGP_DisposeStream, 56);

/* "AEGP Dynamic Stream Suite" version 5 */
typedef struct AEGP_DynamicStreamSuite5 {
    PF_UnusedSlot unused_0[6];
    A_Err (*AEGP_SetDynamicStreamFlag)(AEGP_StreamRefH streamH, AEGP_DynStreamFlags one_flag,
                                       A_Boolean undoableB, A_Boolean setB);
} AEGP_DynamicStreamSuite5;
PF_AT(AEGP_DynamicStreamSuite5, AEGP_SetDynamicStreamFlag, 48);

/* "AEGP Effect Suite" version 4 */
typedef struct AEGP_EffectSuite4 {
    PF_UnusedSlot unused_0[8];
    A_Err (*AEGP_DisposeEffect)(AEGP_EffectRefH effect_refH);
} AEGP_EffectSuite4;
PF_AT(AEGP_EffectSuite4, AEGP_DisposeEffect, 64);

#ifdef __cplusplus
}
#endif
