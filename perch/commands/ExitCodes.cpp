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
    {kFailed, "failed for another reason, as where there is not enough memory"},
    {kWrongUse,
     "the command line is wrong, would replace what it reads or a file of another kind, or is likely wrong "
     "with --warnings-as-errors; nothing was done"},
    {kBadInput,
     "a file that is read is missing, damaged, or does not go with the others, or likely so with "
     "--warnings-as-errors"},
    {kBadOutput, "a file cannot be written, or must not be replaced"},
    {kNotLoaded, "there is no effect to load, or it cannot be loaded"},
    {kEffectFailed,
     "the effect answered with an error, cannot do what was asked, or broke a rule of check or --strict"},
    {kSomeFailed,
     "some frames failed, or were asked for by --frames-from and are not the job's; the others are done"},
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
