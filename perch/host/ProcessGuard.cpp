#include "ProcessGuard.h"

#include <fmt/format.h>

#include <cfenv>
#include <chrono>
#include <cstring>
#include <system_error>
#include <thread>
#include <utility>

namespace perch {
namespace {

std::filesystem::path currentFolder() {
    std::error_code unknown;
    return std::filesystem::current_path(unknown);
}

}  // namespace

ProcessGuard::ProcessGuard(Ledger& ledger, const CallbackTables& tables, ProcessWatch watch)
    : ledger(ledger), watch(std::move(watch)) {
    watchTable(std::as_writable_bytes(std::span(tables.utilities, 1)));
    watchTable(std::as_writable_bytes(std::span(tables.suites, 1)));
    for (const std::span<std::byte> table : tables.suiteTables)
        watchTable(table);
    this->watch.leaveLoading();
}

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

// Byte by byte: what lies between the fields of a copy need not be what lay there before.
void ProcessGuard::watchTable(std::span<std::byte> table) {
    tables.push_back({table, {table.begin(), table.end()}});
}

void ProcessGuard::restoreTables() {
    bool isChanged = false;
    for (const WatchedTable& table : tables) {
        if (std::memcmp(table.place.data(), table.bytes.data(), table.bytes.size()) == 0) continue;
        std::memcpy(table.place.data(), table.bytes.data(), table.bytes.size());
        isChanged = true;
    }
    if (isChanged) ledger.fault("", "a table of callbacks was changed");
}

void ProcessGuard::reportThreads(const WorkerPool& pool) {
    if (!ledger.isStrict()) return;
    // One that was told to end may need a moment.
    constexpr int kMoments = 20;
    int count = watch.countThreadsLeft(pool.systemThreads());
    for (int i = 0; i < kMoments && count > 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        count = watch.countThreadsLeft(pool.systemThreads());
    }
    if (count > 0) ledger.fault("", fmt::format("threads of the effect that have not ended: {}", count));
}

}  // namespace perch
