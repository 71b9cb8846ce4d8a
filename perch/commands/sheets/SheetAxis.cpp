#include "SheetAxis.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "Error.h"
#include "NearestName.h"
#include "ParameterText.h"

namespace perch {
namespace {

constexpr std::size_t kMostValues = 1000;

std::vector<std::string> parts(std::string_view text, char separator) {
    std::vector<std::string> result;
    for (;;) {
        const std::size_t end = text.find(separator);
        result.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) return result;
        text.remove_prefix(end + 1);
    }
}

const ParameterOption& optionNamed(const std::vector<ParameterOption>& options, const std::string& name) {
    std::vector<std::string> names;
    for (const ParameterOption& option : options) {
        if (isLayer(option.parameter)) continue;
        if (option.name == name) return option;
        names.push_back(option.name);
    }
    throw UsageError(fmt::format(
        "--over takes a parameter and its values, like focal-point=0:100:25; there is no parameter \"{}\"{}",
        name, suggestion(name, names)));
}

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

double number(const std::string& text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    if (parsed.ec != std::errc() || parsed.ptr != end || !std::isfinite(value)) return kNoNumber;
    return value;
}

// "0:100:25" as the texts of the values. The last is there where a whole number of steps comes to it.
std::vector<std::string> rangeTexts(const std::string& name, const std::string& text) {
    const std::vector<std::string> ends = parts(text, ':');
    const auto at = [&](std::size_t i) { return ends.size() == 3 ? number(ends[i]) : kNoNumber; };
    const double first = at(0);
    const double step = at(2);
    const double steps = (at(1) - first) / step;
    if (!(steps >= 0 && steps < static_cast<double>(kMostValues)))
        throw UsageError(fmt::format(
            "--over {0} takes FIRST:LAST:STEP of at most {1} values, like {0}=0:100:25, not \"{2}\"", name,
            kMostValues, text));
    constexpr double kRounding = 1e-9;  // of a step, for steps like 0.1
    std::vector<std::string> texts;
    for (int i = 0; i <= static_cast<int>(std::floor(steps + kRounding)); ++i)
        texts.push_back(formatNumber(first + i * step));
    return texts;
}

}  // namespace

SheetAxis parseSheetAxis(const std::vector<ParameterOption>& options, std::string_view text) {
    const std::size_t end = std::min(text.find('='), text.size());
    const std::string name(text.substr(0, end));
    SheetAxis axis{optionNamed(options, name), {}};
    const std::string values(text.substr(std::min(end + 1, text.size())));
    const bool isRange = values.find(':') != std::string::npos;
    for (const std::string& value : isRange ? rangeTexts(name, values) : parts(values, ',')) {
        const auto setting = parseSetting(axis.option.parameter, value);
        if (!setting)
            throw UsageError(fmt::format("--over {} takes {}, not \"{}\"", name,
                                         expectedValue(axis.option.parameter), value));
        axis.values.push_back(*setting);
    }
    if (axis.values.size() > kMostValues)
        throw UsageError(fmt::format("--over {} takes at most {} values", name, kMostValues));
    return axis;
}

}  // namespace perch
