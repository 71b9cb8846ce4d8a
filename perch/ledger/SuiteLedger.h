// How often each suite was acquired and released. Safe to call from any thread.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "Ledger.h"

namespace perch {

class SuiteLedger {
public:
    explicit SuiteLedger(Ledger& ledger) : ledger(ledger) {}

    void acquire(const std::string& name, std::int32_t version);
    // False when the suite is not held.
    bool release(const std::string& name, std::int32_t version);
    void reportHeld();

private:
    Ledger& ledger;
    std::mutex mutex;
    std::map<std::pair<std::string, std::int32_t>, int> held;
};

}  // namespace perch
