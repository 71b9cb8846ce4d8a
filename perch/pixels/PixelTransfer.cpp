#include "PixelTransfer.h"

#include <algorithm>
#include <cmath>

#include "PixelAccess.h"
#include "RowRunner.h"
#include "TransferModes.h"

namespace perch {
namespace {

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

// How much shows under a pixel of the mask.
double shownUnder(const UnitPixel& mask, PF_MaskFlags flags) {
    const bool isLuminance = (flags & PF_MaskFlag_LUMINANCE) != 0;
    const double shown = isLuminance ? mask.alpha * luminance(mask.red, mask.green, mask.blue) : mask.alpha;
    return (flags & PF_MaskFlag_INVERTED) != 0 ? 1 - shown : shown;
}

template <class P>
void transferRows(const World& drawn, const World* coverage, const Placement& placement, const PF_Rect& area,
                  const RowRunner& runner, const PF_EffectWorld& to) {
    const TransferFunction function = transferFunction(placement.mode);
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

}  // namespace

bool isUsableMask(const PF_MaskWorld* mask, const PF_EffectWorld& to) {
    return mask == nullptr || (depthOf(mask->mask) == depthOf(to) && !lacksPixels(mask->mask));
}

World coverageOf(const PF_MaskWorld& mask, const PF_EffectWorld& source) {
    World coverage(source.width, source.height, depthOf(source));
    forAnyDepth(source, [&]<class P>() {
        for (std::int32_t y = 0; y < source.height; ++y) {
            P* const row = rowOf<P>(coverage.record(), y);
            for (std::int32_t x = 0; x < source.width; ++x) {
                const P over = pixelOrNothing<P>(mask.mask, std::int64_t{x} - mask.offset.h,
                                                 std::int64_t{y} - mask.offset.v);
                row[x] = fromUnit<P>({shownUnder(toUnit(over), mask.what_is_mask), 0, 0, 0});
            }
        }
    });
    return coverage;
}

void transferPixels(const World& drawn, const World* coverage, const Placement& placement,
                    const PF_Rect& area, WorkerPool* workers, const PF_EffectWorld& to) {
    const RowRunner runner(area, workers);
    forAnyDepth(to, [&]<class P>() { transferRows<P>(drawn, coverage, placement, area, runner, to); });
}

}  // namespace perch
