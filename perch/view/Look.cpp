#include "Look.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

#include "CurveText.h"
#include "Error.h"
#include "NearestName.h"
#include "Preset.h"
#include "ShallowJson.h"
#include "ShellText.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

Json parseObject(const std::string& text) {
    Json json = shallowObject(text, "a state");
    if (json.is_null())
        throw UsageError("a state is JSON like {\"serial\": 1, \"frame\": 1, \"parameters\": {}}");
    return json;
}

std::int64_t wholeNumber(const Json& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end() || !found->is_number_integer())
        throw UsageError(fmt::format("a state has a whole number as \"{}\"", name));
    return found->get<std::int64_t>();
}

constexpr char kNone[] = "none";

constexpr std::int64_t kLargestSerial = (std::int64_t{1} << 53) - 1;  // that a page can count to

std::vector<ParameterOption> chosen(const std::vector<ParameterOption>& options, bool areLayers) {
    std::vector<ParameterOption> result;
    std::ranges::copy_if(options, std::back_inserter(result), [&](const ParameterOption& option) {
        return isLayer(option.parameter) == areLayers;
    });
    return result;
}

// A value with a dash in front would be taken for an option.
void addWords(const std::string& option, const std::string& value, std::vector<std::string>& words) {
    if (value.starts_with('-')) {
        words.push_back(fmt::format("--{}={}", option, value));
    } else {
        words.insert(words.end(), {"--" + option, value});
    }
}

}  // namespace

LookReader::LookReader(const std::vector<ParameterOption>& all, std::vector<ParameterCurve> defaults,
                       std::vector<std::int32_t> frames, FixedWords words)
    : options(chosen(all, false)),
      layerOptions(chosen(all, true)),
      defaults(std::move(defaults)),
      frames(std::move(frames)),
      fixedWords(std::move(words)) {}

std::string LookReader::keyOf(const ParameterOption& option) const {
    const std::string& name = option.parameter.name;
    const auto hasName = [&](const ParameterOption& other) { return other.parameter.name == name; };
    const auto count = std::ranges::count_if(options, hasName) + std::ranges::count_if(layerOptions, hasName);
    return count == 1 && !name.empty() ? name : option.name;
}

const LayerWords* LookReader::wordsOf(PF_ParamIndex index) const {
    const auto found = std::ranges::find(fixedWords.layers, index, &LayerWords::index);
    return found != fixedWords.layers.end() ? &*found : nullptr;
}

std::vector<LayerWords> LookReader::layerFiles() const {
    std::vector<LayerWords> files;
    std::ranges::copy_if(fixedWords.layers, std::back_inserter(files),
                         [](const LayerWords& layer) { return layer.picture != kNone; });
    return files;
}

PF_ParamIndex LookReader::layerShown(const Look& look, PF_ParamIndex index) const {
    if (const auto changed = look.layers.find(index); changed != look.layers.end()) return changed->second;
    const LayerWords* const words = wordsOf(index);
    return words != nullptr && words->picture != kNone ? index : kNoLayer;
}

void LookReader::takeLayer(const ParameterOption& option, const Json& value, Look& look) const {
    std::vector<LayerWords> files = layerFiles();
    // Several layers may be given the same file, each with a range of its own: a layer prefers its own.
    std::stable_partition(files.begin(), files.end(),
                          [&](const LayerWords& file) { return file.index == option.parameter.index; });
    std::vector<std::string> names{kNone};
    for (const LayerWords& file : files)
        names.push_back(file.picture);
    const auto name = value.is_string() ? std::ranges::find(names, value.get<std::string>()) : names.end();
    if (name == names.end())
        throw UsageError(
            fmt::format("\"{}\" takes one of the pictures that the command line gives to layers: {}",
                        keyOf(option), fmt::join(names, ", ")));
    const PF_ParamIndex index = option.parameter.index;
    const auto place = name - names.begin();
    const PF_ParamIndex shown = place == 0 ? kNoLayer : files[static_cast<std::size_t>(place - 1)].index;
    if (shown != layerShown({}, index)) look.layers[index] = shown;
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
    if (look.serial < 0 || look.serial > kLargestSerial)
        throw UsageError(fmt::format("a state's \"serial\" is from 0 to {}", kLargestSerial));
    const std::int64_t frame = wholeNumber(json, "frame");
    requireFrame(frame);
    look.frame = static_cast<std::int32_t>(frame);
    const auto parameters = json.find("parameters");
    if (parameters == json.end() || !parameters->is_object())
        throw UsageError("a state has \"parameters\", names and their values");
    Json values = *parameters;
    if (const auto keys = json.find("keys"); keys != json.end() && keys->is_object()) values.update(*keys);
    for (const auto& item : values.items()) {
        const std::string& key = item.key();
        const auto layer = std::ranges::find_if(
            layerOptions, [&](const ParameterOption& option) { return keyOf(option) == key; });
        if (layer != layerOptions.end()) {
            takeLayer(*layer, item.value(), look);
        } else {
            look.curves.push_back(parsePresetValue(optionOf(key), item.value(), key));
        }
    }
    return tidied(std::move(look));
}

void LookReader::requireFrame(std::int64_t frame) const {
    if (std::ranges::find(frames, frame) == frames.end())
        throw UsageError(fmt::format("there is no frame {}; the frames are {} to {}", frame,
                                     std::ranges::min(frames), std::ranges::max(frames)));
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
    for (const ParameterOption& option : layerOptions) {
        const PF_ParamIndex shown = layerShown(look, option.parameter.index);
        values[keyOf(option)] = shown == kNoLayer ? kNone : wordsOf(shown)->picture;
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
    std::vector<std::string> words = fixedWords.words;
    for (const ParameterOption& option : layerOptions) {
        const PF_ParamIndex index = option.parameter.index;
        const PF_ParamIndex shown = layerShown(look, index);
        const LayerWords* const layer = wordsOf(shown);
        if (layer == nullptr) {
            if (look.layers.contains(index) || wordsOf(index) != nullptr) addWords(option.name, kNone, words);
            continue;
        }
        addWords(option.name, layer->picture, words);
        if (!layer->range.empty()) addWords(option.rangeName, layer->range, words);
        if (!layer->offset.empty()) addWords(option.offsetName, layer->offset, words);
    }
    for (const ParameterCurve& curve : look.curves) {
        const auto option = std::ranges::find_if(
            options, [&](const ParameterOption& known) { return known.parameter.index == curve.index; });
        addWords(option->name, curveText(option->parameter, curve), words);
    }
    return words;
}

std::string LookReader::command(const Look& look) const {
    return shellWords(words(look));
}

}  // namespace perch
