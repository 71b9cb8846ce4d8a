// Memory handles. These callbacks name no host; without one they answer null.
#include "CallGuard.h"
#include "Callbacks.h"

namespace perch {
namespace {

// Serves a callback that answers a value instead of a code: `otherwise` when it is refused.
template <typename T, typename F>
T answerValue(const char* callback, T otherwise, const F& body) {
    T value = otherwise;
    const PF_Err code = answer(callback, Caller::MainThread, [&](Host& host) -> PF_Err {
        value = body(host);
        return PF_Err_NONE;
    });
    return code == PF_Err_NONE ? value : otherwise;
}

PF_Handle newHandle(A_u_longlong size) {
    return answerValue("host_new_handle", PF_Handle{},
                       [&](Host& host) { return host.handles.allocate(size); });
}

void* lockHandle(PF_Handle handle) {
    return answerValue("host_lock_handle", static_cast<void*>(nullptr),
                       [&](Host& host) { return host.handles.lock(handle); });
}

void unlockHandle(PF_Handle handle) {
    answer("host_unlock_handle", Caller::MainThread, [&](Host& host) -> PF_Err {
        host.handles.unlock(handle);
        return PF_Err_NONE;
    });
}

void disposeHandle(PF_Handle handle) {
    answer("host_dispose_handle", Caller::MainThread, [&](Host& host) -> PF_Err {
        host.handles.dispose(handle);
        return PF_Err_NONE;
    });
}

A_u_longlong handleSize(PF_Handle handle) {
    return answerValue("host_get_handle_size", A_u_longlong{0},
                       [&](Host& host) { return host.handles.size(handle); });
}

PF_Err resizeHandle(A_u_longlong size, PF_Handle* handle) {
    return answer("host_resize_handle", Caller::MainThread, [&](Host& host) -> PF_Err {
        return handle == nullptr ? PF_Err_BAD_CALLBACK_PARAM : host.handles.resize(size, *handle);
    });
}

}  // namespace

void fillHandleCallbacks(PF_UtilCallbacks& table) {
    table.host_new_handle = newHandle;
    table.host_lock_handle = lockHandle;
    table.host_unlock_handle = unlockHandle;
    table.host_dispose_handle = disposeHandle;
    table.host_get_handle_size = handleSize;
    table.host_resize_handle = resizeHandle;
}

}  // namespace perch
