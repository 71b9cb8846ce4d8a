// Running sums of a row's premultiplied channels by vectors: once for the box's tables, twice for the tent's.
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

// The same for lanes of 64 bits, each a pair of 32-bit ones.
template <int kDistance = 2>
PILIB_INLINE Ulong RunningSums(Ulong v) {
    if constexpr (kDistance < kLanes) {
        return RunningSums<2 * kDistance>(
            v + reinterpret_cast<Ulong>(Arranged<ShiftedUp<kDistance>>(reinterpret_cast<Int>(v), Int{})));
    } else {
        return v;
    }
}

// The premultiplied red, green and blue of pixels x .. x + count - 1, and their alpha. `count` is at most the
// lanes.
template <class Depth>
PILIB_INLINE void LoadPremultiplied(const void* pixels, int x, int count, Int (&values)[4]) {
    const Channels c = Depth::load(
        static_cast<const typename Depth::Type*>(pixels) + 4 * static_cast<std::ptrdiff_t>(x), count);
    values[0] = Depth::product(c.red, c.alpha);
    values[1] = Depth::product(c.green, c.alpha);
    values[2] = Depth::product(c.blue, c.alpha);
    values[3] = c.alpha;
}

template <class V>
PILIB_INLINE void StoreSome(void* to, const V& values, std::size_t bytes) {
    std::memcpy(to, &values, bytes);
}

// Calls op(x, count) for blocks of pixels that cover a row.
template <class Op>
PILIB_INLINE void ForEachBlock(std::int32_t pixels, Op op) {
    std::int32_t x = 0;
    for (; x + kLanes <= pixels; x += kLanes)
        op(x, kLanes);
    if (x < pixels) op(x, pixels - x);
}

template <class Depth>
void WriteRunningSums(const RowToSum& row) {
    Int sums[4];
    for (int table = 0; table < 4; ++table)
        sums[table] = Splat(static_cast<std::int32_t>(row.start[table]));
    ForEachBlock(row.count, [&](int x, int count) PILIB_INLINE_LAMBDA {
        Int values[4];
        LoadPremultiplied<Depth>(row.pixels, x, count, values);
        for (int table = 0; table < 4; ++table) {
            const Int running = Plus(sums[table], RunningSums(values[table]));
            StoreSome(row.sums[table] + x, running, sizeof(std::int32_t) * static_cast<unsigned>(count));
            sums[table] = Arranged<Last>(running, running);
        }
    });
}

// What the running sums of one table have come to, in every lane.
struct NarrowSums {
    Int once;
    Int twice;

    PILIB_INLINE NarrowSums(std::uint32_t start, std::uint32_t startTwice)
        : once(Splat(static_cast<std::int32_t>(start))),
          twice(Splat(static_cast<std::int32_t>(startTwice))) {}

    PILIB_INLINE void write(Int values, std::uint32_t* to, int count) {
        const Int running = Plus(once, RunningSums(values));
        const Int runningTwice = Plus(twice, RunningSums(running));
        StoreSome(to, runningTwice, sizeof(std::uint32_t) * static_cast<unsigned>(count));
        once = Arranged<Last>(running, running);
        twice = Arranged<Last>(runningTwice, runningTwice);
    }
};

struct WideSums {
    Int once;
    Ulong twice;

    PILIB_INLINE WideSums(std::uint32_t start, std::uint64_t startTwice)
        : once(Splat(static_cast<std::int32_t>(start))), twice(Ulong{} + startTwice) {}

    PILIB_INLINE void write(Int values, std::uint64_t* to, int count) {
        const Int running = Plus(once, RunningSums(values));
        const Ulong low =
            twice + RunningSums(reinterpret_cast<Ulong>(Arranged<ZipFirstHalves>(running, Int{})));
        const Ulong high =
            last(low) + RunningSums(reinterpret_cast<Ulong>(Arranged<ZipSecondHalves>(running, Int{})));
        const Ulong runningTwice[2] = {low, high};
        StoreSome(to, runningTwice, sizeof(std::uint64_t) * static_cast<unsigned>(count));
        once = Arranged<Last>(running, running);
        twice = last(high);
    }

    static PILIB_INLINE Ulong last(Ulong v) {
        const Int halves = reinterpret_cast<Int>(v);
        return reinterpret_cast<Ulong>(Arranged<LastPair>(halves, halves));
    }
};

template <class Depth, class Sums, class Cell>
void WriteRunningSumsTwice(const RowToSumTwice<Cell>& row) {
    Sums red(row.start[0], row.startTwice[0]);
    Sums green(row.start[1], row.startTwice[1]);
    Sums blue(row.start[2], row.startTwice[2]);
    Sums alpha(row.start[3], row.startTwice[3]);
    ForEachBlock(row.count, [&](int x, int count) PILIB_INLINE_LAMBDA {
        Int values[4];
        LoadPremultiplied<Depth>(row.pixels, x, count, values);
        red.write(values[0], row.sums[0] + x, count);
        green.write(values[1], row.sums[1] + x, count);
        blue.write(values[2], row.sums[2] + x, count);
        alpha.write(values[3], row.sums[3] + x, count);
    });
}

// As many cells as V has lanes; V may be a cell.
template <class V, class Cell>
PILIB_INLINE void AddDownAt(const RowsToAddDown<Cell>& rows, std::size_t i) {
    V column = Load<V>(rows.column + i);
    V sum = Load<V>(rows.above + i);
    for (std::size_t row = 0; row < kRowsAddedDown; ++row) {
        column += Load<V>(rows.addends[row] + i);
        sum += column;
        StoreSome(rows.outs[row] + i, sum, sizeof sum);
    }
    StoreSome(rows.column + i, column, sizeof column);
}

template <class V, class Cell>
void AddDown(const RowsToAddDown<Cell>& rows) {
    constexpr std::size_t kCells = sizeof(V) / sizeof(Cell);
    std::size_t i = 0;
    for (; i + kCells <= rows.count; i += kCells)
        AddDownAt<V>(rows, i);
    for (; i < rows.count; ++i)
        AddDownAt<Cell>(rows, i);
}

}  // namespace

}  // namespace PILib::detail
