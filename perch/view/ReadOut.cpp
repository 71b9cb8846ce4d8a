#include "ReadOut.h"

#include <algorithm>
#include <cmath>
#include <variant>

#include "CodeRows.h"
#include "PixelAccess.h"

namespace perch {
namespace {

double whiteOf(const pictures::Picture& picture) {
    if (picture.type() == pictures::SampleType::Bits8) return 255;
    return picture.type() == pictures::SampleType::Bits16 ? 65535 : 1;
}

template <typename P>
std::array<double, 4> codesOf(const World& world, std::int32_t x, std::int32_t y, std::uint32_t white) {
    const P& pixel = rowOf<P>(world.record(), y)[x];
    const auto code = [white](std::uint32_t channel) {
        return static_cast<double>(
            pictures::rescale(std::min<std::uint32_t>(channel, kWhite<P>), kWhite<P>, white));
    };
    return {code(pixel.red), code(pixel.green), code(pixel.blue), code(pixel.alpha)};
}

}  // namespace

std::array<double, 4> codesAt(const World& world, std::int32_t x, std::int32_t y, bool isFor16Bits) {
    const std::uint32_t white = isFor16Bits ? 65535 : 255;
    return world.isDeep() ? codesOf<PF_Pixel16>(world, x, y, white) : codesOf<PF_Pixel>(world, x, y, white);
}

std::array<double, 4> codesAt(const pictures::Picture& picture, std::int32_t x, std::int32_t y) {
    const std::size_t first =
        static_cast<std::size_t>(y) * picture.rowSamples() + static_cast<std::size_t>(x) * picture.channels;
    const auto sample = [&](std::size_t channel) {
        return std::visit([&](const auto& samples) { return static_cast<double>(samples[first + channel]); },
                          picture.samples);
    };
    const bool isGrey = picture.channels < 3;
    const double alpha = picture.hasAlpha() ? sample(picture.channels - 1) : whiteOf(picture);
    return {sample(0), sample(isGrey ? 0 : 1), sample(isGrey ? 0 : 2), alpha};
}

double shareAt(const pictures::Picture& picture, std::int32_t x, std::int32_t y, const std::string& channel) {
    std::array<double, 4> shares = codesAt(picture, x, y);
    for (double& share : shares)
        share /= whiteOf(picture);
    const auto [red, green, blue, alpha] = shares;
    if (channel == "Alpha") return alpha;
    if (channel == "Red") return red;
    if (channel == "Green") return green;
    if (channel == "Blue") return blue;
    const auto [least, most] = std::minmax({red, green, blue});
    if (channel == "Lightness") return (least + most) / 2;
    if (channel == "Brightness") return most;
    return 0.299 * red + 0.587 * green + 0.114 * blue;
}

std::vector<std::int64_t> histogramOf(const pictures::Picture& picture, const std::string& channel) {
    constexpr double kPixels = 1 << 20;
    const double pixels = static_cast<double>(picture.width) * picture.height;
    const auto step = std::max(1, static_cast<std::int32_t>(std::sqrt(pixels / kPixels)));
    std::vector<std::int64_t> bins(256);
    for (std::int32_t y = 0; y < picture.height; y += step) {
        for (std::int32_t x = 0; x < picture.width; x += step) {
            const double share = shareAt(picture, x, y, channel);
            if (!std::isnan(share))
                ++bins[static_cast<std::size_t>(std::lround(255 * std::clamp(share, 0.0, 1.0)))];
        }
    }
    return bins;
}

double distanceOf(double share, const pictures::DepthRange& range) {
    if (!range.isReciprocal) return range.far - share * (range.far - range.near);
    return 1 / (1 / range.far + share * (1 / range.near - 1 / range.far));
}

}  // namespace perch
