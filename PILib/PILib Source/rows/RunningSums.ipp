// Running sums of a row's premultiplied channels by vectors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "RowDepths.ipp"
#include "RowKernels.h"
#include "RowLanes.ipp"

namespace PILib::detail {

namespace {

// v summed along its lanes.
template <int kDistance = 1>
PILIB_INLINE Int RunningSums(Int v) {
    if constexpr (kDistance < kLanes) {
        return RunningSums<2 * kDistance>(Plus(v, Arranged<ShiftedUp<kDistance>>(v, Int{})));
    } else {
        return v;
    }
}

// Carries on the running sums of red, green, blue and alpha, which have come to `sums`, over pixels
// x .. x + count - 1. `count` is at most the lanes.
template <class Depth>
PILIB_INLINE void WriteSumsOfPixels(const RowToSum& row, Int (&sums)[4], int x, int count) {
    const Channels c = Depth::load(
        static_cast<const typename Depth::Type*>(row.pixels) + 4 * static_cast<std::ptrdiff_t>(x), count);
    const Int premultiplied[4] = {Depth::product(c.red, c.alpha), Depth::product(c.green, c.alpha),
                                  Depth::product(c.blue, c.alpha), c.alpha};
    for (int table = 0; table < 4; ++table) {
        const Int running = Plus(sums[table], RunningSums(premultiplied[table]));
        std::memcpy(row.sums[table] + x, &running, sizeof(std::int32_t) * static_cast<unsigned>(count));
        sums[table] = Arranged<Last>(running, running);
    }
}

template <class Depth>
void WriteRunningSums(const RowToSum& row) {
    Int sums[4];
    for (int table = 0; table < 4; ++table)
        sums[table] = Splat(static_cast<std::int32_t>(row.start[table]));
    int x = 0;
    for (; x + kLanes <= row.count; x += kLanes)
        WriteSumsOfPixels<Depth>(row, sums, x, kLanes);
    if (x < row.count) WriteSumsOfPixels<Depth>(row, sums, x, row.count - x);
}

}  // namespace

}  // namespace PILib::detail
