/* The values of the interface's enumerations. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* PF_Cmd: the events of an effect's life. */
enum {
    PF_Cmd_ABOUT = 0,
    PF_Cmd_GLOBAL_SETUP = 1,
    PF_Cmd_UNUSED_0 = 2,
    PF_Cmd_GLOBAL_SETDOWN = 3,
    PF_Cmd_PARAMS_SETUP = 4,
    PF_Cmd_SEQUENCE_SETUP = 5,
    PF_Cmd_SEQUENCE_RESETUP = 6,
    PF_Cmd_SEQUENCE_FLATTEN = 7,
    PF_Cmd_SEQUENCE_SETDOWN = 8,
    PF_Cmd_DO_DIALOG = 9,
    PF_Cmd_FRAME_SETUP = 10,
    PF_Cmd_RENDER = 11,
    PF_Cmd_FRAME_SETDOWN = 12,
    PF_Cmd_USER_CHANGED_PARAM = 13,
    PF_Cmd_UPDATE_PARAMS_UI = 14,
    PF_Cmd_EVENT = 15,
    PF_Cmd_GET_EXTERNAL_DEPENDENCIES = 16,
    PF_Cmd_COMPLETELY_GENERAL = 17,
    PF_Cmd_QUERY_DYNAMIC_FLAGS = 18,
    PF_Cmd_AUDIO_RENDER = 19,
    PF_Cmd_AUDIO_SETUP = 20,
    PF_Cmd_AUDIO_SETDOWN = 21,
    PF_Cmd_ARBITRARY_CALLBACK = 22,
    PF_Cmd_SMART_PRE_RENDER = 23,
    PF_Cmd_SMART_RENDER = 24,
    PF_Cmd_GET_FLATTENED_SEQUENCE_DATA = 28,
    PF_Cmd_SMART_RENDER_GPU = 31,
};

/* PF_Err */
enum {
    PF_Err_NONE = 0,
    PF_Err_OUT_OF_MEMORY = 4,
    PF_Err_INTERNAL_STRUCT_DAMAGED = 512,
    PF_Err_INVALID_INDEX = 513,
    PF_Err_UNRECOGNIZED_PARAM_TYPE = 514,
    PF_Err_INVALID_CALLBACK = 515,
    PF_Err_BAD_CALLBACK_PARAM = 516,
    PF_Err_CANNOT_PARSE_KEYFRAME_TEXT = 518,
};

/* PF_Err: the user has cancelled; no message is shown. */
enum {
    PF_Interrupt_CANCEL = 517,
};

/* PF_ParamType */
enum {
    PF_Param_LAYER = 0,
    PF_Param_SLIDER = 1,
    PF_Param_FIX_SLIDER = 2,
    PF_Param_ANGLE = 3,
    PF_Param_CHECKBOX = 4,
    PF_Param_COLOR = 5,
    PF_Param_POINT = 6,
    PF_Param_POPUP = 7,
    PF_Param_CUSTOM = 8,
    PF_Param_NO_DATA = 9,
    PF_Param_FLOAT_SLIDER = 10,
    PF_Param_ARBITRARY_DATA = 11,
    PF_Param_PATH = 12,
    PF_Param_GROUP_START = 13,
    PF_Param_GROUP_END = 14,
    PF_Param_BUTTON = 15,
    PF_Param_POINT_3D = 18,
};

/* PF_ParamFlags: SUPERVISE asks for USER_CHANGED_PARAM. USE_VALUE_FOR_OLD_PROJECTS is not for layers, whose
 * parameters have LAYER_PARAM_IS_TRACKMATTE in its place. */
enum {
    PF_ParamFlag_NONE = 0,
    PF_ParamFlag_CANNOT_TIME_VARY = 2,
    PF_ParamFlag_CANNOT_INTERP = 4,
    PF_ParamFlag_COLLAPSE_TWIRLY = 32,
    PF_ParamFlag_START_COLLAPSED = 32,
    PF_ParamFlag_SUPERVISE = 64,
    PF_ParamFlag_USE_VALUE_FOR_OLD_PROJECTS = 128,
    PF_ParamFlag_LAYER_PARAM_IS_TRACKMATTE = 128,
    PF_ParamFlag_EXCLUDE_FROM_HAVE_INPUTS_CHANGED = 256,
    PF_ParamFlag_SKIP_REVEAL_WHEN_UNHIDDEN = 512,
};

/* PF_ParamUIFlags */
enum {
    PF_PUI_NONE = 0,
    PF_PUI_TOPIC = 1,
    PF_PUI_CONTROL = 2,
    PF_PUI_STD_CONTROL_ONLY = 4,
    PF_PUI_NO_ECW_UI = 8,
    PF_PUI_ECW_SEPARATOR = 16,
    PF_PUI_DISABLED = 32,
    PF_PUI_DONT_ERASE_TOPIC = 64,
    PF_PUI_DONT_ERASE_CONTROL = 128,
    PF_PUI_RADIO_BUTTON = 256,
    PF_PUI_INVISIBLE = 512,
};

/* PF_ChangeFlags */
enum {
    PF_ChangeFlag_NONE = 0,
    PF_ChangeFlag_CHANGED_VALUE = 1,
    PF_ChangeFlag_SET_TO_VARY = 4,
    PF_ChangeFlag_SET_TO_CONSTANT = 8,
};

/* PF_ValueDisplayFlags */
enum {
    PF_ValueDisplayFlag_PERCENT = 1,
    PF_ValueDisplayFlag_PIXEL = 2,
    PF_ValueDisplayFlag_REVERSE = 8,
};

/* PF_FSliderFlags */
enum {
    PF_FSliderFlag_WANT_PHASE = 1,
};

/* PF_Quality */
enum {
    PF_Quality_LO = 0,
    PF_Quality_HI = 1,
};

/* PF_WorldFlags: DEEP is 16 bits per channel. */
enum {
    PF_WorldFlag_DEEP = 1,
    PF_WorldFlag_WRITEABLE = 2,
};

/* PF_NewWorldFlags */
enum {
    PF_NewWorldFlag_NONE = 0,
    PF_NewWorldFlag_CLEAR_PIXELS = 1,
    PF_NewWorldFlag_DEEP_PIXELS = 2,
};

/* PF_ModeFlags */
enum {
    PF_MF_Alpha_PREMUL = 0,
    PF_MF_Alpha_STRAIGHT = 1,
};

/* PF_Field */
enum {
    PF_Field_FRAME = 0,
    PF_Field_UPPER = 1,
    PF_Field_LOWER = 2,
};

/* PF_TransferMode */
enum {
    PF_Xfer_NONE = -1,
    PF_Xfer_COPY = 0,
    PF_Xfer_BEHIND = 1,
    PF_Xfer_IN_FRONT = 2,
    PF_Xfer_DISSOLVE = 3,
    PF_Xfer_ADD = 4,
    PF_Xfer_MULTIPLY = 5,
    PF_Xfer_SCREEN = 6,
    PF_Xfer_OVERLAY = 7,
    PF_Xfer_SOFT_LIGHT = 8,
    PF_Xfer_HARD_LIGHT = 9,
    PF_Xfer_DARKEN = 10,
    PF_Xfer_LIGHTEN = 11,
    PF_Xfer_DIFFERENCE = 12,
    PF_Xfer_HUE = 13,
    PF_Xfer_SATURATION = 14,
    PF_Xfer_COLOR = 15,
    PF_Xfer_LUMINOSITY = 16,
    PF_Xfer_MULTIPLY_ALPHA = 17,
    PF_Xfer_MULTIPLY_ALPHA_LUMA = 18,
    PF_Xfer_MULTIPLY_NOT_ALPHA = 19,
    PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA = 20,
    PF_Xfer_ADDITIVE_PREMUL = 21,
    PF_Xfer_ALPHA_ADD = 22,
    PF_Xfer_COLOR_DODGE = 23,
    PF_Xfer_COLOR_BURN = 24,
    PF_Xfer_EXCLUSION = 25,
    PF_Xfer_DIFFERENCE2 = 26,
    PF_Xfer_COLOR_DODGE2 = 27,
    PF_Xfer_COLOR_BURN2 = 28,
    PF_Xfer_LINEAR_DODGE = 29,
    PF_Xfer_LINEAR_BURN = 30,
    PF_Xfer_LINEAR_LIGHT = 31,
    PF_Xfer_VIVID_LIGHT = 32,
    PF_Xfer_PIN_LIGHT = 33,
    PF_Xfer_HARD_MIX = 34,
    PF_Xfer_LIGHTER_COLOR = 35,
    PF_Xfer_DARKER_COLOR = 36,
    PF_Xfer_SUBTRACT = 37,
    PF_Xfer_DIVIDE = 38,
    PF_Xfer_RESERVED0 = 39,
    PF_Xfer_RESERVED1 = 40,
    PF_Xfer_NUM_MODES = 41,
    /* second names */
    PF_Xfer_TINT = PF_Xfer_LINEAR_DODGE,
    PF_Xfer_SHADE = PF_Xfer_LINEAR_BURN,
    PF_Xfer_INTENSE_LIGHT = PF_Xfer_VIVID_LIGHT,
};

/* PF_PixelFormat: 8 bits, 16 bits and float per channel. */
enum {
    PF_PixelFormat_8BIT = 1650946657,
    PF_PixelFormat_16BIT = 909206881,
    PF_PixelFormat_FLOAT = 842229089,
};

/* PF_OutFlags */
enum {
    PF_OutFlag_NONE = 0,
    PF_OutFlag_KEEP_RESOURCE_OPEN = 0x1,
    PF_OutFlag_WIDE_TIME_INPUT = 0x2,
    PF_OutFlag_NON_PARAM_VARY = 0x4,
    PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING = 0x10,
    PF_OutFlag_I_DO_DIALOG = 0x20,
    PF_OutFlag_USE_OUTPUT_EXTENT = 0x40,
    PF_OutFlag_SEND_DO_DIALOG = 0x80,
    PF_OutFlag_DISPLAY_ERROR_MESSAGE = 0x100,
    PF_OutFlag_I_EXPAND_BUFFER = 0x200,
    PF_OutFlag_PIX_INDEPENDENT = 0x400,
    PF_OutFlag_I_WRITE_INPUT_BUFFER = 0x800,
    PF_OutFlag_I_SHRINK_BUFFER = 0x1000,
    PF_OutFlag_WORKS_IN_PLACE = 0x2000,
    PF_OutFlag_CUSTOM_UI = 0x8000,
    PF_OutFlag_REFRESH_UI = 0x20000,
    PF_OutFlag_NOP_RENDER = 0x40000,
    PF_OutFlag_I_USE_SHUTTER_ANGLE = 0x80000,
    PF_OutFlag_I_USE_AUDIO = 0x100000,
    PF_OutFlag_I_AM_OBSOLETE = 0x200000,
    PF_OutFlag_FORCE_RERENDER = 0x400000,
    PF_OutFlag_PiPL_OVERRIDES_OUTDATA_OUTFLAGS = 0x800000,
    PF_OutFlag_I_HAVE_EXTERNAL_DEPENDENCIES = 0x1000000,
    PF_OutFlag_DEEP_COLOR_AWARE = 0x2000000,
    PF_OutFlag_SEND_UPDATE_PARAMS_UI = 0x4000000,
    PF_OutFlag_AUDIO_FLOAT_ONLY = 0x8000000,
    PF_OutFlag_AUDIO_IIR = 0x10000000,
    PF_OutFlag_I_SYNTHESIZE_AUDIO = 0x20000000,
    PF_OutFlag_AUDIO_EFFECT_TOO = 0x40000000,
    PF_OutFlag_AUDIO_EFFECT_ONLY = -0x7FFFFFFF - 1,
};

/* PF_OutFlags2 */
enum {
    PF_OutFlag2_NONE = 0,
    PF_OutFlag2_SUPPORTS_QUERY_DYNAMIC_FLAGS = 0x1,
    PF_OutFlag2_I_USE_3D_CAMERA = 0x2,
    PF_OutFlag2_I_USE_3D_LIGHTS = 0x4,
    PF_OutFlag2_PARAM_GROUP_START_COLLAPSED_FLAG = 0x8,
    PF_OutFlag2_I_AM_THREADSAFE = 0x10,
    PF_OutFlag2_CAN_COMBINE_WITH_DESTINATION = 0x20,
    PF_OutFlag2_DOESNT_NEED_EMPTY_PIXELS = 0x40,
    PF_OutFlag2_REVEALS_ZERO_ALPHA = 0x80,
    PF_OutFlag2_PRESERVES_FULLY_OPAQUE_PIXELS = 0x100,
    PF_OutFlag2_SUPPORTS_SMART_RENDER = 0x400,
    PF_OutFlag2_FLOAT_COLOR_AWARE = 0x1000,
    PF_OutFlag2_I_USE_COLORSPACE_ENUMERATION = 0x2000,
    PF_OutFlag2_I_AM_DEPRECATED = 0x4000,
    PF_OutFlag2_PPRO_DO_NOT_CLONE_SEQUENCE_DATA_FOR_RENDER = 0x8000,
    PF_OutFlag2_AUTOMATIC_WIDE_TIME_INPUT = 0x20000,
    PF_OutFlag2_I_USE_TIMECODE = 0x40000,
    PF_OutFlag2_DEPENDS_ON_UNREFERENCED_MASKS = 0x80000,
    PF_OutFlag2_OUTPUT_IS_WATERMARKED = 0x100000,
    PF_OutFlag2_I_MIX_GUID_DEPENDENCIES = 0x200000,
    PF_OutFlag2_AE13_5_THREADSAFE = 0x400000,
    PF_OutFlag2_SUPPORTS_GET_FLATTENED_SEQUENCE_DATA = 0x800000,
    PF_OutFlag2_CUSTOM_UI_ASYNC_MANAGER = 0x1000000,
    PF_OutFlag2_SUPPORTS_GPU_RENDER_F32 = 0x2000000,
    PF_OutFlag2_SUPPORTS_THREADED_RENDERING = 0x8000000,
    PF_OutFlag2_MUTABLE_RENDER_SEQUENCE_DATA_SLOWER = 0x10000000,
    PF_OutFlag2_SUPPORTS_DIRECTX_RENDERING = 0x20000000,
};

/* PF_MaskFlags: the mask is its alpha, or its luminance; INVERTED turns either about. */
enum {
    PF_MaskFlag_NONE = 0,
    PF_MaskFlag_INVERTED = 1,
    PF_MaskFlag_LUMINANCE = 2,
};

/* PF_KernelFlags. Of each group one; the first is the group without a bit. */
enum {
    PF_KernelFlag_2D = 0, /* n x n elements from the upper left */
    PF_KernelFlag_1D = 1, /* n elements */
    PF_KernelFlag_UNNORMALIZED = 0,
    PF_KernelFlag_NORMALIZED = 2, /* weights that add up to the pixels covered, each at full weight */
    PF_KernelFlag_CLAMP = 0,      /* values are held to their range */
    PF_KernelFlag_NO_CLAMP = 4,
    PF_KernelFlag_USE_LONG = 0,   /* A_long; the mean element is 256 */
    PF_KernelFlag_USE_CHAR = 8,   /* A_u_char; the mean element is 255 */
    PF_KernelFlag_USE_FIXED = 16, /* PF_Fixed; the mean element is 65536 */
    PF_KernelFlag_USE_UNDEFINED = 24,
    PF_KernelFlag_HORIZONTAL = 0,
    PF_KernelFlag_VERTICAL = 32,
    PF_KernelFlag_TRANSPARENT_BORDERS = 0,
    PF_KernelFlag_REPLICATE_BORDERS = 64, /* hosts pass over it */
    PF_KernelFlag_STRAIGHT_CONVOLVE = 0,
    PF_KernelFlag_ALPHA_WEIGHT_CONVOLVE = 128, /* hosts pass over it */
};

/* PF_FunctionSelector: what PF_Cmd_ARBITRARY_CALLBACK is to do, see PF_Arbitrary.h. */
enum {
    PF_Arbitrary_NEW_FUNC = 0,
    PF_Arbitrary_DISPOSE_FUNC = 1,
    PF_Arbitrary_COPY_FUNC = 2,
    PF_Arbitrary_FLAT_SIZE_FUNC = 3,
    PF_Arbitrary_FLATTEN_FUNC = 4,
    PF_Arbitrary_UNFLATTEN_FUNC = 5,
    PF_Arbitrary_INTERP_FUNC = 6,
    PF_Arbitrary_COMPARE_FUNC = 7,
    PF_Arbitrary_PRINT_SIZE_FUNC = 8,
    PF_Arbitrary_PRINT_FUNC = 9,
    PF_Arbitrary_SCAN_FUNC = 10,
};

/* PF_ArbCompareResult: of the first value to the second. */
enum {
    PF_ArbCompare_EQUAL = 0,
    PF_ArbCompare_LESS = 1,
    PF_ArbCompare_MORE = 2,
    PF_ArbCompare_NOT_EQUAL = 3,
};

/* PF_ArbPrintFlags */
enum {
    PF_ArbPrint_NONE = 0,
    PF_ArbPrint_ABBREVIATED = 1,
};

/* PF_ChannelMask */
enum {
    PF_ChannelMask_ALPHA = 1,
    PF_ChannelMask_RED = 2,
    PF_ChannelMask_GREEN = 4,
    PF_ChannelMask_BLUE = 8,
    PF_ChannelMask_ARGB = 15,
};

/* PF_RenderOutputFlags */
enum {
    PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS = 1,
    PF_RenderOutputFlag_GPU_RENDER_POSSIBLE = 2,
};

/* PF_LayerDef.dephault of a layer parameter */
enum {
    PF_LayerDefault_MYSELF = -1,
    PF_LayerDefault_NONE = 0,
};

/* PF_GPU_Framework */
enum {
    PF_GPU_Framework_NONE = 0,
};

/* PF_CustomEventFlags */
enum {
    PF_CustomEFlag_NONE = 0,
    PF_CustomEFlag_COMP = 1,
    PF_CustomEFlag_LAYER = 2,
    PF_CustomEFlag_EFFECT = 4,
    PF_CustomEFlag_PREVIEW = 8,
};

/* AEGP_DynStreamFlags */
enum {
    AEGP_DynStreamFlag_HIDDEN = 2,
};

#ifdef __cplusplus
}
#endif
