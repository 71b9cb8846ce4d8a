// The command line of `perch render`: its own options, and one for each parameter of the effect. Its own are
// understood before the effect is loaded, as they say which it is.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "JobOptions.h"
#include "ParameterArguments.h"
#include "ParameterOptions.h"
#include "RenderJob.h"

namespace CLI {
class App;
}

namespace perch {

// What the effect is loaded with.
struct LoadOptions {
    std::filesystem::path plugin;  // empty: the one beside the program
    int threads = 0;               // 0: one per processor
    bool strict = false;
    A_AppID application = kPerchApplication;  // that the host goes by
};

// What is done with the plan of a job.
enum class PlanUse { Render, PrintText, PrintJson };

struct RenderOptions {
    bool wantsHelp = false;  // then only load.plugin and frameLimit are set
    bool wantsTiming = false;
    bool hasProvenance = true;  // files written tell what made them
    bool areWarningsErrors = false;
    std::chrono::nanoseconds frameLimit{0};  // that the effect may take for one command; 0: any time
    PlanUse use = PlanUse::Render;
    LoadOptions load;
    PictureNames names;
    RenderSettings settings;
    JobOptions job;
    std::optional<std::int64_t> memory;      // for pictures, in bytes
    std::vector<std::string> idleOptions{};  // sentences, of those that do nothing for such an output
    std::set<std::string> given;             // options that the command line has, without their dashes
};

// The names of the command's own options, which no parameter's option takes.
const std::vector<std::string>& renderOptionNames();

// The options of an effect's parameters, named around the command's own.
std::vector<ParameterOption> optionsOf(const std::vector<Parameter>& parameters);

// Each reads its own part of the whole command line. Both throw UsageError, with the range or the items that
// were expected, or the nearest name; what belongs to neither part is refused by the second.
RenderOptions parseRenderOptions(const std::vector<std::string>& arguments);
ParameterArguments parseParameterArguments(const std::vector<std::string>& arguments,
                                           const std::vector<Parameter>& parameters);

// A command line taken apart: each of its options once, without --preset and the values of parameters; and
// what it says of layers.
struct CommandParts {
    std::vector<std::string> words;
    std::vector<LayerWords> layers;  // those that are given
};
CommandParts commandParts(const std::vector<std::string>& arguments,
                          const std::vector<Parameter>& parameters);

// Those of the options that change pixels beside the effect's parameters and the ranges of layers, as they
// are given, with a space before each.
std::string pixelOptions(const std::vector<std::string>& arguments);

// What --help prints of a command that takes them beside the options that `app` has, except `refused`;
// without an effect, no parameters.
std::string helpWithRenderOptions(CLI::App& app, const EffectDescription* effect,
                                  std::span<const char* const> refused);

}  // namespace perch
