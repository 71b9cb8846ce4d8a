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

// Byte by byte: what lies between the fields of a copy need not be what lay there before.
template <typename T>
std::vector<std::byte> bytesOf(const T& table) {
    const auto* const first = reinterpret_cast<const std::byte*>(&table);
    return {first, first + sizeof table};
}

// True where it was changed.
template <typename T>
bool restore(const std::vector<std::byte>& bytes, T& table) {
    if (std::memcmp(&table, bytes.data(), sizeof table) == 0) return false;
    std::memcpy(&table, bytes.data(), sizeof table);
    return true;
}

std::filesystem::path currentFolder() {
    std::error_code unknown;
    return std::filesystem::current_path(unknown);
}

}  // namespace

ProcessGuard::ProcessGuard(Ledger& ledger, const CallbackTables& tables, ProcessWatch watch)
    : ledger(ledger),
      tables(tables),
      utilities(bytesOf(*tables.utilities)),
      suites(bytesOf(*tables.suites)),
      watch(std::move(watch)) {
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

void ProcessGuard::restoreTables() {
    const bool isOtherUtilities = restore(utilities, *tables.utilities);
    const bool isOtherSuites = restore(suites, *tables.suites);
    if (isOtherUtilities || isOtherSuites) ledger.fault("", "a table of callbacks was changed");
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
