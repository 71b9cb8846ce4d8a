#include "WorkerEnd.h"

#include <fmt/format.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>

#include "EffectEnd.h"

namespace perch {
namespace {

std::string signalText(int signal) {
    const char* const name = sigabbrev_np(signal);
    const char* const meaning = sigdescr_np(signal);
    return fmt::format("SIG{}: {}", name != nullptr ? name : std::to_string(signal),
                       meaning != nullptr ? meaning : "unknown");
}

}  // namespace

std::string describeWorkerEnd(const Whereabouts& at, int waitStatus) {
    const bool isSignalled = WIFSIGNALED(waitStatus);
    const std::string detail =
        isSignalled ? signalText(WTERMSIG(waitStatus)) : fmt::format("exit code {}", WEXITSTATUS(waitStatus));
    if (at.effect.get().empty())
        return fmt::format("the program ended before an effect was loaded ({})", detail);
    return describeEffectEnd(at, isSignalled ? "crashed" : "ended the program", detail);
}

}  // namespace perch
