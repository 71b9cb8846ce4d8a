#include "SuiteHandler.h"

namespace AELib {

SuiteHandler* gSuites = nullptr;

namespace {

struct SuiteName {
    const char* name;
    int version;
};

// In the order of the slots.
constexpr SuiteName kAcquired[] = {
    {"PF Iterate8 Suite", 1},       {"PF Param Utils Suite", 1}, {"AEGP Utility Suite", 7},
    {"AEGP PF Interface Suite", 1}, {"AEGP Stream Suite", 4},    {"AEGP Dynamic Stream Suite", 1},
    {"AEGP Effect Suite", 1},
};

// Deliberate: the slot of "PF Param Utils Suite" is released under another suite's name.
// Pinned by SuiteHandlerTest.ParamUtilsIsReleasedAsPathData.
constexpr SuiteName kReleased[] = {
    {"PF Iterate8 Suite", 1},       {"PF Path Data Suite", 1}, {"AEGP Utility Suite", 7},
    {"AEGP PF Interface Suite", 1}, {"AEGP Stream Suite", 4},  {"AEGP Dynamic Stream Suite", 1},
    {"AEGP Effect Suite", 1},
};

}  // namespace

AEGP_SuiteHandler::AEGP_SuiteHandler(const SPBasicSuite* basic) : basic(basic) {
    if (basic == nullptr || basic->AcquireSuite == nullptr || basic->ReleaseSuite == nullptr)
        MissingSuiteError();
}

AEGP_SuiteHandler::~AEGP_SuiteHandler() {
    ReleaseAllSuites();
}

template <class Suite>
const Suite* AEGP_SuiteHandler::suite(Slot slot) {
    if (slots[slot] == nullptr) slots[slot] = LoadSuite(kAcquired[slot].name, kAcquired[slot].version);
    return static_cast<const Suite*>(slots[slot]);
}

const PF_Iterate8Suite1* AEGP_SuiteHandler::iterate8() {
    return suite<PF_Iterate8Suite1>(kIterate8);
}
const PF_ParamUtilsSuite1* AEGP_SuiteHandler::paramUtils() {
    return suite<PF_ParamUtilsSuite1>(kParamUtils);
}
const AEGP_UtilitySuite3* AEGP_SuiteHandler::utility() {
    return suite<AEGP_UtilitySuite3>(kUtility);
}
const AEGP_PFInterfaceSuite1* AEGP_SuiteHandler::pfInterface() {
    return suite<AEGP_PFInterfaceSuite1>(kPFInterface);
}
const AEGP_StreamSuite1* AEGP_SuiteHandler::stream() {
    return suite<AEGP_StreamSuite1>(kStream);
}
const AEGP_DynamicStreamSuite1* AEGP_SuiteHandler::dynamicStream() {
    return suite<AEGP_DynamicStreamSuite1>(kDynamicStream);
}
const AEGP_EffectSuite1* AEGP_SuiteHandler::effect() {
    return suite<AEGP_EffectSuite1>(kEffect);
}

const PF_Iterate8Suite1* AEGP_SuiteHandler::iterate8OrNull() {
    if (slots[kIterate8] == nullptr)
        slots[kIterate8] = tryLoad(kAcquired[kIterate8].name, kAcquired[kIterate8].version);
    return static_cast<const PF_Iterate8Suite1*>(slots[kIterate8]);
}

const void* AEGP_SuiteHandler::tryLoad(const char* name, int version) {
    const void* table = nullptr;
    return basic->AcquireSuite(name, version, &table) == 0 ? table : nullptr;
}

const void* AEGP_SuiteHandler::LoadSuite(const char* name, int version) {
    const void* const table = tryLoad(name, version);
    if (table == nullptr) MissingSuiteError();
    return table;
}

void AEGP_SuiteHandler::ReleaseSuite(const char* name, long version) {
    basic->ReleaseSuite(name, static_cast<A_long>(version));
}

void AEGP_SuiteHandler::ReleaseAllSuites() {
    for (std::size_t slot = 0; slot < std::size(kReleased); ++slot) {
        if (slots[slot] == nullptr) continue;
        ReleaseSuite(kReleased[slot].name, kReleased[slot].version);
        slots[slot] = nullptr;
    }
}

void AEGP_SuiteHandler::MissingSuiteError() {
    throw 512L;
}

}  // namespace AELib
