#include "ParameterText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <span>

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

// The number as 16.16, rounded to the nearest.
std::optional<PF_Fixed> parseFixed(std::string_view text) {
    const std::optional<double> number = parseNumber(text);
    if (!number || !isWithin(kFixedRange, *number)) return std::nullopt;
    return static_cast<PF_Fixed>(std::lround(*number * kFixedOne));
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

bool setSlider(const Parameter& parameter, std::string_view text, PF_SliderDef& slider) {
    const auto number = parseWhole<PF_ParamValue>(text);
    if (!number || !isWithin(limits(parameter), *number)) return false;
    slider.value = *number;
    return true;
}

bool setFixed(const Parameter& parameter, std::string_view text, PF_Fixed& value) {
    const std::optional<PF_Fixed> number = parseFixed(text);
    if (!number || !isWithin(limits(parameter), *number / kFixedOne)) return false;
    value = *number;
    return true;
}

bool setFloat(const Parameter& parameter, std::string_view text, PF_FloatSliderDef& slider) {
    std::optional<double> number = parseNumber(text);
    if (!number) return false;
    if (const std::optional<Range> range = limits(parameter)) {
        // The range is kept in single precision: 0.1 is within one that begins at "0.1".
        const auto rounded = static_cast<double>(static_cast<float>(*number));
        if (!isWithin(range, rounded)) return false;
        number = std::clamp(*number, range->minimum, range->maximum);
    }
    slider.value = *number;
    return true;
}

bool setCheckBox(std::string_view text, PF_CheckBoxDef& box) {
    const bool isOn = isAnyOf(text, {"on", "true", "yes", "1"});
    if (!isOn && !isAnyOf(text, {"off", "false", "no", "0"})) return false;
    box.value = isOn ? 1 : 0;
    return true;
}

// "#rrggbb"
std::optional<PF_Pixel> parseHexColor(std::string_view text) {
    if (text.size() != 7 || text.front() != '#') return std::nullopt;
    std::uint32_t code = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data() + 1, end, code, 16);
    if (parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
    const auto byteAt = [code](unsigned shift) { return static_cast<A_u_char>(code >> shift & 0xFFU); };
    return PF_Pixel{255, byteAt(16), byteAt(8), byteAt(0)};
}

// "r,g,b" or "r,g,b,a"
std::optional<PF_Pixel> parseColorList(std::string_view text) {
    std::vector<std::string_view> parts = splitAtCommas(text, 3);
    if (parts.empty()) parts = splitAtCommas(text, 4);
    if (parts.empty()) return std::nullopt;
    std::array<A_u_char, 4> bytes{0, 0, 0, 255};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto number = parseWhole<int>(parts[i]);
        if (!number || !isWithin(kByteRange, *number)) return std::nullopt;
        bytes[i] = static_cast<A_u_char>(*number);
    }
    return PF_Pixel{bytes[3], bytes[0], bytes[1], bytes[2]};
}

bool setColor(std::string_view text, PF_ColorDef& color) {
    const std::optional<PF_Pixel> pixel = text.starts_with('#') ? parseHexColor(text) : parseColorList(text);
    if (pixel) color.value = *pixel;
    return pixel.has_value();
}

bool setPoint(std::string_view text, PF_PointDef& point) {
    const std::vector<std::string_view> parts = splitAtCommas(text, 2);
    if (parts.empty()) return false;
    const std::optional<PF_Fixed> x = parseFixed(parts[0]);
    const std::optional<PF_Fixed> y = parseFixed(parts[1]);
    if (!x || !y) return false;
    point.x_value = *x;
    point.y_value = *y;
    return true;
}

bool setPoint3D(std::string_view text, PF_Point3DDef& point) {
    const std::vector<std::string_view> parts = splitAtCommas(text, 3);
    if (parts.empty()) return false;
    const std::optional<double> x = parseNumber(parts[0]);
    const std::optional<double> y = parseNumber(parts[1]);
    const std::optional<double> z = parseNumber(parts[2]);
    if (!x || !y || !z) return false;
    point.x_value = *x;
    point.y_value = *y;
    point.z_value = *z;
    return true;
}

// An item's name, or its number from 1.
bool setPopup(const Parameter& parameter, std::string_view text, PF_PopupDef& popup) {
    const auto item = std::ranges::find_if(
        parameter.items, [&](const std::string& name) { return equalsIgnoringCase(name, text); });
    if (item != parameter.items.end()) {
        popup.value = static_cast<PF_ParamValue>(item - parameter.items.begin()) + 1;
        return true;
    }
    const auto number = parseWhole<PF_ParamValue>(text);
    if (!number || *number < 1 || static_cast<std::size_t>(*number) > parameter.items.size()) return false;
    popup.value = *number;
    return true;
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

bool setValueFromText(const Parameter& parameter, std::string_view text, PF_ParamDef& value) {
    switch (parameter.definition.param_type) {
        case PF_Param_SLIDER:
            return setSlider(parameter, text, value.u.sd);
        case PF_Param_FIX_SLIDER:
            return setFixed(parameter, text, value.u.fd.value);
        case PF_Param_ANGLE:
            return setFixed(parameter, text, value.u.ad.value);
        case PF_Param_CHECKBOX:
            return setCheckBox(text, value.u.bd);
        case PF_Param_COLOR:
            return setColor(text, value.u.cd);
        case PF_Param_POINT:
            return setPoint(text, value.u.td);
        case PF_Param_POPUP:
            return setPopup(parameter, text, value.u.pd);
        case PF_Param_FLOAT_SLIDER:
            return setFloat(parameter, text, value.u.fs_d);
        case PF_Param_POINT_3D:
            return setPoint3D(text, value.u.point3d_d);
        default:
            return false;
    }
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
            return fmt::format("one of {}, or its number from 1 to {}", fmt::join(parameter.items, ", "),
                               parameter.items.size());
        default:
            return "no value";
    }
}

std::string defaultText(const Parameter& parameter) {
    const PF_ParamDefUnion& u = parameter.definition.u;
    switch (parameter.definition.param_type) {
        case PF_Param_LAYER:
            return "none";
        case PF_Param_CHECKBOX:
            return u.bd.dephault != 0 ? "on" : "off";
        case PF_Param_COLOR:
            return colorText(u.cd.dephault);
        case PF_Param_POINT:
            return pointText(u.td);
        case PF_Param_POINT_3D:
            return point3DText(u.point3d_d);
        case PF_Param_POPUP: {
            const auto index = static_cast<std::size_t>(u.pd.dephault) - 1;  // 0 wraps: no such item
            return index < parameter.items.size() ? parameter.items[index] : "";
        }
        default:
            return parameter.defaultNumber ? formatNumber(*parameter.defaultNumber) : "";
    }
}

}  // namespace perch
