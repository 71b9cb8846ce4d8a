// The command line of `perch render`: its own options, and one for each parameter of the effect. Its own are
// understood before the effect is loaded, as they say which it is; what is left is for the parameters.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ParameterOptions.h"
#include "RenderJob.h"

namespace perch {

// What the effect is loaded with.
struct LoadOptions {
    std::filesystem::path plugin;  // empty: the one beside the program
    int threads = 0;               // 0: one per processor
    bool strict = false;
};

struct RenderOptions {
    bool wantsHelp = false;  // then nothing else is looked at
    bool wantsTiming = false;
    LoadOptions load;
    PictureNames names;       // but those of layers
    RenderSettings settings;  // but the parameters
    std::vector<std::string> forParameters;
};

// The values and pictures that the command line gives an effect's parameters.
struct ParameterArguments {
    std::vector<ParameterSetting> settings;
    std::map<PF_ParamIndex, std::string> layers;
};

// The names of the command's own options, which no parameter's option takes.
const std::vector<std::string>& renderOptionNames();

// The options of an effect's parameters.
std::vector<ParameterOption> optionsOf(const std::vector<Parameter>& parameters);

// Both throw UsageError, with the range or the items that were expected, or the nearest name.
RenderOptions parseRenderOptions(const std::vector<std::string>& arguments);
ParameterArguments parseParameterArguments(const std::vector<std::string>& arguments,
                                           const std::vector<Parameter>& parameters);

// What --help prints; without an effect, only the command's own options.
std::string renderHelp(const EffectDescription* effect);

}  // namespace perch
