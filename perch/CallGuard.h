// What every callback goes through: finds the host, checks the thread, injects failures, and lets no
// exception pass into the effect.
#pragma once

#include <exception>
#include <new>
#include <string>

#include "Host.h"
#include "PF_Values.h"

namespace perch {

// Where a callback may be called.
enum class Caller { MainThread, AnyThread };

// Notes the call. The code to answer with instead of serving it, or 0.
PF_Err enterCallback(Host* host, const char* callback, Caller caller);

// Serves a callback by `body`, a function from Host& to a code.
template <typename F>
PF_Err answer(const char* callback, Caller caller, const F& body) {
    Host* host = Host::current();
    if (const PF_Err refusal = enterCallback(host, callback, caller)) return refusal;
    try {
        return body(*host);
    } catch (const std::bad_alloc&) {
        return PF_Err_OUT_OF_MEMORY;
    } catch (const std::exception& failure) {
        host->ledger.fault(callback, failure.what());
        return PF_Err_BAD_CALLBACK_PARAM;
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
