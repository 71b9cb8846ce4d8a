#include "NaiveBlur.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace oracle {

namespace {

const Colour& AtNearest(const Image& image, int x, int y) {
    return image.at(std::clamp(x, 0, image.width - 1), std::clamp(y, 0, image.height - 1));
}

// Sums and box areas are those of 32-bit arithmetic: a box whose sum needs more wraps.
Colour BoxMean(const Image& image, int x, int y, int radiusX, int radiusY) {
    Colour sum{};
    for (int dy = -radiusY; dy <= radiusY; ++dy) {
        for (int dx = -radiusX; dx <= radiusX; ++dx) {
            const Colour& pixel = AtNearest(image, x + dx, y + dy);
            for (std::size_t channel = 0; channel < sum.size(); ++channel)
                sum[channel] += pixel[channel];
        }
    }
    const auto area = static_cast<std::uint32_t>((2 * radiusX + 1) * (2 * radiusY + 1));
    for (std::uint32_t& value : sum)
        value /= area;
    return sum;
}

// The weighted sum is formed in integers, and exact. A blur from second-order tables of doubles, SATTentBlur,
// has the same sums only while its table entries are whole numbers below 2^53: with w x h cells they are at
// most full * w (w + 1) / 2 * h (h + 1) / 2, and the nine terms of a read-out add up to no more than sixteen
// times that. For images up to 64 x 48 and tables for radii up to 80 this is below 2^49. The normalisation
// rounds, and it is one product and one sum on both sides.
Colour TentMean(const Image& image, int x, int y, int halfX, int halfY) {
    std::array<std::uint64_t, 4> sum{};
    for (int dy = 1 - halfY; dy < halfY; ++dy) {
        for (int dx = 1 - halfX; dx < halfX; ++dx) {
            const auto weight = static_cast<std::uint64_t>((halfX - std::abs(dx)) * (halfY - std::abs(dy)));
            const Colour& pixel = AtNearest(image, x + dx, y + dy);
            for (std::size_t channel = 0; channel < sum.size(); ++channel)
                sum[channel] += weight * pixel[channel];
        }
    }
    const double reciprocal = 1.0 / static_cast<double>(std::int64_t{halfX} * halfY * halfX * halfY);
    Colour result{};
    for (std::size_t channel = 0; channel < sum.size(); ++channel)
        result[channel] = static_cast<std::uint32_t>(static_cast<double>(sum[channel]) * reciprocal + 0.5);
    return result;
}

std::int64_t Interpolated(std::int64_t from, std::int64_t to, std::int64_t fraction) {
    return from + FloorDivide(fraction * (to - from) + 32768, 65536);
}

struct FixedRadius {
    int whole;
    std::int64_t fraction;  // of 65536
};

// Held at half of the border, in 16.16.
FixedRadius Held(std::int32_t radius, int border) {
    const std::int64_t held = std::min<std::int64_t>(radius, std::int64_t{border} * 32768);
    const std::int64_t whole = FloorDivide(held, 65536);
    return {static_cast<int>(whole), held - whole * 65536};
}

}  // namespace

Blur MakeBlur(Shape shape, const Image& source, int radiusX, int radiusY) {
    const int extra = shape == Shape::kTent ? 2 : 0;
    radiusX += extra;
    radiusY += extra;
    const float limit = 4166118400.0F;
    float product = static_cast<float>(radiusX) * static_cast<float>(radiusY);
    product = product * static_cast<float>(source.full);
    if (product > limit) {
        const float quotient = limit / product;
        const float scale = std::sqrt(quotient);
        radiusX = static_cast<int>(static_cast<float>(radiusX) * scale);
        radiusY = static_cast<int>(static_cast<float>(radiusY) * scale);
    }
    Blur blur{shape, source, radiusX + 1, radiusY + 1};
    for (Colour& pixel : blur.premultiplied.values)
        pixel = Premultiplied(pixel, source.full);
    return blur;
}

Colour ReadWhole(const Blur& blur, int x, int y, int radiusX, int radiusY) {
    const int largestX = blur.borderX - 1;
    const int largestY = blur.borderY - 1;
    if (blur.shape == Shape::kBox) {
        return BoxMean(blur.premultiplied, x, y, std::clamp(radiusX, 0, largestX),
                       std::clamp(radiusY, 0, largestY));
    }
    return TentMean(blur.premultiplied, x, y, std::min(radiusX + 1, largestX),
                    std::min(radiusY + 1, largestY));
}

Colour ReadFractional(const Blur& blur, int x, int y, std::int32_t radiusX, std::int32_t radiusY) {
    const FixedRadius fixedX = Held(radiusX, blur.borderX);
    const FixedRadius fixedY = Held(radiusY, blur.borderY);
    const Colour c00 = ReadWhole(blur, x, y, fixedX.whole, fixedY.whole);
    const Colour c10 = ReadWhole(blur, x, y, fixedX.whole + 1, fixedY.whole);
    const Colour c01 = ReadWhole(blur, x, y, fixedX.whole, fixedY.whole + 1);
    Colour mixed{};
    for (std::size_t channel = 0; channel < mixed.size(); ++channel) {
        const std::int64_t horizontal = Interpolated(c00[channel], c10[channel], fixedX.fraction);
        const std::int64_t vertical = Interpolated(c00[channel], c01[channel], fixedY.fraction);
        mixed[channel] = static_cast<std::uint32_t>(FloorDivide(horizontal + vertical, 2));
    }
    return Straightened(mixed, blur.premultiplied.full);
}

}  // namespace oracle
