// What only the system can tell of an effect: the handlers of signals, and the threads that it has started.
// On Linux; on other systems nothing is seen.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#if defined(__linux__)
#include <sys/types.h>

#include <csignal>
#include <map>
#endif

namespace perch {

class ProcessWatch {
public:
    // Before the effect's code is loaded: the threads that there are by then are not its own.
    ProcessWatch();
    // Its code is loaded, and no command under way.
    void leaveLoading();
    // After each command: a copy of the process that the effect has made does not go on with the host's work.
    void endIfCopied() const;
    void enterCommand();
    // Sets back what was changed, and names it.
    std::vector<std::string> leaveCommand();
    // Of those that the effect has started, whatever they call themselves; `workers` are the host's. Others
    // that the program starts beside the effect have the name of its first thread between commands.
    int countThreadsLeft(const std::set<std::int32_t>& workers) const;

private:
#if defined(__linux__)
    pid_t process;
    std::set<std::int32_t> threadsBefore;
    std::map<int, struct sigaction> handlers;  // by signal
#endif
};

}  // namespace perch
