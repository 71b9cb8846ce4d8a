#include "Sampling.h"

#include "PixelAccess.h"

namespace perch {
namespace {

constexpr std::int64_t kOne = 65536;

// How far each column or row of a span reaches into the interval [low, high), in 16.16; element i covers
// [i - 1/2, i + 1/2).
std::int64_t coverage(std::int64_t i, std::int64_t low, std::int64_t high) {
    return std::min(high, i * kOne + kOne / 2) - std::max(low, i * kOne - kOne / 2);
}

// The mean over a rectangle in 16.16. Coverages are reduced to 8 bits after the point, so that the sums fit.
template <class P>
PF_Err sampleRectangle(const PF_EffectWorld& world, std::int64_t left, std::int64_t top, std::int64_t right,
                       std::int64_t bottom, P& sample) {
    if (isDeep(world) != (sizeof(P) == sizeof(PF_Pixel16))) return PF_Err_BAD_CALLBACK_PARAM;
    sample = {};
    if (!hasPixels(world)) return PF_Err_NONE;
    const auto element = [](std::int64_t position) { return (position + kOne / 2) >> 16; };
    const std::int64_t firstX = std::max<std::int64_t>(element(left), 0);
    const std::int64_t lastX = std::min<std::int64_t>(element(right - 1), world.width - 1);
    const std::int64_t firstY = std::max<std::int64_t>(element(top), 0);
    const std::int64_t lastY = std::min<std::int64_t>(element(bottom - 1), world.height - 1);
    std::uint64_t alpha = 0;
    double red = 0;
    double green = 0;
    double blue = 0;
    for (std::int64_t y = firstY; y <= lastY; ++y) {
        const auto weightY = static_cast<std::uint64_t>(coverage(y, top, bottom) >> 8);
        const P* const row = rowOf<P>(world, static_cast<std::int32_t>(y));
        for (std::int64_t x = firstX; x <= lastX; ++x) {
            const std::uint64_t share =
                row[x].alpha * weightY * static_cast<std::uint64_t>(coverage(x, left, right) >> 8);
            alpha += share;
            red += static_cast<double>(share * row[x].red);
            green += static_cast<double>(share * row[x].green);
            blue += static_cast<double>(share * row[x].blue);
        }
    }
    const std::uint64_t area =
        static_cast<std::uint64_t>((right - left) >> 8) * static_cast<std::uint64_t>((bottom - top) >> 8);
    if (alpha == 0 || area == 0) return PF_Err_NONE;
    const auto colour = [alpha](double sum) {
        return static_cast<ChannelOf<P>>(sum / static_cast<double>(alpha) + 0.5);
    };
    sample = {static_cast<ChannelOf<P>>(std::min<std::uint64_t>((alpha + area / 2) / area, kWhite<P>)),
              colour(red), colour(green), colour(blue)};
    return PF_Err_NONE;
}

}  // namespace

PF_Err sampleLinear(const PF_EffectWorld& world, PF_Fixed x, PF_Fixed y, PF_Pixel& sample) {
    return sampleArea(world, x, y, kOne / 2, kOne / 2, sample);
}

PF_Err sampleLinear(const PF_EffectWorld& world, PF_Fixed x, PF_Fixed y, PF_Pixel16& sample) {
    return sampleArea(world, x, y, kOne / 2, kOne / 2, sample);
}

PF_Err sampleArea(const PF_EffectWorld& world, PF_Fixed x, PF_Fixed y, PF_Fixed radiusX, PF_Fixed radiusY,
                  PF_Pixel& sample) {
    return sampleRectangle(world, std::int64_t{x} - radiusX, std::int64_t{y} - radiusY,
                           std::int64_t{x} + radiusX, std::int64_t{y} + radiusY, sample);
}

PF_Err sampleArea(const PF_EffectWorld& world, PF_Fixed x, PF_Fixed y, PF_Fixed radiusX, PF_Fixed radiusY,
                  PF_Pixel16& sample) {
    return sampleRectangle(world, std::int64_t{x} - radiusX, std::int64_t{y} - radiusY,
                           std::int64_t{x} + radiusX, std::int64_t{y} + radiusY, sample);
}

}  // namespace perch
