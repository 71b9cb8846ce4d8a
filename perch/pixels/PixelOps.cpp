#include "PixelOps.h"

#include <cstring>

#include "PixelAccess.h"
#include "Transform.h"

namespace perch {
namespace {

constexpr std::uint64_t kFixedOne = 65536;

// Two straight pixels mixed by shares of alpha; the shares add up to 65536.
template <class P>
P mixed(const P& a, std::uint64_t shareA, const P& b, std::uint64_t shareB) {
    const std::uint64_t weightA = a.alpha * shareA;
    const std::uint64_t weightB = b.alpha * shareB;
    const std::uint64_t sum = weightA + weightB;
    if (sum == 0) return {};
    const auto colour = [&](std::uint64_t ca, std::uint64_t cb) {
        return static_cast<ChannelOf<P>>((weightA * ca + weightB * cb + sum / 2) / sum);
    };
    return {static_cast<ChannelOf<P>>((sum + kFixedOne / 2) / kFixedOne), colour(a.red, b.red),
            colour(a.green, b.green), colour(a.blue, b.blue)};
}

PF_PixelFloat mixed(const PF_PixelFloat& a, std::uint64_t shareA, const PF_PixelFloat& b,
                    std::uint64_t shareB) {
    const double one = static_cast<double>(kFixedOne);
    const double weightA = static_cast<double>(a.alpha) * static_cast<double>(shareA);
    const double weightB = static_cast<double>(b.alpha) * static_cast<double>(shareB);
    const double sum = weightA + weightB;
    if (sum == 0) return {};
    const auto colour = [&](float ca, float cb) {
        return static_cast<float>((weightA * static_cast<double>(ca) + weightB * static_cast<double>(cb)) /
                                  sum);
    };
    return {static_cast<float>(sum / one), colour(a.red, b.red), colour(a.green, b.green),
            colour(a.blue, b.blue)};
}

// Alpha falls out of the weights where both rows are opaque; a channel times its share stays in 32 bits.
template <class P>
void blendOpaque(std::span<const P> a, std::span<const P> b, std::uint32_t ratio, P* to) {
    constexpr auto kOne = static_cast<std::uint32_t>(kFixedOne);
    const ChannelOf<P>* const channelsA = channelsOf(a);
    const ChannelOf<P>* const channelsB = channelsOf(b);
    auto* const out = reinterpret_cast<ChannelOf<P>*>(to);
    for (std::size_t i = 0; i < 4 * a.size(); ++i)
        out[i] = static_cast<ChannelOf<P>>((channelsA[i] * (kOne - ratio) + channelsB[i] * ratio + kOne / 2) /
                                           kOne);
}

template <class P>
void blend(const PF_EffectWorld& a, const PF_EffectWorld& b, std::uint64_t ratio, const PF_EffectWorld& to) {
    for (std::int32_t y = 0; y < to.height; ++y) {
        const std::span<const P> rowA = pixelRow<P>(a, y);
        const std::span<const P> rowB = pixelRow<P>(b, y);
        P* const out = rowOf<P>(to, y);
        if constexpr (kHasWholeChannels<P>) {
            if (isOpaque(rowA) && isOpaque(rowB)) {
                blendOpaque(rowA, rowB, static_cast<std::uint32_t>(ratio), out);
                continue;
            }
        }
        for (std::size_t x = 0; x < rowA.size(); ++x)
            out[x] = mixed(rowA[x], kFixedOne - ratio, rowB[x], ratio);
    }
}

bool isSameSize(const PF_EffectWorld& a, const PF_EffectWorld& b) {
    return a.width == b.width && a.height == b.height;
}

// `count` elements from `source` on go to those from `target` on, along one axis.
struct Span {
    std::int64_t source, target, count;
};

// Cut to both worlds; nothing is left where the count is not positive.
Span clippedTogether(const Span& span, A_long sourceSize, A_long targetSize) {
    const std::int64_t before = std::max({-span.source, -span.target, std::int64_t{0}});
    const std::int64_t behind = std::max(
        {span.source + span.count - sourceSize, span.target + span.count - targetSize, std::int64_t{0}});
    return {span.source + before, span.target + before, span.count - before - behind};
}

// Row by row, in an order that an overlap of one world with itself allows.
template <class P>
void copyRows(const PF_EffectWorld& from, const PF_EffectWorld& to, const Span& columns, const Span& rows) {
    const auto bytes = static_cast<std::size_t>(columns.count) * sizeof(P);
    const bool backwards = from.data == to.data && rows.target > rows.source;
    for (std::int64_t i = 0; i < rows.count; ++i) {
        const std::int64_t row = backwards ? rows.count - 1 - i : i;
        std::memmove(rowOf<P>(to, static_cast<std::int32_t>(rows.target + row)) + columns.target,
                     rowOf<P>(from, static_cast<std::int32_t>(rows.source + row)) + columns.source, bytes);
    }
}

template <class P>
void copyNearest(const PF_EffectWorld& from, const PF_Rect& source, const PF_EffectWorld& to,
                 const PF_Rect& target) {
    const std::int64_t sourceWidth = source.right - source.left;
    const std::int64_t sourceHeight = source.bottom - source.top;
    const std::int64_t width = target.right - target.left;
    const std::int64_t height = target.bottom - target.top;
    const auto nearest = [](std::int64_t i, std::int64_t count, std::int64_t sourceCount) {
        return static_cast<std::int32_t>((2 * i + 1) * sourceCount / (2 * count));
    };
    for (std::int64_t y = 0; y < height; ++y) {
        const P* const in = rowOf<P>(from, source.top + nearest(y, height, sourceHeight)) + source.left;
        P* const out = rowOf<P>(to, target.top + static_cast<std::int32_t>(y)) + target.left;
        for (std::int64_t x = 0; x < width; ++x)
            out[x] = in[nearest(x, width, sourceWidth)];
    }
}

// A whole rectangle or the caller's, before clipping.
WideRect wholeOr(const PF_Rect* area, const PF_EffectWorld& world) {
    return wide(area != nullptr ? *area : wholeOf(world));
}

// An area of a world, which it does not leave, as a world of its own over the same pixels.
PF_EffectWorld partOf(const PF_EffectWorld& world, const PF_Rect& area) {
    PF_EffectWorld part = world;
    part.width = area.right - area.left;
    part.height = area.bottom - area.top;
    if (!hasPixels(part)) return part;
    part.data = forAnyDepth(world, [&]<class P>() {
        return static_cast<PF_PixelPtr>(static_cast<void*>(rowOf<P>(world, area.top) + area.left));
    });
    return part;
}

// A point of a world as one of a part; at the edge of what a coordinate holds it is far outside either way.
PF_Point shiftedBack(const PF_Point& point, const PF_Rect& part) {
    const auto held = [](std::int64_t position) {
        using Limits = std::numeric_limits<A_long>;
        return static_cast<A_long>(std::clamp<std::int64_t>(position, Limits::min(), Limits::max()));
    };
    return {held(std::int64_t{point.h} - part.left), held(std::int64_t{point.v} - part.top)};
}

template <class P>
PF_Err fill(const P* color, const PF_Rect* area, PF_EffectWorld& world) {
    if (depthOf(world) != kDepthOf<P>) return PF_Err_BAD_CALLBACK_PARAM;
    const P value = color != nullptr ? *color : P{};
    const PF_Rect inside = clipped(area, world);
    for (std::int32_t y = inside.top; y < inside.bottom; ++y) {
        P* const row = rowOf<P>(world, y);
        std::fill(row + inside.left, row + inside.right, value);
    }
    return PF_Err_NONE;
}

// c matted against m: c * alpha + m * (1 - alpha), rounded; and back, held to full intensity.
template <class P>
ChannelOf<P> matted(std::uint64_t c, std::uint64_t m, std::uint64_t alpha) {
    constexpr std::uint64_t kOne = kWhite<P>;
    return static_cast<ChannelOf<P>>((c * alpha + m * (kOne - alpha) + kOne / 2) / kOne);
}

template <class P>
ChannelOf<P> unmatted(std::uint64_t c, std::uint64_t m, std::uint64_t alpha) {
    constexpr std::uint64_t kOne = kWhite<P>;
    const std::uint64_t background = m * (kOne - alpha);
    if (alpha == 0 || c * kOne <= background) return 0;
    return static_cast<ChannelOf<P>>(std::min((c * kOne - background + alpha / 2) / alpha, kOne));
}

// A pixel matted against a colour, or back.
template <class P>
P mattedPixel(const P& p, const P& color, bool forward) {
    const std::uint64_t alpha = std::min<std::uint64_t>(p.alpha, kWhite<P>);
    const auto convert = forward ? matted<P> : unmatted<P>;
    return {p.alpha, convert(p.red, color.red, alpha), convert(p.green, color.green, alpha),
            convert(p.blue, color.blue, alpha)};
}

PF_PixelFloat mattedPixel(const PF_PixelFloat& p, const PF_PixelFloat& color, bool forward) {
    const auto convert = [&](float c, float m) {
        const float background = m * (1 - p.alpha);
        if (forward) return c * p.alpha + background;
        return p.alpha == 0 ? 0.0F : (c - background) / p.alpha;
    };
    return {p.alpha, convert(p.red, color.red), convert(p.green, color.green), convert(p.blue, color.blue)};
}

template <class P>
PF_Err premultiply(const PF_EffectWorld& from, const P& color, bool forward, PF_EffectWorld& to) {
    if (depthOf(to) != kDepthOf<P> || depthOf(from) != depthOf(to) || !isSameSize(from, to))
        return PF_Err_BAD_CALLBACK_PARAM;
    for (std::int32_t y = 0; y < to.height; ++y) {
        const P* const in = rowOf<P>(from, y);
        P* const out = rowOf<P>(to, y);
        for (std::int32_t x = 0; x < to.width; ++x)
            out[x] = mattedPixel(in[x], color, forward);
    }
    return PF_Err_NONE;
}

}  // namespace

PF_Err blendWorlds(const PF_EffectWorld& a, const PF_EffectWorld& b, PF_Fixed ratio, PF_EffectWorld& to) {
    if (depthOf(a) != depthOf(to) || depthOf(b) != depthOf(to) || !isSameSize(a, to) || !isSameSize(b, to)) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (ratio <= 0) return copyWorld(a, nullptr, to, nullptr);
    if (ratio >= static_cast<PF_Fixed>(kFixedOne)) return copyWorld(b, nullptr, to, nullptr);
    forAnyDepth(to, [&]<class P>() { blend<P>(a, b, static_cast<std::uint64_t>(ratio), to); });
    return PF_Err_NONE;
}

PF_Err copyWorld(const PF_EffectWorld& from, const PF_Rect* fromArea, PF_EffectWorld& to,
                 const PF_Rect* toArea) {
    if (depthOf(from) != depthOf(to)) return PF_Err_BAD_CALLBACK_PARAM;
    const WideRect askedSource = wholeOr(fromArea, from);
    const WideRect askedTarget = wholeOr(toArea, to);
    if (askedSource.width() == askedTarget.width() && askedSource.height() == askedTarget.height()) {
        const Span columns =
            clippedTogether({askedSource.left, askedTarget.left, askedTarget.width()}, from.width, to.width);
        const Span rows =
            clippedTogether({askedSource.top, askedTarget.top, askedTarget.height()}, from.height, to.height);
        if (columns.count <= 0 || rows.count <= 0) return PF_Err_NONE;
        forAnyDepth(to, [&]<class P>() { copyRows<P>(from, to, columns, rows); });
        return PF_Err_NONE;
    }
    const PF_Rect source = clipped(fromArea, from);
    const PF_Rect target = clipped(toArea, to);
    if (source.right == source.left || source.bottom == source.top) return PF_Err_BAD_CALLBACK_PARAM;
    forAnyDepth(to, [&]<class P>() { copyNearest<P>(from, source, to, target); });
    return PF_Err_NONE;
}

PF_Err copyWorldFiltered(const PF_EffectWorld& from, const PF_Rect* fromArea, PF_EffectWorld& to,
                         const PF_Rect* toArea, WorkerPool* workers) {
    const PF_Rect source = clipped(fromArea, from);
    const PF_Rect target = clipped(toArea, to);
    const A_long sourceWidth = source.right - source.left;
    const A_long sourceHeight = source.bottom - source.top;
    if (sourceWidth == 0 || sourceHeight == 0) return PF_Err_BAD_CALLBACK_PARAM;
    if (target.right == target.left || target.bottom == target.top) return PF_Err_NONE;
    if (sourceWidth == target.right - target.left && sourceHeight == target.bottom - target.top) {
        return copyWorld(from, &source, to, &target);
    }
    const double scaleX = static_cast<double>(target.right - target.left) / sourceWidth;
    const double scaleY = static_cast<double>(target.bottom - target.top) / sourceHeight;
    const PF_FloatMatrix matrix = {{{scaleX, 0, 0},
                                    {0, scaleY, 0},
                                    {static_cast<double>(target.left), static_cast<double>(target.top), 1}}};
    return transformWorld(partOf(from, source), matrix, true, {PF_Xfer_COPY, 1.0, false}, &target, to,
                          workers);
}

PF_Err fillWorld(const PF_Pixel* color, const PF_Rect* area, PF_EffectWorld& world) {
    return fill(color, area, world);
}

PF_Err fillWorld(const PF_Pixel16* color, const PF_Rect* area, PF_EffectWorld& world) {
    return fill(color, area, world);
}

PF_Err fillWorld(const PF_PixelFloat* color, const PF_Rect* area, PF_EffectWorld& world) {
    return fill(color, area, world);
}

PF_Err premultiplyWorld(bool forward, PF_EffectWorld& world) {
    return forAnyDepth(world, [&]<class P>() { return premultiply(world, P{}, forward, world); });
}

PF_Err premultiplyWorld(const PF_EffectWorld& from, const PF_Pixel& color, bool forward, PF_EffectWorld& to) {
    return premultiply(from, color, forward, to);
}

PF_Err premultiplyWorld(const PF_EffectWorld& from, const PF_Pixel16& color, bool forward,
                        PF_EffectWorld& to) {
    return premultiply(from, color, forward, to);
}

PF_Err premultiplyWorld(const PF_EffectWorld& from, const PF_PixelFloat& color, bool forward,
                        PF_EffectWorld& to) {
    return premultiply(from, color, forward, to);
}

PF_Err compositeWorld(const PF_EffectWorld& from, const PF_Rect* fromArea, const Placement& placement,
                      A_long x, A_long y, PF_EffectWorld& to, WorkerPool* workers) {
    const PF_Rect source = clipped(fromArea, from);
    const PF_EffectWorld part = partOf(from, source);
    const WideRect drawn = {x, y, std::int64_t{x} + part.width, std::int64_t{y} + part.height};
    const PF_Rect target = clipped(drawn, wholeOf(to));
    const PF_FloatMatrix shift = {
        {{1, 0, 0}, {0, 1, 0}, {static_cast<double>(x), static_cast<double>(y), 1}}};
    if (placement.mask == nullptr) return transformWorld(part, shift, true, placement, &target, to, workers);
    // The mask lies over the whole source, not over the part.
    PF_MaskWorld mask = *placement.mask;
    mask.offset = shiftedBack(mask.offset, source);
    Placement masked = placement;
    masked.mask = &mask;
    return transformWorld(part, shift, true, masked, &target, to, workers);
}

}  // namespace perch
