// The parameters that the effect has checked out and not yet checked in. A layer's picture is handed out as a
// private copy in strict mode, so that writing to it, beside it or after the check-in shows.
// Safe to call from any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "Ledger.h"
#include "PF_Params.h"
#include "World.h"

namespace perch {

class Checkouts {
public:
    explicit Checkouts(Ledger& ledger) : ledger(ledger) {}

    // Fills `param` with `value`, and with the pixels of `picture` unless that is null.
    void checkOut(PF_ParamIndex index, const PF_ParamDef& value, const World* picture, PF_ParamDef& param);
    // A checkout that failed is balanced like any other.
    void checkOutFailed(PF_ParamIndex index, PF_ParamDef* param);
    PF_Err checkIn(PF_ParamDef* param);

    // Reports what is still out, and takes it back.
    void reportOpen();

private:
    struct Entry {
        PF_ParamIndex index = 0;
        const PF_ParamDef* param = nullptr;  // where the effect had it filled
        PF_ParamDef handedOut{};
        std::unique_ptr<World> copy;
        std::uint64_t checksum = 0;  // of the copy when it was handed out
        bool hasFailed = false;
    };

    void checkPixels(const Entry& entry, const char* callback);

    Ledger& ledger;
    std::mutex mutex;
    std::vector<Entry> entries;
};

}  // namespace perch
