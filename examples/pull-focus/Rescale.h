// Whole numbers from one full scale to another, as files and buffers of different depths need them.
#pragma once

#include <cstdint>

// `value` of 0 to `from` on the scale of 0 to `to`, rounded to the nearest. Both scales are at most 65535,
// which keeps the product below 2^32.
constexpr std::uint32_t Rescale(std::uint32_t value, std::uint32_t from, std::uint32_t to) {
    return (value * to + from / 2) / from;
}
