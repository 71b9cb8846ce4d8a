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
#include "PixelTransfer.h"
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

}  // namespace

PF_Err transformWorld(const PF_EffectWorld& from, std::span<const PF_FloatMatrix> matrices,
                      bool sourceToDestination, const Placement& placement, const PF_Rect* toArea,
                      PF_EffectWorld& to, WorkerPool* workers) {
    if (depthOf(from) != depthOf(to) || transferFunction(placement.mode) == nullptr || matrices.empty() ||
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
    std::optional<World> coverage;
    if (placement.mask != nullptr)
        coverage = drawnApart(coverageOf(*placement.mask, source).record(), toSource, area, workers);
    transferPixels(drawn, coverage ? &*coverage : nullptr, placement, area, workers, to);
    return PF_Err_NONE;
}

}  // namespace perch
