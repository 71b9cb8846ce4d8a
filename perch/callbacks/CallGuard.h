// What every callback goes through: finds the host, checks the thread, injects failures, and lets no
// exception pass into the effect.
#pragma once

#include "Host.h"
#include "PF_Values.h"

namespace perch {

// Where a callback may be called.
enum class Caller { MainThread, AnyThread };

// Notes the call. The code to answer with instead of serving it, or 0.
PF_Err enterCallback(Host* host, const char* callback, Caller caller);

// The code for the exception under way, which is noted where there is memory for it.
PF_Err codeOfException(const char* callback) noexcept;

// Serves a callback by `body`, a function from Host& to a code.
template <typename F>
PF_Err answer(const char* callback, Caller caller, const F& body) {
    try {
        Host* host = Host::current();
        if (const PF_Err refusal = enterCallback(host, callback, caller)) return refusal;
        return body(*host);
    } catch (...) {
        return codeOfException(callback);
    }
}

// The same where the first argument is the effect reference, which must be the host's own.
template <typename F>
PF_Err answer(const char* callback, Caller caller, PF_ProgPtr effectRef, const F& body) {
    return answer(callback, caller, [&](Host& host) -> PF_Err {
        if (effectRef != host.token()) {
            host.ledger.fault(callback, "the effect reference is not that of the call");
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        return body(host);
    });
}

// A callback that this host does not offer.
PF_Err refuse(const char* callback);

}  // namespace perch
