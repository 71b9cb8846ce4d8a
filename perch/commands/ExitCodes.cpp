#include "ExitCodes.h"

#include <fmt/format.h>

#include <csignal>

#include "ExitStatus.h"

namespace perch {
namespace {

struct ExitCode {
    int code;
    const char* meaning;
};

constexpr ExitCode kExitCodes[] = {
    {kDone, "done"},
    {kFailed, "failed, or strict mode found a fault"},
    {kWrongUse, "wrong use of the command line; nothing was done"},
    {kSomeFailed, "some frames failed, with --on-error continue; the others are done"},
    {kEffectBroke, "the effect crashed, ended the program, let an exception out, or did not come back"},
    {kSignalled + SIGHUP, "ended by SIGHUP; finished frames stay"},
    {kInterrupted, "interrupted by SIGINT; finished frames stay"},
    {kSignalled + SIGQUIT, "ended by SIGQUIT; finished frames stay"},
    {kTerminated, "interrupted by SIGTERM; finished frames stay"},
};

}  // namespace

std::string exitCodesText() {
    std::string text;
    for (const auto& [code, meaning] : kExitCodes)
        text += fmt::format("  {:<10}{}\n", code, meaning);
    return text;
}

}  // namespace perch
