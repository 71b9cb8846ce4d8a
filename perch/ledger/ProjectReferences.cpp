#include "ProjectReferences.h"

#include <cstdint>
#include <string>

#include "PF_Values.h"

namespace perch {
namespace {

// Odd, so that a token read as an address is found out.
constexpr std::uintptr_t kTokenStep = 16;
constexpr std::uintptr_t kTokenMark = 1;

const char* const kEffectDisposer = "AEGP_DisposeEffect";
const char* const kStreamDisposer = "AEGP_DisposeStream";

}  // namespace

template <typename T>
T ProjectReferences::nextToken() {
    ++lastToken;
    return reinterpret_cast<T>(static_cast<std::uintptr_t>(lastToken) * kTokenStep + kTokenMark);
}

AEGP_PluginID ProjectReferences::registerPlugin() {
    const std::lock_guard lock(mutex);
    return ++lastPlugin;
}

bool ProjectReferences::isRegistered(AEGP_PluginID plugin) {
    const std::lock_guard lock(mutex);
    return plugin >= 1 && plugin <= lastPlugin;
}

AEGP_EffectRefH ProjectReferences::newEffect() {
    const std::lock_guard lock(mutex);
    const auto effect = nextToken<AEGP_EffectRefH>();
    effects.emplace(effect, true);
    return effect;
}

bool ProjectReferences::isEffect(AEGP_EffectRefH effect) {
    const std::lock_guard lock(mutex);
    const auto entry = effects.find(effect);
    return entry != effects.end() && entry->second;
}

PF_Err ProjectReferences::disposeEffect(AEGP_EffectRefH effect) {
    const std::lock_guard lock(mutex);
    const auto entry = effects.find(effect);
    if (entry == effects.end() || !entry->second) {
        ledger.fault(kEffectDisposer, entry == effects.end()
                                          ? "the effect reference is not one of the host's"
                                          : "the effect reference has been disposed before");
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    entry->second = false;
    return PF_Err_NONE;
}

AEGP_StreamRefH ProjectReferences::newStream(PF_ParamIndex parameter) {
    const std::lock_guard lock(mutex);
    const auto stream = nextToken<AEGP_StreamRefH>();
    streams.emplace(stream, Stream{parameter, true});
    return stream;
}

std::optional<PF_ParamIndex> ProjectReferences::streamParameter(AEGP_StreamRefH stream) {
    const std::lock_guard lock(mutex);
    const auto entry = streams.find(stream);
    if (entry == streams.end() || !entry->second.isLive) return std::nullopt;
    return entry->second.parameter;
}

PF_Err ProjectReferences::disposeStream(AEGP_StreamRefH stream) {
    const std::lock_guard lock(mutex);
    const auto entry = streams.find(stream);
    if (entry == streams.end() || !entry->second.isLive) {
        ledger.fault(kStreamDisposer, entry == streams.end() ? "the stream is not one of the host's"
                                                             : "the stream has been disposed before");
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    entry->second.isLive = false;
    return PF_Err_NONE;
}

void ProjectReferences::reportLeaks() {
    const std::lock_guard lock(mutex);
    for (const auto& [effect, isLive] : effects)
        if (isLive) ledger.fault("AEGP_GetNewEffectForEffect", "an effect reference was never disposed");
    for (const auto& [token, stream] : streams)
        if (stream.isLive) ledger.fault("AEGP_GetNewEffectStreamByIndex", "a stream was never disposed");
}

}  // namespace perch
