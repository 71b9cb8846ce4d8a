#include "Child.h"

#include <fmt/format.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <thread>

#include "Error.h"

namespace perch {
namespace {

constexpr std::chrono::milliseconds kTick{10};
constexpr int kPatience = 100;                 // milliseconds between looks at a child that writes nothing
constexpr std::size_t kLongestLine = 1 << 16;  // longer ones are cut
constexpr std::size_t kPipeSize = 1 << 16;     // what a process has written when it ends

}  // namespace

pid_t startChild(const std::string& program, std::vector<std::string> words,
                 const PassedDescriptors& descriptors) {
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setsigmask(&attributes, &none);
    // A shell has what it starts in the background ignore the first; the server's own reach the child.
    sigset_t usual = none;
    for (const int signal : {SIGINT, SIGHUP})
        sigaddset(&usual, signal);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    int last = STDERR_FILENO;
    // The same number twice has the descriptor outlive the execution.
    for (const auto& [ours, childs] : descriptors) {
        posix_spawn_file_actions_adddup2(&files, ours, childs);
        last = std::max(last, childs);
    }
    posix_spawn_file_actions_addclosefrom_np(&files, last + 1);
    pid_t child = -1;
    const int error = posix_spawnp(&child, program.c_str(), &files, &attributes, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    if (error != 0)
        throw Error(
            fmt::format("cannot start \"{}\": {}", words.front(), std::generic_category().message(error)));
    return child;
}

Child::Child(const std::string& program, std::vector<std::string> words, const PassedDescriptors& descriptors)
    : process(startChild(program, std::move(words), descriptors)) {}

bool Child::signal(int number) {
    const std::lock_guard lock(mutex);
    return !isWaitedFor && kill(process, number) == 0;
}

bool Child::hasEnded() {
    const std::lock_guard lock(mutex);
    if (isWaitedFor) return true;
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           info.si_pid != 0;
}

void Child::end(std::initializer_list<int> signals, std::chrono::milliseconds grace) {
    const auto obeys = [&](int number) {
        if (!signal(number)) return true;
        for (std::chrono::milliseconds time{0}; time < grace; time += kTick) {
            if (hasEnded()) return true;
            std::this_thread::sleep_for(kTick);
        }
        return false;
    };
    if (std::ranges::none_of(signals, obeys)) signal(SIGKILL);
}

int Child::wait() {
    // Its number stays its own until it is waited for, which nobody may do while it is signalled.
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    const std::lock_guard lock(mutex);
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    isWaitedFor = true;
    return status;
}

void takeLines(int descriptor, Child& child, const std::function<void(const std::string&)>& take) {
    std::string line;
    char buffer[4096];
    for (std::size_t late = 0; late <= kPipeSize;) {
        pollfd there{descriptor, POLLIN, 0};
        const bool hasEnded = child.hasEnded();
        if (poll(&there, 1, kPatience) == 0) {
            if (hasEnded) break;
            continue;
        }
        const ssize_t size = read(descriptor, buffer, sizeof buffer);
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) break;
        if (hasEnded) late += static_cast<std::size_t>(size);
        for (const char c : std::string_view(buffer, static_cast<std::size_t>(size))) {
            if (c != '\n') line += c;
            if (c != '\n' && line.size() < kLongestLine) continue;
            take(line);
            line.clear();
        }
    }
    if (!line.empty()) take(line);
}

}  // namespace perch
