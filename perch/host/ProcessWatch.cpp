#include "ProcessWatch.h"

#if defined(__linux__)

#include <fmt/format.h>
#include <string.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>

namespace perch {
namespace {

// Threads take the name of the one that starts them: those of the effect carry this one. Fifteen characters
// at most.
constexpr char kNameDuringCommands[] = "perch-effect";

}  // namespace

ProcessWatch::ProcessWatch() : process(getpid()) {
#if defined(__SANITIZE_THREAD__)
    // The sanitizer starts a thread of its own with the program's first; it is not to be the effect's.
    std::thread([] {}).join();
#endif
}

void ProcessWatch::endIfCopied() const {
    if (getpid() != process) _exit(EXIT_SUCCESS);
}

void ProcessWatch::enterCommand() {
    prctl(PR_SET_NAME, kNameDuringCommands);
    for (int signal = 1; signal < SIGRTMIN; ++signal) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0) handlers[signal] = action;
    }
}

std::vector<std::string> ProcessWatch::leaveCommand() {
    prctl(PR_SET_NAME, "perch");
    std::vector<std::string> changes;
    for (const auto& [signal, action] : handlers) {
        struct sigaction now {};
        if (sigaction(signal, nullptr, &now) != 0 || now.sa_handler == action.sa_handler) continue;
        sigaction(signal, &action, nullptr);
        changes.push_back(fmt::format("the handler of SIG{} was changed", sigabbrev_np(signal)));
    }
    return changes;
}

int ProcessWatch::countThreadsLeft() {
    namespace fs = std::filesystem;
    int count = 0;
    std::error_code ignored;
    for (const fs::directory_entry& task : fs::directory_iterator("/proc/self/task", ignored)) {
        std::string name;
        if (std::ifstream(task.path() / "comm") >> name && name == kNameDuringCommands) ++count;
    }
    return count;
}

}  // namespace perch

#else

namespace perch {

ProcessWatch::ProcessWatch() = default;

void ProcessWatch::endIfCopied() const {}

void ProcessWatch::enterCommand() {}

std::vector<std::string> ProcessWatch::leaveCommand() {
    return {};
}

int ProcessWatch::countThreadsLeft() {
    return 0;
}

}  // namespace perch

#endif
