// An effect's parameters on a command line.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "FramePlan.h"
#include "LayerReading.h"
#include "Notes.h"
#include "ParameterCurve.h"
#include "ParameterOptions.h"

namespace CLI {
class App;
}

namespace perch {

// The values and pictures that a command line gives an effect's parameters.
struct ParameterArguments {
    std::vector<ParameterCurve> curves;
    LayerNames layers;
    LayerReadings readings;  // of all layers
    std::set<PF_ParamIndex> emptyLayers;
    std::vector<std::string> repeated{};  // options given more than once
    // An option of a picture that the effect has none of, though it got values for other parameters; or
    // empty.
    std::string missingLayer{};
    std::string given;  // the options as they were given, of pictures the file names alone
};

// What a command line says of a layer, word by word; empty where it does not.
struct LayerWords {
    PF_ParamIndex index = 0;
    std::string picture{};  // or "none"
    std::string range{};
    std::string offset{};
};

// What was given, by the option's name.
using ParameterTexts = std::map<std::string, std::string>;

// Makes `app` take the options into `texts`, which must outlive it.
void addParameterOptions(CLI::App& app, const std::vector<ParameterOption>& options, ParameterTexts& texts);

// What the texts stand for, of the options that `app` met; then, of the other parameters, what the preset
// holds, if one is named. Throws UsageError with what was expected.
ParameterArguments takeParameterArguments(const CLI::App& app, const std::vector<ParameterOption>& options,
                                          const ParameterTexts& texts, const std::string& preset);

// Of an option that was given several times.
std::string repetitionText(const std::string& option);
// What is likely a mistake, as far as it shows before any picture is read.
void warnOfMistakes(const ParameterArguments& arguments, Notes& notes);

}  // namespace perch
