#include "DepthRange.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <type_traits>

namespace pictures {
namespace {

constexpr double kNothing = 1e10;  // what renderers write where there is nothing to see

bool isDepth(double value) {
    return std::isfinite(value) && value < kNothing;
}

// Calls `body` with every colour sample, whole numbers as 0 to 1.
template <typename F>
void forEachDepth(const Picture& picture, const F& body) {
    std::visit(
        [&]<typename T>(const std::vector<T>& samples) {
            const std::size_t colours = picture.hasAlpha() ? picture.channels - 1 : picture.channels;
            for (std::size_t i = 0; i < samples.size(); ++i) {
                double value = static_cast<double>(samples[i]);
                if constexpr (std::is_integral_v<T>) value /= std::numeric_limits<T>::max();
                body(i, value, i % picture.channels < colours);
            }
        },
        picture.samples);
}

bool parseNumber(std::string_view& text, double& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || !std::isfinite(number)) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

}  // namespace

std::optional<DepthRange> parseDepthRange(std::string_view text) {
    DepthRange range;
    if (!parseNumber(text, range.near) || !text.starts_with(':')) return std::nullopt;
    text.remove_prefix(1);
    if (!parseNumber(text, range.far)) return std::nullopt;
    range.isReciprocal = text == ":reciprocal";
    if (!text.empty() && !range.isReciprocal) return std::nullopt;
    if (range.near == range.far) return std::nullopt;
    if (range.isReciprocal && (range.near <= 0 || range.far <= 0)) return std::nullopt;
    return range;
}

std::string textOf(const DepthRange& range) {
    return fmt::format("{:.6g}:{:.6g}{}", range.near, range.far, range.isReciprocal ? ":reciprocal" : "");
}

std::optional<Extent> extentOf(const Picture& picture) {
    std::optional<Extent> extent;
    forEachDepth(picture, [&](std::size_t, double value, bool isColour) {
        if (!isColour || !isDepth(value)) return;
        if (!extent) extent = Extent{value, value};
        extent->least = std::min(extent->least, value);
        extent->greatest = std::max(extent->greatest, value);
    });
    return extent;
}

bool hasInfinity(const Picture& picture) {
    bool isFound = false;
    forEachDepth(picture, [&](std::size_t, double value, bool isColour) {
        isFound = isFound || (isColour && !isDepth(value) && !std::isnan(value));
    });
    return isFound;
}

std::optional<DepthRange> usualRange(const Picture& picture) {
    std::vector<double> depths;
    forEachDepth(picture, [&](std::size_t, double value, bool isColour) {
        if (isColour && isDepth(value)) depths.push_back(value);
    });
    if (depths.empty()) return std::nullopt;
    const auto percentile = [&](double share) {
        const auto place = static_cast<std::ptrdiff_t>(share * static_cast<double>(depths.size() - 1));
        std::nth_element(depths.begin(), depths.begin() + place, depths.end());
        return depths[static_cast<std::size_t>(place)];
    };
    const DepthRange range{percentile(0.005), percentile(0.995), false};
    if (range.near == range.far) return std::nullopt;
    return range;
}

Picture ranged(const Picture& picture, const DepthRange& range) {
    const auto scale = [&](double depth) { return range.isReciprocal ? 1 / depth : depth; };
    const double far = scale(range.far);
    const double width = scale(range.near) - far;
    // Beyond far on the side that is away from near; on the other side nothing is nearer than white.
    const auto whiteOf = [&](double depth) {
        if (!isDepth(depth)) return 0.0;
        if (range.isReciprocal && depth <= 0) return 1.0;
        return std::clamp((scale(depth) - far) / width, 0.0, 1.0);
    };
    Picture result = newPicture(picture.width, picture.height, picture.channels, SampleType::Bits16);
    auto& codes = std::get<std::vector<std::uint16_t>>(result.samples);
    forEachDepth(picture, [&](std::size_t i, double value, bool isColour) {
        const double share = isColour ? whiteOf(value) : std::clamp(value, 0.0, 1.0);
        codes[i] = static_cast<std::uint16_t>(std::lround(share * std::numeric_limits<std::uint16_t>::max()));
    });
    return result;
}

}  // namespace pictures
