#include "Look.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "CurveText.h"
#include "Error.h"
#include "NearestName.h"
#include "Preset.h"
#include "ShellText.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

Json parseObject(const std::string& text) {
    Json json = Json::parse(text, nullptr, false);
    if (!json.is_object())
        throw UsageError("a state is JSON like {\"serial\": 1, \"frame\": 1, \"parameters\": {}}");
    return json;
}

std::int64_t wholeNumber(const Json& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end() || !found->is_number_integer())
        throw UsageError(fmt::format("a state has a whole number as \"{}\"", name));
    return found->get<std::int64_t>();
}

}  // namespace

LookReader::LookReader(std::vector<ParameterOption> given, std::vector<ParameterCurve> defaults,
                       std::vector<std::int32_t> frames, std::vector<std::string> words)
    : options([&] {
          std::erase_if(given, [](const ParameterOption& option) { return isLayer(option.parameter); });
          return std::move(given);
      }()),
      defaults(std::move(defaults)),
      frames(std::move(frames)),
      fixedWords(std::move(words)) {}

std::string LookReader::keyOf(const ParameterOption& option) const {
    const std::string& name = option.parameter.name;
    const auto hasName = [&](const ParameterOption& other) { return other.parameter.name == name; };
    return std::ranges::count_if(options, hasName) == 1 && !name.empty() ? name : option.name;
}

const ParameterOption& LookReader::optionOf(const std::string& key) const {
    const auto found =
        std::ranges::find_if(options, [&](const ParameterOption& option) { return keyOf(option) == key; });
    if (found != options.end()) return *found;
    std::vector<std::string> keys;
    for (const ParameterOption& option : options)
        keys.push_back(keyOf(option));
    throw UsageError(fmt::format("the effect has no parameter \"{}\"{}", key, suggestion(key, keys)));
}

const ParameterCurve* LookReader::defaultOf(PF_ParamIndex index) const {
    const auto found = std::ranges::find(defaults, index, &ParameterCurve::index);
    return found != defaults.end() ? &*found : nullptr;
}

Look LookReader::parse(const std::string& text) const {
    const Json json = parseObject(text);
    Look look;
    look.serial = wholeNumber(json, "serial");
    const std::int64_t frame = wholeNumber(json, "frame");
    if (std::ranges::find(frames, frame) == frames.end())
        throw UsageError(fmt::format("there is no frame {}; the frames are {} to {}", frame,
                                     std::ranges::min(frames), std::ranges::max(frames)));
    look.frame = static_cast<std::int32_t>(frame);
    const auto parameters = json.find("parameters");
    if (parameters == json.end() || !parameters->is_object())
        throw UsageError("a state has \"parameters\", names and their values");
    Json values = *parameters;
    if (const auto keys = json.find("keys"); keys != json.end() && keys->is_object()) values.update(*keys);
    for (const auto& [key, value] : values.items())
        look.curves.push_back(parsePresetValue(optionOf(key), value, key));
    return tidied(std::move(look));
}

Look LookReader::withPreset(const Look& look, const std::string& text) const {
    Look changed = look;
    for (ParameterCurve& curve : parsePreset(text, "preset", options)) {
        std::erase_if(changed.curves, [&](const ParameterCurve& old) { return old.index == curve.index; });
        changed.curves.push_back(std::move(curve));
    }
    return tidied(std::move(changed));
}

Look LookReader::tidied(Look look) const {
    std::erase_if(look.curves, [this](const ParameterCurve& curve) {
        const ParameterCurve* const usual = defaultOf(curve.index);
        return !curve.moves() && usual != nullptr &&
               usual->keys.front().numbers == curve.keys.front().numbers;
    });
    std::ranges::sort(look.curves, {}, &ParameterCurve::index);
    return look;
}

ParameterCurve LookReader::curveOf(const Look& look, const ParameterOption& option) const {
    const PF_ParamIndex index = option.parameter.index;
    const auto given = std::ranges::find(look.curves, index, &ParameterCurve::index);
    if (given != look.curves.end()) return *given;
    const ParameterCurve* const usual = defaultOf(index);
    return usual != nullptr ? *usual : ParameterCurve{index, {ParameterKey{}}};
}

nlohmann::ordered_json LookReader::json(const Look& look) const {
    Json values = Json::object();
    Json keys = Json::object();
    for (const ParameterOption& option : options) {
        const ParameterCurve curve = curveOf(look, option);
        values[keyOf(option)] = presetValue(option.parameter, settingAt(curve, look.frame).numbers);
        if (curve.moves()) keys[keyOf(option)] = presetValue(option.parameter, curve);
    }
    return {{"frame", look.frame},
            {"parameters", std::move(values)},
            {"keys", std::move(keys)},
            {"command", command(look)},
            {"serial", look.serial}};
}

std::string LookReader::presetText(const Look& look) const {
    std::vector<ParameterCurve> curves;
    for (const ParameterOption& option : options)
        curves.push_back(curveOf(look, option));
    return perch::presetText(options, curves);
}

std::vector<std::string> LookReader::words(const Look& look) const {
    std::vector<std::string> words = fixedWords;
    for (const ParameterCurve& curve : look.curves) {
        const auto option = std::ranges::find_if(
            options, [&](const ParameterOption& known) { return known.parameter.index == curve.index; });
        const std::string text = curveText(option->parameter, curve);
        // A value with a dash in front would be taken for an option.
        if (text.starts_with('-')) {
            words.push_back(fmt::format("--{}={}", option->name, text));
        } else {
            words.insert(words.end(), {"--" + option->name, text});
        }
    }
    return words;
}

std::string LookReader::command(const Look& look) const {
    return shellWords(words(look));
}

}  // namespace perch
