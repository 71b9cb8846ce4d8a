#include "Pixel.h"

#include <cstddef>

namespace PILib {

namespace {

constexpr std::array<std::uint8_t, 65536> MakeDivByByteTable() {
    std::array<std::uint8_t, 65536> table{};
    for (std::size_t a = 0; a < 256; ++a) {
        for (std::size_t b = 1; b < 256; ++b)
            table[a * 256 + b] = static_cast<std::uint8_t>(a * 255 / b);
    }
    return table;
}

}  // namespace

constinit const std::array<std::uint8_t, 65536> DivByByteTable = MakeDivByByteTable();

}  // namespace PILib
