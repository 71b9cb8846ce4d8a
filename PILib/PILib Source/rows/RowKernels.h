// Rows of blurred pixels, of their tables and of blends: the interface between the library and its vector
// kernels. Plain C types alone, as the kernels are compiled for other instruction sets than the rest: they
// share no inline code with it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace PILib::detail {

// What one row is read out from. `T` is a table entry, 32 bits for a box, 32 or 64 for a tent. The tables
// hold all cells up to the radii and one more around the row's pixels.
template <class T>
struct RowToBlur {
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
    const void* map;     // channel values, 0 to full scale
    const void* input;   // pixels
    void* output;        // pixels; may be `input`
};

// The largest whole radius that kernels read, beside the next one: the 15-bit sum of a box of 2 * 127 + 1 by
// 2 * 126 + 1 pixels stays below 2^31.
inline constexpr std::int32_t kLargestWholeRadius = 126;

// The largest radius of a row, so that a share of it in 16.16 stays far within 32 bits. Rows of larger ones
// are read out pixel by pixel.
inline constexpr float kLargestRowRadius = 250.0F;

// Cells past the end of a table that kernels may read, whatever they hold: the lanes of the widest vector
// beside the first.
inline constexpr std::size_t kTableSlack = 15;

// One row of a picture, and where its running sums go: sums[i][x] = start[i] + the values of pixels 0 to x,
// modulo 2^32, for i of premultiplied red, green and blue, and of alpha. `sums` and `pixels` do not overlap.
struct RowToSum {
    const void* pixels;
    std::int32_t count;  // pixels, 1 or more
    std::uint32_t start[4]{};
    std::uint32_t* sums[4]{};
};

// The same summed twice: sums[i][x] = startTwice[i] + the running sums, from start[i] on, of pixels 0 to x.
// `T` is 32 or 64 bits, in which the results wrap; the running sums themselves stay below 2^32 where `T`
// has 64.
template <class T>
struct RowToSumTwice {
    const void* pixels;
    std::int32_t count;  // pixels, 1 or more
    std::uint32_t start[4]{};
    T startTwice[4]{};
    T* sums[4]{};
};

// Table rows whose sums down the columns are taken together, as each of them alone would read and write the
// columns once more.
inline constexpr std::size_t kRowsAddedDown = 4;

// Those rows from the top downwards: for row r, column[i] += addends[r][i], and outs[r][i] = column[i] + the
// row above, which is `above` and then the one before. None overlap, but addends may be the same row.
template <class T>
struct RowsToAddDown {
    const T* addends[kRowsAddedDown];
    T* column;
    const T* above;
    T* outs[kRowsAddedDown];
    std::size_t count;
};

// One row of channel values that moves toward another: each becomes
// (value * (65536 - weight) + other * weight + 32768) >> 16. The rows are the same or do not overlap.
struct RowToBlend {
    void* values;  // std::uint8_t or std::uint16_t, by the kernel's depth; any
    const void* other;
    std::ptrdiff_t count;  // values, 0 or more
    std::uint32_t weight;  // 0 to 65536
};

// The kernels of one depth and one level; narrow cells have 32 bits, wide ones 64. Those that plain code
// equals in speed are null.
struct DepthKernels {
    void (*box)(const RowToBlur<std::uint32_t>& row) = nullptr;
    void (*narrowTent)(const RowToBlur<std::uint32_t>& row) = nullptr;
    void (*wideTent)(const RowToBlur<std::uint64_t>& row) = nullptr;
    void (*runningSums)(const RowToSum& row) = nullptr;
    void (*narrowSumsTwice)(const RowToSumTwice<std::uint32_t>& row) = nullptr;
    void (*wideSumsTwice)(const RowToSumTwice<std::uint64_t>& row) = nullptr;
    void (*narrowAddDown)(const RowsToAddDown<std::uint32_t>& rows) = nullptr;
    void (*wideAddDown)(const RowsToAddDown<std::uint64_t>& rows) = nullptr;
    void (*blend)(const RowToBlend& row) = nullptr;
};

struct RowKernels {
    DepthKernels depth8;
    DepthKernels depth15;
};

extern const RowKernels kRowKernelsBaseline;
extern const RowKernels kRowKernelsAvx2;
extern const RowKernels kRowKernelsAvx512;

}  // namespace PILib::detail
