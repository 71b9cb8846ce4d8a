// Drawing a world through a matrix: separable and exact for scales, sampled for everything else.
#include <array>
#include <cmath>
#include <vector>

#include "PixelAccess.h"
#include "PixelOps.h"

namespace perch {
namespace {

// x' = xx x + yx y + dx, y' = xy x + yy y + dy.
struct Affine {
    double xx, xy;
    double yx, yy;
    double dx, dy;
};

bool isAffine(const PF_FloatMatrix& m) {
    return m.mat[0][2] == 0 && m.mat[1][2] == 0 && m.mat[2][2] == 1;
}

Affine affineOf(const PF_FloatMatrix& m) {
    return {m.mat[0][0], m.mat[0][1], m.mat[1][0], m.mat[1][1], m.mat[2][0], m.mat[2][1]};
}

Affine inverseOf(const Affine& m) {
    const double r = 1 / (m.xx * m.yy - m.xy * m.yx);
    return {m.yy * r,
            -m.xy * r,
            -m.yx * r,
            m.xx * r,
            (m.yx * m.dy - m.yy * m.dx) * r,
            (m.xy * m.dx - m.xx * m.dy) * r};
}

bool isUsable(const Affine& m) {
    const double determinant = m.xx * m.yy - m.xy * m.yx;
    return std::isfinite(determinant) && determinant != 0 && std::isfinite(1 / determinant) &&
           std::isfinite(m.dx) && std::isfinite(m.dy);
}

// Premultiplied sums of weighted pixels; weights are whole numbers, so that every machine rounds alike.
struct Sums {
    std::uint64_t alpha = 0;
    std::uint64_t red = 0;
    std::uint64_t green = 0;
    std::uint64_t blue = 0;

    template <class P>
    void add(const P& p, std::uint64_t weight) {
        const std::uint64_t share = p.alpha * weight;
        alpha += share;
        red += share * p.red;
        green += share * p.green;
        blue += share * p.blue;
    }

    // The straight pixel, for weights that add up to `one`.
    template <class P>
    P pixel(std::uint64_t one) const {
        if (alpha == 0) return {};
        const auto colour = [this](std::uint64_t sum) {
            return static_cast<ChannelOf<P>>((sum + alpha / 2) / alpha);
        };
        return {static_cast<ChannelOf<P>>((alpha + one / 2) / one), colour(red), colour(green), colour(blue)};
    }
};

template <class P>
P keptAlpha(const P& p, ChannelOf<P> alpha) {
    return {alpha, p.red, p.green, p.blue};
}

// A drawn pixel onto the one that is there: mixed by opacity, or its colours alone.
template <class P>
void put(P& out, const P& drawn, const Placement& placement) {
    P result = drawn;
    if (placement.opacity < 1) {
        constexpr std::uint64_t kOne = 65536;
        const auto share = static_cast<std::uint64_t>(std::lround(std::max(placement.opacity, 0.0) * kOne));
        Sums sums;
        sums.add(drawn, share);
        sums.add(out, kOne - share);
        result = sums.pixel<P>(kOne);
    }
    out = placement.rgbOnly ? keptAlpha(result, out.alpha) : result;
}

// The source elements that make up one destination element along one axis, and their weights, which add up to
// kAxisOne. Weights are 11 bits, so that a product of two with alpha and a 16-bit colour stays in 64 bits
// with room for the sums.
constexpr std::uint32_t kAxisOne = 2048;

struct Tap {
    std::int32_t index;
    std::uint32_t weight;
};

struct Axis {
    std::vector<std::vector<Tap>> taps;  // per destination element of the area; empty outside the source
};

// Real weights as whole ones with an exact sum; what rounding leaves goes to the largest.
std::vector<Tap> wholeTaps(const std::vector<std::pair<std::int32_t, double>>& real) {
    double total = 0;
    for (const auto& [index, weight] : real)
        total += weight;
    std::vector<Tap> taps;
    std::uint32_t sum = 0;
    std::size_t largest = 0;
    for (const auto& [index, weight] : real) {
        const auto whole = static_cast<std::uint32_t>(std::lround(weight / total * kAxisOne));
        taps.push_back({index, whole});
        sum += whole;
        if (whole > taps[largest].weight) largest = taps.size() - 1;
    }
    taps[largest].weight += kAxisOne - sum;
    return taps;
}

// Maps destination elements [first, last) to a source of `size` elements by source = (d + 0.5) * scale +
// shift.
Axis axisOf(std::int32_t first, std::int32_t last, double scale, double shift, std::int32_t size) {
    Axis axis;
    const double extent = std::abs(scale);
    const auto clampedIndex = [size](double position) {
        return static_cast<std::int32_t>(std::clamp(position, 0.0, static_cast<double>(size - 1)));
    };
    for (std::int32_t d = first; d < last; ++d) {
        const double centre = (d + 0.5) * scale + shift;
        std::vector<std::pair<std::int32_t, double>> real;
        if (centre > 0 && centre < size) {
            if (extent > 1) {  // shrinking: the mean over what the element covers
                const double low = std::max(centre - extent / 2, 0.0);
                const double high = std::min(centre + extent / 2, static_cast<double>(size));
                for (std::int32_t i = clampedIndex(std::floor(low)); i < size && i < high; ++i) {
                    const double covered = std::min(high, i + 1.0) - std::max(low, static_cast<double>(i));
                    if (covered > 0) real.emplace_back(i, covered);
                }
            } else {
                const double below = std::floor(centre - 0.5);
                const double fraction = centre - 0.5 - below;
                real.emplace_back(clampedIndex(below), 1 - fraction);
                if (fraction > 0) real.emplace_back(clampedIndex(below + 1), fraction);
            }
        }
        axis.taps.push_back(real.empty() ? std::vector<Tap>{} : wholeTaps(real));
    }
    return axis;
}

// Scales have weights along each axis alone; a pixel's weights are their products.
template <class P>
void drawScaled(const PF_EffectWorld& from, const Affine& toSource, const Placement& placement,
                const PF_Rect& area, PF_EffectWorld& to) {
    const Axis columns = axisOf(area.left, area.right, toSource.xx, toSource.dx, from.width);
    const Axis rows = axisOf(area.top, area.bottom, toSource.yy, toSource.dy, from.height);
    for (std::int32_t y = area.top; y < area.bottom; ++y) {
        P* const out = rowOf<P>(to, y);
        const auto& rowTaps = rows.taps[static_cast<std::size_t>(y - area.top)];
        for (std::int32_t x = area.left; x < area.right; ++x) {
            const auto& columnTaps = columns.taps[static_cast<std::size_t>(x - area.left)];
            Sums sums;
            for (const Tap& row : rowTaps) {
                const P* const in = rowOf<P>(from, row.index);
                for (const Tap& column : columnTaps) {
                    sums.add(in[column.index], std::uint64_t{row.weight} * column.weight);
                }
            }
            const std::uint64_t one = std::uint64_t{kAxisOne} * kAxisOne;
            put(out[x], sums.template pixel<P>(one), placement);
        }
    }
}

// The pixel at whole coordinates; outside the source is transparent.
template <class P>
P pixelAt(const PF_EffectWorld& from, std::int64_t x, std::int64_t y) {
    if (x < 0 || y < 0 || x >= from.width || y >= from.height) return {};
    return rowOf<P>(from, static_cast<std::int32_t>(y))[x];
}

constexpr std::uint64_t kSampleOne = 256;  // weights of a linear sample along one axis

template <class P>
void addLinearSample(Sums& sums, const PF_EffectWorld& from, double x, double y) {
    constexpr double kFar = 1e9;
    if (!(std::abs(x) < kFar && std::abs(y) < kFar)) return;
    const double left = std::floor(x - 0.5);
    const double top = std::floor(y - 0.5);
    const auto right = static_cast<std::uint64_t>(std::lround((x - 0.5 - left) * kSampleOne));
    const auto below = static_cast<std::uint64_t>(std::lround((y - 0.5 - top) * kSampleOne));
    const auto column = static_cast<std::int64_t>(left);
    const auto row = static_cast<std::int64_t>(top);
    sums.add(pixelAt<P>(from, column, row), (kSampleOne - right) * (kSampleOne - below));
    sums.add(pixelAt<P>(from, column + 1, row), right * (kSampleOne - below));
    sums.add(pixelAt<P>(from, column, row + 1), (kSampleOne - right) * below);
    sums.add(pixelAt<P>(from, column + 1, row + 1), right * below);
}

template <class P>
void drawSampled(const PF_EffectWorld& from, const Affine& toSource, const Placement& placement,
                 const PF_Rect& area, PF_EffectWorld& to) {
    // As many samples along each side of a pixel as source pixels it covers, eight at most.
    const double covered =
        std::max(std::hypot(toSource.xx, toSource.xy), std::hypot(toSource.yx, toSource.yy));
    const int side = static_cast<int>(std::clamp(std::ceil(covered), 1.0, 8.0));
    const std::uint64_t one =
        kSampleOne * kSampleOne * static_cast<std::uint64_t>(side) * static_cast<std::uint64_t>(side);
    for (std::int32_t y = area.top; y < area.bottom; ++y) {
        P* const out = rowOf<P>(to, y);
        for (std::int32_t x = area.left; x < area.right; ++x) {
            Sums sums;
            for (int sample = 0; sample < side * side; ++sample) {
                const double px = x + (sample % side + 0.5) / side;
                const double py = y + (sample / side + 0.5) / side;
                addLinearSample<P>(sums, from, px * toSource.xx + py * toSource.yx + toSource.dx,
                                   px * toSource.xy + py * toSource.yy + toSource.dy);
            }
            put(out[x], sums.template pixel<P>(one), placement);
        }
    }
}

}  // namespace

PF_Err transformWorld(const PF_EffectWorld& from, const PF_FloatMatrix& matrix, bool sourceToDestination,
                      const Placement& placement, const PF_Rect* toArea, PF_EffectWorld& to) {
    const Affine given = affineOf(matrix);
    if (isDeep(from) != isDeep(to) || placement.mode != PF_Xfer_COPY || !isAffine(matrix) ||
        !isUsable(given)) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (!hasPixels(from) || !hasPixels(to)) return PF_Err_NONE;
    const Affine toSource = sourceToDestination ? inverseOf(given) : given;
    const PF_Rect area = clipped(toArea, to);
    const bool isScale = toSource.xy == 0 && toSource.yx == 0;
    forDepth(to, [&]<class P>() {
        if (isScale) {
            drawScaled<P>(from, toSource, placement, area, to);
        } else {
            drawSampled<P>(from, toSource, placement, area, to);
        }
    });
    return PF_Err_NONE;
}

}  // namespace perch
