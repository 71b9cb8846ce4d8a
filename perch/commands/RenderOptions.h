// The command line of `perch render`: its own options, and one for each parameter of the effect.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ParameterOptions.h"
#include "RenderJob.h"

namespace perch {

struct RenderOptions {
    std::filesystem::path plugin;  // empty: the one beside the program
    int threads = 0;
    bool strict = false;
    bool wantsHelp = false;
    bool wantsTiming = false;
    PictureNames names;
    RenderSettings settings;
};

// The names of the command's own options, which no parameter's option takes.
const std::vector<std::string>& renderOptionNames();

// What must be known before the effect is loaded: plugin, threads, strict, wantsHelp. Passes over the rest.
RenderOptions parseBeforeEffect(const std::vector<std::string>& arguments);

// The whole command line. Throws UsageError, with the range or the items that were expected, or the nearest
// name.
RenderOptions parseRenderOptions(const std::vector<std::string>& arguments, const EffectDescription& effect);

// What --help prints; without an effect, only the command's own options.
std::string renderHelp(const EffectDescription* effect);

}  // namespace perch
