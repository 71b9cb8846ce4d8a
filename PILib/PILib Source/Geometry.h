// Small plain value types for positions and areas in an image. x grows to the right, y downwards; units are
// pixels unless the user of a type says otherwise.
#pragma once

#include <cstdint>

namespace PILib {

template <class T>
struct TPoint {
    T x;
    T y;

    friend constexpr bool operator==(const TPoint&, const TPoint&) = default;
};

// Bottom and right are exclusive. Field order and width are those of the host's legacy rectangle.
struct Rect {
    std::int16_t top;
    std::int16_t left;
    std::int16_t bottom;
    std::int16_t right;
};

// Where a source of another size is placed on a destination.
enum Alignment : std::int32_t {
    kAlignTopLeft = 0,  // top-left corner on top-left corner
    kAlignCenter = 1,   // centre on centre; an odd difference leaves the extra column or row right or below
};

}  // namespace PILib
