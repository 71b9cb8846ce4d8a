// The layout of every structure on 64-bit targets, read from the table of facts independently of the checks
// in the headers: size, alignment and the offset of each member, the first one included. The sizes of i386
// System V, where double aligns to 4, stand at the end. Compiled as C and as C++.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "HostInterface.h"

#ifdef __cplusplus
#define CHECK(condition) static_assert(condition, #condition)
#define ALIGN_OF alignof
#else
#define CHECK(condition) _Static_assert(condition, #condition)
#define ALIGN_OF _Alignof
#endif

#define SIZE(type, size, alignment) CHECK(sizeof(type) == (size) && ALIGN_OF(type) == (alignment))
#define AT(type, member, offset) CHECK(offsetof(type, member) == (offset))
#define SLOT(type, member, slot) CHECK(offsetof(type, member) == (slot) * sizeof(void*))

#if UINTPTR_MAX > 0xffffffffu

SIZE(PF_InData, 408, 8);
AT(PF_InData, inter, 0);
AT(PF_InData, utils, 176);
AT(PF_InData, effect_ref, 184);
AT(PF_InData, quality, 192);
AT(PF_InData, version, 196);
AT(PF_InData, serial_num, 200);
AT(PF_InData, appl_id, 204);
AT(PF_InData, num_params, 208);
AT(PF_InData, reserved, 212);
AT(PF_InData, what_cpu, 216);
AT(PF_InData, what_fpu, 220);
AT(PF_InData, current_time, 224);
AT(PF_InData, time_step, 228);
AT(PF_InData, total_time, 232);
AT(PF_InData, local_time_step, 236);
AT(PF_InData, time_scale, 240);
AT(PF_InData, field, 244);
AT(PF_InData, shutter_angle, 248);
AT(PF_InData, width, 252);
AT(PF_InData, height, 256);
AT(PF_InData, extent_hint, 260);
AT(PF_InData, output_origin_x, 276);
AT(PF_InData, output_origin_y, 280);
AT(PF_InData, downsample_x, 284);
AT(PF_InData, downsample_y, 292);
AT(PF_InData, pixel_aspect_ratio, 300);
AT(PF_InData, in_flags, 308);
AT(PF_InData, global_data, 312);
AT(PF_InData, sequence_data, 320);
AT(PF_InData, frame_data, 328);
AT(PF_InData, start_sampL, 336);
AT(PF_InData, dur_sampL, 340);
AT(PF_InData, total_sampL, 344);
AT(PF_InData, src_snd, 352);
AT(PF_InData, pica_basicP, 384);
AT(PF_InData, pre_effect_source_origin_x, 392);
AT(PF_InData, pre_effect_source_origin_y, 396);
AT(PF_InData, shutter_phase, 400);

SIZE(PF_OutData, 408, 8);
AT(PF_OutData, my_version, 0);
AT(PF_OutData, name, 4);
AT(PF_OutData, global_data, 40);
AT(PF_OutData, num_params, 48);
AT(PF_OutData, sequence_data, 56);
AT(PF_OutData, flat_sdata_size, 64);
AT(PF_OutData, frame_data, 72);
AT(PF_OutData, width, 80);
AT(PF_OutData, height, 84);
AT(PF_OutData, origin, 88);
AT(PF_OutData, out_flags, 96);
AT(PF_OutData, return_msg, 100);
AT(PF_OutData, start_sampL, 356);
AT(PF_OutData, dur_sampL, 360);
AT(PF_OutData, dest_snd, 368);
AT(PF_OutData, out_flags2, 400);

SIZE(PF_ParamDef, 176, 8);
AT(PF_ParamDef, uu, 0);
AT(PF_ParamDef, ui_flags, 4);
AT(PF_ParamDef, ui_width, 8);
AT(PF_ParamDef, ui_height, 10);
AT(PF_ParamDef, param_type, 12);
AT(PF_ParamDef, name, 16);
AT(PF_ParamDef, flags, 48);
AT(PF_ParamDef, unused, 52);
AT(PF_ParamDef, u, 56);

SIZE(PF_LayerDef, 120, 8);
AT(PF_LayerDef, reserved0, 0);
AT(PF_LayerDef, reserved1, 8);
AT(PF_LayerDef, world_flags, 16);
AT(PF_LayerDef, data, 24);
AT(PF_LayerDef, rowbytes, 32);
AT(PF_LayerDef, width, 36);
AT(PF_LayerDef, height, 40);
AT(PF_LayerDef, extent_hint, 44);
AT(PF_LayerDef, platform_ref, 64);
AT(PF_LayerDef, reserved_long1, 72);
AT(PF_LayerDef, reserved_long4, 80);
AT(PF_LayerDef, pix_aspect_ratio, 88);
AT(PF_LayerDef, reserved_long2, 96);
AT(PF_LayerDef, origin_x, 104);
AT(PF_LayerDef, origin_y, 108);
AT(PF_LayerDef, reserved_long3, 112);
AT(PF_LayerDef, dephault, 116);

SIZE(PF_SliderDef, 88, 4);
AT(PF_SliderDef, value, 0);
AT(PF_SliderDef, value_str, 4);
AT(PF_SliderDef, value_desc, 36);
AT(PF_SliderDef, valid_min, 68);
AT(PF_SliderDef, valid_max, 72);
AT(PF_SliderDef, slider_min, 76);
AT(PF_SliderDef, slider_max, 80);
AT(PF_SliderDef, dephault, 84);

SIZE(PF_FixedSliderDef, 92, 4);
AT(PF_FixedSliderDef, value, 0);
AT(PF_FixedSliderDef, value_str, 4);
AT(PF_FixedSliderDef, value_desc, 36);
AT(PF_FixedSliderDef, valid_min, 68);
AT(PF_FixedSliderDef, valid_max, 72);
AT(PF_FixedSliderDef, slider_min, 76);
AT(PF_FixedSliderDef, slider_max, 80);
AT(PF_FixedSliderDef, dephault, 84);
AT(PF_FixedSliderDef, precision, 88);
AT(PF_FixedSliderDef, display_flags, 90);

SIZE(PF_AngleDef, 16, 4);
AT(PF_AngleDef, value, 0);
AT(PF_AngleDef, dephault, 4);
AT(PF_AngleDef, valid_min, 8);
AT(PF_AngleDef, valid_max, 12);

SIZE(PF_CheckBoxDef, 16, 8);
AT(PF_CheckBoxDef, value, 0);
AT(PF_CheckBoxDef, dephault, 4);
AT(PF_CheckBoxDef, reserved, 5);
AT(PF_CheckBoxDef, reserved1, 6);
AT(PF_CheckBoxDef, u, 8);

SIZE(PF_ColorDef, 8, 1);
AT(PF_ColorDef, value, 0);
AT(PF_ColorDef, dephault, 4);

SIZE(PF_PointDef, 20, 4);
AT(PF_PointDef, x_value, 0);
AT(PF_PointDef, y_value, 4);
AT(PF_PointDef, reserved, 8);
AT(PF_PointDef, restrict_bounds, 11);
AT(PF_PointDef, x_dephault, 12);
AT(PF_PointDef, y_dephault, 16);

SIZE(PF_PopupDef, 16, 8);
AT(PF_PopupDef, value, 0);
AT(PF_PopupDef, num_choices, 4);
AT(PF_PopupDef, dephault, 6);
AT(PF_PopupDef, u, 8);

SIZE(PF_FloatSliderDef, 88, 8);
AT(PF_FloatSliderDef, value, 0);
AT(PF_FloatSliderDef, phase, 8);
AT(PF_FloatSliderDef, value_desc, 16);
AT(PF_FloatSliderDef, valid_min, 48);
AT(PF_FloatSliderDef, valid_max, 52);
AT(PF_FloatSliderDef, slider_min, 56);
AT(PF_FloatSliderDef, slider_max, 60);
AT(PF_FloatSliderDef, dephault, 64);
AT(PF_FloatSliderDef, precision, 68);
AT(PF_FloatSliderDef, display_flags, 70);
AT(PF_FloatSliderDef, fs_flags, 72);
AT(PF_FloatSliderDef, curve_tolerance, 76);
AT(PF_FloatSliderDef, useExponent, 80);
AT(PF_FloatSliderDef, exponent, 84);

SIZE(PF_ArbitraryDef, 32, 8);
AT(PF_ArbitraryDef, id, 0);
AT(PF_ArbitraryDef, pad, 2);
AT(PF_ArbitraryDef, dephault, 8);
AT(PF_ArbitraryDef, value, 16);
AT(PF_ArbitraryDef, refconPV, 24);

SIZE(PF_PathDef, 12, 4);
AT(PF_PathDef, path_id, 0);
AT(PF_PathDef, reserved0, 4);
AT(PF_PathDef, dephault, 8);

SIZE(PF_ButtonDef, 16, 8);
AT(PF_ButtonDef, value, 0);
AT(PF_ButtonDef, u, 8);

SIZE(PF_Point3DDef, 64, 8);
AT(PF_Point3DDef, x_value, 0);
AT(PF_Point3DDef, y_value, 8);
AT(PF_Point3DDef, z_value, 16);
AT(PF_Point3DDef, x_dephault, 24);
AT(PF_Point3DDef, y_dephault, 32);
AT(PF_Point3DDef, z_dephault, 40);
AT(PF_Point3DDef, reserved, 48);

SIZE(PF_SoundWorld, 32, 8);
AT(PF_SoundWorld, fi, 0);
AT(PF_SoundWorld, num_samples, 16);
AT(PF_SoundWorld, dataP, 24);

SIZE(PF_SoundFormatInfo, 16, 8);
AT(PF_SoundFormatInfo, rateF, 0);
AT(PF_SoundFormatInfo, num_channels, 8);
AT(PF_SoundFormatInfo, format, 10);
AT(PF_SoundFormatInfo, sample_size, 12);

SIZE(PF_InteractCallbacks, 176, 8);
AT(PF_InteractCallbacks, checkout_param, 0);
AT(PF_InteractCallbacks, checkin_param, 8);
AT(PF_InteractCallbacks, add_param, 16);
AT(PF_InteractCallbacks, abort, 24);
AT(PF_InteractCallbacks, progress, 32);
AT(PF_InteractCallbacks, register_ui, 40);
AT(PF_InteractCallbacks, checkout_layer_audio, 48);
AT(PF_InteractCallbacks, checkin_layer_audio, 56);
AT(PF_InteractCallbacks, get_audio_data, 64);
AT(PF_InteractCallbacks, reserved_str, 72);
AT(PF_InteractCallbacks, reserved, 96);

SIZE(PF_UtilCallbacks, 552, 8);
AT(PF_UtilCallbacks, begin_sampling, 0);
AT(PF_UtilCallbacks, subpixel_sample, 8);
AT(PF_UtilCallbacks, area_sample, 16);
AT(PF_UtilCallbacks, get_batch_func_is_deprecated, 24);
AT(PF_UtilCallbacks, end_sampling, 32);
AT(PF_UtilCallbacks, composite_rect, 40);
AT(PF_UtilCallbacks, blend, 48);
AT(PF_UtilCallbacks, convolve, 56);
AT(PF_UtilCallbacks, copy, 64);
AT(PF_UtilCallbacks, fill, 72);
AT(PF_UtilCallbacks, gaussian_kernel, 80);
AT(PF_UtilCallbacks, iterate, 88);
AT(PF_UtilCallbacks, premultiply, 96);
AT(PF_UtilCallbacks, premultiply_color, 104);
AT(PF_UtilCallbacks, new_world, 112);
AT(PF_UtilCallbacks, dispose_world, 120);
AT(PF_UtilCallbacks, iterate_origin, 128);
AT(PF_UtilCallbacks, iterate_lut, 136);
AT(PF_UtilCallbacks, transfer_rect, 144);
AT(PF_UtilCallbacks, transform_world, 152);
AT(PF_UtilCallbacks, host_new_handle, 160);
AT(PF_UtilCallbacks, host_lock_handle, 168);
AT(PF_UtilCallbacks, host_unlock_handle, 176);
AT(PF_UtilCallbacks, host_dispose_handle, 184);
AT(PF_UtilCallbacks, get_callback_addr, 192);
AT(PF_UtilCallbacks, app, 200);
AT(PF_UtilCallbacks, ansi, 208);
AT(PF_UtilCallbacks, colorCB, 368);
AT(PF_UtilCallbacks, get_platform_data, 432);
AT(PF_UtilCallbacks, host_get_handle_size, 440);
AT(PF_UtilCallbacks, iterate_origin_non_clip_src, 448);
AT(PF_UtilCallbacks, iterate_generic, 456);
AT(PF_UtilCallbacks, host_resize_handle, 464);
AT(PF_UtilCallbacks, subpixel_sample16, 472);
AT(PF_UtilCallbacks, area_sample16, 480);
AT(PF_UtilCallbacks, fill16, 488);
AT(PF_UtilCallbacks, premultiply_color16, 496);
AT(PF_UtilCallbacks, iterate16, 504);
AT(PF_UtilCallbacks, iterate_origin16, 512);
AT(PF_UtilCallbacks, iterate_origin_non_clip_src16, 520);
AT(PF_UtilCallbacks, get_pixel_data8, 528);
AT(PF_UtilCallbacks, get_pixel_data16, 536);
AT(PF_UtilCallbacks, reserved, 544);

SIZE(PF_ANSICallbacksBlock, 160, 8);
AT(PF_ANSICallbacksBlock, atan, 0);
AT(PF_ANSICallbacksBlock, atan2, 8);
AT(PF_ANSICallbacksBlock, ceil, 16);
AT(PF_ANSICallbacksBlock, cos, 24);
AT(PF_ANSICallbacksBlock, exp, 32);
AT(PF_ANSICallbacksBlock, fabs, 40);
AT(PF_ANSICallbacksBlock, floor, 48);
AT(PF_ANSICallbacksBlock, fmod, 56);
AT(PF_ANSICallbacksBlock, hypot, 64);
AT(PF_ANSICallbacksBlock, log, 72);
AT(PF_ANSICallbacksBlock, log10, 80);
AT(PF_ANSICallbacksBlock, pow, 88);
AT(PF_ANSICallbacksBlock, sin, 96);
AT(PF_ANSICallbacksBlock, sqrt, 104);
AT(PF_ANSICallbacksBlock, tan, 112);
AT(PF_ANSICallbacksBlock, sprintf, 120);
AT(PF_ANSICallbacksBlock, strcpy, 128);
AT(PF_ANSICallbacksBlock, asin, 136);
AT(PF_ANSICallbacksBlock, acos, 144);
AT(PF_ANSICallbacksBlock, unused_longA, 152);

SIZE(PF_ColorCallbacks, 64, 8);
AT(PF_ColorCallbacks, RGBtoHLS, 0);
AT(PF_ColorCallbacks, HLStoRGB, 8);
AT(PF_ColorCallbacks, RGBtoYIQ, 16);
AT(PF_ColorCallbacks, YIQtoRGB, 24);
AT(PF_ColorCallbacks, Luminance, 32);
AT(PF_ColorCallbacks, Hue, 40);
AT(PF_ColorCallbacks, Lightness, 48);
AT(PF_ColorCallbacks, Saturation, 56);

SIZE(PF_CompositeMode, 12, 4);
AT(PF_CompositeMode, xfer, 0);
AT(PF_CompositeMode, rand_seed, 4);
AT(PF_CompositeMode, opacity, 8);
AT(PF_CompositeMode, rgb_only, 9);
AT(PF_CompositeMode, opacitySu, 10);

SIZE(PF_MaskWorld, 136, 8);
AT(PF_MaskWorld, mask, 0);
AT(PF_MaskWorld, offset, 120);
AT(PF_MaskWorld, what_is_mask, 128);

SIZE(PF_FloatMatrix, 72, 8);
AT(PF_FloatMatrix, mat, 0);

SIZE(PF_UserChangedParamExtra, 4, 4);
AT(PF_UserChangedParamExtra, param_index, 0);

SIZE(SPBasicSuite, 56, 8);
AT(SPBasicSuite, AcquireSuite, 0);
AT(SPBasicSuite, ReleaseSuite, 8);
AT(SPBasicSuite, IsEqual, 16);
AT(SPBasicSuite, AllocateBlock, 24);
AT(SPBasicSuite, FreeBlock, 32);
AT(SPBasicSuite, ReallocateBlock, 40);
AT(SPBasicSuite, Undefined, 48);

SIZE(PF_Iterate8Suite1, 40, 8);
AT(PF_Iterate8Suite1, iterate, 0);
AT(PF_Iterate8Suite1, iterate_origin, 8);
AT(PF_Iterate8Suite1, iterate_lut, 16);
AT(PF_Iterate8Suite1, iterate_origin_non_clip_src, 24);
AT(PF_Iterate8Suite1, iterate_generic, 32);

SIZE(PF_ParamUtilsSuite1, 80, 8);
AT(PF_ParamUtilsSuite1, PF_UpdateParamUI, 0);
AT(PF_ParamUtilsSuite1, PF_GetCurrentStateObsolete, 8);
AT(PF_ParamUtilsSuite1, PF_HasParamChangedObsolete, 16);
AT(PF_ParamUtilsSuite1, PF_HaveInputsChangedOverTimeSpanObsolete, 24);
AT(PF_ParamUtilsSuite1, PF_IsIdenticalCheckout, 32);
AT(PF_ParamUtilsSuite1, PF_FindKeyframeTime, 40);
AT(PF_ParamUtilsSuite1, PF_GetKeyframeCount, 48);
AT(PF_ParamUtilsSuite1, PF_CheckoutKeyframe, 56);
AT(PF_ParamUtilsSuite1, PF_CheckinKeyframe, 64);
AT(PF_ParamUtilsSuite1, PF_KeyIndexToTime, 72);

SIZE(AEGP_UtilitySuite3, 200, 8);

SIZE(AEGP_PFInterfaceSuite1, 40, 8);

SIZE(AEGP_StreamSuite1, 160, 8);

SIZE(AEGP_DynamicStreamSuite1, 136, 8);

SIZE(AEGP_EffectSuite1, 128, 8);

SIZE(PF_ParamDefUnion, 120, 8);
SIZE(PF_Rect, 16, 4);
SIZE(PF_RationalScale, 8, 4);
SIZE(PF_Point, 8, 4);
SIZE(PF_Pixel, 4, 1);
SIZE(PF_Pixel16, 8, 2);
SIZE(PF_SpecVersion, 4, 2);
SIZE(PF_State, 16, 4);

SIZE(PF_ArbParamsExtra, 48, 8);
AT(PF_ArbParamsExtra, which_function, 0);
AT(PF_ArbParamsExtra, id, 4);
AT(PF_ArbParamsExtra, padding, 6);
AT(PF_ArbParamsExtra, u, 8);

SIZE(PF_RenderRequest, 44, 4);
AT(PF_RenderRequest, rect, 0);
AT(PF_RenderRequest, field, 16);
AT(PF_RenderRequest, channel_mask, 20);
AT(PF_RenderRequest, preserve_rgb_of_zero_alpha, 24);
AT(PF_RenderRequest, unused, 25);
AT(PF_RenderRequest, reserved, 28);

SIZE(PF_PreRenderInput, 64, 8);
AT(PF_PreRenderInput, output_request, 0);
AT(PF_PreRenderInput, bitdepth, 44);
AT(PF_PreRenderInput, gpu_data, 48);
AT(PF_PreRenderInput, what_gpu, 56);
AT(PF_PreRenderInput, device_index, 60);

SIZE(PF_PreRenderOutput, 56, 8);
AT(PF_PreRenderOutput, result_rect, 0);
AT(PF_PreRenderOutput, max_result_rect, 16);
AT(PF_PreRenderOutput, solid, 32);
AT(PF_PreRenderOutput, reserved, 33);
AT(PF_PreRenderOutput, flags, 34);
AT(PF_PreRenderOutput, pre_render_data, 40);
AT(PF_PreRenderOutput, delete_pre_render_data_func, 48);

SIZE(PF_CheckoutResult, 76, 4);
AT(PF_CheckoutResult, result_rect, 0);
AT(PF_CheckoutResult, max_result_rect, 16);
AT(PF_CheckoutResult, par, 32);
AT(PF_CheckoutResult, solid, 40);
AT(PF_CheckoutResult, reservedB, 41);
AT(PF_CheckoutResult, ref_width, 44);
AT(PF_CheckoutResult, ref_height, 48);
AT(PF_CheckoutResult, reserved, 52);

SIZE(PF_PreRenderCallbacks, 16, 8);
AT(PF_PreRenderCallbacks, checkout_layer, 0);
AT(PF_PreRenderCallbacks, GuidMixInPtr, 8);

SIZE(PF_SmartRenderInput, 72, 8);
AT(PF_SmartRenderInput, output_request, 0);
AT(PF_SmartRenderInput, bitdepth, 44);
AT(PF_SmartRenderInput, pre_render_data, 48);
AT(PF_SmartRenderInput, gpu_data, 56);
AT(PF_SmartRenderInput, what_gpu, 64);
AT(PF_SmartRenderInput, device_index, 68);

SIZE(PF_SmartRenderCallbacks, 24, 8);
AT(PF_SmartRenderCallbacks, checkout_layer_pixels, 0);
AT(PF_SmartRenderCallbacks, checkin_layer_pixels, 8);
AT(PF_SmartRenderCallbacks, checkout_output, 16);

SIZE(PF_CustomUIInfo, 44, 4);
AT(PF_CustomUIInfo, reserved, 0);
AT(PF_CustomUIInfo, events, 4);
AT(PF_CustomUIInfo, comp_ui_width, 8);
AT(PF_CustomUIInfo, comp_ui_height, 12);
AT(PF_CustomUIInfo, comp_ui_alignment, 16);
AT(PF_CustomUIInfo, layer_ui_width, 20);
AT(PF_CustomUIInfo, layer_ui_height, 24);
AT(PF_CustomUIInfo, layer_ui_alignment, 28);
AT(PF_CustomUIInfo, preview_ui_width, 32);
AT(PF_CustomUIInfo, preview_ui_height, 36);
AT(PF_CustomUIInfo, preview_ui_alignment, 40);

SIZE(PF_ChannelDesc, 76, 4);
AT(PF_ChannelDesc, channel_type, 0);
AT(PF_ChannelDesc, name, 4);
AT(PF_ChannelDesc, data_type, 68);
AT(PF_ChannelDesc, dimension, 72);

SIZE(PF_ChannelChunk, 104, 8);
AT(PF_ChannelChunk, channel_ref, 0);
AT(PF_ChannelChunk, widthL, 64);
AT(PF_ChannelChunk, heightL, 68);
AT(PF_ChannelChunk, dimensionL, 72);
AT(PF_ChannelChunk, row_bytesL, 76);
AT(PF_ChannelChunk, data_type, 80);
AT(PF_ChannelChunk, dataH, 88);
AT(PF_ChannelChunk, dataPV, 96);

SIZE(A_FloatPoint, 16, 8);
AT(A_FloatPoint, x, 0);
AT(A_FloatPoint, y, 8);

SIZE(A_Matrix4, 128, 8);
AT(A_Matrix4, mat, 0);

SIZE(PF_App_Color, 6, 2);
AT(PF_App_Color, red, 0);
AT(PF_App_Color, green, 2);
AT(PF_App_Color, blue, 4);

SIZE(PF_FontName, 256, 1);
AT(PF_FontName, font_nameAC, 0);

SIZE(PF_AppPersonalTextInfo, 192, 1);
AT(PF_AppPersonalTextInfo, name, 0);
AT(PF_AppPersonalTextInfo, org, 64);
AT(PF_AppPersonalTextInfo, serial_str, 128);

SIZE(PF_ChannelRef, 64, 8);
AT(PF_ChannelRef, opaque, 0);

SIZE(PF_PreRenderExtra, 24, 8);
AT(PF_PreRenderExtra, input, 0);
AT(PF_PreRenderExtra, output, 8);
AT(PF_PreRenderExtra, cb, 16);

SIZE(PF_SmartRenderExtra, 16, 8);
AT(PF_SmartRenderExtra, input, 0);
AT(PF_SmartRenderExtra, cb, 8);

SIZE(PF_ArbNewParams, 16, 8);
AT(PF_ArbNewParams, refconPV, 0);
AT(PF_ArbNewParams, arbPH, 8);

SIZE(PF_ArbDisposeParams, 16, 8);
AT(PF_ArbDisposeParams, refconPV, 0);
AT(PF_ArbDisposeParams, arbH, 8);

SIZE(PF_ArbCopyParams, 24, 8);
AT(PF_ArbCopyParams, refconPV, 0);
AT(PF_ArbCopyParams, src_arbH, 8);
AT(PF_ArbCopyParams, dst_arbPH, 16);

SIZE(PF_ArbFlatSizeParams, 24, 8);
AT(PF_ArbFlatSizeParams, refconPV, 0);
AT(PF_ArbFlatSizeParams, arbH, 8);
AT(PF_ArbFlatSizeParams, flat_data_sizePLu, 16);

SIZE(PF_ArbFlattenParams, 32, 8);
AT(PF_ArbFlattenParams, refconPV, 0);
AT(PF_ArbFlattenParams, arbH, 8);
AT(PF_ArbFlattenParams, buf_sizeLu, 16);
AT(PF_ArbFlattenParams, flat_dataPV, 24);

SIZE(PF_ArbUnflattenParams, 32, 8);
AT(PF_ArbUnflattenParams, refconPV, 0);
AT(PF_ArbUnflattenParams, buf_sizeLu, 8);
AT(PF_ArbUnflattenParams, flat_dataPV, 16);
AT(PF_ArbUnflattenParams, arbPH, 24);

SIZE(PF_ArbInterpParams, 40, 8);
AT(PF_ArbInterpParams, refconPV, 0);
AT(PF_ArbInterpParams, left_arbH, 8);
AT(PF_ArbInterpParams, right_arbH, 16);
AT(PF_ArbInterpParams, tF, 24);
AT(PF_ArbInterpParams, interpPH, 32);

SIZE(PF_ArbCompareParams, 32, 8);
AT(PF_ArbCompareParams, refconPV, 0);
AT(PF_ArbCompareParams, a_arbH, 8);
AT(PF_ArbCompareParams, b_arbH, 16);
AT(PF_ArbCompareParams, compareP, 24);

SIZE(PF_ArbPrintSizeParams, 24, 8);
AT(PF_ArbPrintSizeParams, refconPV, 0);
AT(PF_ArbPrintSizeParams, arbH, 8);
AT(PF_ArbPrintSizeParams, print_sizePLu, 16);

SIZE(PF_ArbPrintParams, 40, 8);
AT(PF_ArbPrintParams, refconPV, 0);
AT(PF_ArbPrintParams, print_flags, 8);
AT(PF_ArbPrintParams, arbH, 16);
AT(PF_ArbPrintParams, print_sizeLu, 24);
AT(PF_ArbPrintParams, print_bufferPC, 32);

SIZE(PF_ArbScanParams, 32, 8);
AT(PF_ArbScanParams, refconPV, 0);
AT(PF_ArbScanParams, bufPC, 8);
AT(PF_ArbScanParams, bytes_to_scanLu, 16);
AT(PF_ArbScanParams, arbPH, 24);

SIZE(PF_ChannelSuite1, 40, 8);

SIZE(PF_AEAppSuite6, 88, 8);

SIZE(PF_AEAppSuite7, 96, 8);

SIZE(PF_AEAppSuite1, 120, 8);

SIZE(PF_iterateFloatSuite1, 24, 8);

SIZE(PF_EffectUISuite1, 8, 8);

#endif

// A handle is one pointer wide, whatever the target.
CHECK(sizeof(PF_Handle) == sizeof(void*));

#if defined(__i386__) && !defined(_WIN32)
CHECK(sizeof(PF_ParamDefUnion) == 92);
CHECK(sizeof(PF_ParamDef) == 148);
CHECK(sizeof(PF_Handle) == 4);
#endif
