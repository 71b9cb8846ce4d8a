// Pictures of noise for the comparisons with the reference renderer.
#pragma once

#include <cstdint>
#include <random>

#include "Image.h"

namespace oracle {

// A number from 0 to `largest`; the same on every machine for the same generator.
inline int RandomUpTo(std::mt19937& random, int largest) {
    return static_cast<int>(random() % (static_cast<std::uint32_t>(largest) + 1));
}

inline std::uint32_t RandomComponent(std::mt19937& random, std::uint32_t full) {
    return static_cast<std::uint32_t>(random() % (full + 1));
}

// Straight noise. A quarter of the pixels is transparent, a quarter opaque; a transparent pixel has colour
// too.
inline Image RandomImage(std::mt19937& random, int width, int height, std::uint32_t full) {
    const auto component = [&] { return RandomComponent(random, full); };
    Image image(width, height, full);
    for (Colour& pixel : image.values) {
        const int kind = RandomUpTo(random, 3);
        pixel = {kind == 0 ? 0 : kind == 1 ? full : component(), component(), component(), component()};
    }
    return image;
}

// Noise with a third of zeros.
inline Map RandomMap(std::mt19937& random, int width, int height, std::uint32_t full) {
    Map map(width, height, full);
    for (std::uint32_t& value : map.values)
        value = RandomUpTo(random, 2) == 0 ? 0 : RandomComponent(random, full);
    return map;
}

}  // namespace oracle
