// Plain images and integer arithmetic of the reference renderer. It is the definition of every result,
// written without tables, templates or threads and without any code of the library that is held against it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace oracle {

// Alpha, red, green, blue.
using Colour = std::array<std::uint32_t, 4>;
inline constexpr std::size_t kAlpha = 0;
inline constexpr std::size_t kRed = 1;
inline constexpr std::size_t kGreen = 2;
inline constexpr std::size_t kBlue = 3;

// Full intensity of the two depths.
inline constexpr std::uint32_t kFull8 = 255;
inline constexpr std::uint32_t kFull15 = 32768;

template <class T>
struct Plane {
    int width;
    int height;
    std::uint32_t full;
    std::vector<T> values;  // row by row

    Plane(int width, int height, std::uint32_t full)
        : width(width), height(height), full(full), values(static_cast<std::size_t>(width * height)) {}
    T& at(int x, int y) { return values[static_cast<std::size_t>(y * width + x)]; }
    const T& at(int x, int y) const { return values[static_cast<std::size_t>(y * width + x)]; }
};

using Image = Plane<Colour>;       // straight colour unless said otherwise
using Map = Plane<std::uint32_t>;  // one channel

// Quotient rounded toward minus infinity, for a positive divisor.
std::int64_t FloorDivide(std::int64_t dividend, std::int64_t divisor);

// x times a as shares of full intensity: rounded to nearest at 8 bits, truncated at 15.
std::uint32_t Multiply(std::uint32_t x, std::uint32_t a, std::uint32_t full);

// The colours times alpha; alpha stays.
Colour Premultiplied(const Colour& straight, std::uint32_t full);

// The colours divided by alpha through one truncated 16.16 factor; alpha 0 gives all zeros.
Colour Straightened(const Colour& premultiplied, std::uint32_t full);

}  // namespace oracle
