// The basic suite, and the suites that the framework asks for.

#include <algorithm>
#include <array>
#include <cstring>

#include "HostCallbacks.h"

namespace {

const auto kAegpEffect = reinterpret_cast<AEGP_EffectRefH>(std::uintptr_t{0xE1});
const auto kAegpStream = reinterpret_cast<AEGP_StreamRefH>(std::uintptr_t{0xE2});

struct SuiteEntry {
    const char* name;
    A_long version;
    const void* table;
};

struct Suites {
    PF_Iterate8Suite1 iterate8{};
    PF_ParamUtilsSuite1 paramUtils{};
    AEGP_UtilitySuite3 utility{};
    AEGP_PFInterfaceSuite1 pfInterface{};
    AEGP_StreamSuite1 stream{};
    AEGP_DynamicStreamSuite1 dynamicStream{};
    AEGP_EffectSuite1 effect{};
    std::array<SuiteEntry, 7> entries = {{{"PF Iterate8 Suite", 1, &iterate8},
                                          {"PF Param Utils Suite", 1, &paramUtils},
                                          {"AEGP Utility Suite", 7, &utility},
                                          {"AEGP PF Interface Suite", 1, &pfInterface},
                                          {"AEGP Stream Suite", 4, &stream},
                                          {"AEGP Dynamic Stream Suite", 1, &dynamicStream},
                                          {"AEGP Effect Suite", 1, &effect}}};

    Suites() {
        iterate8.iterate_generic = HostCallbacks::iterateGeneric;
        paramUtils.PF_UpdateParamUI = HostCallbacks::updateParamUI;
        utility.AEGP_RegisterWithAEGP = HostCallbacks::registerWithAEGP;
        pfInterface.AEGP_GetNewEffectForEffect = HostCallbacks::getNewEffect;
        stream.AEGP_GetNewEffectStreamByIndex = HostCallbacks::getNewStream;
        stream.AEGP_DisposeStream = HostCallbacks::disposeStream;
        dynamicStream.AEGP_SetDynamicStreamFlag = HostCallbacks::setStreamFlag;
        effect.AEGP_DisposeEffect = HostCallbacks::disposeEffect;
    }
};

}  // namespace

PF_Err HostCallbacks::updateParamUI(PF_ProgPtr ref, PF_ParamIndex index, const PF_ParamDef* def) {
    checkReference(ref, "PF_UpdateParamUI");
    theHost->uiUpdates.emplace_back(index, *def);
    return theHost->enter(Callback::kUpdateParamUI);
}

A_Err HostCallbacks::registerWithAEGP(AEGP_GlobalRefcon refcon, const A_char* name, AEGP_PluginID* id) {
    RecordingHost& host = *theHost;
    if (refcon != nullptr) host.fault("registered with a refcon");
    host.registeredNames.emplace_back(name);
    if (const PF_Err error = host.enter(Callback::kRegister)) return error;
    *id = RecordingHost::kPluginID;
    return PF_Err_NONE;
}

A_Err HostCallbacks::getNewEffect(AEGP_PluginID plugin, PF_ProgPtr ref, AEGP_EffectRefH* effect) {
    RecordingHost& host = *theHost;
    if (ref != kEffectRef) host.fault("AEGP_GetNewEffectForEffect with another effect reference");
    host.streamLog.push_back("new effect " + std::to_string(plugin));
    if (const PF_Err error = host.enter(Callback::kGetNewEffect)) return error;
    *effect = kAegpEffect;
    return PF_Err_NONE;
}

A_Err HostCallbacks::getNewStream(AEGP_PluginID plugin, AEGP_EffectRefH effect, PF_ParamIndex index,
                                  AEGP_StreamRefH* stream) {
    RecordingHost& host = *theHost;
    if (effect != kAegpEffect) host.fault("a stream of another effect");
    host.streamLog.push_back("new stream " + std::to_string(plugin) + " " + std::to_string(index));
    if (const PF_Err error = host.enter(Callback::kGetNewStream)) return error;
    *stream = kAegpStream;
    return PF_Err_NONE;
}

A_Err HostCallbacks::setStreamFlag(AEGP_StreamRefH stream, AEGP_DynStreamFlags flag, A_Boolean on) {
    RecordingHost& host = *theHost;
    if (stream != kAegpStream) host.fault("a flag of another stream");
    host.streamLog.push_back("flag " + std::to_string(flag) + " " + std::to_string(on));
    return host.enter(Callback::kSetStreamFlag);
}

A_Err HostCallbacks::disposeEffect(AEGP_EffectRefH effect) {
    RecordingHost& host = *theHost;
    if (effect != kAegpEffect) host.fault("another effect was disposed");
    host.streamLog.emplace_back("dispose effect");
    return host.enter(Callback::kDisposeEffect);
}

A_Err HostCallbacks::disposeStream(AEGP_StreamRefH stream) {
    RecordingHost& host = *theHost;
    if (stream != kAegpStream) host.fault("another stream was disposed");
    host.streamLog.emplace_back("dispose stream");
    return host.enter(Callback::kDisposeStream);
}

SPErr HostCallbacks::releaseSuite(const char* name, A_long version) {
    RecordingHost& host = *theHost;
    host.suiteLog.push_back("release " + std::string(name) + " " + std::to_string(version));
    if (--host.liveSuiteCount < 0) host.fault("more suites released than acquired");
    return host.enter(Callback::kReleaseSuite);
}

SPErr HostCallbacks::acquireSuite(const char* name, A_long version, const void** suite) {
    static Suites suites;  // a test may take a function away
    RecordingHost& host = *theHost;
    host.suiteLog.push_back("acquire " + std::string(name) + " " + std::to_string(version));
    if (const PF_Err error = host.enter(Callback::kAcquireSuite)) return error;
    const auto found = std::find_if(suites.entries.begin(), suites.entries.end(), [&](const SuiteEntry& e) {
        return std::strcmp(e.name, name) == 0 && e.version == version;
    });
    if (found == suites.entries.end() || host.missingSuites.contains(name)) return PF_Err_BAD_CALLBACK_PARAM;
    *suite = found->table;
    ++host.liveSuiteCount;
    return PF_Err_NONE;
}
