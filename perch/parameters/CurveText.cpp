#include "CurveText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

#include "Error.h"
#include "NearestName.h"
#include "PF_Values.h"
#include "ParameterText.h"

namespace perch {
namespace {

using Kind = ParameterKey::Kind;

constexpr std::array<std::pair<std::string_view, Kind>, 3> kKindNames{
    {{"hold", Kind::Hold}, {"linear", Kind::Linear}, {"smooth", Kind::Smooth}}};

// The number before the first colon; absent where the text begins otherwise.
std::optional<std::int32_t> frameOf(std::string_view text) {
    std::int32_t frame = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, frame);
    const bool isBeforeColon = parsed.ec == std::errc() && parsed.ptr != end && *parsed.ptr == ':';
    return isBeforeColon ? std::optional(frame) : std::nullopt;
}

bool isKind(std::string_view text) {
    return std::ranges::find(kKindNames, text, [](const auto& known) { return known.first; }) !=
           kKindNames.end();
}

// Whether a key begins here, and not the rest of a value like the "360:smooth" of "24:640,360:smooth".
bool beginsKey(std::string_view text) {
    const std::string_view first = text.substr(0, text.find(','));
    return frameOf(first) && !isKind(first.substr(first.find(':') + 1));
}

// The texts of the keys; values may contain commas.
std::vector<std::string_view> splitKeys(std::string_view text) {
    std::vector<std::string_view> keys;
    std::size_t begin = 0;
    for (std::size_t comma = text.find(','); comma != std::string_view::npos;
         comma = text.find(',', comma + 1)) {
        if (!beginsKey(text.substr(comma + 1))) continue;
        keys.push_back(text.substr(begin, comma - begin));
        begin = comma + 1;
    }
    keys.push_back(text.substr(begin));
    return keys;
}

bool isChoice(const Parameter& parameter) {
    return isCheckBox(parameter) || parameter.definition.param_type == PF_Param_POPUP;
}

// The kind that the text ends with, which is cut off.
std::optional<Kind> takeKind(std::string_view& text) {
    for (const auto& [name, kind] : kKindNames) {
        if (!text.ends_with(name) || !text.substr(0, text.size() - name.size()).ends_with(':')) continue;
        text.remove_suffix(name.size() + 1);
        return kind;
    }
    return std::nullopt;
}

[[noreturn]] void refuseKind(std::string_view name, std::string_view kind) {
    std::vector<std::string> names;
    for (const auto& known : kKindNames)
        names.emplace_back(known.first);
    throw UsageError(fmt::format("{}: a key is hold, linear or smooth, not \"{}\"{}", name, kind,
                                 suggestion(kind, names)));
}

ParameterKey parseKey(const Parameter& parameter, std::string_view name, std::string_view text) {
    std::string_view value = text.substr(text.find(':') + 1);
    const std::optional<Kind> kind = takeKind(value);
    if (isChoice(parameter) && kind.value_or(Kind::Hold) != Kind::Hold)
        throw UsageError(fmt::format("{}: a choice holds until the next key, so the key \"{}\" cannot be {}",
                                     name, text, kindName(*kind)));
    const std::optional<ParameterSetting> setting = parseSetting(parameter, value);
    if (!setting && !isChoice(parameter) && value.find(':') != std::string_view::npos)
        refuseKind(name, value.substr(value.rfind(':') + 1));
    if (!setting)
        throw UsageError(fmt::format("{} takes {} at frame {}, not \"{}\"{}", name, expectedValue(parameter),
                                     *frameOf(text), value, suggestion(value, parameter.items)));
    return {*frameOf(text), setting->numbers, kind.value_or(isChoice(parameter) ? Kind::Hold : Kind::Linear)};
}

// "1.5:20"
void refuseFrameBetween(std::string_view name, std::string_view text) {
    const std::string frame(text.substr(0, text.find(':')));
    char* end = nullptr;
    std::strtod(frame.c_str(), &end);
    const bool isBetween = *end == '\0' && frame.find('.') != std::string::npos;
    if (isBetween && frame.size() < text.size())
        throw UsageError(fmt::format("{}: the frame of a key is a whole number, not \"{}\"", name, frame));
}

// As many of the numbers as the type has, in as many digits as tell them apart from all others.
std::string numbersText(const std::array<double, 4>& numbers, std::size_t count) {
    return fmt::format("{}",
                       fmt::join(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(count), ","));
}

// An item's name where it stands for that item alone and cannot be taken for a key, else its number.
std::string itemText(const Parameter& parameter, const ParameterSetting& setting) {
    const std::string name = valueText(parameter, setting);
    const bool isPlain = name.find_first_of(",:") == std::string::npos;
    return isPlain && parseSetting(parameter, name) == setting ? name : numbersText(setting.numbers, 1);
}

// With every digit of the value, unlike what is shown to users.
std::string exactText(const Parameter& parameter, const std::array<double, 4>& numbers) {
    const ParameterSetting setting{parameter.index, numbers};
    switch (parameter.definition.param_type) {
        case PF_Param_FIX_SLIDER:
        case PF_Param_ANGLE:
        case PF_Param_FLOAT_SLIDER:
            return numbersText(numbers, 1);
        case PF_Param_POINT:
            return numbersText(numbers, 2);
        case PF_Param_POINT_3D:
            return numbersText(numbers, 3);
        case PF_Param_POPUP:
            return itemText(parameter, setting);
        default:
            return valueText(parameter, setting);
    }
}

}  // namespace

std::string curveText(const Parameter& parameter, const ParameterCurve& curve) {
    if (!curve.moves()) return exactText(parameter, curve.keys.front().numbers);
    std::string text;
    for (const ParameterKey& key : curve.keys) {
        const Kind usual = isChoice(parameter) ? Kind::Hold : Kind::Linear;
        text += fmt::format("{}{}:{}", text.empty() ? "" : ",", key.frame, exactText(parameter, key.numbers));
        if (key.kind != usual) text += fmt::format(":{}", kindName(key.kind));
    }
    return text;
}

std::string_view kindName(Kind kind) {
    return std::ranges::find(kKindNames, kind, [](const auto& known) { return known.second; })->first;
}

ParameterCurve parseCurve(const Parameter& parameter, std::string_view name, std::string_view text) {
    // First, as a popup's item may look like a key.
    if (const auto setting = parseSetting(parameter, text)) return constantCurve(*setting);
    refuseFrameBetween(name, text);
    if (!frameOf(text))
        throw UsageError(fmt::format("{} takes {}, not \"{}\"{}", name, expectedValue(parameter), text,
                                     suggestion(text, parameter.items)));
    ParameterCurve curve{parameter.index, {}};
    for (const std::string_view key : splitKeys(text))
        curve.keys.push_back(parseKey(parameter, name, key));
    std::ranges::sort(curve.keys, {}, &ParameterKey::frame);
    const auto twice = std::ranges::adjacent_find(curve.keys, {}, &ParameterKey::frame);
    if (twice != curve.keys.end())
        throw UsageError(fmt::format("{} has two keys at frame {}", name, twice->frame));
    return curve;
}

}  // namespace perch
