#include "ProcessGuard.h"

#include <fmt/format.h>

#include <cfenv>
#include <chrono>
#include <cstring>
#include <system_error>
#include <thread>

namespace perch {
namespace {

template <typename T>
bool isSame(const T& a, const T& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

std::filesystem::path currentFolder() {
    std::error_code unknown;
    return std::filesystem::current_path(unknown);
}

}  // namespace

ProcessGuard::ProcessGuard(Ledger& ledger, const CallbackTables& tables)
    : ledger(ledger), tables(tables), utilities(*tables.utilities), suites(*tables.suites) {}

void ProcessGuard::enterCommand() {
    folder = currentFolder();
    rounding = std::fegetround();
    if (ledger.isStrict()) watch.enterCommand();
}

void ProcessGuard::leaveCommand() {
    watch.endIfCopied();
    restoreFolder();
    restoreRounding();
    restoreTables();
    if (!ledger.isStrict()) return;
    for (const std::string& change : watch.leaveCommand())
        ledger.fault("", change);
}

void ProcessGuard::restoreFolder() {
    if (currentFolder() == folder) return;
    std::error_code isGone;
    std::filesystem::current_path(folder, isGone);
    ledger.fault("", "the current folder was changed");
}

void ProcessGuard::restoreRounding() {
    if (std::fegetround() == rounding) return;
    std::fesetround(rounding);
    ledger.fault("", "the rounding mode was changed");
}

void ProcessGuard::restoreTables() {
    if (isSame(*tables.utilities, utilities) && isSame(*tables.suites, suites)) return;
    *tables.utilities = utilities;
    *tables.suites = suites;
    ledger.fault("", "a table of callbacks was changed");
}

void ProcessGuard::reportThreads() {
    if (!ledger.isStrict()) return;
    // One that was told to end may need a moment.
    constexpr int kMoments = 20;
    int count = ProcessWatch::countThreadsLeft();
    for (int i = 0; i < kMoments && count > 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        count = ProcessWatch::countThreadsLeft();
    }
    if (count > 0) ledger.fault("", fmt::format("{} of the effect's threads have not ended", count));
}

}  // namespace perch
