#include "Preset.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "CurveText.h"
#include "Error.h"
#include "FailingAs.h"
#include "FileBytes.h"
#include "NearestName.h"
#include "PF_Values.h"
#include "ParameterText.h"
#include "ShallowJson.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

// The text of a value as the command line takes it.
std::string textOf(const Json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_boolean()) return value.get<bool>() ? "on" : "off";
    if (value.is_number_integer()) return fmt::format("{}", value.get<std::int64_t>());
    if (value.is_number()) return fmt::format("{}", value.get<double>());
    std::string text;
    for (const Json& part : value)
        text += fmt::format("{}{}", text.empty() ? "" : ",", textOf(part));
    return text;
}

// Whether a text can stand for it: a number, a choice, a colour or the coordinates of a point.
bool hasText(const Json& value) {
    if (!value.is_array()) return value.is_primitive() && !value.is_null();
    return !value.empty() && std::ranges::all_of(value, [](const Json& part) { return part.is_number(); });
}

void requireKnown(const Json& key, const std::string& name) {
    const std::vector<std::string> fields{"frame", "value", "key"};
    for (const auto& [field, value] : key.items()) {
        if (std::ranges::find(fields, field) == fields.end())
            throw UsageError(fmt::format("{}: a key has no \"{}\"{}; it has frame, value and key", name,
                                         field, suggestion(field, fields)));
    }
}

bool isKeys(const Json& value) {
    return value.is_array() && !value.empty() && value.front().is_object();
}

bool isKey(const Json& key) {
    return key.is_object() && key.contains("frame") && key.contains("value");
}

// "1:20,48:70:smooth"
std::string textOfKeys(const Json& keys, const std::string& name) {
    std::string text;
    for (const Json& key : keys) {
        if (!isKey(key) || !key["frame"].is_number_integer() || !hasText(key["value"]))
            throw UsageError(
                fmt::format("{}: a key is like {{\"frame\": 1, \"value\": 20, \"key\": \"smooth\"}}, not {}",
                            name, key.dump()));
        requireKnown(key, name);
        text += fmt::format("{}{}:{}", text.empty() ? "" : ",", textOf(key["frame"]), textOf(key["value"]));
        if (key.contains("key")) text += fmt::format(":{}", textOf(key["key"]));
    }
    return text;
}

Json parseJson(std::string_view text, const std::string& name) {
    try {
        return shallowJson(text, fmt::format("preset \"{}\"", name));
    } catch (const Json::parse_error& error) {
        const std::string_view before = text.substr(0, error.byte);
        throw UsageError(
            fmt::format("preset \"{}\" is not JSON at line {}; a preset is like "
                        "{{\"focal-point\": 40, \"blur-type\": \"Fine\"}}",
                        name, 1 + std::ranges::count(before, '\n')));
    }
}

bool isValueOrKeys(const Json& value) {
    return isKeys(value) ? std::ranges::all_of(value, isKey) : hasText(value);
}

}  // namespace

bool isPreset(std::string_view text) {
    try {
        const Json json = shallowJson(text, "");
        return json.is_object() && std::ranges::all_of(json, isValueOrKeys);
    } catch (const std::exception&) {
        return false;
    }
}

ParameterCurve parsePresetValue(const ParameterOption& option, const Json& value, const std::string& name) {
    if (isLayer(option.parameter))
        throw UsageError(
            fmt::format("{} is a layer, which a preset does not hold; give --{}", name, option.name));
    if (isKeys(value)) return parseCurve(option.parameter, name, textOfKeys(value, name));
    if (!hasText(value))
        throw UsageError(
            fmt::format("{} takes {}, not {}", name, expectedValue(option.parameter), value.dump()));
    return parseCurve(option.parameter, name, textOf(value));
}

std::vector<ParameterCurve> parsePreset(std::string_view text, const std::string& preset,
                                        const std::vector<ParameterOption>& options) {
    const Json json = parseJson(text, preset);
    if (!json.is_object())
        throw UsageError(fmt::format(
            "preset \"{}\" is not a list of names and values, like {{\"focal-point\": 40}}", preset));
    std::vector<std::string> names;
    for (const ParameterOption& option : options)
        names.push_back(option.name);
    std::vector<ParameterCurve> curves;
    for (const auto& [name, value] : json.items()) {
        const auto option = std::ranges::find(options, name, &ParameterOption::name);
        if (option == options.end())
            throw UsageError(fmt::format("preset \"{}\": the effect has no parameter \"{}\"{}", preset, name,
                                         suggestion(name, names)));
        curves.push_back(parsePresetValue(*option, value, fmt::format("preset \"{}\": {}", preset, name)));
    }
    return curves;
}

std::vector<ParameterCurve> readPreset(const std::filesystem::path& path,
                                       const std::vector<ParameterOption>& options) {
    const auto bytes = failingAs<InputError>([&] { return pictures::readFile(path); });
    return parsePreset({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, path.string(), options);
}

Json presetValue(const Parameter& parameter, const std::array<double, 4>& numbers) {
    switch (parameter.definition.param_type) {
        case PF_Param_SLIDER:
            return static_cast<std::int64_t>(numbers[0]);
        case PF_Param_CHECKBOX:
            return numbers[0] != 0;
        case PF_Param_POPUP:
        case PF_Param_COLOR:
            return valueText(parameter, {parameter.index, numbers});
        case PF_Param_POINT:
            return {numbers[0], numbers[1]};
        case PF_Param_POINT_3D:
            return {numbers[0], numbers[1], numbers[2]};
        default:
            return numbers[0];
    }
}

Json presetValue(const Parameter& parameter, const ParameterCurve& curve) {
    if (!curve.moves()) return presetValue(parameter, curve.keys.front().numbers);
    Json keys = Json::array();
    for (const ParameterKey& key : curve.keys)
        keys.push_back({{"frame", key.frame},
                        {"value", presetValue(parameter, key.numbers)},
                        {"key", kindName(key.kind)}});
    return keys;
}

std::string presetText(const std::vector<ParameterOption>& options,
                       const std::vector<ParameterCurve>& curves) {
    Json json = Json::object();
    for (const ParameterOption& option : options) {
        const auto curve = std::ranges::find(curves, option.parameter.index, &ParameterCurve::index);
        if (curve != curves.end()) json[option.name] = presetValue(option.parameter, *curve);
    }
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace perch
