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

/* PF_ParamFlags: SUPERVISE asks for USER_CHANGED_PARAM. */
enum {
    PF_ParamFlag_CANNOT_TIME_VARY = 2,
    PF_ParamFlag_CANNOT_INTERP = 4,
    PF_ParamFlag_START_COLLAPSED = 32,
    PF_ParamFlag_SUPERVISE = 64,
};

/* PF_ParamUIFlags */
enum {
    PF_PUI_TOPIC = 1,
    PF_PUI_CONTROL = 2,
    PF_PUI_STD_CONTROL_ONLY = 4,
    PF_PUI_NO_ECW_UI = 8,
    PF_PUI_ECW_SEPARATOR = 16,
    PF_PUI_DISABLED = 32,
    PF_PUI_INVISIBLE = 512,
};

/* PF_ChangeFlags */
enum {
    PF_ChangeFlag_CHANGED_VALUE = 1,
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
};

/* PF_PixelFormat: 8 bits, 16 bits and float per channel. */
enum {
    PF_PixelFormat_8BIT = 1650946657,
    PF_PixelFormat_16BIT = 909206881,
    PF_PixelFormat_FLOAT = 842229089,
};

/* PF_OutFlags */
enum {
    PF_OutFlag_KEEP_RESOURCE_OPEN = 0x1,
    PF_OutFlag_WIDE_TIME_INPUT = 0x2,
    PF_OutFlag_NON_PARAM_VARY = 0x4,
    PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING = 0x10,
    PF_OutFlag_USE_OUTPUT_EXTENT = 0x40,
    PF_OutFlag_DISPLAY_ERROR_MESSAGE = 0x100,
    PF_OutFlag_I_EXPAND_BUFFER = 0x200,
    PF_OutFlag_PIX_INDEPENDENT = 0x400,
    PF_OutFlag_I_WRITE_INPUT_BUFFER = 0x800,
    PF_OutFlag_REFRESH_UI = 0x20000,
    PF_OutFlag_FORCE_RERENDER = 0x400000,
    PF_OutFlag_DEEP_COLOR_AWARE = 0x2000000,
    PF_OutFlag_SEND_UPDATE_PARAMS_UI = 0x4000000,
};

/* PF_OutFlags2 */
enum {
    PF_OutFlag2_SUPPORTS_QUERY_DYNAMIC_FLAGS = 0x1,
    PF_OutFlag2_SUPPORTS_SMART_RENDER = 0x400,
    PF_OutFlag2_FLOAT_COLOR_AWARE = 0x1000,
    PF_OutFlag2_SUPPORTS_THREADED_RENDERING = 0x8000000,
};

/* AEGP_DynStreamFlags */
enum {
    AEGP_DynStreamFlag_HIDDEN = 2,
};

#ifdef __cplusplus
}
#endif
