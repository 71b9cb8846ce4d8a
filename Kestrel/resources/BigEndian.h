#pragma once

#include <cstdint>
#include <string>

// The low `size` bytes of a number, the highest first.
inline std::string BigEndian(std::uint32_t value, int size) {
    std::string bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(value >> shift));
    return bytes;
}
