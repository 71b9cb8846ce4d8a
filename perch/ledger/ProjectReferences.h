// Tokens for effects and parameter streams that the effect asks for through the project suites.
#pragma once

#include <map>
#include <mutex>
#include <optional>

#include "Ledger.h"
#include "PF_Types.h"

namespace perch {

class ProjectReferences {
public:
    explicit ProjectReferences(Ledger& ledger) : ledger(ledger) {}

    AEGP_PluginID registerPlugin();
    bool isRegistered(AEGP_PluginID plugin);

    AEGP_EffectRefH newEffect();
    bool isEffect(AEGP_EffectRefH effect);
    PF_Err disposeEffect(AEGP_EffectRefH effect);

    AEGP_StreamRefH newStream(PF_ParamIndex parameter);
    // The parameter behind a stream; absent for an unknown stream.
    std::optional<PF_ParamIndex> streamParameter(AEGP_StreamRefH stream);
    PF_Err disposeStream(AEGP_StreamRefH stream);

    void reportLeaks();

private:
    // Tokens are numbers that are no addresses; they are never used twice.
    template <typename T>
    T nextToken();

    Ledger& ledger;
    std::mutex mutex;
    A_u_longlong lastToken = 0;
    AEGP_PluginID lastPlugin = 0;
    std::map<AEGP_EffectRefH, bool> effects;  // false once disposed
    struct Stream {
        PF_ParamIndex parameter = 0;
        bool isLive = true;
    };
    std::map<AEGP_StreamRefH, Stream> streams;
};

}  // namespace perch
