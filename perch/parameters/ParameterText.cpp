#include "ParameterText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>

#include "PF_Values.h"

namespace perch {
namespace {

using Range = Parameter::Range;

constexpr double kFixedOne = 65536.0;
constexpr Range kFixedRange{-32768.0, std::numeric_limits<PF_Fixed>::max() / kFixedOne};
constexpr Range kByteRange{0.0, 255.0};

template <typename Number>
std::optional<Number> parseWhole(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<double> parseNumber(std::string_view text) {
    const std::optional<double> number = parseWhole<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

bool isWithin(const std::optional<Range>& range, double number) {
    return !range || (number >= range->minimum && number <= range->maximum);
}

// A number that 16.16 values reach.
std::optional<double> parseFixed(std::string_view text) {
    const std::optional<double> number = parseNumber(text);
    return number && isWithin(kFixedRange, *number) ? number : std::nullopt;
}

// A declared range without room in it sets no limit.
std::optional<Range> limits(const Parameter& parameter) {
    const auto& range = parameter.validRange;
    return range && range->minimum < range->maximum ? range : std::nullopt;
}

// The parts between the commas; none when their number is not `count`.
std::vector<std::string_view> splitAtCommas(std::string_view text, std::size_t count) {
    std::vector<std::string_view> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    if (parts.size() != count) parts.clear();
    return parts;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(
        a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

bool isAnyOf(std::string_view text, std::initializer_list<std::string_view> words) {
    return std::ranges::any_of(words, [&](std::string_view word) { return equalsIgnoringCase(text, word); });
}

using Numbers = std::array<double, 4>;

std::optional<Numbers> oneNumber(std::optional<double> number) {
    return number ? std::optional(Numbers{*number}) : std::nullopt;
}

std::optional<double> parseSlider(const Parameter& parameter, std::string_view text) {
    const auto number = parseWhole<PF_ParamValue>(text);
    return number && isWithin(limits(parameter), *number) ? std::optional<double>(*number) : std::nullopt;
}

// The range holds for the 16.16 value.
std::optional<double> parseFixedSlider(const Parameter& parameter, std::string_view text) {
    const std::optional<double> number = parseFixed(text);
    if (!number) return std::nullopt;
    const double rounded = static_cast<double>(std::lround(*number * kFixedOne)) / kFixedOne;
    return isWithin(limits(parameter), rounded) ? std::optional(rounded) : std::nullopt;
}

std::optional<double> parseFloatSlider(const Parameter& parameter, std::string_view text) {
    const std::optional<double> number = parseNumber(text);
    const std::optional<Range> range = limits(parameter);
    if (!number || !range) return number;
    // The range is kept in single precision: 0.1 is within one that begins at "0.1".
    const auto rounded = static_cast<double>(static_cast<float>(*number));
    if (!isWithin(range, rounded)) return std::nullopt;
    return std::clamp(*number, range->minimum, range->maximum);
}

std::optional<double> parseCheckBox(std::string_view text) {
    if (isAnyOf(text, {"on", "true", "yes", "1"})) return 1.0;
    if (isAnyOf(text, {"off", "false", "no", "0"})) return 0.0;
    return std::nullopt;
}

// An item's name, or its number from 1.
std::optional<double> parsePopup(const Parameter& parameter, std::string_view text) {
    const auto item = std::ranges::find_if(parameter.items, [&](const std::string& name) {
        return !isSeparator(name) && equalsIgnoringCase(name, text);
    });
    if (item != parameter.items.end()) return static_cast<double>(item - parameter.items.begin()) + 1;
    const auto number = parseWhole<PF_ParamValue>(text);
    if (!number || *number < 1 || static_cast<std::size_t>(*number) > parameter.items.size())
        return std::nullopt;
    if (isSeparator(parameter.items[static_cast<std::size_t>(*number) - 1])) return std::nullopt;
    return *number;
}

// "one of Fast, Fine, or its number from 1 to 3"
std::string choicesText(const Parameter& parameter) {
    std::vector<std::string> names;
    std::ranges::remove_copy_if(parameter.items, std::back_inserter(names), isSeparator);
    return fmt::format("one of {}, or its number from 1 to {}", fmt::join(names, ", "),
                       parameter.items.size());
}

// "#rrggbb"
std::optional<Numbers> parseHexColor(std::string_view text) {
    if (text.size() != 7) return std::nullopt;
    std::uint32_t code = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data() + 1, end, code, 16);
    if (parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
    const auto byteAt = [code](unsigned shift) { return static_cast<double>(code >> shift & 0xFFU); };
    return Numbers{byteAt(16), byteAt(8), byteAt(0), kByteRange.maximum};
}

// "r,g,b" or "r,g,b,a"
std::optional<Numbers> parseColorList(std::string_view text) {
    std::vector<std::string_view> parts = splitAtCommas(text, 3);
    if (parts.empty()) parts = splitAtCommas(text, 4);
    if (parts.empty()) return std::nullopt;
    Numbers channels{0, 0, 0, kByteRange.maximum};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto number = parseWhole<int>(parts[i]);
        if (!number || !isWithin(kByteRange, *number)) return std::nullopt;
        channels[i] = *number;
    }
    return channels;
}

// "x,y" or "x,y,z"; each number by `parse`.
template <typename Parse>
std::optional<Numbers> parsePoint(std::string_view text, std::size_t dimensions, const Parse& parse) {
    const std::vector<std::string_view> parts = splitAtCommas(text, dimensions);
    if (parts.empty()) return std::nullopt;
    Numbers point{};
    for (std::size_t i = 0; i < dimensions; ++i) {
        const std::optional<double> number = parse(parts[i]);
        if (!number) return std::nullopt;
        point[i] = *number;
    }
    return point;
}

std::optional<Numbers> parseNumbers(const Parameter& parameter, std::string_view text) {
    switch (parameter.definition.param_type) {
        case PF_Param_SLIDER:
            return oneNumber(parseSlider(parameter, text));
        case PF_Param_FIX_SLIDER:
        case PF_Param_ANGLE:
            return oneNumber(parseFixedSlider(parameter, text));
        case PF_Param_FLOAT_SLIDER:
            return oneNumber(parseFloatSlider(parameter, text));
        case PF_Param_CHECKBOX:
            return oneNumber(parseCheckBox(text));
        case PF_Param_POPUP:
            return oneNumber(parsePopup(parameter, text));
        case PF_Param_COLOR:
            return text.starts_with('#') ? parseHexColor(text) : parseColorList(text);
        case PF_Param_POINT:
            return parsePoint(text, 2, parseFixed);
        case PF_Param_POINT_3D:
            return parsePoint(text, 3, parseNumber);
        default:
            return std::nullopt;
    }
}

std::string withRange(std::string text, const Parameter& parameter) {
    if (const std::optional<Range> range = limits(parameter)) {
        text += fmt::format(" from {} to {}", formatNumber(range->minimum), formatNumber(range->maximum));
    }
    return text;
}

std::string colorText(const PF_Pixel& color) {
    return fmt::format("#{:02x}{:02x}{:02x}", color.red, color.green, color.blue);
}

std::string pointText(const PF_PointDef& point) {
    return fmt::format("{}%,{}%", formatNumber(point.x_dephault / kFixedOne),
                       formatNumber(point.y_dephault / kFixedOne));
}

std::string point3DText(const PF_Point3DDef& point) {
    return fmt::format("{}%,{}%,{}", formatNumber(point.x_dephault), formatNumber(point.y_dephault),
                       formatNumber(point.z_dephault));
}

}  // namespace

std::optional<ParameterSetting> parseSetting(const Parameter& parameter, std::string_view text) {
    const std::optional<Numbers> numbers = parseNumbers(parameter, text);
    if (!numbers) return std::nullopt;
    return ParameterSetting{parameter.index, *numbers};
}

std::string formatNumber(double number) {
    constexpr double kLargestCounted = 1e15;
    if (std::trunc(number) == number && std::abs(number) < kLargestCounted)
        return fmt::format("{:.0f}", number);
    return fmt::format("{}", static_cast<float>(number));
}

std::string expectedValue(const Parameter& parameter) {
    switch (parameter.definition.param_type) {
        case PF_Param_LAYER:
            return "a picture or \"none\"";
        case PF_Param_SLIDER:
            return withRange("a whole number", parameter);
        case PF_Param_FIX_SLIDER:
        case PF_Param_FLOAT_SLIDER:
            return withRange("a number", parameter);
        case PF_Param_ANGLE:
            return withRange("an angle in degrees", parameter);
        case PF_Param_CHECKBOX:
            return "on or off";
        case PF_Param_COLOR:
            return "a colour as #rrggbb or r,g,b[,a] with numbers from 0 to 255";
        case PF_Param_POINT:
            return "a point as x,y in pixels";
        case PF_Param_POINT_3D:
            return "a point as x,y,z in pixels";
        case PF_Param_POPUP:
            return choicesText(parameter);
        default:
            return "no value";
    }
}

std::string valueText(const Parameter& parameter, const ParameterSetting& setting) {
    const auto& [first, second, third, fourth] = setting.numbers;
    const auto byteOf = [](double number) { return static_cast<A_u_char>(std::lround(number)); };
    switch (parameter.definition.param_type) {
        case PF_Param_SLIDER:
            return fmt::format("{}", std::lround(first));
        case PF_Param_CHECKBOX:
            return first != 0 ? "on" : "off";
        case PF_Param_POPUP:
            return parameter.items.at(static_cast<std::size_t>(first) - 1);
        case PF_Param_COLOR:
            return fourth == kByteRange.maximum
                       ? colorText({byteOf(fourth), byteOf(first), byteOf(second), byteOf(third)})
                       : fmt::format("{},{},{},{}", byteOf(first), byteOf(second), byteOf(third),
                                     byteOf(fourth));
        case PF_Param_POINT:
            return fmt::format("{},{}", formatNumber(first), formatNumber(second));
        case PF_Param_POINT_3D:
            return fmt::format("{},{},{}", formatNumber(first), formatNumber(second), formatNumber(third));
        default:
            return formatNumber(first);
    }
}

std::string defaultText(const Parameter& parameter) {
    const PF_ParamDefUnion& u = parameter.definition.u;
    switch (parameter.definition.param_type) {
        case PF_Param_LAYER:
            return isOfThisLayer(parameter) ? "this layer" : "none";
        case PF_Param_CHECKBOX:
            return u.bd.dephault != 0 ? "on" : "off";
        case PF_Param_COLOR:
            return colorText(u.cd.dephault);
        case PF_Param_POINT:
            return pointText(u.td);
        case PF_Param_POINT_3D:
            return point3DText(u.point3d_d);
        case PF_Param_ARBITRARY_DATA:
            return parameter.printedDefault;
        case PF_Param_POPUP: {
            const auto index = static_cast<std::size_t>(u.pd.dephault) - 1;  // 0 wraps: no such item
            return index < parameter.items.size() ? parameter.items[index] : "";
        }
        default:
            return parameter.defaultNumber ? formatNumber(*parameter.defaultNumber) : "";
    }
}

}  // namespace perch
