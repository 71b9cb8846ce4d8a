#include "Drawing.h"

#include <cmath>
#include <span>
#include <type_traits>
#include <vector>

#include "PixelAccess.h"
#include "PixelSums.h"
#include "RowRunner.h"
#include "ScaleAxis.h"

namespace perch {
namespace {

// A drawn pixel onto the one that is there: mixed by opacity, or its colours alone.
template <class P>
void put(P& out, const P& drawn, const Placement& placement) {
    P result = drawn;
    if (placement.opacity < 1) {
        constexpr std::uint64_t kOne = 65536;
        const auto share = static_cast<std::uint64_t>(std::lround(std::max(placement.opacity, 0.0) * kOne));
        SumsOf<P> sums;
        sums.add(drawn, share);
        sums.add(out, kOne - share);
        result = sums.template pixel<P>(kOne);
    }
    out = placement.rgbOnly ? keptAlpha(result, out.alpha) : result;
}

template <class P>
void putRow(const std::vector<P>& drawn, const Placement& placement, P* out) {
    if (placement.opacity >= 1 && !placement.rgbOnly) {
        std::ranges::copy(drawn, out);
        return;
    }
    for (std::size_t x = 0; x < drawn.size(); ++x)
        put(out[x], drawn[x], placement);
}

// Scales have weights along each axis alone; a pixel's weights are their products.
template <class P>
SumsOf<P> sumsOf(const PF_EffectWorld& from, const ScaleAxis::Taps& columns, const ScaleAxis::Taps& rows) {
    SumsOf<P> sums;
    std::int32_t y = rows.first;
    for (const std::uint32_t rowWeight : rows.weights) {
        const P* pixel = rowOf<P>(from, y++) + columns.first;
        for (const std::uint32_t columnWeight : columns.weights)
            sums.add(*pixel++, std::uint64_t{rowWeight} * columnWeight);
    }
    return sums;
}

// Draws rows of opaque pixels, which most pictures are made of: alpha falls out of the sums, so that they
// stay small, and the weights of the rows are applied to whole rows first.
template <class P>
class OpaqueRows {
public:
    OpaqueRows(const PF_EffectWorld& from, const ScaleAxis& columns)
        : from(from),
          columns(columns),
          range(columns.range()),
          sums(static_cast<std::size_t>(range.end - range.begin) * kChannels) {}

    // Whether all that the rows hold for the columns is opaque.
    bool areUnder(const ScaleAxis::Taps& rows) const {
        for (std::int32_t y = rows.first; y < rows.end(); ++y) {
            if (!isOpaque(pixelsOf(y))) return false;
        }
        return !rows.weights.empty();
    }

    void draw(const ScaleAxis::Taps& rows, P* out) {
        addRows(rows);
        for (std::size_t x = 0; x < columns.size(); ++x)
            out[x] = pixel(columns[x]);
    }

private:
    static constexpr std::size_t kChannels = 4;
    // A channel times weights of both axes, 22 bits in all.
    using Sum = std::conditional_t<kWhite<P> <= 255, std::uint32_t, std::uint64_t>;

    // Those of the range in row y.
    std::span<const P> pixelsOf(std::int32_t y) const {
        return {rowOf<P>(from, y) + range.begin, static_cast<std::size_t>(range.end - range.begin)};
    }

    void addRows(const ScaleAxis::Taps& rows) {
        std::ranges::fill(sums, 0);
        std::int32_t y = rows.first;
        for (const std::uint32_t weight : rows.weights) {
            const ChannelOf<P>* const channels = channelsOf(pixelsOf(y++));
            for (std::size_t i = 0; i < sums.size(); ++i)
                sums[i] += weight * channels[i];
        }
    }

    P pixel(const ScaleAxis::Taps& taps) const {
        if (taps.weights.empty()) return {};
        const std::uint32_t* column = &sums[static_cast<std::size_t>(taps.first - range.begin) * kChannels];
        Sum red = kHalf;
        Sum green = kHalf;
        Sum blue = kHalf;
        for (const std::uint32_t weight : taps.weights) {
            red += Sum{weight} * column[1];
            green += Sum{weight} * column[2];
            blue += Sum{weight} * column[3];
            column += kChannels;
        }
        return {kWhite<P>, static_cast<ChannelOf<P>>(red / kOne), static_cast<ChannelOf<P>>(green / kOne),
                static_cast<ChannelOf<P>>(blue / kOne)};
    }

    static constexpr Sum kOne = Sum{ScaleAxis::kOne} * ScaleAxis::kOne;
    static constexpr Sum kHalf = kOne / 2;

    const PF_EffectWorld& from;
    const ScaleAxis& columns;
    const ScaleAxis::Range range;
    std::vector<std::uint32_t> sums;  // of the channels of each pixel in the range, over the rows
};

// Floating-point rows have no such shortcut.
struct NoOpaqueRows {
    NoOpaqueRows(const PF_EffectWorld&, const ScaleAxis&) {}
    bool areUnder(const ScaleAxis::Taps&) const { return false; }
    void draw(const ScaleAxis::Taps&, PF_PixelFloat*) {}
};

template <class P>
using RowDrawer = std::conditional_t<kHasWholeChannels<P>, OpaqueRows<P>, NoOpaqueRows>;

template <class P>
void drawScaled(const PF_EffectWorld& from, const Affine& toSource, const Placement& placement,
                const PF_Rect& area, const RowRunner& runner, const PF_EffectWorld& to) {
    constexpr std::uint64_t kOne = std::uint64_t{ScaleAxis::kOne} * ScaleAxis::kOne;
    const ScaleAxis columns(area.left, area.right, toSource.xx, toSource.dx, from.width);
    const ScaleAxis rows(area.top, area.bottom, toSource.yy, toSource.dy, from.height);
    const auto drawRow = [&](const ScaleAxis::Taps& rowTaps, P* out) {
        for (std::size_t x = 0; x < columns.size(); ++x)
            out[x] = sumsOf<P>(from, columns[x], rowTaps).template pixel<P>(kOne);
    };
    runner.run([&](std::int32_t firstY, std::int32_t lastY) {
        RowDrawer<P> opaqueRows(from, columns);
        std::vector<P> drawn(columns.size());
        for (std::int32_t y = firstY; y < lastY; ++y) {
            const ScaleAxis::Taps rowTaps = rows[static_cast<std::size_t>(y - area.top)];
            if (opaqueRows.areUnder(rowTaps)) {
                opaqueRows.draw(rowTaps, drawn.data());
            } else {
                drawRow(rowTaps, drawn.data());
            }
            putRow<P>(drawn, placement, rowOf<P>(to, y) + area.left);
        }
    });
}

constexpr std::uint64_t kSampleOne = 256;  // weights of a linear sample along one axis

template <class P>
void addLinearSample(SumsOf<P>& sums, const PF_EffectWorld& from, double x, double y) {
    constexpr double kFar = 1e9;
    if (!(std::abs(x) < kFar && std::abs(y) < kFar)) return;
    const double left = std::floor(x - 0.5);
    const double top = std::floor(y - 0.5);
    const auto right = static_cast<std::uint64_t>(std::lround((x - 0.5 - left) * kSampleOne));
    const auto below = static_cast<std::uint64_t>(std::lround((y - 0.5 - top) * kSampleOne));
    const auto column = static_cast<std::int64_t>(left);
    const auto row = static_cast<std::int64_t>(top);
    sums.add(pixelOrNothing<P>(from, column, row), (kSampleOne - right) * (kSampleOne - below));
    sums.add(pixelOrNothing<P>(from, column + 1, row), right * (kSampleOne - below));
    sums.add(pixelOrNothing<P>(from, column, row + 1), (kSampleOne - right) * below);
    sums.add(pixelOrNothing<P>(from, column + 1, row + 1), right * below);
}

template <class P>
void drawSampled(const PF_EffectWorld& from, const Affine& toSource, const Placement& placement,
                 const PF_Rect& area, const RowRunner& runner, const PF_EffectWorld& to) {
    // As many samples along each side of a pixel as source pixels it covers, eight at most.
    const double covered =
        std::max(std::hypot(toSource.xx, toSource.xy), std::hypot(toSource.yx, toSource.yy));
    const int side = static_cast<int>(std::clamp(std::ceil(covered), 1.0, 8.0));
    const std::uint64_t one =
        kSampleOne * kSampleOne * static_cast<std::uint64_t>(side) * static_cast<std::uint64_t>(side);
    const auto drawPixel = [&](std::int32_t x, std::int32_t y, P& out) {
        SumsOf<P> sums;
        for (int sample = 0; sample < side * side; ++sample) {
            const double px = x + (sample % side + 0.5) / side;
            const double py = y + (sample / side + 0.5) / side;
            addLinearSample<P>(sums, from, px * toSource.xx + py * toSource.yx + toSource.dx,
                               px * toSource.xy + py * toSource.yy + toSource.dy);
        }
        put(out, sums.template pixel<P>(one), placement);
    };
    runner.run([&](std::int32_t firstY, std::int32_t lastY) {
        for (std::int32_t y = firstY; y < lastY; ++y) {
            for (std::int32_t x = area.left; x < area.right; ++x)
                drawPixel(x, y, rowOf<P>(to, y)[x]);
        }
    });
}

}  // namespace

void drawWorld(const PF_EffectWorld& from, const Affine& toSource, const Placement& placement,
               const PF_Rect& area, WorkerPool* workers, const PF_EffectWorld& to) {
    const RowRunner runner(area, workers);
    const bool isScale = toSource.xy == 0 && toSource.yx == 0;
    forAnyDepth(to, [&]<class P>() {
        if (isScale) {
            drawScaled<P>(from, toSource, placement, area, runner, to);
        } else {
            drawSampled<P>(from, toSource, placement, area, runner, to);
        }
    });
}

}  // namespace perch
