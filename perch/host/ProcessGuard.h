// What belongs to the whole process and an effect has to leave as it found it: the current folder, the
// rounding mode, the callback tables, the handlers of signals. What a command changed is set back after it,
// since the host and the next command would suffer, and strict mode tells of it. Handlers and threads are
// watched in strict mode alone.
#pragma once

#include <cstddef>
#include <filesystem>
#include <span>
#include <vector>

#include "CallbackTables.h"
#include "Ledger.h"
#include "ProcessWatch.h"
#include "WorkerPool.h"

namespace perch {

class ProcessGuard {
public:
    // `watch` was made before the effect was loaded.
    ProcessGuard(Ledger& ledger, const CallbackTables& tables, ProcessWatch watch);

    // Around each command, on its thread.
    void enterCommand();
    void leaveCommand();
    // Tells of the threads that the effect has started and that have not ended, after the last command.
    void reportThreads(const WorkerPool& pool);

private:
    void watchTable(std::span<std::byte> table);
    void restoreFolder();
    void restoreRounding();
    void restoreTables();

    struct WatchedTable {
        std::span<std::byte> place;
        std::vector<std::byte> bytes;  // as they were
    };

    Ledger& ledger;
    std::vector<WatchedTable> tables;
    std::filesystem::path folder;
    int rounding = 0;
    ProcessWatch watch;
};

}  // namespace perch
