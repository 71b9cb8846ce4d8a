#include <nlohmann/json.hpp>

#include "Description.h"
#include "ParameterText.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

Json rangeToJson(const Parameter::Range& range) {
    return {{"minimum", range.minimum}, {"maximum", range.maximum}};
}

// The numbers, from 1, of the items that are lines between others.
std::vector<std::size_t> separatorsOf(const Parameter& parameter) {
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < parameter.items.size(); ++i)
        if (isSeparator(parameter.items[i])) numbers.push_back(i + 1);
    return numbers;
}

Json parameterToJson(const Parameter& parameter) {
    Json json{{"index", parameter.index}, {"name", parameter.name}, {"type", parameter.typeName}};
    const bool isChoice = isCheckBox(parameter) || !parameter.items.empty();
    if (parameter.validRange && !isChoice) json["validRange"] = rangeToJson(*parameter.validRange);
    if (parameter.sliderRange) json["sliderRange"] = rangeToJson(*parameter.sliderRange);
    if (parameter.defaultNumber && !isChoice) {
        json["default"] = *parameter.defaultNumber;
    } else if (const std::string text = defaultText(parameter); !text.empty()) {
        json["default"] = text;
    }
    if (!parameter.items.empty()) json["items"] = parameter.items;
    if (const std::vector<std::size_t> lines = separatorsOf(parameter); !lines.empty())
        json["separators"] = lines;
    if (parameter.depth > 0) json["groupDepth"] = parameter.depth;
    return json;
}

Json parametersToJson(const EffectDescription& description, const std::vector<ParameterOption>& options) {
    Json parameters = Json::array();
    for (const Parameter& parameter : description.parameters)
        parameters.push_back(parameterToJson(parameter));
    for (const ParameterOption& option : options) {
        for (Json& json : parameters) {
            if (json["index"] == option.parameter.index) json["option"] = "--" + option.name;
        }
    }
    return parameters;
}

}  // namespace

std::string describeAsJson(const EffectDescription& description,
                           const std::vector<ParameterOption>& options) {
    const Json json{
        {"name", displayName(description)},         {"category", description.category},
        {"matchName", description.matchName},       {"version", versionText(description.version)},
        {"entryPoint", description.entryPoint},     {"flags", flagNames(description.flags)},
        {"flags2", flagNames2(description.flags2)}, {"parameters", parametersToJson(description, options)}};
    // Strings of effects have no certain encoding.
    constexpr int kIndent = 2;
    return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace perch
