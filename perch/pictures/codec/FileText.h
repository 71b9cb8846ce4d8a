// Bytes of files as text and as numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace pictures {

inline std::string_view textOf(std::span<const unsigned char> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// The number in the next `size` bytes, which must be there.
inline std::uint32_t bigEndianAt(std::string_view bytes, std::size_t place, std::size_t size) {
    std::uint32_t number = 0;
    for (const char byte : bytes.substr(place, size))
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

inline std::uint32_t littleEndianAt(std::string_view bytes, std::size_t place, std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = size; i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(bytes[place + i]);
    return number;
}

}  // namespace pictures
