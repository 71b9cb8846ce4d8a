/* What an effect may ask about the program around it. Every call is [main-thread]. */
#pragma once

#include "PF_Types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct PF_App_Color {
    A_u_short red;
    A_u_short green;
    A_u_short blue;
} PF_App_Color;
PF_LAYOUT(PF_App_Color, 6, 2);
PF_AT(PF_App_Color, green, 2);
PF_AT(PF_App_Color, blue, 4);

typedef struct PF_FontName {
    A_char font_nameAC[256];
} PF_FontName;
PF_LAYOUT(PF_FontName, 256, 1);

typedef struct PF_AppPersonalTextInfo {
    A_char name[64];
    A_char org[64];
    A_char serial_str[64];
} PF_AppPersonalTextInfo;
PF_LAYOUT(PF_AppPersonalTextInfo, 192, 1);
PF_AT(PF_AppPersonalTextInfo, org, 64);
PF_AT(PF_AppPersonalTextInfo, serial_str, 128);

/* "PF AE App Suite" version 6 */
typedef struct PF_AEAppSuite6 {
    PF_Err (*PF_AppGetBgColor)(PF_App_Color* bg_colorP);
    PF_Err (*PF_AppGetColor)(PF_App_ColorType color_type, PF_App_Color* app_colorP);
    PF_Err (*PF_GetPersonalInfo)(PF_AppPersonalTextInfo* ptiP);
    PF_Err (*PF_GetFontStyleSheet)(PF_FontStyleSheet sheet, PF_FontName* font_nameP0, A_short* font_numPS0,
                                   A_short* sizePS0, A_short* stylePS0);
    PF_Err (*PF_SetCursor)(PF_CursorType cursor);
    /* 1 where there is no window. */
    PF_Err (*PF_IsRenderEngine)(PF_Boolean* render_enginePB);
    PF_Err (*PF_AppColorPickerDialog)(const A_char* dialog_titleZ0, const PF_PixelFloat* sample_colorP,
                                      PF_Boolean use_ws_to_monitor_xformB, PF_PixelFloat* new_colorP);
    PF_Err (*PF_GetMouse)(PF_Point* pointP);
    PF_Err (*PF_InvalidateRect)(PF_ContextH contextH, const PF_Rect* rectP0);
    PF_Err (*PF_ConvertLocalToGlobal)(const PF_Point* localP, PF_Point* globalP);
    PF_Err (*PF_GetColorAtGlobalPoint)(const PF_Point* globalP, A_short eyeSize, PF_EyeDropperSampleMode mode,
                                       PF_PixelFloat* outColorP);
} PF_AEAppSuite6;
PF_LAYOUT(PF_AEAppSuite6, 88, 8);
PF_AT(PF_AEAppSuite6, PF_AppGetColor, 8);
PF_AT(PF_AEAppSuite6, PF_GetPersonalInfo, 16);
PF_AT(PF_AEAppSuite6, PF_GetFontStyleSheet, 24);
PF_AT(PF_AEAppSuite6, PF_SetCursor, 32);
PF_AT(PF_AEAppSuite6, PF_IsRenderEngine, 40);
PF_AT(PF_AEAppSuite6, PF_AppColorPickerDialog, 48);
PF_AT(PF_AEAppSuite6, PF_GetMouse, 56);
PF_AT(PF_AEAppSuite6, PF_InvalidateRect, 64);
PF_AT(PF_AEAppSuite6, PF_ConvertLocalToGlobal, 72);
PF_AT(PF_AEAppSuite6, PF_GetColorAtGlobalPoint, 80);

/* "PF AE App Suite" version 7: a language in between. */
typedef struct PF_AEAppSuite7 {
    PF_Err (*PF_AppGetBgColor)(PF_App_Color* bg_colorP);
    PF_Err (*PF_AppGetColor)(PF_App_ColorType color_type, PF_App_Color* app_colorP);
    /* Writes a tag such as en_US. */
    PF_Err (*PF_AppGetLanguage)(A_char* lang_tagZ);
    PF_Err (*PF_GetPersonalInfo)(PF_AppPersonalTextInfo* ptiP);
    PF_Err (*PF_GetFontStyleSheet)(PF_FontStyleSheet sheet, PF_FontName* font_nameP0, A_short* font_numPS0,
                                   A_short* sizePS0, A_short* stylePS0);
    PF_Err (*PF_SetCursor)(PF_CursorType cursor);
    /* 1 where there is no window. */
    PF_Err (*PF_IsRenderEngine)(PF_Boolean* render_enginePB);
    PF_Err (*PF_AppColorPickerDialog)(const A_char* dialog_titleZ0, const PF_PixelFloat* sample_colorP,
                                      PF_Boolean use_ws_to_monitor_xformB, PF_PixelFloat* new_colorP);
    PF_Err (*PF_GetMouse)(PF_Point* pointP);
    PF_Err (*PF_InvalidateRect)(PF_ContextH contextH, const PF_Rect* rectP0);
    PF_Err (*PF_ConvertLocalToGlobal)(const PF_Point* localP, PF_Point* globalP);
    PF_Err (*PF_GetColorAtGlobalPoint)(const PF_Point* globalP, A_short eyeSize, PF_EyeDropperSampleMode mode,
                                       PF_PixelFloat* outColorP);
} PF_AEAppSuite7;
PF_LAYOUT(PF_AEAppSuite7, 96, 8);
PF_AT(PF_AEAppSuite7, PF_AppGetColor, 8);
PF_AT(PF_AEAppSuite7, PF_AppGetLanguage, 16);
PF_AT(PF_AEAppSuite7, PF_GetPersonalInfo, 24);
PF_AT(PF_AEAppSuite7, PF_GetFontStyleSheet, 32);
PF_AT(PF_AEAppSuite7, PF_SetCursor, 40);
PF_AT(PF_AEAppSuite7, PF_IsRenderEngine, 48);
PF_AT(PF_AEAppSuite7, PF_AppColorPickerDialog, 56);
PF_AT(PF_AEAppSuite7, PF_GetMouse, 64);
PF_AT(PF_AEAppSuite7, PF_InvalidateRect, 72);
PF_AT(PF_AEAppSuite7, PF_ConvertLocalToGlobal, 80);
PF_AT(PF_AEAppSuite7, PF_GetColorAtGlobalPoint, 88);

/* "PF AE App Suite" version 1, the newest in spite of its number: version 7, and progress dialogs. */
typedef struct PF_AEAppSuite1 {
    PF_Err (*PF_AppGetBgColor)(PF_App_Color* bg_colorP);
    PF_Err (*PF_AppGetColor)(PF_App_ColorType color_type, PF_App_Color* app_colorP);
    /* Writes a tag such as en_US. */
    PF_Err (*PF_AppGetLanguage)(A_char* lang_tagZ);
    PF_Err (*PF_GetPersonalInfo)(PF_AppPersonalTextInfo* ptiP);
    PF_Err (*PF_GetFontStyleSheet)(PF_FontStyleSheet sheet, PF_FontName* font_nameP0, A_short* font_numPS0,
                                   A_short* sizePS0, A_short* stylePS0);
    PF_Err (*PF_SetCursor)(PF_CursorType cursor);
    /* 1 where there is no window. */
    PF_Err (*PF_IsRenderEngine)(PF_Boolean* render_enginePB);
    PF_Err (*PF_AppColorPickerDialog)(const A_char* dialog_titleZ0, const PF_PixelFloat* sample_colorP,
                                      PF_Boolean use_ws_to_monitor_xformB, PF_PixelFloat* new_colorP);
    PF_Err (*PF_GetMouse)(PF_Point* pointP);
    PF_Err (*PF_InvalidateRect)(PF_ContextH contextH, const PF_Rect* rectP0);
    PF_Err (*PF_ConvertLocalToGlobal)(const PF_Point* localP, PF_Point* globalP);
    PF_Err (*PF_GetColorAtGlobalPoint)(const PF_Point* globalP, A_short eyeSize, PF_EyeDropperSampleMode mode,
                                       PF_PixelFloat* outColorP);
    PF_UnusedSlot PF_CreateNewAppProgressDialog;
    PF_UnusedSlot PF_AppProgressDialogUpdate;
    PF_UnusedSlot PF_DisposeAppProgressDialog;
} PF_AEAppSuite1;
PF_LAYOUT(PF_AEAppSuite1, 120, 8);
PF_AT(PF_AEAppSuite1, PF_AppGetColor, 8);
PF_AT(PF_AEAppSuite1, PF_AppGetLanguage, 16);
PF_AT(PF_AEAppSuite1, PF_GetPersonalInfo, 24);
PF_AT(PF_AEAppSuite1, PF_GetFontStyleSheet, 32);
PF_AT(PF_AEAppSuite1, PF_SetCursor, 40);
PF_AT(PF_AEAppSuite1, PF_IsRenderEngine, 48);
PF_AT(PF_AEAppSuite1, PF_AppColorPickerDialog, 56);
PF_AT(PF_AEAppSuite1, PF_GetMouse, 64);
PF_AT(PF_AEAppSuite1, PF_InvalidateRect, 72);
PF_AT(PF_AEAppSuite1, PF_ConvertLocalToGlobal, 80);
PF_AT(PF_AEAppSuite1, PF_GetColorAtGlobalPoint, 88);
PF_AT(PF_AEAppSuite1, PF_CreateNewAppProgressDialog, 96);
PF_AT(PF_AEAppSuite1, PF_AppProgressDialogUpdate, 104);
PF_AT(PF_AEAppSuite1, PF_DisposeAppProgressDialog, 112);

#ifdef __cplusplus
}
#endif
