#include "Transform.h"

#include <cmath>
#include <optional>
#include <span>
#include <vector>

#include "Affine.h"
#include "Drawing.h"
#include "PixelAccess.h"
#include "PixelOps.h"
#include "PixelSums.h"
#include "RowRunner.h"
#include "TransferModes.h"
#include "WorkerPool.h"
#include "World.h"

namespace perch {
namespace {

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
        drawWorld(from, shifted, kPlainCopy, whole, workers, drawn.record());
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
        drawWorld(source, toSource.front(), placement, area, workers, to);
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
