// Typed rows of worlds, and the arithmetic of their depths, for the pixel operations.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "PF_Values.h"
#include "PF_World.h"

namespace perch {

inline bool isDeep(const PF_EffectWorld& world) {
    return (world.world_flags & PF_WorldFlag_DEEP) != 0;
}

inline bool hasPixels(const PF_EffectWorld& world) {
    return world.data != nullptr && world.width > 0 && world.height > 0;
}

template <class P>
P* rowOf(const PF_EffectWorld& world, std::int32_t y) {
    // Through void: rows are aligned for their pixels.
    void* const first = reinterpret_cast<std::byte*>(world.data) + std::ptrdiff_t{y} * world.rowbytes;
    return static_cast<P*>(first);
}

// Full intensity of a pixel type.
template <class P>
inline constexpr std::uint32_t kWhite = 0;
template <>
inline constexpr std::uint32_t kWhite<PF_Pixel> = 255;
template <>
inline constexpr std::uint32_t kWhite<PF_Pixel16> = 32768;

template <class P>
using ChannelOf = decltype(P::alpha);

// The part of an area that lies in a world; null is the whole.
inline PF_Rect clipped(const PF_Rect* area, const PF_EffectWorld& world) {
    if (area == nullptr) return {0, 0, world.width, world.height};
    PF_Rect inside = {std::max(area->left, 0), std::max(area->top, 0), std::min(area->right, world.width),
                      std::min(area->bottom, world.height)};
    inside.right = std::max(inside.right, inside.left);
    inside.bottom = std::max(inside.bottom, inside.top);
    return inside;
}

// Calls op.template operator()<P>() for the pixel type of the world.
template <class Op>
auto forDepth(const PF_EffectWorld& world, Op op) {
    return isDeep(world) ? op.template operator()<PF_Pixel16>() : op.template operator()<PF_Pixel>();
}

}  // namespace perch
