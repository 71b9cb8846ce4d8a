// How many bits the channels of a world have, and how that is told from its record.
#pragma once

#include <cstdint>

#include "PF_Values.h"
#include "PF_World.h"

namespace perch {

enum class PixelDepth { Bits8, Bits16, Float };

// The interface has no flag for floating-point worlds, so the host marks its own in a field that it reserves.
inline char gFloatWorldMark = 0;

inline PixelDepth depthOf(const PF_EffectWorld& world) {
    if (world.reserved0 == &gFloatWorldMark) return PixelDepth::Float;
    return (world.world_flags & PF_WorldFlag_DEEP) != 0 ? PixelDepth::Bits16 : PixelDepth::Bits8;
}

constexpr std::int32_t pixelSize(PixelDepth depth) {
    switch (depth) {
        case PixelDepth::Bits8:
            return sizeof(PF_Pixel);
        case PixelDepth::Bits16:
            return sizeof(PF_Pixel16);
        case PixelDepth::Float:
            break;
    }
    return sizeof(PF_PixelFloat);
}

// The depth of worlds that hold pixels of type P.
template <class P>
inline constexpr PixelDepth kDepthOf = PixelDepth::Bits8;
template <>
inline constexpr PixelDepth kDepthOf<PF_Pixel16> = PixelDepth::Bits16;
template <>
inline constexpr PixelDepth kDepthOf<PF_PixelFloat> = PixelDepth::Float;

}  // namespace perch
