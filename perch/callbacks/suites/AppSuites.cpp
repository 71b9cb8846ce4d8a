// The suites about the program around the effect, which has no window, no user to ask and no channels beside
// alpha and colour. What there is nothing of is answered as none; what would need a window refuses.
#include <cstring>

#include "CallGuard.h"
#include "PF_AppSuite.h"
#include "PF_ChannelSuite.h"
#include "SuiteEntry.h"

namespace perch {
namespace {

// Fills what the effect gave room for.
template <typename T>
PF_Err answerWith(const char* callback, T* room, const T& value) {
    return answer(callback, Caller::MainThread, [&](Host&) -> PF_Err {
        if (room == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *room = value;
        return PF_Err_NONE;
    });
}

PF_Err getBackground(PF_App_Color* color) {
    return answerWith("PF_AppGetBgColor", color, {});
}

PF_Err getColor(PF_App_ColorType, PF_App_Color*) {
    return refuse("PF_AppGetColor");
}

// There is room for any tag in what effects hand over; its size is not told.
PF_Err getLanguage(A_char* tag) {
    return answer("PF_AppGetLanguage", Caller::MainThread, [&](Host&) -> PF_Err {
        if (tag == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        std::strcpy(tag, "en_US");
        return PF_Err_NONE;
    });
}

PF_Err getPersonalInfo(PF_AppPersonalTextInfo* info) {
    return answerWith("PF_GetPersonalInfo", info, {});
}

PF_Err getFont(PF_FontStyleSheet, PF_FontName*, A_short*, A_short*, A_short*) {
    return refuse("PF_GetFontStyleSheet");
}

PF_Err nothingToDo(const char* callback) {
    return answer(callback, Caller::MainThread, [](Host&) -> PF_Err { return PF_Err_NONE; });
}

PF_Err setCursor(PF_CursorType) {
    return nothingToDo("PF_SetCursor");
}

PF_Err isRenderEngine(PF_Boolean* isEngine) {
    return answerWith("PF_IsRenderEngine", isEngine, PF_Boolean{1});
}

PF_Err pickColor(const A_char*, const PF_PixelFloat*, PF_Boolean, PF_PixelFloat*) {
    return refuse("PF_AppColorPickerDialog");
}

PF_Err getMouse(PF_Point*) {
    return refuse("PF_GetMouse");
}

PF_Err invalidate(PF_ContextH, const PF_Rect*) {
    return nothingToDo("PF_InvalidateRect");
}

PF_Err localToGlobal(const PF_Point*, PF_Point*) {
    return refuse("PF_ConvertLocalToGlobal");
}

PF_Err colorAt(const PF_Point*, A_short, PF_EyeDropperSampleMode, PF_PixelFloat*) {
    return refuse("PF_GetColorAtGlobalPoint");
}

// The calls that every version has, in the order of their names.
template <typename Suite>
Suite appSuite() {
    auto suite = refusingSuite<Suite>();
    suite.PF_AppGetBgColor = getBackground;
    suite.PF_AppGetColor = getColor;
    suite.PF_GetPersonalInfo = getPersonalInfo;
    suite.PF_GetFontStyleSheet = getFont;
    suite.PF_SetCursor = setCursor;
    suite.PF_IsRenderEngine = isRenderEngine;
    suite.PF_AppColorPickerDialog = pickColor;
    suite.PF_GetMouse = getMouse;
    suite.PF_InvalidateRect = invalidate;
    suite.PF_ConvertLocalToGlobal = localToGlobal;
    suite.PF_GetColorAtGlobalPoint = colorAt;
    return suite;
}

template <typename Suite>
Suite appSuiteWithLanguage() {
    auto suite = appSuite<Suite>();
    suite.PF_AppGetLanguage = getLanguage;
    return suite;
}

PF_Err countChannels(PF_ProgPtr effectRef, PF_ParamIndex, A_long* count) {
    return answer("PF_GetLayerChannelCount", Caller::MainThread, effectRef, [&](Host&) -> PF_Err {
        if (count == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *count = 0;
        return PF_Err_NONE;
    });
}

PF_Err findNone(const char* callback, PF_ProgPtr effectRef, PF_Boolean* found) {
    return answer(callback, Caller::MainThread, effectRef, [&](Host&) -> PF_Err {
        if (found == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *found = 0;
        return PF_Err_NONE;
    });
}

PF_Err findChannelByIndex(PF_ProgPtr effectRef, PF_ParamIndex, PF_ChannelIndex, PF_Boolean* found,
                          PF_ChannelRef*, PF_ChannelDesc*) {
    return findNone("PF_GetLayerChannelIndexedRefAndDesc", effectRef, found);
}

PF_Err findChannelByType(PF_ProgPtr effectRef, PF_ParamIndex, PF_ChannelType, PF_Boolean* found,
                         PF_ChannelRef*, PF_ChannelDesc*) {
    return findNone("PF_GetLayerChannelTypedRefAndDesc", effectRef, found);
}

PF_Err checkoutChannel(PF_ProgPtr, PF_ChannelRefPtr, A_long, A_long, A_u_long, PF_DataType,
                       PF_ChannelChunk*) {
    return refuse("PF_CheckoutLayerChannel");
}

PF_Err checkinChannel(PF_ProgPtr, PF_ChannelRefPtr, PF_ChannelChunk*) {
    return refuse("PF_CheckinLayerChannel");
}

}  // namespace

std::span<const SuiteEntry> appSuites() {
    static auto app6 = appSuite<PF_AEAppSuite6>();
    static auto app7 = appSuiteWithLanguage<PF_AEAppSuite7>();
    static auto app1 = appSuiteWithLanguage<PF_AEAppSuite1>();
    static PF_ChannelSuite1 channels{countChannels, findChannelByIndex, findChannelByType, checkoutChannel,
                                     checkinChannel};
    static const SuiteEntry entries[] = {
        {"PF AE App Suite", 6, &app6},
        {"PF AE App Suite", 7, &app7},
        {"PF AE App Suite", 1, &app1},
        {"PF AE Channel Suite", 1, &channels},
    };
    return entries;
}

}  // namespace perch
