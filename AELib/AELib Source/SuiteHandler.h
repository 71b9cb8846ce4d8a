// The cache of host suites: each is acquired on first use, at most once, and kept until the handler is
// destroyed.
//
// One handler lives from the first call that carries a basic suite to global set-down. For the thread that
// entered the plug-in. A suite that the host cannot supply is a missing-suite error.
#pragma once

#include <array>
#include <cstddef>

#include "AEGP_Suites.h"
#include "PF_Suites.h"
#include "SP_Basic.h"

namespace AELib {

class AEGP_SuiteHandler {
public:
    // `basic` is the host's and outlives the handler; null, or one without functions, is a missing-suite
    // error.
    explicit AEGP_SuiteHandler(const SPBasicSuite* basic);
    ~AEGP_SuiteHandler();
    AEGP_SuiteHandler(const AEGP_SuiteHandler&) = delete;
    AEGP_SuiteHandler& operator=(const AEGP_SuiteHandler&) = delete;

    const PF_Iterate8Suite1* iterate8();
    const PF_ParamUtilsSuite1* paramUtils();
    const AEGP_UtilitySuite3* utility();
    const AEGP_PFInterfaceSuite1* pfInterface();
    const AEGP_StreamSuite1* stream();
    const AEGP_DynamicStreamSuite1* dynamicStream();
    const AEGP_EffectSuite1* effect();

    // As iterate8(), but null where the host does not offer the suite.
    const PF_Iterate8Suite1* iterate8OrNull();

    // The function table; never null. The caller keeps it in the suite's slot.
    const void* LoadSuite(const char* name, int version);
    void ReleaseSuite(const char* name, long version);
    void ReleaseAllSuites();

    // Throws 512 as a long, which reaches the host as the error for damaged internal state.
    [[noreturn]] static void MissingSuiteError();

private:
    // One slot per suite and version of the host; the framework fills those that have a name here.
    static constexpr std::size_t kSlots = 88;
    enum Slot : std::size_t {
        kIterate8,
        kParamUtils,
        kUtility,
        kPFInterface,
        kStream,
        kDynamicStream,
        kEffect,
    };

    const void* tryLoad(const char* name, int version);
    template <class Suite>
    const Suite* suite(Slot slot);

    const SPBasicSuite* basic;
    std::array<const void*, kSlots> slots{};
};

class SuiteHandler : public AEGP_SuiteHandler {
public:
    using AEGP_SuiteHandler::AEGP_SuiteHandler;
};

// The one handler of the process; null before the first call with a basic suite and after global set-down.
extern SuiteHandler* gSuites;

}  // namespace AELib
