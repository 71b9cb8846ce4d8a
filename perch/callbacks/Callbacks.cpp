// The utility table: its families put together, and what this host does not offer.
#include "Callbacks.h"

#include "CallGuard.h"

namespace perch {
namespace {

PF_Err getCallbackAddress(PF_ProgPtr, PF_Quality, PF_ModeFlags, PF_CallbackID, PF_CallbackFunc* function) {
    if (function != nullptr) *function = nullptr;
    return refuse("get_callback_addr");
}

PF_Err app(PF_ProgPtr, A_long, ...) {
    return refuse("app");
}

PF_Err getPlatformData(PF_ProgPtr, PF_PlatDataID, void*) {
    return refuse("get_platform_data");
}

PF_Err getBatchFunction() {
    return refuse("get_batch_func_is_deprecated");
}

PF_UtilCallbacks makeTable() {
    PF_UtilCallbacks table{};
    fillSamplingCallbacks(table);
    fillPixelCallbacks(table);
    fillWorldCallbacks(table);
    fillIterateCallbacks(table);
    fillHandleCallbacks(table);
    table.ansi = ansiCallbacks();
    table.get_callback_addr = getCallbackAddress;
    table.app = app;
    table.get_platform_data = getPlatformData;
    table.get_batch_func_is_deprecated = reinterpret_cast<void*>(getBatchFunction);
    return table;
}

}  // namespace

PF_UtilCallbacks* utilityCallbacks() {
    static PF_UtilCallbacks table = makeTable();
    return &table;
}

}  // namespace perch
