#include "ParameterOptions.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>

#include "PF_Values.h"
#include "ParameterHints.h"

namespace perch {
namespace {

constexpr std::array kTypesWithValue{
    PF_Param_LAYER, PF_Param_SLIDER, PF_Param_FIX_SLIDER, PF_Param_ANGLE,        PF_Param_CHECKBOX,
    PF_Param_COLOR, PF_Param_POINT,  PF_Param_POPUP,      PF_Param_FLOAT_SLIDER, PF_Param_POINT_3D};

bool hasValue(const Parameter& parameter) {
    return std::ranges::find(kTypesWithValue, parameter.definition.param_type) != kTypesWithValue.end();
}

bool isLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

std::string uniqueName(const std::string& name, const std::set<std::string>& taken) {
    std::string unique = name;
    for (int number = 2; taken.contains(unique); ++number)
        unique = fmt::format("{}-{}", name, number);
    return unique;
}

std::string rangeName(const std::string& layer) {
    constexpr std::string_view kLayer = "-layer";
    const bool isCalledLayer = layer.ends_with(kLayer);
    return (isCalledLayer ? layer.substr(0, layer.size() - kLayer.size()) : layer) + "-range";
}

// By the names of all parameters, since an effect of other parameters is another effect.
void takeHints(std::vector<ParameterOption>& options) {
    const std::span<const ParameterHint> hints = parameterHints();
    const auto isOf = [](const ParameterOption& option, const ParameterHint& hint) {
        return option.parameter.name == hint.name;
    };
    if (!std::ranges::equal(options, hints, isOf)) return;
    for (std::size_t i = 0; i < hints.size(); ++i)
        options[i].hint = hints[i].sentence;
}

}  // namespace

std::string optionName(std::string_view parameterName) {
    std::string name;
    for (const char given : parameterName) {
        const char c = given >= 'A' && given <= 'Z' ? static_cast<char>(given - 'A' + 'a') : given;
        if (isLetterOrDigit(c)) {
            name += c;
        } else if (!name.empty() && name.back() != '-') {
            name += '-';
        }
    }
    if (name.ends_with('-')) name.pop_back();
    return name;
}

std::vector<ParameterOption> parameterOptions(const std::vector<Parameter>& parameters,
                                              std::span<const std::string> reserved) {
    std::vector<ParameterOption> options;
    std::set<std::string> taken(reserved.begin(), reserved.end());
    for (const Parameter& parameter : parameters) {
        if (!hasValue(parameter)) continue;
        std::string name = optionName(parameter.name);
        if (name.empty()) name = fmt::format("parameter-{}", parameter.index);
        if (std::ranges::find(reserved, name) != reserved.end()) name = "effect-" + name;
        name = uniqueName(name, taken);
        taken.insert(name);
        options.push_back({name, parameter, "", ""});
    }
    takeHints(options);
    for (ParameterOption& option : options) {
        if (!isLayer(option.parameter)) continue;
        option.rangeName = uniqueName(rangeName(option.name), taken);
        taken.insert(option.rangeName);
        option.offsetName = uniqueName(option.name + "-offset", taken);
        taken.insert(option.offsetName);
    }
    return options;
}

}  // namespace perch
