// The tent of the row kernels, from nine samples of the second-order sums.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "BlurRowCells.ipp"
#include "BlurRowFilter.ipp"
#include "RowDepths.ipp"
#include "RowKernels.h"
#include "RowLanes.ipp"

namespace PILib::detail {

namespace {

// One minus two others plus a third: a second difference of sums, which wrap.
template <class V>
PILIB_INLINE V SecondDifference(const V& first, const V& middle, const V& last) {
    return first - (middle + middle) + last;
}

// A mean is sum * (1 / (halfX * halfY)^2) + 0.5 in double precision, truncated.
PILIB_INLINE double TentReciprocal(std::ptrdiff_t halfX, std::ptrdiff_t halfY) {
    const auto weight = static_cast<double>(halfX * halfY);
    return 1.0 / (weight * weight);
}

// Narrow sums as means, by the reciprocals of the first and the second half of the lanes.
PILIB_INLINE Int TentMeans(Uint sums, Double first, Double second) {
    return Joined(Truncated(FirstHalfAsDoubles(sums) * first + 0.5),
                  Truncated(SecondHalfAsDoubles(sums) * second + 0.5));
}

// Whether singles decide most means of narrow sums: they hold 12 digits behind the point of 8-bit means, and
// AVX-512 converts unsigned numbers to them at once.
template <class Depth>
constexpr bool kSinglesDecide = std::is_same_v<Depth, Depth8>&& kLanes == 16;

// 8-bit means by singles, where all lanes `wanted` lie so far from a step that rounding cannot matter; else
// what `inDoubles` gives. `scale` is 4096 / weights, rounded. Its error, those of the sum as a single and of
// their product and, by less than 1, the truncation leave `fixed` 0.7 to 2.3 above 4096 * (mean + 0.5): where
// its last 12 bits are 4 or more, the mean is on this side of the next step and past the last one by more
// than a double's error.
template <class InDoubles>
PILIB_INLINE Int TentMeansBySingles(Uint sums, Float scale, unsigned wanted, InDoubles inDoubles) {
    const Int fixed = Plus(Truncated(__builtin_convertvector(sums, Float) * scale), Splat(2048 + 2));
    const unsigned undecided = Bits((fixed & 0xFFC) == 0) & wanted;
    return undecided == 0 ? fixed >> 12 : inDoubles();
}

// The weights of every lane's own tent.
struct LaneWeights {
    Int weights;

    PILIB_INLINE LaneWeights(Int halfX, Int halfY) : weights(Times(halfX * halfY, halfX * halfY)) {}

    template <class Depth>
    PILIB_INLINE Int means(Uint sums) const {
        const auto inDoubles = [&]() PILIB_INLINE_LAMBDA {
            return TentMeans(sums, reciprocals(FirstHalf(weights)), reciprocals(SecondHalf(weights)));
        };
        if constexpr (kSinglesDecide<Depth>) {
            return TentMeansBySingles(sums, 4096.0F / AsFloat(weights), ~0U, inDoubles);
        } else {
            return inDoubles();
        }
    }

    static PILIB_INLINE Double reciprocals(HalfInt half) {
        return 1.0 / __builtin_convertvector(half, Double);
    }
};

// Their reciprocals, one by one.
struct LaneReciprocals {
    double at[kLanes];

    PILIB_INLINE LaneReciprocals(Int halfX, Int halfY) {
        const LaneWeights lanes(halfX, halfY);
        const Double first = LaneWeights::reciprocals(FirstHalf(lanes.weights));
        const Double second = LaneWeights::reciprocals(SecondHalf(lanes.weights));
        std::memcpy(at, &first, sizeof first);
        std::memcpy(at + kLanes / 2, &second, sizeof second);
    }
};

// The tent of half-widths R and V around the pixel at c weighs its window like this, R = 3 and V = 2:
//
//         1  2  3  2  1                          -2  -1   0  +1  +2    columns from c
//         2  4  6  4  2    the row of c       R - |d| = 1 2 3 2 1, times V - |d| = 1 2 1 down
//         1  2  3  2  1
//
// A table's cell holds, for every cell up and left of it, its sum of everything up and left. With cells and
// weights
//
//          c - R      c      c + R
//           +1  ---- -2 ---- +1       c - V       columns are those of cells one to the left of the pixels',
//            |        |        |                  rows those of one above
//           -2  ---- +4 ---- -2       c
//            |        |        |
//           +1  ---- -2 ---- +1       c + V
//
// nine samples are a second difference across of second differences down. They add up to the window's
// weighted sum, which is at most full scale times (R * V)^2, and integers that wrap give it exactly wherever
// it fits.
//
// The next radius across takes columns c - R - 1 and c + R + 1, the next one down rows c - V - 1 and c + V
// + 1.
template <class Depth, class Cell>
struct Tent {
    using Entry = Cell;
    static constexpr std::int32_t kClampedBelowBorder = 2;  // half-widths, radii and one, reach borderX - 1
    static constexpr std::ptrdiff_t kCentreShift = -1;
    static constexpr bool kIsNarrow = std::is_same_v<Cell, std::uint32_t>;
    static constexpr int kMostRuns = kLanes == 4 ? kLanes / 2 : kLanes / 4;

    // A group's pixels.
    struct Neighbours {
        std::ptrdiff_t halfX;
        std::ptrdiff_t nextHalfX;
        std::ptrdiff_t rowOffset;
        std::ptrdiff_t nextRowOffset;
        Means<double> reciprocals;

        PILIB_INLINE Neighbours(const Group& group, std::ptrdiff_t stride)
            : halfX(group.wholeX + 1),
              nextHalfX(group.nextX + 1),
              rowOffset((group.wholeY + 1) * stride),
              nextRowOffset((group.nextY + 1) * stride),
              reciprocals{.whole = TentReciprocal(halfX, group.wholeY + 1),
                          .across = TentReciprocal(nextHalfX, group.wholeY + 1),
                          .down = TentReciprocal(halfX, group.nextY + 1)} {}

        template <class V>
        static PILIB_INLINE V acrossAt(const Cell* centre, std::ptrdiff_t half) {
            return SecondDifference(Load<V>(centre - half), Load<V>(centre), Load<V>(centre + half));
        }

        // Of as many neighbouring pixels as V has lanes.
        template <class V>
        PILIB_INLINE Means<V> sums(const Cell* centre) const {
            const Cell* const top = centre - rowOffset;
            const Cell* const bottom = centre + rowOffset;
            const V middle = acrossAt<V>(centre, halfX);
            return {.whole = SecondDifference(acrossAt<V>(top, halfX), middle, acrossAt<V>(bottom, halfX)),
                    .across = SecondDifference(acrossAt<V>(top, nextHalfX), acrossAt<V>(centre, nextHalfX),
                                               acrossAt<V>(bottom, nextHalfX)),
                    .down = SecondDifference(acrossAt<V>(centre - nextRowOffset, halfX), middle,
                                             acrossAt<V>(centre + nextRowOffset, halfX))};
        }

        PILIB_INLINE Means<HalfInt> meansOfHalf(const Cell* centre) const {
            const Means<Ulong> sum = sums<Ulong>(centre);
            const auto mean = [](Ulong v, double reciprocal)
                                  PILIB_INLINE_LAMBDA { return Truncated(AsDoubles(v) * reciprocal + 0.5); };
            return {.whole = mean(sum.whole, reciprocals.whole),
                    .across = mean(sum.across, reciprocals.across),
                    .down = mean(sum.down, reciprocals.down)};
        }

        PILIB_INLINE Means<Int> read(const Cell* table, unsigned members) const {
            if constexpr (kIsNarrow) {
                const Means<Uint> sum = sums<Uint>(table);
                const auto mean = [&](Uint v, double reciprocal) PILIB_INLINE_LAMBDA {
                    const auto inDoubles = [&]() PILIB_INLINE_LAMBDA {
                        return TentMeans(v, Double{} + reciprocal, Double{} + reciprocal);
                    };
                    if constexpr (kSinglesDecide<Depth>) {
                        const auto scale = static_cast<float>(4096.0 * reciprocal);
                        return TentMeansBySingles(v, Float{} + scale, members, inDoubles);
                    } else {
                        return inDoubles();
                    }
                };
                return {.whole = mean(sum.whole, reciprocals.whole),
                        .across = mean(sum.across, reciprocals.across),
                        .down = mean(sum.down, reciprocals.down)};
            } else {
                constexpr unsigned kFirstHalf = (1U << kLanes / 2) - 1U;
                Means<HalfInt> low{};
                Means<HalfInt> high{};
                if ((members & kFirstHalf) != 0) low = meansOfHalf(table);
                if ((members & ~kFirstHalf) != 0) high = meansOfHalf(table + kLanes / 2);
                return {.whole = Joined(low.whole, high.whole),
                        .across = Joined(low.across, high.across),
                        .down = Joined(low.down, high.down)};
            }
        }
    };

    // A block of pixels of whatever radii. What readPixel gives are narrow sums, or means already.
    struct Pixels {
        using Lanes = std::conditional_t<kIsNarrow, LaneWeights, LaneReciprocals>;
        Lanes whole;
        Lanes across;
        Lanes down;

        PILIB_INLINE Pixels(Int radiusX, Int radiusY)
            : whole(radiusX + 1, radiusY + 1),
              across(radiusX + 2, radiusY + 1),
              down(radiusX + 1, radiusY + 2) {}

        // Second differences across, for the radius and the next one. On the left the next one comes first in
        // memory, as where a box is read.
        static PILIB_INLINE auto pairsAcross(const RowToBlur<Cell>& row, std::ptrdiff_t centre,
                                             std::ptrdiff_t half) {
            return SecondDifference(Swapped(PairsAt(row, centre - half - 1)), TwiceAt(row, centre),
                                    PairsAt(row, centre + half));
        }

        // For the radius alone.
        static PILIB_INLINE auto entriesAcross(const RowToBlur<Cell>& row, std::ptrdiff_t centre,
                                               std::ptrdiff_t half) {
            return SecondDifference(EntriesAt(row, centre - half), EntriesAt(row, centre),
                                    EntriesAt(row, centre + half));
        }

        PILIB_INLINE PixelValues readPixel(const RowToBlur<Cell>& row, std::ptrdiff_t centre, int lane,
                                           std::ptrdiff_t radiusX, std::ptrdiff_t radiusY) const {
            const std::ptrdiff_t half = radiusX + 1;
            const std::ptrdiff_t top = centre - (radiusY + 1) * row.stride;
            const std::ptrdiff_t bottom = centre + (radiusY + 1) * row.stride;
            const auto middle = pairsAcross(row, centre, half);
            const auto wholeAndAcross =
                SecondDifference(pairsAcross(row, top, half), middle, pairsAcross(row, bottom, half));
            const auto nextDown =
                SecondDifference(entriesAcross(row, top - row.stride, half), FirstOfPairs(middle),
                                 entriesAcross(row, bottom + row.stride, half));
            if constexpr (kIsNarrow) {
                return {wholeAndAcross, nextDown};
            } else {
                return {PairMeans(wholeAndAcross, whole.at[lane], across.at[lane]),
                        EntryMeans(nextDown, down.at[lane])};
            }
        }

        // The values of all pixels: a vector for each that readPixel gives of one.
        PILIB_INLINE void toMeans(Int (&wholeAndAcross)[8], Int (&nextDown)[4]) const {
            if constexpr (kIsNarrow) {
                for (int channel = 0; channel < 4; ++channel) {
                    wholeAndAcross[2 * channel] =
                        whole.template means<Depth>(AsUnsigned(wholeAndAcross[2 * channel]));
                    wholeAndAcross[2 * channel + 1] =
                        across.template means<Depth>(AsUnsigned(wholeAndAcross[2 * channel + 1]));
                    nextDown[channel] = down.template means<Depth>(AsUnsigned(nextDown[channel]));
                }
            }
        }
    };
};

}  // namespace

}  // namespace PILib::detail
