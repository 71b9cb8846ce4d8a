#include "ProcessWatch.h"

#if defined(__linux__)

#include <fmt/format.h>
#include <string.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>

namespace perch {
namespace {

namespace fs = std::filesystem;

// Threads take the name of the one that starts them: those that the program starts carry the first, also
// where they are started while the effect's code runs on another. Fifteen characters at most.
constexpr char kNameBetweenCommands[] = "perch";
constexpr char kNameDuringCommands[] = "perch-effect";

constexpr char kThreads[] = "/proc/self/task";

std::set<std::int32_t> threadsOfProcess() {
    std::set<std::int32_t> threads;
    std::error_code ignored;
    for (const fs::directory_entry& thread : fs::directory_iterator(kThreads, ignored))
        threads.insert(std::atoi(thread.path().filename().c_str()));
    return threads;
}

// Empty where it has ended.
std::string nameOfThread(std::int32_t thread) {
    std::string name;
    std::getline(std::ifstream(fs::path(kThreads) / std::to_string(thread) / "comm"), name);
    return name;
}

}  // namespace

ProcessWatch::ProcessWatch() : process(getpid()) {
#if defined(__SANITIZE_THREAD__)
    // The sanitizer starts a thread of its own with the program's first; it is not to be the effect's.
    std::thread([] {}).join();
#endif
    prctl(PR_SET_NAME, kNameDuringCommands);
    threadsBefore = threadsOfProcess();
}

void ProcessWatch::endIfCopied() const {
    if (getpid() != process) _exit(EXIT_SUCCESS);
}

void ProcessWatch::leaveLoading() {
    endIfCopied();
    prctl(PR_SET_NAME, kNameBetweenCommands);
}

void ProcessWatch::enterCommand() {
    prctl(PR_SET_NAME, kNameDuringCommands);
    for (int signal = 1; signal < SIGRTMIN; ++signal) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0) handlers[signal] = action;
    }
}

std::vector<std::string> ProcessWatch::leaveCommand() {
    prctl(PR_SET_NAME, kNameBetweenCommands);
    std::vector<std::string> changes;
    for (const auto& [signal, action] : handlers) {
        struct sigaction now {};
        if (sigaction(signal, nullptr, &now) != 0 || now.sa_handler == action.sa_handler) continue;
        sigaction(signal, &action, nullptr);
        changes.push_back(fmt::format("the handler of SIG{} was changed", sigabbrev_np(signal)));
    }
    return changes;
}

int ProcessWatch::countThreadsLeft(const std::set<std::int32_t>& workers) const {
    return static_cast<int>(std::ranges::count_if(threadsOfProcess(), [&](std::int32_t thread) {
        if (threadsBefore.contains(thread) || workers.contains(thread)) return false;
        const std::string name = nameOfThread(thread);
        return !name.empty() && name != kNameBetweenCommands;
    }));
}

}  // namespace perch

#else

namespace perch {

ProcessWatch::ProcessWatch() = default;

void ProcessWatch::endIfCopied() const {}

void ProcessWatch::leaveLoading() {}

void ProcessWatch::enterCommand() {}

std::vector<std::string> ProcessWatch::leaveCommand() {
    return {};
}

int ProcessWatch::countThreadsLeft(const std::set<std::int32_t>&) const {
    return 0;
}

}  // namespace perch

#endif
