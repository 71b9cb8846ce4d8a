// The type of every scalar, member and callback, read from the table of facts independently of the headers:
// what offsets cannot show, such as a narrower member before padding or a callback with its arguments
// exchanged.
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "HostInterface.h"

namespace {

#define SCALAR(type, ...) static_assert(std::is_same_v<type, __VA_ARGS__>, #type)
#define TYPE(structure, member, ...) \
    static_assert(std::is_same_v<decltype(structure::member), __VA_ARGS__>, #structure "::" #member)

SCALAR(A_long, std::int32_t);
SCALAR(PF_Err, std::int32_t);
SCALAR(A_Err, std::int32_t);
SCALAR(SPErr, std::int32_t);
SCALAR(PF_Cmd, std::int32_t);
SCALAR(PF_ParamIndex, std::int32_t);
SCALAR(PF_ParamValue, std::int32_t);
SCALAR(PF_Fixed, std::int32_t);
SCALAR(PF_Quality, std::int32_t);
SCALAR(PF_Field, std::int32_t);
SCALAR(PF_ModeFlags, std::int32_t);
SCALAR(PF_TransferMode, std::int32_t);
SCALAR(PF_XferMode, std::int32_t);
SCALAR(PF_ParamType, std::int32_t);
SCALAR(PF_ParamFlags, std::int32_t);
SCALAR(PF_ParamUIFlags, std::int32_t);
SCALAR(PF_ChangeFlags, std::int32_t);
SCALAR(PF_OutFlags, std::int32_t);
SCALAR(PF_OutFlags2, std::int32_t);
SCALAR(PF_InFlags, std::int32_t);
SCALAR(PF_WorldFlags, std::int32_t);
SCALAR(PF_NewWorldFlags, std::int32_t);
SCALAR(A_AppID, std::int32_t);
SCALAR(AEGP_PluginID, std::int32_t);
SCALAR(A_u_long, std::uint32_t);
SCALAR(PF_FSliderFlags, std::uint32_t);
SCALAR(AEGP_DynStreamFlags, std::uint32_t);
SCALAR(PF_PathID, std::uint32_t);
SCALAR(PF_UFixed, std::uint32_t);
SCALAR(A_short, std::int16_t);
SCALAR(PF_Precision, std::int16_t);
SCALAR(PF_ValueDisplayFlags, std::int16_t);
SCALAR(PF_SoundChannels, std::int16_t);
SCALAR(PF_SoundFormat, std::int16_t);
SCALAR(PF_SoundSampleSize, std::int16_t);
SCALAR(A_u_short, std::uint16_t);
SCALAR(A_u_longlong, std::uint64_t);
SCALAR(A_char, char);
SCALAR(PF_FpLong, double);
SCALAR(A_FpLong, double);
SCALAR(PF_FpShort, float);
SCALAR(PF_Handle, char**);
SCALAR(PF_PixelPtr, PF_Pixel*);
SCALAR(PF_LayerDef, PF_EffectWorld);
SCALAR(PF_Pixel, PF_Pixel8);
static_assert(sizeof(PF_Boolean) == 1);
static_assert(sizeof(A_Boolean) == 1);
static_assert(sizeof(A_u_char) == 1);
#ifdef _WIN32
SCALAR(SPBoolean, std::int32_t);
SCALAR(PF_FontStyleSheet, std::int32_t);
#else
static_assert(sizeof(SPBoolean) == 1);
static_assert(sizeof(PF_FontStyleSheet) == 1);
#endif
static_assert(std::is_pointer_v<PF_ProgPtr>);
static_assert(std::is_pointer_v<AEGP_EffectRefH>);
static_assert(std::is_pointer_v<AEGP_StreamRefH>);
static_assert(std::is_pointer_v<AEGP_LayerH>);
SCALAR(PF_ArbitraryH, PF_Handle);
SCALAR(PF_ChannelMask, std::int32_t);
SCALAR(PF_GPU_Framework, std::int32_t);
SCALAR(PF_FunctionSelector, std::int32_t);
SCALAR(PF_ArbCompareResult, std::int32_t);
SCALAR(PF_ArbPrintFlags, std::int32_t);
SCALAR(PF_CustomEventFlags, std::int32_t);
SCALAR(PF_UIAlignment, std::int32_t);
SCALAR(PF_ChannelType, std::int32_t);
SCALAR(PF_DataType, std::int32_t);
SCALAR(PF_ChannelIndex, std::int32_t);
SCALAR(PF_CursorType, std::int32_t);
SCALAR(PF_RenderOutputFlags, std::int16_t);
SCALAR(PF_App_ColorType, std::int16_t);
SCALAR(PF_EyeDropperSampleMode, std::int16_t);
SCALAR(PF_LRect, PF_Rect);

TYPE(PF_Rect, left, A_long);
TYPE(PF_Rect, top, A_long);
TYPE(PF_Rect, right, A_long);
TYPE(PF_Rect, bottom, A_long);

TYPE(PF_Point, h, A_long);
TYPE(PF_Point, v, A_long);

TYPE(PF_RationalScale, num, A_long);
TYPE(PF_RationalScale, den, A_u_long);
TYPE(PF_SpecVersion, major, A_short);
TYPE(PF_SpecVersion, minor, A_short);
TYPE(PF_Pixel, alpha, A_u_char);
TYPE(PF_Pixel, red, A_u_char);
TYPE(PF_Pixel, green, A_u_char);
TYPE(PF_Pixel, blue, A_u_char);
TYPE(PF_Pixel16, alpha, A_u_short);
TYPE(PF_Pixel16, red, A_u_short);
TYPE(PF_Pixel16, green, A_u_short);
TYPE(PF_Pixel16, blue, A_u_short);

TYPE(PF_InData, inter, PF_InteractCallbacks);
TYPE(PF_InData, utils, PF_UtilCallbacks*);
TYPE(PF_InData, effect_ref, PF_ProgPtr);
TYPE(PF_InData, quality, PF_Quality);
TYPE(PF_InData, version, PF_SpecVersion);
TYPE(PF_InData, serial_num, A_long);
TYPE(PF_InData, appl_id, A_AppID);
TYPE(PF_InData, num_params, A_long);
TYPE(PF_InData, reserved, A_long);
TYPE(PF_InData, what_cpu, A_long);
TYPE(PF_InData, what_fpu, A_long);
TYPE(PF_InData, current_time, A_long);
TYPE(PF_InData, time_step, A_long);
TYPE(PF_InData, total_time, A_long);
TYPE(PF_InData, local_time_step, A_long);
TYPE(PF_InData, time_scale, A_u_long);
TYPE(PF_InData, field, PF_Field);
TYPE(PF_InData, shutter_angle, PF_Fixed);
TYPE(PF_InData, width, A_long);
TYPE(PF_InData, height, A_long);
TYPE(PF_InData, extent_hint, PF_Rect);
TYPE(PF_InData, output_origin_x, A_long);
TYPE(PF_InData, output_origin_y, A_long);
TYPE(PF_InData, downsample_x, PF_RationalScale);
TYPE(PF_InData, downsample_y, PF_RationalScale);
TYPE(PF_InData, pixel_aspect_ratio, PF_RationalScale);
TYPE(PF_InData, in_flags, PF_InFlags);
TYPE(PF_InData, global_data, PF_Handle);
TYPE(PF_InData, sequence_data, PF_Handle);
TYPE(PF_InData, frame_data, PF_Handle);
TYPE(PF_InData, start_sampL, A_long);
TYPE(PF_InData, dur_sampL, A_long);
TYPE(PF_InData, total_sampL, A_long);
TYPE(PF_InData, src_snd, PF_SoundWorld);
TYPE(PF_InData, pica_basicP, SPBasicSuite*);
TYPE(PF_InData, pre_effect_source_origin_x, A_long);
TYPE(PF_InData, pre_effect_source_origin_y, A_long);
TYPE(PF_InData, shutter_phase, PF_Fixed);

TYPE(PF_OutData, my_version, A_u_long);
TYPE(PF_OutData, name, A_char[32]);
TYPE(PF_OutData, global_data, PF_Handle);
TYPE(PF_OutData, num_params, A_long);
TYPE(PF_OutData, sequence_data, PF_Handle);
TYPE(PF_OutData, flat_sdata_size, A_long);
TYPE(PF_OutData, frame_data, PF_Handle);
TYPE(PF_OutData, width, A_long);
TYPE(PF_OutData, height, A_long);
TYPE(PF_OutData, origin, PF_Point);
TYPE(PF_OutData, out_flags, PF_OutFlags);
TYPE(PF_OutData, return_msg, A_char[256]);
TYPE(PF_OutData, start_sampL, A_long);
TYPE(PF_OutData, dur_sampL, A_long);
TYPE(PF_OutData, dest_snd, PF_SoundWorld);
TYPE(PF_OutData, out_flags2, PF_OutFlags2);

TYPE(PF_ParamDef, ui_flags, PF_ParamUIFlags);
TYPE(PF_ParamDef, ui_width, A_short);
TYPE(PF_ParamDef, ui_height, A_short);
TYPE(PF_ParamDef, param_type, PF_ParamType);
TYPE(PF_ParamDef, name, A_char[32]);
TYPE(PF_ParamDef, flags, PF_ParamFlags);
TYPE(PF_ParamDef, unused, A_long);
TYPE(PF_ParamDef, u, PF_ParamDefUnion);

TYPE(PF_LayerDef, reserved0, void*);
TYPE(PF_LayerDef, reserved1, void*);
TYPE(PF_LayerDef, world_flags, PF_WorldFlags);
TYPE(PF_LayerDef, data, PF_PixelPtr);
TYPE(PF_LayerDef, rowbytes, A_long);
TYPE(PF_LayerDef, width, A_long);
TYPE(PF_LayerDef, height, A_long);
TYPE(PF_LayerDef, extent_hint, PF_UnionableRect);
TYPE(PF_LayerDef, platform_ref, void*);
TYPE(PF_LayerDef, reserved_long1, A_long);
TYPE(PF_LayerDef, reserved_long4, void*);
TYPE(PF_LayerDef, pix_aspect_ratio, PF_RationalScale);
TYPE(PF_LayerDef, reserved_long2, void*);
TYPE(PF_LayerDef, origin_x, A_long);
TYPE(PF_LayerDef, origin_y, A_long);
TYPE(PF_LayerDef, reserved_long3, A_long);
TYPE(PF_LayerDef, dephault, A_long);

TYPE(PF_SliderDef, value, PF_ParamValue);
TYPE(PF_SliderDef, value_str, A_char[32]);
TYPE(PF_SliderDef, value_desc, A_char[32]);
TYPE(PF_SliderDef, valid_min, PF_ParamValue);
TYPE(PF_SliderDef, valid_max, PF_ParamValue);
TYPE(PF_SliderDef, slider_min, PF_ParamValue);
TYPE(PF_SliderDef, slider_max, PF_ParamValue);
TYPE(PF_SliderDef, dephault, PF_ParamValue);

TYPE(PF_FixedSliderDef, value, PF_Fixed);
TYPE(PF_FixedSliderDef, value_str, A_char[32]);
TYPE(PF_FixedSliderDef, value_desc, A_char[32]);
TYPE(PF_FixedSliderDef, valid_min, PF_Fixed);
TYPE(PF_FixedSliderDef, valid_max, PF_Fixed);
TYPE(PF_FixedSliderDef, slider_min, PF_Fixed);
TYPE(PF_FixedSliderDef, slider_max, PF_Fixed);
TYPE(PF_FixedSliderDef, dephault, PF_Fixed);
TYPE(PF_FixedSliderDef, precision, PF_Precision);
TYPE(PF_FixedSliderDef, display_flags, PF_ValueDisplayFlags);

TYPE(PF_AngleDef, value, PF_Fixed);
TYPE(PF_AngleDef, dephault, PF_Fixed);
TYPE(PF_AngleDef, valid_min, PF_Fixed);
TYPE(PF_AngleDef, valid_max, PF_Fixed);

TYPE(PF_CheckBoxDef, value, PF_ParamValue);
TYPE(PF_CheckBoxDef, dephault, PF_Boolean);
TYPE(PF_CheckBoxDef, reserved, A_char);
TYPE(PF_CheckBoxDef, reserved1, A_short);

TYPE(PF_ColorDef, value, PF_UnionablePixel);
TYPE(PF_ColorDef, dephault, PF_UnionablePixel);

TYPE(PF_PointDef, x_value, PF_Fixed);
TYPE(PF_PointDef, y_value, PF_Fixed);
TYPE(PF_PointDef, reserved, A_char[3]);
TYPE(PF_PointDef, restrict_bounds, PF_Boolean);
TYPE(PF_PointDef, x_dephault, PF_Fixed);
TYPE(PF_PointDef, y_dephault, PF_Fixed);

TYPE(PF_PopupDef, value, PF_ParamValue);
TYPE(PF_PopupDef, num_choices, A_short);
TYPE(PF_PopupDef, dephault, A_short);

TYPE(PF_FloatSliderDef, value, PF_FpLong);
TYPE(PF_FloatSliderDef, phase, PF_FpLong);
TYPE(PF_FloatSliderDef, value_desc, A_char[32]);
TYPE(PF_FloatSliderDef, valid_min, PF_FpShort);
TYPE(PF_FloatSliderDef, valid_max, PF_FpShort);
TYPE(PF_FloatSliderDef, slider_min, PF_FpShort);
TYPE(PF_FloatSliderDef, slider_max, PF_FpShort);
TYPE(PF_FloatSliderDef, dephault, PF_FpShort);
TYPE(PF_FloatSliderDef, precision, PF_Precision);
TYPE(PF_FloatSliderDef, display_flags, PF_ValueDisplayFlags);
TYPE(PF_FloatSliderDef, fs_flags, PF_FSliderFlags);
TYPE(PF_FloatSliderDef, curve_tolerance, PF_FpShort);
TYPE(PF_FloatSliderDef, useExponent, PF_Boolean);
TYPE(PF_FloatSliderDef, exponent, PF_FpShort);

TYPE(PF_ArbitraryDef, id, A_short);
TYPE(PF_ArbitraryDef, pad, A_short);
TYPE(PF_ArbitraryDef, dephault, PF_ArbitraryH);
TYPE(PF_ArbitraryDef, value, PF_ArbitraryH);
TYPE(PF_ArbitraryDef, refconPV, void*);

TYPE(PF_PathDef, path_id, PF_PathID);
TYPE(PF_PathDef, reserved0, A_long);
TYPE(PF_PathDef, dephault, A_long);

TYPE(PF_ButtonDef, value, PF_ParamValue);

TYPE(PF_Point3DDef, x_value, PF_FpLong);
TYPE(PF_Point3DDef, y_value, PF_FpLong);
TYPE(PF_Point3DDef, z_value, PF_FpLong);
TYPE(PF_Point3DDef, x_dephault, PF_FpLong);
TYPE(PF_Point3DDef, y_dephault, PF_FpLong);
TYPE(PF_Point3DDef, z_dephault, PF_FpLong);
TYPE(PF_Point3DDef, reserved, char[16]);

TYPE(PF_SoundWorld, fi, PF_SoundFormatInfo);
TYPE(PF_SoundWorld, num_samples, A_long);
TYPE(PF_SoundWorld, dataP, void*);

TYPE(PF_SoundFormatInfo, rateF, PF_FpLong);
TYPE(PF_SoundFormatInfo, num_channels, PF_SoundChannels);
TYPE(PF_SoundFormatInfo, format, PF_SoundFormat);
TYPE(PF_SoundFormatInfo, sample_size, PF_SoundSampleSize);

TYPE(PF_InteractCallbacks, checkout_param,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long what_time, A_long time_step,
                A_u_long time_scale, PF_ParamDef* param));
TYPE(PF_InteractCallbacks, checkin_param, PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamDef* param));
TYPE(PF_InteractCallbacks, add_param,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex index, PF_ParamDefPtr def));
TYPE(PF_InteractCallbacks, abort, PF_Err (*)(PF_ProgPtr effect_ref));
TYPE(PF_InteractCallbacks, progress, PF_Err (*)(PF_ProgPtr effect_ref, A_long current, A_long total));
TYPE(PF_InteractCallbacks, register_ui, PF_Err (*)(PF_ProgPtr effect_ref, PF_CustomUIInfo* cust_info));
TYPE(PF_InteractCallbacks, checkout_layer_audio,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long start_time, A_long duration,
                A_u_long time_scale, PF_UFixed rate, A_long bytes_per_sample, A_long num_channels,
                A_long fmt_signed, PF_LayerAudio* audio));
TYPE(PF_InteractCallbacks, checkin_layer_audio, PF_Err (*)(PF_ProgPtr effect_ref, PF_LayerAudio audio));
TYPE(PF_InteractCallbacks, get_audio_data,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_LayerAudio audio, PF_SndSamplePtr* data0, A_long* num_samples0,
                PF_UFixed* rate0, A_long* bytes_per_sample0, A_long* num_channels0, A_long* fmt_signed0));
TYPE(PF_InteractCallbacks, reserved_str, void* [3]);
TYPE(PF_InteractCallbacks, reserved, void* [10]);

TYPE(PF_UtilCallbacks, begin_sampling,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Quality qual, PF_ModeFlags mf, PF_SampPB* params));
TYPE(PF_UtilCallbacks, subpixel_sample,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params, PF_Pixel* dst_pixel));
TYPE(PF_UtilCallbacks, area_sample,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params, PF_Pixel* dst_pixel));
TYPE(PF_UtilCallbacks, get_batch_func_is_deprecated, void*);
TYPE(PF_UtilCallbacks, end_sampling,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Quality qual, PF_ModeFlags mf, PF_SampPB* params));
TYPE(PF_UtilCallbacks, composite_rect,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Rect* src_rect, A_long src_opacity, PF_EffectWorld* source_wld,
                A_long dest_x, A_long dest_y, PF_Field field_rdr, PF_XferMode xfer_mode,
                PF_EffectWorld* dest_wld));
TYPE(PF_UtilCallbacks, blend,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_EffectWorld* src1, const PF_EffectWorld* src2, PF_Fixed ratio,
                PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, convolve,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Rect* area, PF_KernelFlags flags,
                A_long kernel_size, void* a_kernel, void* r_kernel, void* g_kernel, void* b_kernel,
                PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, copy,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r,
                PF_Rect* dst_r));
TYPE(PF_UtilCallbacks, fill,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_Pixel* color, const PF_Rect* dst_rect,
                PF_EffectWorld* world));
TYPE(PF_UtilCallbacks, gaussian_kernel,
     PF_Err (*)(PF_ProgPtr effect_ref, A_FpLong kRadius, PF_KernelFlags flags, A_FpLong multiplier,
                A_long* diameter, void* kernel));
TYPE(PF_UtilCallbacks, iterate,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, void* refcon, PF_IteratePixel8Func pix_fn, PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, premultiply, PF_Err (*)(PF_ProgPtr effect_ref, A_long forward, PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, premultiply_color,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel* color, A_long forward,
                PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, new_world,
     PF_Err (*)(PF_ProgPtr effect_ref, A_long width, A_long height, PF_NewWorldFlags flags,
                PF_EffectWorld* world));
TYPE(PF_UtilCallbacks, dispose_world, PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* world));
TYPE(PF_UtilCallbacks, iterate_origin,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixel8Func pix_fn,
                PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, iterate_lut,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, A_u_char* a_lut0, A_u_char* r_lut0, A_u_char* g_lut0, A_u_char* b_lut0,
                PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, transfer_rect,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                const PF_Rect* src_rec, const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                const PF_MaskWorld* mask_world0, A_long dest_x, A_long dest_y, PF_EffectWorld* dst_world));
TYPE(PF_UtilCallbacks, transform_world,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                const PF_MaskWorld* mask_world0, const PF_FloatMatrix* matrices, A_long num_matrices,
                PF_Boolean src2dst_matrix, const PF_Rect* dest_rect, PF_EffectWorld* dst_world));
TYPE(PF_UtilCallbacks, host_new_handle, PF_Handle (*)(A_u_longlong size));
TYPE(PF_UtilCallbacks, host_lock_handle, void* (*)(PF_Handle pf_handle));
TYPE(PF_UtilCallbacks, host_unlock_handle, void (*)(PF_Handle pf_handle));
TYPE(PF_UtilCallbacks, host_dispose_handle, void (*)(PF_Handle pf_handle));
TYPE(PF_UtilCallbacks, get_callback_addr,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags mode_flags,
                PF_CallbackID which_callback, PF_CallbackFunc* fn_ptr));
TYPE(PF_UtilCallbacks, app, PF_Err (*)(PF_ProgPtr, A_long, ...));
TYPE(PF_UtilCallbacks, ansi, PF_ANSICallbacksBlock);
TYPE(PF_UtilCallbacks, colorCB, PF_ColorCallbacks);
TYPE(PF_UtilCallbacks, get_platform_data, PF_Err (*)(PF_ProgPtr effect_ref, PF_PlatDataID which, void* data));
TYPE(PF_UtilCallbacks, host_get_handle_size, A_u_longlong (*)(PF_Handle pf_handle));
TYPE(PF_UtilCallbacks, iterate_origin_non_clip_src,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixel8Func pix_fn,
                PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, iterate_generic,
     PF_Err (*)(A_long iterationsL, void* refconPV,
                PF_Err (*fn_func)(void* refconPV, A_long thread_indexL, A_long i, A_long iterationsL)));
TYPE(PF_UtilCallbacks, host_resize_handle, PF_Err (*)(A_u_longlong new_sizeL, PF_Handle* handlePH));
TYPE(PF_UtilCallbacks, subpixel_sample16,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                PF_Pixel16* dst_pixel));
TYPE(PF_UtilCallbacks, area_sample16,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* params,
                PF_Pixel16* dst_pixel));
TYPE(PF_UtilCallbacks, fill16,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_Pixel16* color, const PF_Rect* dst_rect,
                PF_EffectWorld* world));
TYPE(PF_UtilCallbacks, premultiply_color16,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel16* color, A_long forward,
                PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, iterate16,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, void* refcon, PF_IteratePixel16Func pix_fn, PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, iterate_origin16,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixel16Func pix_fn,
                PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, iterate_origin_non_clip_src16,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixel16Func pix_fn,
                PF_EffectWorld* dst));
TYPE(PF_UtilCallbacks, get_pixel_data8,
     PF_Err (*)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel8** pixPP));
TYPE(PF_UtilCallbacks, get_pixel_data16,
     PF_Err (*)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel16** pixPP));
TYPE(PF_UtilCallbacks, reserved, A_long[1]);

TYPE(PF_ANSICallbacksBlock, atan, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, atan2, A_FpLong (*)(A_FpLong y, A_FpLong x));
TYPE(PF_ANSICallbacksBlock, ceil, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, cos, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, exp, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, fabs, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, floor, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, fmod, A_FpLong (*)(A_FpLong x, A_FpLong y));
TYPE(PF_ANSICallbacksBlock, hypot, A_FpLong (*)(A_FpLong x, A_FpLong y));
TYPE(PF_ANSICallbacksBlock, log, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, log10, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, pow, A_FpLong (*)(A_FpLong x, A_FpLong y));
TYPE(PF_ANSICallbacksBlock, sin, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, sqrt, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, tan, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, sprintf, int (*)(A_char*, const A_char*, ...));
TYPE(PF_ANSICallbacksBlock, strcpy, A_char* (*)(A_char*, const A_char*));
TYPE(PF_ANSICallbacksBlock, asin, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, acos, A_FpLong (*)(A_FpLong));
TYPE(PF_ANSICallbacksBlock, unused_longA, A_long[1]);

TYPE(PF_ColorCallbacks, RGBtoHLS, PF_Err (*)(PF_ProgPtr effect_ref, PF_Pixel* rgb, PF_Fixed* hls));
TYPE(PF_ColorCallbacks, HLStoRGB, PF_Err (*)(PF_ProgPtr effect_ref, PF_Fixed* hls, PF_Pixel* rgb));
TYPE(PF_ColorCallbacks, RGBtoYIQ, PF_Err (*)(PF_ProgPtr effect_ref, PF_Pixel* rgb, PF_Fixed* yiq));
TYPE(PF_ColorCallbacks, YIQtoRGB, PF_Err (*)(PF_ProgPtr effect_ref, PF_Fixed* yiq, PF_Pixel* rgb));
TYPE(PF_ColorCallbacks, Luminance, PF_Err (*)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* lum100));
TYPE(PF_ColorCallbacks, Hue, PF_Err (*)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* hue));
TYPE(PF_ColorCallbacks, Lightness, PF_Err (*)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* lightness));
TYPE(PF_ColorCallbacks, Saturation, PF_Err (*)(PF_ProgPtr effect_ref, PF_Pixel* rgb, A_long* saturation));

TYPE(PF_CompositeMode, xfer, PF_TransferMode);
TYPE(PF_CompositeMode, rand_seed, A_long);
TYPE(PF_CompositeMode, opacity, A_u_char);
TYPE(PF_CompositeMode, rgb_only, PF_Boolean);
TYPE(PF_CompositeMode, opacitySu, A_u_short);

TYPE(PF_MaskWorld, mask, PF_EffectWorld);
TYPE(PF_MaskWorld, offset, PF_Point);
TYPE(PF_MaskWorld, what_is_mask, PF_MaskFlags);

TYPE(PF_FloatMatrix, mat, PF_FpLong[3][3]);

TYPE(PF_UserChangedParamExtra, param_index, PF_ParamIndex);

TYPE(SPBasicSuite, AcquireSuite, SPErr (*)(const char* name, A_long version, const void** suite));
TYPE(SPBasicSuite, ReleaseSuite, SPErr (*)(const char* name, A_long version));
TYPE(SPBasicSuite, IsEqual, SPBoolean (*)(const char* token1, const char* token2));
TYPE(SPBasicSuite, AllocateBlock, SPErr (*)(size_t size, void** block));
TYPE(SPBasicSuite, FreeBlock, SPErr (*)(void* block));
TYPE(SPBasicSuite, ReallocateBlock, SPErr (*)(void* block, size_t newSize, void** newblock));
TYPE(SPBasicSuite, Undefined, SPErr (*)());

TYPE(PF_Iterate8Suite1, iterate,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, void* refcon,
                PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out),
                PF_EffectWorld* dst));
TYPE(PF_Iterate8Suite1, iterate_origin,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, const PF_Point* origin, void* refcon,
                PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out),
                PF_EffectWorld* dst));
TYPE(PF_Iterate8Suite1, iterate_lut,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, A_u_char* a_lut0, A_u_char* r_lut0, A_u_char* g_lut0, A_u_char* b_lut0,
                PF_EffectWorld* dst));
TYPE(PF_Iterate8Suite1, iterate_origin_non_clip_src,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, const PF_Point* origin, void* refcon,
                PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out),
                PF_EffectWorld* dst));
TYPE(PF_Iterate8Suite1, iterate_generic,
     PF_Err (*)(A_long iterationsL, void* refconPV,
                PF_Err (*fn_func)(void* refconPV, A_long thread_indexL, A_long i, A_long iterationsL)));

TYPE(PF_ParamUtilsSuite1, PF_UpdateParamUI,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, const PF_ParamDef* defP));
TYPE(PF_ParamUtilsSuite1, PF_GetCurrentStateObsolete, PF_Err (*)(PF_ProgPtr effect_ref, PF_State* stateP));
TYPE(PF_ParamUtilsSuite1, PF_HasParamChangedObsolete,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_State* stateP, PF_ParamIndex param_index,
                PF_Boolean* changedPB));
TYPE(PF_ParamUtilsSuite1, PF_HaveInputsChangedOverTimeSpanObsolete,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_State* stateP, const A_Time* startPT0,
                const A_Time* durationPT0, PF_Boolean* changedPB));
TYPE(PF_ParamUtilsSuite1, PF_IsIdenticalCheckout,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long what_time1, A_long time_step1,
                A_u_long time_scale1, A_long what_time2, A_long time_step2, A_u_long time_scale2,
                PF_Boolean* identicalPB));
TYPE(PF_ParamUtilsSuite1, PF_FindKeyframeTime,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long what_time, A_u_long time_scale,
                PF_TimeDir time_dir, PF_Boolean* foundPB, PF_KeyIndex* key_indexP0, A_long* key_timeP0,
                A_u_long* key_timescaleP0));
TYPE(PF_ParamUtilsSuite1, PF_GetKeyframeCount,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex* key_countP));
TYPE(PF_ParamUtilsSuite1, PF_CheckoutKeyframe,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex key_index, A_long* key_timeP0,
                A_u_long* key_timescaleP0, PF_ParamDef* paramP0));
TYPE(PF_ParamUtilsSuite1, PF_CheckinKeyframe, PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamDef* paramP));
TYPE(PF_ParamUtilsSuite1, PF_KeyIndexToTime,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex key_indexP, A_long* key_timeP,
                A_u_long* key_timescaleP));

TYPE(AEGP_UtilitySuite3, AEGP_RegisterWithAEGP,
     A_Err (*)(AEGP_GlobalRefcon global_refcon, const A_char* plugin_nameZ, AEGP_PluginID* plugin_id));

TYPE(AEGP_PFInterfaceSuite1, AEGP_GetNewEffectForEffect,
     A_Err (*)(AEGP_PluginID aegp_plugin_id, PF_ProgPtr effect_pp_ref, AEGP_EffectRefH* effect_refPH));

TYPE(AEGP_StreamSuite1, AEGP_GetNewEffectStreamByIndex,
     A_Err (*)(AEGP_PluginID aegp_plugin_id, AEGP_EffectRefH effect_refH, PF_ParamIndex param_index,
               AEGP_StreamRefH* streamPH));
TYPE(AEGP_StreamSuite1, AEGP_DisposeStream, A_Err (*)(AEGP_StreamRefH streamH));

TYPE(AEGP_DynamicStreamSuite1, AEGP_SetDynamicStreamFlag,
     A_Err (*)(AEGP_StreamRefH streamH, AEGP_DynStreamFlags one_flag, A_Boolean setB));

TYPE(AEGP_EffectSuite1, AEGP_DisposeEffect, A_Err (*)(AEGP_EffectRefH effect_refH));

TYPE(PF_HandleSuite1, host_new_handle, PF_Handle (*)(A_u_longlong size));
TYPE(PF_HandleSuite1, host_lock_handle, void* (*)(PF_Handle pf_handle));
TYPE(PF_HandleSuite1, host_unlock_handle, void (*)(PF_Handle pf_handle));
TYPE(PF_HandleSuite1, host_dispose_handle, void (*)(PF_Handle pf_handle));
TYPE(PF_HandleSuite1, host_get_handle_size, A_u_longlong (*)(PF_Handle pf_handle));
TYPE(PF_HandleSuite1, host_resize_handle, PF_Err (*)(A_u_longlong new_sizeL, PF_Handle* handlePH));

TYPE(PF_WorldSuite2, PF_NewWorld,
     PF_Err (*)(PF_ProgPtr effect_ref, A_long widthL, A_long heightL, PF_Boolean clear_pixB,
                PF_PixelFormat pixel_format, PF_EffectWorld* worldP));
TYPE(PF_WorldSuite2, PF_DisposeWorld, PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* worldP));
TYPE(PF_WorldSuite2, PF_GetPixelFormat,
     PF_Err (*)(const PF_EffectWorld* worldP, PF_PixelFormat* pixel_formatP));

TYPE(PF_WorldTransformSuite1, composite_rect,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Rect* src_rect, A_long src_opacity, PF_EffectWorld* source_wld,
                A_long dest_x, A_long dest_y, PF_Field field_rdr, PF_XferMode xfer_mode,
                PF_EffectWorld* dest_wld));
TYPE(PF_WorldTransformSuite1, blend,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_EffectWorld* src1, const PF_EffectWorld* src2, PF_Fixed ratio,
                PF_EffectWorld* dst));
TYPE(PF_WorldTransformSuite1, convolve,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Rect* area, PF_KernelFlags flags,
                A_long kernel_size, void* a_kernel, void* r_kernel, void* g_kernel, void* b_kernel,
                PF_EffectWorld* dst));
TYPE(PF_WorldTransformSuite1, copy,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r,
                PF_Rect* dst_r));
TYPE(PF_WorldTransformSuite1, copy_hq,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r,
                PF_Rect* dst_r));
TYPE(PF_WorldTransformSuite1, transfer_rect,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                const PF_Rect* src_rec, const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                const PF_MaskWorld* mask_world0, A_long dest_x, A_long dest_y, PF_EffectWorld* dst_world));
TYPE(PF_WorldTransformSuite1, transform_world,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags m_flags, PF_Field field,
                const PF_EffectWorld* src_world, const PF_CompositeMode* comp_mode,
                const PF_MaskWorld* mask_world0, const PF_FloatMatrix* matrices, A_long num_matrices,
                PF_Boolean src2dst_matrix, const PF_Rect* dest_rect, PF_EffectWorld* dst_world));

TYPE(PF_FillMatteSuite2, fill,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_Pixel* color, const PF_Rect* dst_rect,
                PF_EffectWorld* world));
TYPE(PF_FillMatteSuite2, fill16,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_Pixel16* color, const PF_Rect* dst_rect,
                PF_EffectWorld* world));
TYPE(PF_FillMatteSuite2, fill_float,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_PixelFloat* color, const PF_Rect* dst_rect,
                PF_EffectWorld* world));
TYPE(PF_FillMatteSuite2, premultiply, PF_Err (*)(PF_ProgPtr effect_ref, A_long forward, PF_EffectWorld* dst));
TYPE(PF_FillMatteSuite2, premultiply_color,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel* color, A_long forward,
                PF_EffectWorld* dst));
TYPE(PF_FillMatteSuite2, premultiply_color16,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_Pixel16* color, A_long forward,
                PF_EffectWorld* dst));
TYPE(PF_FillMatteSuite2, premultiply_color_float,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld* src, const PF_PixelFloat* color, A_long forward,
                PF_EffectWorld* dst));

TYPE(PF_PixelDataSuite1, get_pixel_data8,
     PF_Err (*)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel8** pixPP));
TYPE(PF_PixelDataSuite1, get_pixel_data16,
     PF_Err (*)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel16** pixPP));
TYPE(PF_PixelDataSuite1, get_pixel_data_float,
     PF_Err (*)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_PixelFloat** pixPP));

TYPE(PF_EffectSequenceDataSuite1, PF_GetConstSequenceData,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ConstHandle* sequence_data));

TYPE(PF_ArbParamsExtra, which_function, PF_FunctionSelector);
TYPE(PF_ArbParamsExtra, id, A_short);
TYPE(PF_ArbParamsExtra, padding, A_short);

TYPE(PF_RenderRequest, rect, PF_LRect);
TYPE(PF_RenderRequest, field, PF_Field);
TYPE(PF_RenderRequest, channel_mask, PF_ChannelMask);
TYPE(PF_RenderRequest, preserve_rgb_of_zero_alpha, PF_Boolean);
TYPE(PF_RenderRequest, unused, char[3]);
TYPE(PF_RenderRequest, reserved, A_long[4]);

TYPE(PF_PreRenderInput, output_request, PF_RenderRequest);
TYPE(PF_PreRenderInput, bitdepth, short);
TYPE(PF_PreRenderInput, gpu_data, const void*);
TYPE(PF_PreRenderInput, what_gpu, PF_GPU_Framework);
TYPE(PF_PreRenderInput, device_index, A_u_long);

TYPE(PF_PreRenderOutput, result_rect, PF_LRect);
TYPE(PF_PreRenderOutput, max_result_rect, PF_LRect);
TYPE(PF_PreRenderOutput, solid, PF_Boolean);
TYPE(PF_PreRenderOutput, reserved, PF_Boolean);
TYPE(PF_PreRenderOutput, flags, PF_RenderOutputFlags);
TYPE(PF_PreRenderOutput, pre_render_data, void*);
TYPE(PF_PreRenderOutput, delete_pre_render_data_func, PF_DeletePreRenderDataFunc);

TYPE(PF_CheckoutResult, result_rect, PF_LRect);
TYPE(PF_CheckoutResult, max_result_rect, PF_LRect);
TYPE(PF_CheckoutResult, par, PF_RationalScale);
TYPE(PF_CheckoutResult, solid, PF_Boolean);
TYPE(PF_CheckoutResult, reservedB, PF_Boolean[3]);
TYPE(PF_CheckoutResult, ref_width, A_long);
TYPE(PF_CheckoutResult, ref_height, A_long);
TYPE(PF_CheckoutResult, reserved, A_long[6]);

TYPE(PF_PreRenderCallbacks, checkout_layer,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long checkout_idL, const PF_RenderRequest* req,
                A_long what_time, A_long time_step, A_u_long time_scale, PF_CheckoutResult* checkout_result));
TYPE(PF_PreRenderCallbacks, GuidMixInPtr,
     PF_Err (*)(PF_ProgPtr effect_ref, A_u_long buf_sizeLu, const void* buf));

TYPE(PF_SmartRenderInput, output_request, PF_RenderRequest);
TYPE(PF_SmartRenderInput, bitdepth, short);
TYPE(PF_SmartRenderInput, pre_render_data, void*);
TYPE(PF_SmartRenderInput, gpu_data, const void*);
TYPE(PF_SmartRenderInput, what_gpu, PF_GPU_Framework);
TYPE(PF_SmartRenderInput, device_index, A_u_long);

TYPE(PF_SmartRenderCallbacks, checkout_layer_pixels,
     PF_Err (*)(PF_ProgPtr effect_ref, A_long checkout_idL, PF_EffectWorld** pixels));
TYPE(PF_SmartRenderCallbacks, checkin_layer_pixels, PF_Err (*)(PF_ProgPtr effect_ref, A_long checkout_idL));
TYPE(PF_SmartRenderCallbacks, checkout_output, PF_Err (*)(PF_ProgPtr effect_ref, PF_EffectWorld** output));

TYPE(PF_CustomUIInfo, reserved, A_long);
TYPE(PF_CustomUIInfo, events, PF_CustomEventFlags);
TYPE(PF_CustomUIInfo, comp_ui_width, A_long);
TYPE(PF_CustomUIInfo, comp_ui_height, A_long);
TYPE(PF_CustomUIInfo, comp_ui_alignment, PF_UIAlignment);
TYPE(PF_CustomUIInfo, layer_ui_width, A_long);
TYPE(PF_CustomUIInfo, layer_ui_height, A_long);
TYPE(PF_CustomUIInfo, layer_ui_alignment, PF_UIAlignment);
TYPE(PF_CustomUIInfo, preview_ui_width, A_long);
TYPE(PF_CustomUIInfo, preview_ui_height, A_long);
TYPE(PF_CustomUIInfo, preview_ui_alignment, PF_UIAlignment);

TYPE(PF_ChannelDesc, channel_type, PF_ChannelType);
TYPE(PF_ChannelDesc, name, A_char[64]);
TYPE(PF_ChannelDesc, data_type, PF_DataType);
TYPE(PF_ChannelDesc, dimension, A_long);

TYPE(PF_ChannelChunk, channel_ref, PF_ChannelRef);
TYPE(PF_ChannelChunk, widthL, A_long);
TYPE(PF_ChannelChunk, heightL, A_long);
TYPE(PF_ChannelChunk, dimensionL, A_long);
TYPE(PF_ChannelChunk, row_bytesL, A_long);
TYPE(PF_ChannelChunk, data_type, PF_DataType);
TYPE(PF_ChannelChunk, dataH, PF_Handle);
TYPE(PF_ChannelChunk, dataPV, void*);

TYPE(A_FloatPoint, x, A_FpLong);
TYPE(A_FloatPoint, y, A_FpLong);

TYPE(A_Matrix4, mat, A_FpLong[4][4]);

TYPE(PF_App_Color, red, A_u_short);
TYPE(PF_App_Color, green, A_u_short);
TYPE(PF_App_Color, blue, A_u_short);

TYPE(PF_FontName, font_nameAC, A_char[256]);

TYPE(PF_AppPersonalTextInfo, name, A_char[64]);
TYPE(PF_AppPersonalTextInfo, org, A_char[64]);
TYPE(PF_AppPersonalTextInfo, serial_str, A_char[64]);

TYPE(PF_ChannelRef, opaque, A_intptr_t[8]);

TYPE(PF_PreRenderExtra, input, PF_PreRenderInput*);
TYPE(PF_PreRenderExtra, output, PF_PreRenderOutput*);
TYPE(PF_PreRenderExtra, cb, PF_PreRenderCallbacks*);

TYPE(PF_SmartRenderExtra, input, PF_SmartRenderInput*);
TYPE(PF_SmartRenderExtra, cb, PF_SmartRenderCallbacks*);

TYPE(PF_ArbNewParams, refconPV, void*);
TYPE(PF_ArbNewParams, arbPH, PF_ArbitraryH*);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.new_func_params), PF_ArbNewParams>);

TYPE(PF_ArbDisposeParams, refconPV, void*);
TYPE(PF_ArbDisposeParams, arbH, PF_ArbitraryH);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.dispose_func_params), PF_ArbDisposeParams>);

TYPE(PF_ArbCopyParams, refconPV, void*);
TYPE(PF_ArbCopyParams, src_arbH, PF_ArbitraryH);
TYPE(PF_ArbCopyParams, dst_arbPH, PF_ArbitraryH*);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.copy_func_params), PF_ArbCopyParams>);

TYPE(PF_ArbFlatSizeParams, refconPV, void*);
TYPE(PF_ArbFlatSizeParams, arbH, PF_ArbitraryH);
TYPE(PF_ArbFlatSizeParams, flat_data_sizePLu, A_u_long*);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.flat_size_func_params), PF_ArbFlatSizeParams>);

TYPE(PF_ArbFlattenParams, refconPV, void*);
TYPE(PF_ArbFlattenParams, arbH, PF_ArbitraryH);
TYPE(PF_ArbFlattenParams, buf_sizeLu, A_u_long);
TYPE(PF_ArbFlattenParams, flat_dataPV, void*);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.flatten_func_params), PF_ArbFlattenParams>);

TYPE(PF_ArbUnflattenParams, refconPV, void*);
TYPE(PF_ArbUnflattenParams, buf_sizeLu, A_u_long);
TYPE(PF_ArbUnflattenParams, flat_dataPV, const void*);
TYPE(PF_ArbUnflattenParams, arbPH, PF_ArbitraryH*);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.unflatten_func_params), PF_ArbUnflattenParams>);

TYPE(PF_ArbInterpParams, refconPV, void*);
TYPE(PF_ArbInterpParams, left_arbH, PF_ArbitraryH);
TYPE(PF_ArbInterpParams, right_arbH, PF_ArbitraryH);
TYPE(PF_ArbInterpParams, tF, PF_FpLong);
TYPE(PF_ArbInterpParams, interpPH, PF_ArbitraryH*);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.interp_func_params), PF_ArbInterpParams>);

TYPE(PF_ArbCompareParams, refconPV, void*);
TYPE(PF_ArbCompareParams, a_arbH, PF_ArbitraryH);
TYPE(PF_ArbCompareParams, b_arbH, PF_ArbitraryH);
TYPE(PF_ArbCompareParams, compareP, PF_ArbCompareResult*);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.compare_func_params), PF_ArbCompareParams>);

TYPE(PF_ArbPrintSizeParams, refconPV, void*);
TYPE(PF_ArbPrintSizeParams, arbH, PF_ArbitraryH);
TYPE(PF_ArbPrintSizeParams, print_sizePLu, A_u_long*);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.print_size_func_params), PF_ArbPrintSizeParams>);

TYPE(PF_ArbPrintParams, refconPV, void*);
TYPE(PF_ArbPrintParams, print_flags, PF_ArbPrintFlags);
TYPE(PF_ArbPrintParams, arbH, PF_ArbitraryH);
TYPE(PF_ArbPrintParams, print_sizeLu, A_u_long);
TYPE(PF_ArbPrintParams, print_bufferPC, A_char*);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.print_func_params), PF_ArbPrintParams>);

TYPE(PF_ArbScanParams, refconPV, void*);
TYPE(PF_ArbScanParams, bufPC, const A_char*);
TYPE(PF_ArbScanParams, bytes_to_scanLu, A_u_long);
TYPE(PF_ArbScanParams, arbPH, PF_ArbitraryH*);
static_assert(std::is_same_v<decltype(PF_ArbParamsExtra{}.u.scan_func_params), PF_ArbScanParams>);

TYPE(PF_ChannelSuite1, PF_GetLayerChannelCount,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long* num_channelsPL));
TYPE(PF_ChannelSuite1, PF_GetLayerChannelIndexedRefAndDesc,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_ChannelIndex channel_index,
                PF_Boolean* foundPB, PF_ChannelRef* channel_refP, PF_ChannelDesc* channel_descP));
TYPE(PF_ChannelSuite1, PF_GetLayerChannelTypedRefAndDesc,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_ChannelType channel_type,
                PF_Boolean* foundPB, PF_ChannelRef* channel_refP, PF_ChannelDesc* channel_descP));
TYPE(PF_ChannelSuite1, PF_CheckoutLayerChannel,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ChannelRefPtr channel_refP, A_long what_time, A_long duration,
                A_u_long time_scale, PF_DataType data_type, PF_ChannelChunk* channel_chunkP));
TYPE(PF_ChannelSuite1, PF_CheckinLayerChannel,
     PF_Err (*)(PF_ProgPtr effect_ref, PF_ChannelRefPtr channel_refP, PF_ChannelChunk* channel_chunkP));

TYPE(PF_AEAppSuite6, PF_AppGetBgColor, PF_Err (*)(PF_App_Color* bg_colorP));
TYPE(PF_AEAppSuite6, PF_AppGetColor, PF_Err (*)(PF_App_ColorType color_type, PF_App_Color* app_colorP));
TYPE(PF_AEAppSuite6, PF_GetPersonalInfo, PF_Err (*)(PF_AppPersonalTextInfo* ptiP));
TYPE(PF_AEAppSuite6, PF_GetFontStyleSheet,
     PF_Err (*)(PF_FontStyleSheet sheet, PF_FontName* font_nameP0, A_short* font_numPS0, A_short* sizePS0,
                A_short* stylePS0));
TYPE(PF_AEAppSuite6, PF_SetCursor, PF_Err (*)(PF_CursorType cursor));
TYPE(PF_AEAppSuite6, PF_IsRenderEngine, PF_Err (*)(PF_Boolean* render_enginePB));
TYPE(PF_AEAppSuite6, PF_AppColorPickerDialog,
     PF_Err (*)(const A_char* dialog_titleZ0, const PF_PixelFloat* sample_colorP,
                PF_Boolean use_ws_to_monitor_xformB, PF_PixelFloat* new_colorP));
TYPE(PF_AEAppSuite6, PF_GetMouse, PF_Err (*)(PF_Point* pointP));
TYPE(PF_AEAppSuite6, PF_InvalidateRect, PF_Err (*)(PF_ContextH contextH, const PF_Rect* rectP0));
TYPE(PF_AEAppSuite6, PF_ConvertLocalToGlobal, PF_Err (*)(const PF_Point* localP, PF_Point* globalP));
TYPE(PF_AEAppSuite6, PF_GetColorAtGlobalPoint,
     PF_Err (*)(const PF_Point* globalP, A_short eyeSize, PF_EyeDropperSampleMode mode,
                PF_PixelFloat* outColorP));

TYPE(PF_AEAppSuite7, PF_AppGetBgColor, PF_Err (*)(PF_App_Color* bg_colorP));
TYPE(PF_AEAppSuite7, PF_AppGetColor, PF_Err (*)(PF_App_ColorType color_type, PF_App_Color* app_colorP));
TYPE(PF_AEAppSuite7, PF_AppGetLanguage, PF_Err (*)(A_char* lang_tagZ));
TYPE(PF_AEAppSuite7, PF_GetPersonalInfo, PF_Err (*)(PF_AppPersonalTextInfo* ptiP));
TYPE(PF_AEAppSuite7, PF_GetFontStyleSheet,
     PF_Err (*)(PF_FontStyleSheet sheet, PF_FontName* font_nameP0, A_short* font_numPS0, A_short* sizePS0,
                A_short* stylePS0));
TYPE(PF_AEAppSuite7, PF_SetCursor, PF_Err (*)(PF_CursorType cursor));
TYPE(PF_AEAppSuite7, PF_IsRenderEngine, PF_Err (*)(PF_Boolean* render_enginePB));
TYPE(PF_AEAppSuite7, PF_AppColorPickerDialog,
     PF_Err (*)(const A_char* dialog_titleZ0, const PF_PixelFloat* sample_colorP,
                PF_Boolean use_ws_to_monitor_xformB, PF_PixelFloat* new_colorP));
TYPE(PF_AEAppSuite7, PF_GetMouse, PF_Err (*)(PF_Point* pointP));
TYPE(PF_AEAppSuite7, PF_InvalidateRect, PF_Err (*)(PF_ContextH contextH, const PF_Rect* rectP0));
TYPE(PF_AEAppSuite7, PF_ConvertLocalToGlobal, PF_Err (*)(const PF_Point* localP, PF_Point* globalP));
TYPE(PF_AEAppSuite7, PF_GetColorAtGlobalPoint,
     PF_Err (*)(const PF_Point* globalP, A_short eyeSize, PF_EyeDropperSampleMode mode,
                PF_PixelFloat* outColorP));

TYPE(PF_AEAppSuite1, PF_AppGetBgColor, PF_Err (*)(PF_App_Color* bg_colorP));
TYPE(PF_AEAppSuite1, PF_AppGetColor, PF_Err (*)(PF_App_ColorType color_type, PF_App_Color* app_colorP));
TYPE(PF_AEAppSuite1, PF_AppGetLanguage, PF_Err (*)(A_char* lang_tagZ));
TYPE(PF_AEAppSuite1, PF_GetPersonalInfo, PF_Err (*)(PF_AppPersonalTextInfo* ptiP));
TYPE(PF_AEAppSuite1, PF_GetFontStyleSheet,
     PF_Err (*)(PF_FontStyleSheet sheet, PF_FontName* font_nameP0, A_short* font_numPS0, A_short* sizePS0,
                A_short* stylePS0));
TYPE(PF_AEAppSuite1, PF_SetCursor, PF_Err (*)(PF_CursorType cursor));
TYPE(PF_AEAppSuite1, PF_IsRenderEngine, PF_Err (*)(PF_Boolean* render_enginePB));
TYPE(PF_AEAppSuite1, PF_AppColorPickerDialog,
     PF_Err (*)(const A_char* dialog_titleZ0, const PF_PixelFloat* sample_colorP,
                PF_Boolean use_ws_to_monitor_xformB, PF_PixelFloat* new_colorP));
TYPE(PF_AEAppSuite1, PF_GetMouse, PF_Err (*)(PF_Point* pointP));
TYPE(PF_AEAppSuite1, PF_InvalidateRect, PF_Err (*)(PF_ContextH contextH, const PF_Rect* rectP0));
TYPE(PF_AEAppSuite1, PF_ConvertLocalToGlobal, PF_Err (*)(const PF_Point* localP, PF_Point* globalP));
TYPE(PF_AEAppSuite1, PF_GetColorAtGlobalPoint,
     PF_Err (*)(const PF_Point* globalP, A_short eyeSize, PF_EyeDropperSampleMode mode,
                PF_PixelFloat* outColorP));

TYPE(AEGP_PFInterfaceSuite1, AEGP_GetEffectLayer, A_Err (*)(PF_ProgPtr effect_pp_ref, AEGP_LayerH* layerPH));
TYPE(AEGP_PFInterfaceSuite1, AEGP_ConvertEffectToCompTime,
     A_Err (*)(PF_ProgPtr effect_pp_ref, A_long what_timeL, A_u_long time_scaleLu, A_Time* comp_timePT));
TYPE(AEGP_PFInterfaceSuite1, AEGP_GetEffectCamera,
     A_Err (*)(PF_ProgPtr effect_pp_ref, const A_Time* comp_timePT, AEGP_LayerH* camera_layerPH));
TYPE(AEGP_PFInterfaceSuite1, AEGP_GetEffectCameraMatrix,
     A_Err (*)(PF_ProgPtr effect_pp_ref, const A_Time* comp_timePT, A_Matrix4* camera_matrixP,
               A_FpLong* dist_to_image_planePF, A_short* image_plane_widthPL, A_short* image_plane_heightPL));

TYPE(PF_EffectUISuite1, PF_SetOptionsButtonName, PF_Err (*)(PF_ProgPtr effect_ref, const A_char* nameZ));

TYPE(PF_ColorParamSuite1, PF_GetFloatingPointColorFromColorDef,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_ParamDef* color_defP, PF_PixelFloat* fp_colorP));

TYPE(PF_PointParamSuite1, PF_GetFloatingPointValueFromPointDef,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_ParamDef* point_defP, A_FloatPoint* fp_pointP));

TYPE(PF_AngleParamSuite1, PF_GetFloatingPointValueFromAngleDef,
     PF_Err (*)(PF_ProgPtr effect_ref, const PF_ParamDef* angle_defP, A_FpLong* fp_valueP));

TYPE(PF_iterateFloatSuite1, iterate,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, void* refcon, PF_IteratePixelFloatFunc pix_fn, PF_EffectWorld* dst));
TYPE(PF_iterateFloatSuite1, iterate_origin,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixelFloatFunc pix_fn,
                PF_EffectWorld* dst));
TYPE(PF_iterateFloatSuite1, iterate_origin_non_clip_src,
     PF_Err (*)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixelFloatFunc pix_fn,
                PF_EffectWorld* dst));

// Unions of one pointer; the id of a declared parameter and its change flags later share their place.
static_assert(std::is_same_v<decltype(PF_CheckBoxDef{}.u.nameptr), const A_char*>);
static_assert(std::is_same_v<decltype(PF_PopupDef{}.u.namesptr), const A_char*>);
static_assert(std::is_same_v<decltype(PF_ButtonDef{}.u.namesptr), const A_char*>);
static_assert(std::is_same_v<decltype(PF_ParamDef{}.uu.id), A_long>);
static_assert(std::is_same_v<decltype(PF_ParamDef{}.uu.change_flags), PF_ChangeFlags>);

}  // namespace
