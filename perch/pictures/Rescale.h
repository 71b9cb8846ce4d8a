// The codes of picture files beside those of worlds.
#pragma once

#include <cstdint>

namespace perch {

constexpr std::uint32_t kWhiteOfFiles = 65535;  // of 16-bit files

// `value` on the scale of 0 to `from`, which it may exceed, on the scale of 0 to `to`, rounded to the
// nearest. All three are at most 65535, so that the product stays below 2^32.
constexpr std::uint32_t rescale(std::uint32_t value, std::uint32_t from, std::uint32_t to) {
    return (value * to + from / 2) / from;
}

}  // namespace perch
