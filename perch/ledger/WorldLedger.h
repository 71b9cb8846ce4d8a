// The worlds that an effect has asked for. Unknown and disposed worlds are refused, never followed.
// Safe to call from any thread.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <set>

#include "Ledger.h"
#include "PF_World.h"
#include "World.h"

namespace perch {

// Of rows, in bytes: in strict mode a few pixels, so that an effect that ignores rowbytes is found out.
std::int32_t rowPaddingFor(const Ledger& ledger, PixelDepth depth);

class WorldLedger {
public:
    explicit WorldLedger(Ledger& ledger) : ledger(ledger) {}

    PF_Err allocate(std::int32_t width, std::int32_t height, PixelDepth depth, PF_EffectWorld& world,
                    const char* callback);
    // Empties the record.
    PF_Err dispose(PF_EffectWorld* world, const char* callback);

    // Reports the worlds that outlived their command, each once. They stay valid: hosts put up with it.
    void reportOpen();

private:
    struct Entry {
        std::unique_ptr<World> world;
        bool isReported = false;
    };

    Ledger& ledger;
    std::mutex mutex;
    std::map<const void*, Entry> worlds;  // by pixel address
    std::set<const void*> disposed;       // addresses once in use and not since
};

}  // namespace perch
