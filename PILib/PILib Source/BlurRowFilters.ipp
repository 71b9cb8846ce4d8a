// The two blurs of the row kernels: how many neighbouring pixels of one radius are read, and how one pixel
// is. Premultiplied; each lane computes what getBlurInt computes, operation by operation.
#pragma once

#include "BlurRow.h"
#include "BlurRowLanes.ipp"

namespace PILib::detail {

namespace {

typedef std::int32_t Pixel4 __attribute__((vector_size(16)));
typedef std::int32_t Pixel4x2 __attribute__((vector_size(32)));
typedef std::uint64_t Words __attribute__((vector_size(32)));
typedef double Double4 __attribute__((vector_size(32)));
typedef double Double2 __attribute__((vector_size(16)));

// One pixel read out by itself: each channel at the whole radii and then at the next radius across, and each
// channel at the next radius down.
struct PixelValues {
    Pixel4x2 wholeAndAcross;
    Pixel4 down;
};

// Division of a box's sum by its area. The reciprocal is low by 2^-22, more than the singles' rounding, so
// that the estimate is never too large, and for quotients of up to 16 bits too small by one at most.
struct BoxArea {
    Int area;
    Float reciprocal;

    explicit PILIB_INLINE BoxArea(Int area)
        : area(area), reciprocal(1.0F / AsFloat(area) * (1.0F - 0x1p-22F)) {}

    PILIB_INLINE Int mean(Int sum) const {
        const Int estimate = Truncated(AsFloat(sum) * reciprocal);
        return Minus(estimate, Minus(sum, Times(estimate, area)) >= area);
    }
};

// The mean of a box from the four corners around it.
struct Box {
    using Entry = std::uint32_t;
    static constexpr std::int32_t kClampedBelowBorder = 1;  // radii reach borderX - 1
    static constexpr std::ptrdiff_t kCentreShift = 0;

    // One box around each of neighbouring pixels.
    struct Neighbours {
        std::ptrdiff_t bottomRight;
        std::ptrdiff_t bottomLeft;
        std::ptrdiff_t topRight;
        std::ptrdiff_t topLeft;
        BoxArea area;

        PILIB_INLINE Neighbours(std::ptrdiff_t radiusX, std::ptrdiff_t radiusY, std::ptrdiff_t stride)
            : bottomRight(radiusY * stride + radiusX),
              bottomLeft(radiusY * stride - radiusX - 1),
              topRight(-(radiusY + 1) * stride + radiusX),
              topLeft(-(radiusY + 1) * stride - radiusX - 1),
              area(Splat(static_cast<std::int32_t>((2 * radiusX + 1) * (2 * radiusY + 1)))) {}

        PILIB_INLINE Int mean(const Entry* table) const {
            const Uint sum = Load<Uint>(table + bottomRight) - Load<Uint>(table + bottomLeft) -
                             Load<Uint>(table + topRight) + Load<Uint>(table + topLeft);
            return area.mean(reinterpret_cast<Int>(sum));
        }
    };

    // A block of pixels of whatever radii. What readPixel gives are sums, which toMeans divides.
    struct Pixels {
        Int width;
        Int height;

        PILIB_INLINE Pixels(Int radiusX, Int radiusY) : width(2 * radiusX + 1), height(2 * radiusY + 1) {}

        // The entries at `cell` and its right neighbour, in all tables.
        static PILIB_INLINE Pixel4x2 entriesAt(const BlurRow<Entry>& row, std::ptrdiff_t cell) {
            const auto word = [cell](const Entry* table)
                                  PILIB_INLINE_LAMBDA { return Load<std::uint64_t>(table + cell); };
            return reinterpret_cast<Pixel4x2>(
                Words{word(row.alpha), word(row.red), word(row.green), word(row.blue)});
        }

        // The sums of the boxes between the table rows `top` and `bottom`, of the radius and the next one.
        static PILIB_INLINE Pixel4x2 sumsBetween(const BlurRow<Entry>& row, std::ptrdiff_t top,
                                                 std::ptrdiff_t bottom, std::ptrdiff_t radius) {
            const Pixel4x2 right = Minus(entriesAt(row, bottom + radius), entriesAt(row, top + radius));
            const Pixel4x2 left =
                Minus(entriesAt(row, bottom - radius - 2), entriesAt(row, top - radius - 2));
            return Minus(right, __builtin_shufflevector(left, left, 1, 0, 3, 2, 5, 4, 7, 6));
        }

        PILIB_INLINE PixelValues readPixel(const BlurRow<Entry>& row, std::ptrdiff_t centre, int /*lane*/,
                                           std::ptrdiff_t radiusX, std::ptrdiff_t radiusY) const {
            const std::ptrdiff_t top = centre - (radiusY + 1) * row.stride;
            const std::ptrdiff_t bottom = centre + radiusY * row.stride;
            const Pixel4x2 nextDown = sumsBetween(row, top - row.stride, bottom + row.stride, radiusX);
            return {sumsBetween(row, top, bottom, radiusX),
                    __builtin_shufflevector(nextDown, nextDown, 0, 2, 4, 6)};
        }

        // The values of all pixels: a vector for each that readPixel gives of one.
        PILIB_INLINE void toMeans(Int (&wholeAndAcross)[8], Int (&down)[4]) const {
            const BoxArea wholeArea(width * height);
            const BoxArea acrossArea((width + 2) * height);
            const BoxArea downArea(width * (height + 2));
            for (int channel = 0; channel < 4; ++channel) {
                wholeAndAcross[2 * channel] = wholeArea.mean(wholeAndAcross[2 * channel]);
                wholeAndAcross[2 * channel + 1] = acrossArea.mean(wholeAndAcross[2 * channel + 1]);
                down[channel] = downArea.mean(down[channel]);
            }
        }
    };
};

// The tent from nine samples of the second-order sums.
struct Tent {
    using Entry = double;
    static constexpr std::int32_t kClampedBelowBorder =
        2;  // half-widths, one more than radii, reach borderX - 1
    static constexpr std::ptrdiff_t kCentreShift = -1;

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

    // One tent over each of neighbouring pixels.
    struct Neighbours {
        std::ptrdiff_t halfX;
        std::ptrdiff_t rowOffset;
        double reciprocal;

        PILIB_INLINE Neighbours(std::ptrdiff_t radiusX, std::ptrdiff_t radiusY, std::ptrdiff_t stride)
            : halfX(radiusX + 1),
              rowOffset((radiusY + 1) * stride),
              reciprocal(reciprocalOf(radiusX + 1, radiusY + 1)) {}

        PILIB_INLINE HalfInt half(const Entry* table) const {
            const Double top[3] = {Load<Double>(table - rowOffset - halfX), Load<Double>(table - rowOffset),
                                   Load<Double>(table - rowOffset + halfX)};
            const Double middle[3] = {Load<Double>(table - halfX), Load<Double>(table),
                                      Load<Double>(table + halfX)};
            const Double bottom[3] = {Load<Double>(table + rowOffset - halfX),
                                      Load<Double>(table + rowOffset),
                                      Load<Double>(table + rowOffset + halfX)};
            return __builtin_convertvector(weighted(top, middle, bottom) * reciprocal + 0.5, HalfInt);
        }

        PILIB_INLINE Int mean(const Entry* table) const {
            return Joined(half(table), half(table + kLanes / 2));
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

        // Samples of two tables, each at the half-width's distance and at the next one's: across the row's
        // centre to the left, in the middle, to the right.
        struct RowOfPairs {
            Double4 at[3];

            PILIB_INLINE RowOfPairs(const Entry* one, const Entry* two, std::ptrdiff_t centre,
                                    std::ptrdiff_t halfX) {
                const auto both = [&](std::ptrdiff_t cell) PILIB_INLINE_LAMBDA {
                    return __builtin_shufflevector(Load<Double2>(one + cell), Load<Double2>(two + cell), 0, 1,
                                                   2, 3);
                };
                const Double4 left = both(centre - halfX - 1);
                at[0] = __builtin_shufflevector(left, left, 1, 0, 3, 2);
                at[1] = Double4{one[centre], one[centre], two[centre], two[centre]};
                at[2] = both(centre + halfX);
            }
        };

        // Samples of all four tables at the half-width's distance.
        struct RowOfTables {
            Double4 at[3];

            PILIB_INLINE RowOfTables(const BlurRow<Entry>& row, std::ptrdiff_t centre, std::ptrdiff_t halfX) {
                const auto all = [&](std::ptrdiff_t cell) PILIB_INLINE_LAMBDA {
                    return Double4{row.alpha[cell], row.red[cell], row.green[cell], row.blue[cell]};
                };
                at[0] = all(centre - halfX);
                at[1] = all(centre);
                at[2] = all(centre + halfX);
            }

            // From what has been read in pairs.
            PILIB_INLINE RowOfTables(const RowOfPairs& alphaRed, const RowOfPairs& greenBlue) {
                for (int i = 0; i < 3; ++i)
                    at[i] = __builtin_shufflevector(alphaRed.at[i], greenBlue.at[i], 0, 2, 4, 6);
            }
        };

        PILIB_INLINE PixelValues readPixel(const BlurRow<Entry>& row, std::ptrdiff_t centre, int lane,
                                           std::ptrdiff_t radiusX, std::ptrdiff_t radiusY) const {
            const std::ptrdiff_t halfX = radiusX + 1;
            const std::ptrdiff_t top = centre - (radiusY + 1) * row.stride;
            const std::ptrdiff_t bottom = centre + (radiusY + 1) * row.stride;
            const RowOfPairs middleAlphaRed(row.alpha, row.red, centre, halfX);
            const RowOfPairs middleGreenBlue(row.green, row.blue, centre, halfX);
            const Double4 reciprocals = {whole[lane], across[lane], whole[lane], across[lane]};
            const auto mean = [](Double4 sum, Double4 reciprocal) PILIB_INLINE_LAMBDA {
                return __builtin_convertvector(sum * reciprocal + 0.5, Pixel4);
            };
            const Pixel4 alphaRed =
                mean(weighted(RowOfPairs(row.alpha, row.red, top, halfX).at, middleAlphaRed.at,
                              RowOfPairs(row.alpha, row.red, bottom, halfX).at),
                     reciprocals);
            const Pixel4 greenBlue =
                mean(weighted(RowOfPairs(row.green, row.blue, top, halfX).at, middleGreenBlue.at,
                              RowOfPairs(row.green, row.blue, bottom, halfX).at),
                     reciprocals);
            const Pixel4 nextDown = mean(weighted(RowOfTables(row, top - row.stride, halfX).at,
                                                  RowOfTables(middleAlphaRed, middleGreenBlue).at,
                                                  RowOfTables(row, bottom + row.stride, halfX).at),
                                         Double4{} + down[lane]);
            return {__builtin_shufflevector(alphaRed, greenBlue, 0, 1, 2, 3, 4, 5, 6, 7), nextDown};
        }

        PILIB_INLINE void toMeans(Int (&/*wholeAndAcross*/)[8], Int (&/*down*/)[4]) const {}
    };
};

}  // namespace

}  // namespace PILib::detail
