#include "SuiteLedger.h"

#include <fmt/format.h>

namespace perch {

void SuiteLedger::acquire(const std::string& name, std::int32_t version) {
    const std::lock_guard lock(mutex);
    ++held[{name, version}];
}

bool SuiteLedger::release(const std::string& name, std::int32_t version) {
    const std::lock_guard lock(mutex);
    const auto entry = held.find({name, version});
    if (entry == held.end() || entry->second == 0) {
        ledger.fault("ReleaseSuite",
                     fmt::format("\"{}\" version {} is released more often than acquired", name, version));
        return false;
    }
    --entry->second;
    return true;
}

void SuiteLedger::reportHeld() {
    const std::lock_guard lock(mutex);
    for (const auto& [suite, count] : held) {
        if (count == 0) continue;
        ledger.note("AcquireSuite", fmt::format("\"{}\" version {} is acquired {} more times than released",
                                                suite.first, suite.second, count));
    }
}

}  // namespace perch
