// Rows of worlds as spans, and the depths of files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "PixelAccess.h"
#include "World.h"

namespace perch {

// The pixels of row y; P is PF_Pixel or PF_Pixel16, as the world is deep or not.
template <typename P>
std::span<P> pixelRow(const World& world, std::int32_t y) {
    return {rowOf<P>(world.record(), y), static_cast<std::size_t>(world.width())};
}

constexpr std::uint32_t kWhiteOfFiles = 65535;  // of 16-bit files

// `value` of 0 to `from` on the scale of 0 to `to`, rounded to the nearest. Both scales are at most 65535, so
// that the product stays below 2^32.
constexpr std::uint32_t rescale(std::uint32_t value, std::uint32_t from, std::uint32_t to) {
    return (value * to + from / 2) / from;
}

}  // namespace perch
