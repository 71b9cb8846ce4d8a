// What only the system can tell of a command: the handlers of signals, and the threads that were started. On
// Linux; on other systems nothing is seen.
#pragma once

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
    ProcessWatch();
    // After each command: a copy of the process that the effect has made does not go on with the host's work.
    void endIfCopied() const;
    void enterCommand();
    // Sets back what was changed, and names it.
    std::vector<std::string> leaveCommand();
    // Of those that commands have started on their own thread.
    static int countThreadsLeft();

private:
#if defined(__linux__)
    const pid_t process;
    std::map<int, struct sigaction> handlers;  // by signal
#endif
};

}  // namespace perch
