// Drawing a world through a matrix: separable and exact for scales, sampled for everything else.
#include "Transform.h"

#include <cmath>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

#include "PixelAccess.h"
#include "PixelOps.h"
#include "ScaleAxis.h"
#include "TransferModes.h"
#include "WorkerPool.h"
#include "World.h"

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

// The same for floating-point pixels, in floating point.
struct FloatSums {
    double alpha = 0;
    double red = 0;
    double green = 0;
    double blue = 0;

    void add(const PF_PixelFloat& p, std::uint64_t weight) {
        const double share = static_cast<double>(p.alpha) * static_cast<double>(weight);
        alpha += share;
        red += share * static_cast<double>(p.red);
        green += share * static_cast<double>(p.green);
        blue += share * static_cast<double>(p.blue);
    }

    template <class P>
    P pixel(std::uint64_t one) const {
        if (alpha == 0) return {};
        const auto colour = [this](double sum) { return static_cast<float>(sum / alpha); };
        return {static_cast<float>(alpha / static_cast<double>(one)), colour(red), colour(green),
                colour(blue)};
    }
};

template <class P>
using SumsOf = std::conditional_t<kHasWholeChannels<P>, Sums, FloatSums>;

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

// How the rows of an area are shared out: each is drawn by one thread.
class RowRunner {
public:
    RowRunner(const PF_Rect& area, WorkerPool* workers) : area(area), workers(workers) {}

    // Calls draw(first, last) for bands of rows of the area.
    template <typename F>
    void run(const F& draw) const {
        constexpr std::int32_t kBand = 64;
        const std::int32_t bands = (area.bottom - area.top + kBand - 1) / kBand;
        const auto drawBand = [&](std::int32_t, std::int32_t band) {
            const std::int32_t first = area.top + band * kBand;
            draw(first, std::min(first + kBand, area.bottom));
        };
        if (workers != nullptr) return workers->run(bands, drawBand);
        for (std::int32_t band = 0; band < bands; ++band)
            drawBand(0, band);
    }

private:
    const PF_Rect& area;
    WorkerPool* const workers;
};

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
struct RowDrawerOf {
    using Type = OpaqueRows<P>;
};
template <>
struct RowDrawerOf<PF_PixelFloat> {
    using Type = NoOpaqueRows;
};
template <class P>
using RowDrawer = typename RowDrawerOf<P>::Type;

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

// The pixel at whole coordinates; outside the source is transparent.
template <class P>
P pixelOrNothing(const PF_EffectWorld& from, std::int64_t x, std::int64_t y) {
    if (x < 0 || y < 0 || x >= from.width || y >= from.height) return {};
    return rowOf<P>(from, static_cast<std::int32_t>(y))[x];
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

bool sharesPixels(const PF_EffectWorld& a, const PF_EffectWorld& b) {
    const auto begin = [](const PF_EffectWorld& world) {
        return reinterpret_cast<std::uintptr_t>(world.data);
    };
    const auto end = [&](const PF_EffectWorld& world) {
        return begin(world) + static_cast<std::uintptr_t>(std::int64_t{world.height} * world.rowbytes);
    };
    return begin(a) < end(b) && begin(b) < end(a);
}

World copyOf(const PF_EffectWorld& world) {
    World copy(world.width, world.height, depthOf(world));
    copyWorld(world, nullptr, copy.record(), nullptr);
    return copy;
}

void draw(const PF_EffectWorld& from, const Affine& toSource, const Placement& placement, const PF_Rect& area,
          WorkerPool* workers, const PF_EffectWorld& to) {
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

constexpr Placement kPlainCopy{PF_Xfer_COPY, 1.0, false, nullptr};

// Where a source that is only moved, by whole pixels, comes to lie; none for other matrices.
std::optional<PF_Rect> placeOf(const PF_EffectWorld& from, const Affine& toSource) {
    constexpr double kFar = 1e9;
    const auto isWhole = [](double shift) { return std::abs(shift) < kFar && std::trunc(shift) == shift; };
    if (toSource.xx != 1 || toSource.yy != 1 || toSource.xy != 0 || toSource.yx != 0 ||
        !isWhole(toSource.dx) || !isWhole(toSource.dy)) {
        return std::nullopt;
    }
    const auto left = -static_cast<A_long>(toSource.dx);
    const auto top = -static_cast<A_long>(toSource.dy);
    return PF_Rect{left, top, left + from.width, top + from.height};
}

// What the matrices draw in an area, as a world of its own: the mean of all.
World drawnApart(const PF_EffectWorld& from, const std::vector<Affine>& toSource, const PF_Rect& area,
                 WorkerPool* workers) {
    World drawn(area.right - area.left, area.bottom - area.top, depthOf(from));
    const PF_Rect whole = wholeOf(drawn.record());
    const auto drawOne = [&](const Affine& m) {
        const Affine shifted{m.xx,
                             m.xy,
                             m.yx,
                             m.yy,
                             m.dx + area.left * m.xx + area.top * m.yx,
                             m.dy + area.left * m.xy + area.top * m.yy};
        draw(from, shifted, kPlainCopy, whole, workers, drawn.record());
    };
    if (toSource.size() == 1) {
        Affine moved = toSource.front();
        moved.dx += area.left;
        moved.dy += area.top;
        // A copy keeps the colours of transparent pixels, which some modes add.
        if (const std::optional<PF_Rect> place = placeOf(from, moved)) {
            copyWorld(from, nullptr, drawn.record(), &*place);
        } else {
            drawOne(toSource.front());
        }
        return drawn;
    }
    forAnyDepth(from, [&]<class P>() {
        std::vector<SumsOf<P>> sums(static_cast<std::size_t>(drawn.width()) *
                                    static_cast<std::size_t>(drawn.height()));
        for (const Affine& m : toSource) {
            drawOne(m);
            auto sum = sums.begin();
            for (std::int32_t y = 0; y < drawn.height(); ++y)
                for (const P& pixel : pixelRow<P>(drawn.record(), y))
                    (sum++)->add(pixel, 1);
        }
        auto sum = sums.cbegin();
        for (std::int32_t y = 0; y < drawn.height(); ++y)
            for (P& pixel : pixelRow<P>(drawn.record(), y))
                pixel = (sum++)->template pixel<P>(toSource.size());
    });
    return drawn;
}

template <class P>
UnitPixel toUnit(const P& p) {
    if constexpr (kHasWholeChannels<P>) {
        constexpr double kOne = kWhite<P>;
        return {p.alpha / kOne, p.red / kOne, p.green / kOne, p.blue / kOne};
    } else {
        return {p.alpha, p.red, p.green, p.blue};
    }
}

template <class P>
P fromUnit(const UnitPixel& p) {
    const auto channel = [](double value) {
        if constexpr (kHasWholeChannels<P>) {
            constexpr double kOne = kWhite<P>;
            return static_cast<ChannelOf<P>>(std::floor(std::clamp(value, 0.0, 1.0) * kOne + 0.5));
        } else {
            return static_cast<float>(value);
        }
    };
    return {channel(p.alpha), channel(p.red), channel(p.green), channel(p.blue)};
}

// How much of each pixel of the source shows, as the alpha of a world of the source's size.
template <class P>
World coverageOf(const PF_MaskWorld& mask, const PF_EffectWorld& source) {
    World coverage(source.width, source.height, depthOf(source));
    for (std::int32_t y = 0; y < source.height; ++y) {
        P* const row = rowOf<P>(coverage.record(), y);
        for (std::int32_t x = 0; x < source.width; ++x) {
            const UnitPixel p = toUnit(pixelOrNothing<P>(mask.mask, std::int64_t{x} - mask.offset.h,
                                                         std::int64_t{y} - mask.offset.v));
            const bool isLuminance = (mask.what_is_mask & PF_MaskFlag_LUMINANCE) != 0;
            const double shown =
                isLuminance ? p.alpha * (0.3 * p.red + 0.59 * p.green + 0.11 * p.blue) : p.alpha;
            const bool isInverted = (mask.what_is_mask & PF_MaskFlag_INVERTED) != 0;
            row[x] = fromUnit<P>({isInverted ? 1 - shown : shown, 0, 0, 0});
        }
    }
    return coverage;
}

// Puts a drawn picture onto an area of its size, under a mask of that size or none.
template <class P>
void transfer(const World& drawn, const World* coverage, TransferFunction function,
              const Placement& placement, const PF_Rect& area, const RowRunner& runner,
              const PF_EffectWorld& to) {
    const bool keepsAlpha = placement.rgbOnly && !isMultiplyAlpha(placement.mode);
    runner.run([&](std::int32_t firstY, std::int32_t lastY) {
        for (std::int32_t y = firstY; y < lastY; ++y) {
            const P* const source = rowOf<P>(drawn.record(), y - area.top);
            const P* const cover = coverage != nullptr ? rowOf<P>(coverage->record(), y - area.top) : nullptr;
            P* const out = rowOf<P>(to, y) + area.left;
            for (std::int32_t x = 0; x < area.right - area.left; ++x) {
                const double share = placement.opacity * (cover != nullptr ? toUnit(cover[x]).alpha : 1.0);
                const P result = fromUnit<P>(function(toUnit(out[x]), toUnit(source[x]), share));
                out[x] = keepsAlpha ? keptAlpha(result, out[x].alpha) : result;
            }
        }
    });
}

bool isUsableMask(const PF_MaskWorld* mask, const PF_EffectWorld& to) {
    return mask == nullptr || (depthOf(mask->mask) == depthOf(to) && !lacksPixels(mask->mask));
}

}  // namespace

PF_Err transformWorld(const PF_EffectWorld& from, std::span<const PF_FloatMatrix> matrices,
                      bool sourceToDestination, const Placement& placement, const PF_Rect* toArea,
                      PF_EffectWorld& to, WorkerPool* workers) {
    const TransferFunction function = transferFunction(placement.mode);
    if (depthOf(from) != depthOf(to) || function == nullptr || matrices.empty() ||
        !isUsableMask(placement.mask, to)) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    std::vector<Affine> toSource;
    for (const PF_FloatMatrix& matrix : matrices) {
        const Affine given = affineOf(matrix);
        if (!isAffine(matrix) || !isUsable(given)) return PF_Err_BAD_CALLBACK_PARAM;
        toSource.push_back(sourceToDestination ? inverseOf(given) : given);
    }
    if (!hasPixels(from) || !hasPixels(to)) return PF_Err_NONE;
    const std::optional<World> copy = sharesPixels(from, to) ? std::optional(copyOf(from)) : std::nullopt;
    const PF_EffectWorld& source = copy ? copy->record() : from;
    const PF_Rect area = clipped(toArea, to);
    if (placement.mode == PF_Xfer_COPY && placement.mask == nullptr && matrices.size() == 1) {
        draw(source, toSource.front(), placement, area, workers, to);
        return PF_Err_NONE;
    }
    if (area.right <= area.left || area.bottom <= area.top) return PF_Err_NONE;
    const World drawn = drawnApart(source, toSource, area, workers);
    forAnyDepth(to, [&]<class P>() {
        std::optional<World> coverage;
        if (placement.mask != nullptr)
            coverage = drawnApart(coverageOf<P>(*placement.mask, source).record(), toSource, area, workers);
        transfer<P>(drawn, coverage ? &*coverage : nullptr, function, placement, area,
                    RowRunner(area, workers), to);
    });
    return PF_Err_NONE;
}

}  // namespace perch
