// One row of blurred pixels, or of their tables: the interface between the blurs and their vector kernels.
// Plain C types alone, as the kernels are compiled for other instruction sets than the rest: they share no
// inline code with it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace PILib::detail {

// What one row is read out from. `T` is a table entry, std::uint32_t (box) or double (tent).
template <class T>
struct BlurRow {
    const T* alpha;
    const T* red;
    const T* green;
    const T* blue;
    std::ptrdiff_t stride;  // cells from one table row to the next
    std::ptrdiff_t centre;  // the cell of the row's first pixel
    std::int32_t borderX;   // cells
    std::int32_t borderY;
    std::int32_t maxFixedRadiusX;  // 16.16
    std::int32_t maxFixedRadiusY;
    float radiusX;  // pixels, 0 to kLargestRowRadius
    float radiusY;
    std::int32_t count;  // pixels
    const void* map;     // channel values
    const void* input;   // pixels
    void* output;        // pixels
};

// A box's 15-bit sum stays below 2^31 up to this radius, as radii are capped at about half of it; rows of
// larger ones are read out pixel by pixel.
inline constexpr float kLargestRowRadius = 250.0F;

// Cells that a kernel may read past the end of a table, to their values' disregard.
inline constexpr std::size_t kTableSlack = 16;

// One row of a picture, and where the running sums of its premultiplied channels go, from `start` on: of red,
// green, blue and alpha.
struct PrefixRow {
    const void* pixels;
    std::int32_t count;  // pixels
    std::int32_t start[4];
    std::int32_t* sums[4];
};

// The kernels of one level, by blur and depth.
struct BlurRowKernels {
    void (*box8)(const BlurRow<std::uint32_t>& row);
    void (*box15)(const BlurRow<std::uint32_t>& row);
    void (*tent8)(const BlurRow<double>& row);
    void (*tent15)(const BlurRow<double>& row);
    void (*prefix8)(const PrefixRow& row);
    void (*prefix15)(const PrefixRow& row);
};

extern const BlurRowKernels kBlurRowBaseline;
extern const BlurRowKernels kBlurRowAvx2;
extern const BlurRowKernels kBlurRowAvx512;

}  // namespace PILib::detail
