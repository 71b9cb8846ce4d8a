// What belongs to the whole process and an effect has to leave as it found it: the current folder, the
// rounding mode, the callback tables, the handlers of signals. What a command changed is set back after it,
// since the host and the next command would suffer, and strict mode tells of it. Handlers and threads are
// watched in strict mode alone.
#pragma once

#include <filesystem>

#include "CallbackTables.h"
#include "Ledger.h"
#include "ProcessWatch.h"

namespace perch {

class ProcessGuard {
public:
    ProcessGuard(Ledger& ledger, const CallbackTables& tables);

    // Around each command, on its thread.
    void enterCommand();
    void leaveCommand();
    // Tells of the threads that commands have started on their thread and that have not ended, after the last
    // one.
    void reportThreads();

private:
    void restoreFolder();
    void restoreRounding();
    void restoreTables();

    Ledger& ledger;
    const CallbackTables tables;
    const PF_UtilCallbacks utilities;
    const SPBasicSuite suites;
    std::filesystem::path folder;
    int rounding = 0;
    ProcessWatch watch;
};

}  // namespace perch
