#include "CallGuard.h"

namespace perch {

PF_Err enterCallback(Host* host, const char* callback, Caller caller) {
    if (host == nullptr) return PF_Err_INVALID_CALLBACK;
    if (host->options.onCallback) host->options.onCallback(callback);
    if (caller == Caller::MainThread && !host->isMainThread())
        host->ledger.fault(callback,
                           "called from a worker thread; only the thread of the command may call it");
    return host->countCall(callback);
}

PF_Err refuse(const char* callback) {
    return answer(callback, Caller::AnyThread, [](Host&) -> PF_Err { return PF_Err_INVALID_CALLBACK; });
}

}  // namespace perch
