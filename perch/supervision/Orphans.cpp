#include "Orphans.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <string>
#include <thread>

namespace perch {
namespace {

// Of this thread, which starts the worker and is the first of the process.
std::set<pid_t> children() {
    std::set<pid_t> all;
    std::ifstream list("/proc/self/task/" + std::to_string(getpid()) + "/children");
    for (pid_t child = 0; list >> child;)
        all.insert(child);
    return all;
}

}  // namespace

Orphans::Orphans() : others(children()) {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

void Orphans::end() const {
    // One that ends leaves its own children to this process. A process that the system cannot end is left.
    constexpr int kMostRounds = 200;
    for (int round = 0; round < kMostRounds; ++round) {
        bool isAnyLeft = false;
        for (const pid_t child : children()) {
            if (others.contains(child)) continue;
            isAnyLeft = true;
            kill(child, SIGKILL);
            waitpid(child, nullptr, WNOHANG);
        }
        if (!isAnyLeft) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

}  // namespace perch
