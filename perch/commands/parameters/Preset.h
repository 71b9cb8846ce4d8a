// Presets: files that hold values and keys of an effect's parameters, by the names of their options.
//
//   {
//     // the pull of shot 12
//     "focal-point": [{"frame": 1, "value": 20}, {"frame": 48, "value": 70, "key": "smooth"}],
//     "blur-type": "Fine",
//     "maximum-blur": 30,
//     "invert-control": true
//   }
#pragma once

#include <array>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "ParameterCurve.h"
#include "ParameterOptions.h"

namespace perch {

// JSON with comments. A value is a number, a string as on the command line, true or false for a check box, or
// a list of numbers for a colour or point. Throws UsageError, which names the file, for text that is not such
// JSON, names that no option has, and values out of range; Error where the file cannot be read.
std::vector<ParameterCurve> readPreset(const std::filesystem::path& path,
                                       const std::vector<ParameterOption>& options);

// The same from the text of a preset, which `name` is told of in messages.
std::vector<ParameterCurve> parsePreset(std::string_view text, const std::string& name,
                                        const std::vector<ParameterOption>& options);
// Whether the text holds values and keys by names, whatever the names are.
bool isPreset(std::string_view text);
// One value or list of keys; `name` is what the user knows the parameter by.
ParameterCurve parsePresetValue(const ParameterOption& option, const nlohmann::ordered_json& value,
                                const std::string& name);

// The preset of these curves, one for each of some options, in their order.
std::string presetText(const std::vector<ParameterOption>& options,
                       const std::vector<ParameterCurve>& curves);
// A value, and what a curve is in a preset: a value where it does not move, else its keys.
nlohmann::ordered_json presetValue(const Parameter& parameter, const std::array<double, 4>& numbers);
nlohmann::ordered_json presetValue(const Parameter& parameter, const ParameterCurve& curve);

}  // namespace perch
