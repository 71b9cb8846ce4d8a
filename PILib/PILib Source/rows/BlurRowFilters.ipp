// The two blurs of the row kernels: how the pixels of a group are read, and how one pixel is. Premultiplied,
// and in each lane what getBlurInt gives; a tent adds its terms in the same order.
//
// Blocks of more than kMostRuns runs of equal radii are read pixel by pixel, as so many groups were measured
// to cost more; where it is kLanes, all blocks are read by groups.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "BlurRowCells.ipp"
#include "RowDepths.ipp"
#include "RowKernels.h"
#include "RowLanes.ipp"

namespace PILib::detail {

namespace {

// One group: whole radii, and the next larger ones, that all its pixels share.
struct Group {
    std::ptrdiff_t wholeX;
    std::ptrdiff_t nextX;
    std::ptrdiff_t wholeY;
    std::ptrdiff_t nextY;
};

// A channel's means around a group's pixels: at the whole radii, at the next one across, at the next one
// down.
template <class V>
struct Means {
    V whole;
    V across;
    V down;
};

// One pixel read out by itself: each channel at the whole radii and then at the next radius across, and each
// channel at the next radius down.
struct PixelValues {
    Pixel4x2 wholeAndAcross;
    Pixel4 down;
};

// Division of box sums below 2^31 by the box's area. The relative errors of the four roundings add up to less
// than 2^-22, by which the reciprocal is low: the estimate is never too large, and for quotients of up to 16
// bits too small by one at most.
template <class Depth>
struct BoxDivision {
    Int area;
    Float reciprocal;

    explicit PILIB_INLINE BoxDivision(Int area)
        : area(area), reciprocal(1.0F / AsFloat(area) * (1.0F - 0x1p-22F)) {}

    PILIB_INLINE Int quotient(Int sum) const {
        const Int estimate = Truncated(AsFloat(sum) * reciprocal);
        return Minus(estimate, Minus(sum, Times(estimate, area)) >= area) & Depth::kMask;
    }
};

// The same for sums of up to 255 times an area below kAreaEnd, without a correction. The reciprocal is the
// single after the rounded one, 0.5 to 1.5 * 2^-23 above the true one: no multiple of the area comes out
// below its quotient. With the product's rounding a result is above the true one by less than 2^-22,
// relatively, while a sum one below a multiple is below it by 1 / (255 * area) or more, which is more than
// 2^-22.
struct SmallBoxDivision {
    static constexpr std::int32_t kAreaEnd = 1 << 14;
    Float reciprocal;

    explicit PILIB_INLINE SmallBoxDivision(Int area)
        : reciprocal(reinterpret_cast<Float>(reinterpret_cast<Int>(1.0F / AsFloat(area)) + 1)) {}

    PILIB_INLINE Int quotient(Int sum) const { return Truncated(AsFloat(sum) * reciprocal); }
};

// The mean of a box from four cells of a table, each the sum of everything up and left of it:
//
//     ------ TL ----------- TR                     L = column x - radiusX - 1
//             |  +  +  +  + |                      R = column x + radiusX
//             |  +  c  +  + |  the pixel at c      T = row y - radiusY - 1
//     ------ BL ----------- BR                     B = row y + radiusY
//
//     sum = BR - BL - TR + TL
//
// The next radius across takes columns L - 1 and R + 1, the next one down rows T - 1 and B + 1.
template <class Division>
struct Box {
    using Entry = std::uint32_t;
    static constexpr std::int32_t kClampedBelowBorder = 1;  // radii reach borderX - 1
    static constexpr std::ptrdiff_t kCentreShift = 0;
    static constexpr int kMostRuns = kLanes == 4 ? kLanes : kLanes / 4;

    // One box around each of neighbouring pixels.
    struct Boxes {
        std::ptrdiff_t bottomRight;
        std::ptrdiff_t bottomLeft;
        std::ptrdiff_t topRight;
        std::ptrdiff_t topLeft;
        Division area;

        PILIB_INLINE Boxes(std::ptrdiff_t radiusX, std::ptrdiff_t radiusY, std::ptrdiff_t stride)
            : bottomRight(radiusY * stride + radiusX),
              bottomLeft(radiusY * stride - radiusX - 1),
              topRight(-(radiusY + 1) * stride + radiusX),
              topLeft(-(radiusY + 1) * stride - radiusX - 1),
              area(Splat(static_cast<std::int32_t>((2 * radiusX + 1) * (2 * radiusY + 1)))) {}

        PILIB_INLINE Int mean(const Entry* table) const {
            const Uint sum = Load<Uint>(table + bottomRight) - Load<Uint>(table + bottomLeft) -
                             Load<Uint>(table + topRight) + Load<Uint>(table + topLeft);
            return area.quotient(reinterpret_cast<Int>(sum));
        }
    };

    // A group's pixels.
    struct Neighbours {
        Boxes whole;
        Boxes across;
        Boxes down;

        PILIB_INLINE Neighbours(const Group& group, std::ptrdiff_t stride)
            : whole(group.wholeX, group.wholeY, stride),
              across(group.nextX, group.wholeY, stride),
              down(group.wholeX, group.nextY, stride) {}

        PILIB_INLINE Means<Int> read(const Entry* table, unsigned /*members*/) const {
            return {whole.mean(table), across.mean(table), down.mean(table)};
        }
    };

    // A block of pixels of whatever radii. What readPixel gives are sums, which toMeans divides.
    struct Pixels {
        Int width;
        Int height;

        PILIB_INLINE Pixels(Int radiusX, Int radiusY) : width(2 * radiusX + 1), height(2 * radiusY + 1) {}

        // The sums of the boxes between the table rows `top` and `bottom`, of the radius and the next one.
        // One load takes a cell and its right neighbour, which serve both boxes:
        //
        //     cells           L - 1    L   ...   R    R + 1
        //     radius                   L         R               right - left, first of the pairs
        //     next radius     L - 1                   R + 1      second of the pairs
        //
        // On the right the radius comes first in memory, on the left the next one: the left pairs are
        // swapped. `radius` to the right of the centre is R, and L - 1 is `radius` + 2 to its left.
        static PILIB_INLINE Pixel4x2 sumsBetween(const RowToBlur<Entry>& row, std::ptrdiff_t top,
                                                 std::ptrdiff_t bottom, std::ptrdiff_t radius) {
            const Pixel4x2 right = Minus(PairsAt(row, bottom + radius), PairsAt(row, top + radius));
            const Pixel4x2 left = Minus(PairsAt(row, bottom - radius - 2), PairsAt(row, top - radius - 2));
            return Minus(right, Swapped(left));
        }

        PILIB_INLINE PixelValues readPixel(const RowToBlur<Entry>& row, std::ptrdiff_t centre, int /*lane*/,
                                           std::ptrdiff_t radiusX, std::ptrdiff_t radiusY) const {
            const std::ptrdiff_t top = centre - (radiusY + 1) * row.stride;
            const std::ptrdiff_t bottom = centre + radiusY * row.stride;
            const Pixel4x2 nextDown = sumsBetween(row, top - row.stride, bottom + row.stride, radiusX);
            return {sumsBetween(row, top, bottom, radiusX), FirstOfPairs(nextDown)};
        }

        // The values of all pixels: a vector for each that readPixel gives of one.
        PILIB_INLINE void toMeans(Int (&wholeAndAcross)[8], Int (&nextDown)[4]) const {
            const Division wholeArea(width * height);
            const Division acrossArea((width + 2) * height);
            const Division downArea(width * (height + 2));
            for (int channel = 0; channel < 4; ++channel) {
                wholeAndAcross[2 * channel] = wholeArea.quotient(wholeAndAcross[2 * channel]);
                wholeAndAcross[2 * channel + 1] = acrossArea.quotient(wholeAndAcross[2 * channel + 1]);
                nextDown[channel] = downArea.quotient(nextDown[channel]);
            }
        }
    };
};

// The tent from nine samples of the second-order sums.
template <class Depth>
struct Tent {
    using Entry = double;
    static constexpr std::int32_t kClampedBelowBorder = 2;  // half-widths, radii and one, reach borderX - 1
    static constexpr std::ptrdiff_t kCentreShift = -1;
    static constexpr int kMostRuns = kLanes == 4 ? kLanes / 2 : kLanes / 4;

    static PILIB_INLINE double reciprocalOf(std::ptrdiff_t halfX, std::ptrdiff_t halfY) {
        const auto weight = static_cast<std::uint32_t>(halfX * halfY);
        return 1.0 / static_cast<double>(static_cast<std::int32_t>(weight * weight));
    }

    // The weighted sum of three samples in each of three rows. The order of the terms is part of the result.
    template <class V>
    static PILIB_INLINE V weighted(const V (&top)[3], const V (&middle)[3], const V (&bottom)[3]) {
        return top[0] - 2.0 * top[1] + top[2] - 2.0 * middle[0] + 4.0 * middle[1] - 2.0 * middle[2] +
               bottom[0] - 2.0 * bottom[1] + bottom[2];
    }

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
              reciprocals{reciprocalOf(halfX, group.wholeY + 1), reciprocalOf(nextHalfX, group.wholeY + 1),
                          reciprocalOf(halfX, group.nextY + 1)} {}

        // Samples of a table row at the half-width's distance and at the next one's: to the left, in the
        // middle, to the right.
        struct SampleRow {
            Double whole[3];
            Double across[3];

            PILIB_INLINE SampleRow(const Entry* centre, std::ptrdiff_t halfX, std::ptrdiff_t nextHalfX)
                : whole{Load<Double>(centre - halfX), Load<Double>(centre), Load<Double>(centre + halfX)},
                  across{Load<Double>(centre - nextHalfX), whole[1], Load<Double>(centre + nextHalfX)} {}
        };

        // Half a vector of pixels.
        PILIB_INLINE Means<HalfInt> readHalf(const Entry* centre) const {
            const auto mean = [](Double sum, double reciprocal)
                                  PILIB_INLINE_LAMBDA { return Truncated(sum * reciprocal + 0.5); };
            const SampleRow top(centre - rowOffset, halfX, nextHalfX);
            const SampleRow middle(centre, halfX, nextHalfX);
            const SampleRow bottom(centre + rowOffset, halfX, nextHalfX);
            const SampleRow nextTop(centre - nextRowOffset, halfX, nextHalfX);
            const SampleRow nextBottom(centre + nextRowOffset, halfX, nextHalfX);
            return {mean(weighted(top.whole, middle.whole, bottom.whole), reciprocals.whole),
                    mean(weighted(top.across, middle.across, bottom.across), reciprocals.across),
                    mean(weighted(nextTop.whole, middle.whole, nextBottom.whole), reciprocals.down)};
        }

        PILIB_INLINE Means<Int> read(const Entry* table, unsigned members) const {
            constexpr unsigned kFirstHalf = (1U << kLanes / 2) - 1U;
            Means<HalfInt> low{};
            Means<HalfInt> high{};
            if ((members & kFirstHalf) != 0) low = readHalf(table);
            if ((members & ~kFirstHalf) != 0) high = readHalf(table + kLanes / 2);
            return {Joined(low.whole, high.whole) & Depth::kMask,
                    Joined(low.across, high.across) & Depth::kMask,
                    Joined(low.down, high.down) & Depth::kMask};
        }
    };

    // A block of pixels of whatever radii. What readPixel gives are means already.
    struct Pixels {
        double whole[kLanes];  // reciprocals of the weights
        double across[kLanes];
        double down[kLanes];

        PILIB_INLINE Pixels(Int radiusX, Int radiusY) {
            storeReciprocals(radiusX + 1, radiusY + 1, whole);
            storeReciprocals(radiusX + 2, radiusY + 1, across);
            storeReciprocals(radiusX + 1, radiusY + 2, down);
        }

        static PILIB_INLINE void storeReciprocals(Int halfX, Int halfY, double* reciprocals) {
            const Int weight = halfX * halfY;
            const Int square = Times(weight, weight);
            const Double low = 1.0 / __builtin_convertvector(FirstHalf(square), Double);
            const Double high = 1.0 / __builtin_convertvector(SecondHalf(square), Double);
            std::memcpy(reciprocals, &low, sizeof low);
            std::memcpy(reciprocals + kLanes / 2, &high, sizeof high);
        }

        // Samples of a table row at the half-width's distance and at the next one's: across its centre to the
        // left, in the middle, to the right.
        struct RowOfPairs {
            DoublePairs at[3];

            PILIB_INLINE RowOfPairs(const RowToBlur<Entry>& row, std::ptrdiff_t centre, std::ptrdiff_t halfX)
                : at{Swapped(PairsAt(row, centre - halfX - 1)), TwiceAt(row, centre),
                     PairsAt(row, centre + halfX)} {}
        };

        // The same at the half-width's distance alone.
        struct RowOfEntries {
            Double4 at[3];

            PILIB_INLINE RowOfEntries(const RowToBlur<Entry>& row, std::ptrdiff_t centre,
                                      std::ptrdiff_t halfX)
                : at{EntriesAt(row, centre - halfX), EntriesAt(row, centre), EntriesAt(row, centre + halfX)} {
            }

            PILIB_INLINE explicit RowOfEntries(const RowOfPairs& pairs)
                : at{FirstOfPairs(pairs.at[0]), FirstOfPairs(pairs.at[1]), FirstOfPairs(pairs.at[2])} {}
        };

        PILIB_INLINE PixelValues readPixel(const RowToBlur<Entry>& row, std::ptrdiff_t centre, int lane,
                                           std::ptrdiff_t radiusX, std::ptrdiff_t radiusY) const {
            const std::ptrdiff_t halfX = radiusX + 1;
            const std::ptrdiff_t top = centre - (radiusY + 1) * row.stride;
            const std::ptrdiff_t bottom = centre + (radiusY + 1) * row.stride;
            const RowOfPairs middle(row, centre, halfX);
            const DoublePairs wholeAndAcross =
                weighted(RowOfPairs(row, top, halfX).at, middle.at, RowOfPairs(row, bottom, halfX).at);
            const Double4 nextDown =
                weighted(RowOfEntries(row, top - row.stride, halfX).at, RowOfEntries(middle).at,
                         RowOfEntries(row, bottom + row.stride, halfX).at);
            return {Truncated(wholeAndAcross * Repeated(whole[lane], across[lane]) + 0.5),
                    __builtin_convertvector(nextDown * down[lane] + 0.5, Pixel4)};
        }

        PILIB_INLINE void toMeans(Int (&wholeAndAcross)[8], Int (&nextDown)[4]) const {
            for (Int& mean : wholeAndAcross)
                mean &= Depth::kMask;
            for (Int& mean : nextDown)
                mean &= Depth::kMask;
        }
    };
};

}  // namespace

}  // namespace PILib::detail
