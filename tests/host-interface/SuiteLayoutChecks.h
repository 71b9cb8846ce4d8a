// Tables of pointers: every slot of every suite, on every target. Read from the table of facts independently
// of the headers.
#pragma once

#include "LayoutChecks.h"

SLOT(AEGP_UtilitySuite3, AEGP_ReportInfo, 0);
SLOT(AEGP_UtilitySuite3, AEGP_GetDriverPluginInitFuncVersion, 1);
SLOT(AEGP_UtilitySuite3, AEGP_GetDriverImplementationVersion, 2);
SLOT(AEGP_UtilitySuite3, AEGP_StartQuietErrors, 3);
SLOT(AEGP_UtilitySuite3, AEGP_EndQuietErrors, 4);
SLOT(AEGP_UtilitySuite3, AEGP_StartUndoGroup, 5);
SLOT(AEGP_UtilitySuite3, AEGP_EndUndoGroup, 6);
SLOT(AEGP_UtilitySuite3, AEGP_RegisterWithAEGP, 7);
SLOT(AEGP_UtilitySuite3, AEGP_GetMainHWND, 8);
SLOT(AEGP_UtilitySuite3, AEGP_ShowHideAllFloaters, 9);
SLOT(AEGP_UtilitySuite3, AEGP_PaintPalGetForeColor, 10);
SLOT(AEGP_UtilitySuite3, AEGP_PaintPalGetBackColor, 11);
SLOT(AEGP_UtilitySuite3, AEGP_PaintPalSetForeColor, 12);
SLOT(AEGP_UtilitySuite3, AEGP_PaintPalSetBackColor, 13);
SLOT(AEGP_UtilitySuite3, AEGP_CharPalGetFillColor, 14);
SLOT(AEGP_UtilitySuite3, AEGP_CharPalGetStrokeColor, 15);
SLOT(AEGP_UtilitySuite3, AEGP_CharPalSetFillColor, 16);
SLOT(AEGP_UtilitySuite3, AEGP_CharPalSetStrokeColor, 17);
SLOT(AEGP_UtilitySuite3, AEGP_CharPalIsFillColorUIFrontmost, 18);
SLOT(AEGP_UtilitySuite3, AEGP_ConvertFpLongToHSFRatio, 19);
SLOT(AEGP_UtilitySuite3, AEGP_ConvertHSFRatioToFpLong, 20);
SLOT(AEGP_UtilitySuite3, AEGP_CauseIdleRoutinesToBeCalled, 21);
SLOT(AEGP_UtilitySuite3, AEGP_GetSuppressInteractiveUI, 22);
SLOT(AEGP_UtilitySuite3, AEGP_WriteToOSConsole, 23);
SLOT(AEGP_UtilitySuite3, AEGP_WriteToDebugLog, 24);

SLOT(AEGP_PFInterfaceSuite1, AEGP_GetEffectLayer, 0);
SLOT(AEGP_PFInterfaceSuite1, AEGP_GetNewEffectForEffect, 1);
SLOT(AEGP_PFInterfaceSuite1, AEGP_ConvertEffectToCompTime, 2);
SLOT(AEGP_PFInterfaceSuite1, AEGP_GetEffectCamera, 3);
SLOT(AEGP_PFInterfaceSuite1, AEGP_GetEffectCameraMatrix, 4);

SLOT(AEGP_StreamSuite1, AEGP_IsStreamLegal, 0);
SLOT(AEGP_StreamSuite1, AEGP_CanVaryOverTime, 1);
SLOT(AEGP_StreamSuite1, AEGP_GetNewLayerStream, 2);
SLOT(AEGP_StreamSuite1, AEGP_GetEffectNumParamStreams, 3);
SLOT(AEGP_StreamSuite1, AEGP_GetNewEffectStreamByIndex, 4);
SLOT(AEGP_StreamSuite1, AEGP_GetNewMaskStream, 5);
SLOT(AEGP_StreamSuite1, AEGP_DisposeStream, 6);
SLOT(AEGP_StreamSuite1, AEGP_GetStreamName, 7);
SLOT(AEGP_StreamSuite1, AEGP_GetStreamUnitsText, 8);
SLOT(AEGP_StreamSuite1, AEGP_GetStreamProperties, 9);
SLOT(AEGP_StreamSuite1, AEGP_IsStreamTimevarying, 10);
SLOT(AEGP_StreamSuite1, AEGP_GetStreamType, 11);
SLOT(AEGP_StreamSuite1, AEGP_GetNewStreamValue, 12);
SLOT(AEGP_StreamSuite1, AEGP_DisposeStreamValue, 13);
SLOT(AEGP_StreamSuite1, AEGP_SetStreamValue, 14);
SLOT(AEGP_StreamSuite1, AEGP_GetLayerStreamValue, 15);
SLOT(AEGP_StreamSuite1, AEGP_GetExpressionState, 16);
SLOT(AEGP_StreamSuite1, AEGP_SetExpressionState, 17);
SLOT(AEGP_StreamSuite1, AEGP_GetExpression, 18);
SLOT(AEGP_StreamSuite1, AEGP_SetExpression, 19);

SLOT(AEGP_DynamicStreamSuite1, AEGP_GetNewStreamRefForLayer, 0);
SLOT(AEGP_DynamicStreamSuite1, AEGP_GetStreamDepth, 1);
SLOT(AEGP_DynamicStreamSuite1, AEGP_GetStreamGroupingType, 2);
SLOT(AEGP_DynamicStreamSuite1, AEGP_GetNumStreamsInGroup, 3);
SLOT(AEGP_DynamicStreamSuite1, AEGP_GetDynamicStreamFlags, 4);
SLOT(AEGP_DynamicStreamSuite1, AEGP_SetDynamicStreamFlag, 5);
SLOT(AEGP_DynamicStreamSuite1, AEGP_GetNewStreamRefByIndex, 6);
SLOT(AEGP_DynamicStreamSuite1, AEGP_GetNewStreamRefByMatchname, 7);
SLOT(AEGP_DynamicStreamSuite1, AEGP_DeleteStream, 8);
SLOT(AEGP_DynamicStreamSuite1, AEGP_ReorderStream, 9);
SLOT(AEGP_DynamicStreamSuite1, AEGP_DuplicateStream, 10);
SLOT(AEGP_DynamicStreamSuite1, AEGP_SetStreamName, 11);
SLOT(AEGP_DynamicStreamSuite1, AEGP_CanAddStream, 12);
SLOT(AEGP_DynamicStreamSuite1, AEGP_AddStream, 13);
SLOT(AEGP_DynamicStreamSuite1, AEGP_GetMatchName, 14);
SLOT(AEGP_DynamicStreamSuite1, AEGP_GetNewParentStreamRef, 15);
SLOT(AEGP_DynamicStreamSuite1, AEGP_GetStreamIsModified, 16);

SLOT(AEGP_EffectSuite1, AEGP_GetLayerNumEffects, 0);
SLOT(AEGP_EffectSuite1, AEGP_GetLayerEffectByIndex, 1);
SLOT(AEGP_EffectSuite1, AEGP_GetInstalledKeyFromLayerEffect, 2);
SLOT(AEGP_EffectSuite1, AEGP_GetEffectParamUnionByIndex, 3);
SLOT(AEGP_EffectSuite1, AEGP_GetEffectFlags, 4);
SLOT(AEGP_EffectSuite1, AEGP_SetEffectFlags, 5);
SLOT(AEGP_EffectSuite1, AEGP_ReorderEffect, 6);
SLOT(AEGP_EffectSuite1, AEGP_EffectCallGeneric, 7);
SLOT(AEGP_EffectSuite1, AEGP_DisposeEffect, 8);
SLOT(AEGP_EffectSuite1, AEGP_ApplyEffect, 9);
SLOT(AEGP_EffectSuite1, AEGP_DeleteLayerEffect, 10);
SLOT(AEGP_EffectSuite1, AEGP_GetNumInstalledEffects, 11);
SLOT(AEGP_EffectSuite1, AEGP_GetNextInstalledEffect, 12);
SLOT(AEGP_EffectSuite1, AEGP_GetEffectName, 13);
SLOT(AEGP_EffectSuite1, AEGP_GetEffectMatchName, 14);
SLOT(AEGP_EffectSuite1, AEGP_GetEffectCategory, 15);

SLOT(PF_HandleSuite1, host_new_handle, 0);
SLOT(PF_HandleSuite1, host_lock_handle, 1);
SLOT(PF_HandleSuite1, host_unlock_handle, 2);
SLOT(PF_HandleSuite1, host_dispose_handle, 3);
SLOT(PF_HandleSuite1, host_get_handle_size, 4);
SLOT(PF_HandleSuite1, host_resize_handle, 5);

SLOT(PF_WorldSuite2, PF_NewWorld, 0);
SLOT(PF_WorldSuite2, PF_DisposeWorld, 1);
SLOT(PF_WorldSuite2, PF_GetPixelFormat, 2);

SLOT(PF_WorldTransformSuite1, composite_rect, 0);
SLOT(PF_WorldTransformSuite1, blend, 1);
SLOT(PF_WorldTransformSuite1, convolve, 2);
SLOT(PF_WorldTransformSuite1, copy, 3);
SLOT(PF_WorldTransformSuite1, copy_hq, 4);
SLOT(PF_WorldTransformSuite1, transfer_rect, 5);
SLOT(PF_WorldTransformSuite1, transform_world, 6);

SLOT(PF_FillMatteSuite2, fill, 0);
SLOT(PF_FillMatteSuite2, fill16, 1);
SLOT(PF_FillMatteSuite2, fill_float, 2);
SLOT(PF_FillMatteSuite2, premultiply, 3);
SLOT(PF_FillMatteSuite2, premultiply_color, 4);
SLOT(PF_FillMatteSuite2, premultiply_color16, 5);
SLOT(PF_FillMatteSuite2, premultiply_color_float, 6);

SLOT(PF_PixelDataSuite1, get_pixel_data8, 0);
SLOT(PF_PixelDataSuite1, get_pixel_data16, 1);
SLOT(PF_PixelDataSuite1, get_pixel_data_float, 2);

SLOT(PF_EffectSequenceDataSuite1, PF_GetConstSequenceData, 0);

SLOT(PF_ParamUtilsSuite3, PF_UpdateParamUI, 0);
SLOT(PF_ParamUtilsSuite3, PF_GetCurrentState, 1);
SLOT(PF_ParamUtilsSuite3, PF_AreStatesIdentical, 2);
SLOT(PF_ParamUtilsSuite3, PF_IsIdenticalCheckout, 3);
SLOT(PF_ParamUtilsSuite3, PF_FindKeyframeTime, 4);
SLOT(PF_ParamUtilsSuite3, PF_GetKeyframeCount, 5);
SLOT(PF_ParamUtilsSuite3, PF_CheckoutKeyframe, 6);
SLOT(PF_ParamUtilsSuite3, PF_CheckinKeyframe, 7);
SLOT(PF_ParamUtilsSuite3, PF_KeyIndexToTime, 8);

SLOT(PF_iterate16Suite1, iterate, 0);
SLOT(PF_iterate16Suite1, iterate_origin, 1);
SLOT(PF_iterate16Suite1, iterate_origin_non_clip_src, 2);

SLOT(AEGP_UtilitySuite13, AEGP_RegisterWithAEGP, 9);
SLOT(AEGP_StreamSuite11, AEGP_GetNewEffectStreamByIndex, 5);
SLOT(AEGP_StreamSuite11, AEGP_DisposeStream, 7);
SLOT(AEGP_DynamicStreamSuite5, AEGP_SetDynamicStreamFlag, 6);
SLOT(AEGP_EffectSuite4, AEGP_DisposeEffect, 8);

SLOT(PF_ChannelSuite1, PF_GetLayerChannelCount, 0);
SLOT(PF_ChannelSuite1, PF_GetLayerChannelIndexedRefAndDesc, 1);
SLOT(PF_ChannelSuite1, PF_GetLayerChannelTypedRefAndDesc, 2);
SLOT(PF_ChannelSuite1, PF_CheckoutLayerChannel, 3);
SLOT(PF_ChannelSuite1, PF_CheckinLayerChannel, 4);

SLOT(PF_AEAppSuite6, PF_AppGetBgColor, 0);
SLOT(PF_AEAppSuite6, PF_AppGetColor, 1);
SLOT(PF_AEAppSuite6, PF_GetPersonalInfo, 2);
SLOT(PF_AEAppSuite6, PF_GetFontStyleSheet, 3);
SLOT(PF_AEAppSuite6, PF_SetCursor, 4);
SLOT(PF_AEAppSuite6, PF_IsRenderEngine, 5);
SLOT(PF_AEAppSuite6, PF_AppColorPickerDialog, 6);
SLOT(PF_AEAppSuite6, PF_GetMouse, 7);
SLOT(PF_AEAppSuite6, PF_InvalidateRect, 8);
SLOT(PF_AEAppSuite6, PF_ConvertLocalToGlobal, 9);
SLOT(PF_AEAppSuite6, PF_GetColorAtGlobalPoint, 10);

SLOT(PF_AEAppSuite7, PF_AppGetBgColor, 0);
SLOT(PF_AEAppSuite7, PF_AppGetColor, 1);
SLOT(PF_AEAppSuite7, PF_AppGetLanguage, 2);
SLOT(PF_AEAppSuite7, PF_GetPersonalInfo, 3);
SLOT(PF_AEAppSuite7, PF_GetFontStyleSheet, 4);
SLOT(PF_AEAppSuite7, PF_SetCursor, 5);
SLOT(PF_AEAppSuite7, PF_IsRenderEngine, 6);
SLOT(PF_AEAppSuite7, PF_AppColorPickerDialog, 7);
SLOT(PF_AEAppSuite7, PF_GetMouse, 8);
SLOT(PF_AEAppSuite7, PF_InvalidateRect, 9);
SLOT(PF_AEAppSuite7, PF_ConvertLocalToGlobal, 10);
SLOT(PF_AEAppSuite7, PF_GetColorAtGlobalPoint, 11);

SLOT(PF_AEAppSuite1, PF_AppGetBgColor, 0);
SLOT(PF_AEAppSuite1, PF_AppGetColor, 1);
SLOT(PF_AEAppSuite1, PF_AppGetLanguage, 2);
SLOT(PF_AEAppSuite1, PF_GetPersonalInfo, 3);
SLOT(PF_AEAppSuite1, PF_GetFontStyleSheet, 4);
SLOT(PF_AEAppSuite1, PF_SetCursor, 5);
SLOT(PF_AEAppSuite1, PF_IsRenderEngine, 6);
SLOT(PF_AEAppSuite1, PF_AppColorPickerDialog, 7);
SLOT(PF_AEAppSuite1, PF_GetMouse, 8);
SLOT(PF_AEAppSuite1, PF_InvalidateRect, 9);
SLOT(PF_AEAppSuite1, PF_ConvertLocalToGlobal, 10);
SLOT(PF_AEAppSuite1, PF_GetColorAtGlobalPoint, 11);
SLOT(PF_AEAppSuite1, PF_CreateNewAppProgressDialog, 12);
SLOT(PF_AEAppSuite1, PF_AppProgressDialogUpdate, 13);
SLOT(PF_AEAppSuite1, PF_DisposeAppProgressDialog, 14);

SLOT(PF_EffectUISuite1, PF_SetOptionsButtonName, 0);

SLOT(PF_ColorParamSuite1, PF_GetFloatingPointColorFromColorDef, 0);

SLOT(PF_PointParamSuite1, PF_GetFloatingPointValueFromPointDef, 0);

SLOT(PF_AngleParamSuite1, PF_GetFloatingPointValueFromAngleDef, 0);

SLOT(PF_iterateFloatSuite1, iterate, 0);
SLOT(PF_iterateFloatSuite1, iterate_origin, 1);
SLOT(PF_iterateFloatSuite1, iterate_origin_non_clip_src, 2);
