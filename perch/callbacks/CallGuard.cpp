#include "CallGuard.h"

#include <exception>
#include <new>

#include "Whereabouts.h"

namespace perch {

PF_Err enterCallback(Host* host, const char* callback, Caller caller) {
    if (host == nullptr) return PF_Err_INVALID_CALLBACK;
    noteCallback(callback);
    if (host->options.onCallback) host->options.onCallback(callback);
    if (caller == Caller::MainThread && !host->isMainThread())
        host->ledger.fault(callback,
                           "called from a worker thread; only the thread of the command may call it");
    return host->countCall(callback);
}

PF_Err codeOfException(const char* callback) noexcept {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return PF_Err_OUT_OF_MEMORY;
    } catch (const std::exception& failure) {
        try {
            if (Host* host = Host::current()) host->ledger.fault(callback, failure.what());
        } catch (...) {
            return PF_Err_OUT_OF_MEMORY;
        }
        return PF_Err_BAD_CALLBACK_PARAM;
    } catch (...) {
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
}

PF_Err refuse(const char* callback) {
    return answer(callback, Caller::AnyThread, [](Host&) -> PF_Err { return PF_Err_INVALID_CALLBACK; });
}

}  // namespace perch
