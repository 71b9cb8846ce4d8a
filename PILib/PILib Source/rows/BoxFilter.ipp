// The box of the row kernels, from the four corners around it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "BlurRowCells.ipp"
#include "BlurRowFilter.ipp"
#include "RowKernels.h"
#include "RowLanes.ipp"

namespace PILib::detail {

namespace {

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
            const Pixel4x2 right = PairsAt(row, bottom + radius) - PairsAt(row, top + radius);
            const Pixel4x2 left = PairsAt(row, bottom - radius - 2) - PairsAt(row, top - radius - 2);
            return right - Swapped(left);
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

}  // namespace

}  // namespace PILib::detail
