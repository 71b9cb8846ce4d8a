// What only the system can tell of a command: the handlers of signals, and the threads that were started. On
// Linux; on other systems nothing is seen.
#pragma once

#include <string>
#include <vector>

#if defined(__linux__)
#include <csignal>
#include <map>
#endif

namespace perch {

class ProcessWatch {
public:
    void enterCommand();
    // Sets back what was changed, and names it.
    std::vector<std::string> leaveCommand();
    // Of those that commands have started on their own thread.
    static int countThreadsLeft();

private:
#if defined(__linux__)
    std::map<int, struct sigaction> handlers;  // by signal
#endif
};

}  // namespace perch
