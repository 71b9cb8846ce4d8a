// Typed rows of worlds, the codes of their depths, and the parts of worlds that areas stand for.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

#include "PF_World.h"
#include "PixelDepth.h"

namespace perch {

inline bool isDeep(const PF_EffectWorld& world) {
    return depthOf(world) == PixelDepth::Bits16;
}

inline bool hasPixels(const PF_EffectWorld& world) {
    return world.data != nullptr && world.width > 0 && world.height > 0;
}

// A record that an effect has filled in by itself may have a size and no pixels.
inline bool lacksPixels(const PF_EffectWorld& world) {
    return world.data == nullptr && world.width > 0 && world.height > 0;
}

template <class P>
P* rowOf(const PF_EffectWorld& world, std::int32_t y) {
    // Through void: rows are aligned for their pixels.
    void* const first = reinterpret_cast<std::byte*>(world.data) + std::ptrdiff_t{y} * world.rowbytes;
    return static_cast<P*>(first);
}

template <class P>
std::span<P> pixelRow(const PF_EffectWorld& world, std::int32_t y) {
    return {rowOf<P>(world, y), static_cast<std::size_t>(world.width)};
}

// The pixel at whole coordinates; outside the source is transparent.
template <class P>
P pixelOrNothing(const PF_EffectWorld& from, std::int64_t x, std::int64_t y) {
    if (x < 0 || y < 0 || x >= from.width || y >= from.height) return {};
    return rowOf<P>(from, static_cast<std::int32_t>(y))[x];
}

// Full intensity of a pixel type.
template <class P>
inline constexpr std::uint32_t kWhite = 0;
template <>
inline constexpr std::uint32_t kWhite<PF_Pixel> = 255;
template <>
inline constexpr std::uint32_t kWhite<PF_Pixel16> = 32768;

template <class P>
inline constexpr bool kHasWholeChannels = kWhite<P> != 0;

template <class P>
using ChannelOf = decltype(P::alpha);

// The pixel's colours under another alpha.
template <class P>
P keptAlpha(const P& p, ChannelOf<P> alpha) {
    return {alpha, p.red, p.green, p.blue};
}

// The channels of pixels one behind the other, alpha first.
template <class P>
const ChannelOf<P>* channelsOf(std::span<const P> pixels) {
    static_assert(sizeof(P) == 4 * sizeof(ChannelOf<P>));
    return reinterpret_cast<const ChannelOf<P>*>(pixels.data());
}

// Whether every alpha is white, not above it. False for no pixels. All channels are gone through, since that
// takes vector instructions and alpha alone does not.
template <class P>
bool isOpaque(std::span<const P> pixels) {
    using Channel = ChannelOf<P>;
    constexpr Channel kAll = std::numeric_limits<Channel>::max();
    std::array<Channel, 4> common = {kAll, kAll, kAll, kAll};  // bits of all pixels
    std::array<Channel, 4> any{};                              // bits of any pixel
    const Channel* const channels = channelsOf(pixels);
    for (std::size_t i = 0; i < 4 * pixels.size(); i += 4) {
        for (std::size_t c = 0; c < 4; ++c) {
            common[c] &= channels[i + c];
            any[c] |= channels[i + c];
        }
    }
    return common[0] == kWhite<P> && any[0] == kWhite<P>;
}

// A rectangle before it is clipped. Effects may hand over any coordinates; in 64 bits their sums and
// differences do not overflow.
struct WideRect {
    std::int64_t left, top, right, bottom;

    std::int64_t width() const { return right - left; }
    std::int64_t height() const { return bottom - top; }
};

inline WideRect wide(const PF_Rect& area) {
    return {area.left, area.top, area.right, area.bottom};
}

inline PF_Rect wholeOf(const PF_EffectWorld& world) {
    return {0, 0, std::max(world.width, 0), std::max(world.height, 0)};
}

// The part of an area that lies in `bounds`, which it never leaves, even where it is empty.
inline PF_Rect clipped(const WideRect& area, const PF_Rect& bounds) {
    const auto within = [](std::int64_t position, A_long low, A_long high) {
        return static_cast<A_long>(std::clamp<std::int64_t>(position, low, high));
    };
    PF_Rect inside;
    inside.left = within(area.left, bounds.left, bounds.right);
    inside.top = within(area.top, bounds.top, bounds.bottom);
    inside.right = within(area.right, inside.left, bounds.right);
    inside.bottom = within(area.bottom, inside.top, bounds.bottom);
    return inside;
}

// The part of an area that lies in a world; null is the whole.
inline PF_Rect clipped(const PF_Rect* area, const PF_EffectWorld& world) {
    const PF_Rect whole = wholeOf(world);
    return area != nullptr ? clipped(wide(*area), whole) : whole;
}

// Calls op.template operator()<P>() for the pixel type of the world.
template <class Op>
auto forAnyDepth(const PF_EffectWorld& world, Op op) {
    if (depthOf(world) == PixelDepth::Float) return op.template operator()<PF_PixelFloat>();
    return isDeep(world) ? op.template operator()<PF_Pixel16>() : op.template operator()<PF_Pixel>();
}

// The same for worlds that are known to have whole channels.
template <class Op>
auto forDepth(const PF_EffectWorld& world, Op op) {
    return isDeep(world) ? op.template operator()<PF_Pixel16>() : op.template operator()<PF_Pixel>();
}

}  // namespace perch
