// An effect's parameters as options of the command line: their names, the values they take, and what the help
// says of them. Text comes from the user and names from the effect; neither is trusted.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Parameter.h"

namespace perch {

struct ParameterOption {
    std::string name;  // "focal-point": without dashes in front
    Parameter parameter;
    std::string rangeName;   // of layers: "control-range" beside "control-layer", for what near and far are
    std::string offsetName;  // of layers: "control-layer-offset"
    std::string hint{};      // what the parameter does, where that is known: a sentence
};

// "Focal Point" becomes "focal-point": lower case, and one dash for each run of anything but letters and
// digits. Empty when the name has no letter or digit of ASCII.
std::string optionName(std::string_view parameterName);

// The options of the parameters that can be given a value, in their order. A name among `reserved` gets the
// prefix "effect-"; of several parameters of one name the later get "-2", "-3"; a parameter whose name
// gives none is called "parameter-" and its index. Names of ranges and offsets are chosen last and give way
// to all others.
std::vector<ParameterOption> parameterOptions(const std::vector<Parameter>& parameters,
                                              std::span<const std::string> reserved);

}  // namespace perch
