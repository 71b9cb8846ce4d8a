// The blurs by definition: for every pixel that is read out, a direct sum over all pixels of the window.
#pragma once

#include <cstdint>

#include "Image.h"

namespace oracle {

enum class Shape { kBox, kTent };

struct Blur {
    Shape shape;
    Image premultiplied;
    int borderX;  // pixels; one more than the largest radius that tables would be built for
    int borderY;
};

// `radiusX` and `radiusY` are the largest whole radii; both are lowered if their product is too large.
Blur MakeBlur(Shape shape, const Image& source, int radiusX, int radiusY);

// Premultiplied result for whole radii. A tent needs radii of 0 and above: below, it has no pixels.
Colour ReadWhole(const Blur& blur, int x, int y, int radiusX, int radiusY);

// Straight result for radii in 16.16 fixed point.
Colour ReadFractional(const Blur& blur, int x, int y, std::int32_t radiusX, std::int32_t radiusY);

}  // namespace oracle
