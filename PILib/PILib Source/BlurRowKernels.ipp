// The vector kernels of the blurs' rows, compiled once per instruction set with PILIB_LANES 32-bit lanes.
//
// A block of pixels is read out by groups of equal whole radii: within a group the corners of the boxes lie
// side by side in the tables. Neighbouring pixels of a depth matte mostly share their whole radius, so that
// most blocks are one group. In blocks of many groups each pixel is read by itself, its channels and the
// corners of neighbouring radii side by side. Each lane computes what getBlur computes, operation by
// operation.

#include "BlurRow.h"
#include "BlurRowLanes.ipp"

namespace PILib::detail {

namespace {

struct Channels {
    Int alpha;
    Int red;
    Int green;
    Int blue;
};

PILIB_INLINE Channels Select(Int mask, const Channels& a, const Channels& b) {
    return {Select(mask, a.alpha, b.alpha), Select(mask, a.red, b.red), Select(mask, a.green, b.green),
            Select(mask, a.blue, b.blue)};
}

// What differs between the two depths.
struct Depth8 {
    using Type = std::uint8_t;
    static constexpr std::int32_t kOne = 255;
    static constexpr std::int32_t kMask = 0xFF;

    static PILIB_INLINE Int shareOf(Int map) { return (map * 32897) >> 7; }

    static PILIB_INLINE Int product(Int a, Int b) {
        const Int t = a * b + 128;
        return (t + (t >> 8)) >> 8;
    }

    // 255 in 16.16 divided by alpha, truncated. The quotient of two exact singles is one step too large at
    // most.
    static PILIB_INLINE Int straightenFactor(Int alpha) {
        constexpr std::int32_t kNumerator = kOne << 16;
        const Int quotient = Truncated(static_cast<float>(kNumerator) / AsFloat(alpha));
        return Plus(quotient, Minus(Splat(kNumerator), Times(quotient, alpha)) < 0);
    }

    static PILIB_INLINE Channels load(const Type* from, int count) {
        const Int pixels = LoadSome<Int>(from, 4 * count);
        return {pixels & kMask, pixels >> 8 & kMask, pixels >> 16 & kMask, pixels >> 24 & kMask};
    }

    static PILIB_INLINE void store(Type* to, const Type* unblurred, int count, Int blurred,
                                   const Channels& c) {
        const Int pixels = c.alpha | c.red << 8 | c.green << 16 | c.blue << 24;
        const Int result = Select(blurred, pixels, LoadSome<Int>(unblurred, 4 * count));
        std::memcpy(to, &result, 4U * static_cast<std::size_t>(count));
    }
};

struct Depth15 {
    using Type = std::uint16_t;
    static constexpr std::int32_t kOne = 32768;
    static constexpr std::int32_t kMask = 0xFFFF;

    static PILIB_INLINE Int shareOf(Int map) { return map * 2; }

    static PILIB_INLINE Int product(Int a, Int b) { return Times(a, b) >> 15; }

    // 32768 in 16.16 divided by alpha, truncated; saturated for alpha 1. The estimate is corrected by what is
    // left over.
    static PILIB_INLINE Int straightenFactor(Int alpha) {
        const Float divisor = AsFloat(alpha);
        const auto rest = [alpha](Int quotient) {
            return reinterpret_cast<Int>((Uint{} + 0x80000000U) - AsUnsigned(quotient) * AsUnsigned(alpha));
        };
        Int quotient =
            Truncated(2147483520.0F / divisor);  // the single before 2^31 stays in range for alpha 1
        quotient = Plus(quotient, Truncated(AsFloat(rest(quotient)) / divisor));
        const Int left = rest(quotient);
        quotient = Plus(Minus(quotient, left >= alpha), left < 0);
        return Select(alpha == 1, Splat(0x7FFFFFFF), quotient);
    }

    static PILIB_INLINE Channels load(const Type* from, int count) {
        Int pixels[2] = {};
        std::memcpy(pixels, from, 8U * static_cast<std::size_t>(count));
        const Int low = Arranged<Evens>(pixels[0], pixels[1]);
        const Int high = Arranged<Odds>(pixels[0], pixels[1]);
        return {low & kMask, low >> 16 & kMask, high & kMask, high >> 16 & kMask};
    }

    static PILIB_INLINE void store(Type* to, const Type* unblurred, int count, Int blurred,
                                   const Channels& c) {
        const Int low = c.alpha | c.red << 16;
        const Int high = c.green | c.blue << 16;
        Int kept[2] = {};
        std::memcpy(kept, unblurred, 8U * static_cast<std::size_t>(count));
        const Int result[2] = {
            Select(Arranged<ZipFirstHalves>(blurred, blurred), Arranged<ZipFirstHalves>(low, high), kept[0]),
            Select(Arranged<ZipSecondHalves>(blurred, blurred), Arranged<ZipSecondHalves>(low, high),
                   kept[1])};
        std::memcpy(to, result, 8U * static_cast<std::size_t>(count));
    }
};

// The radii of a block along one axis, split and clamped as getBlur and getBlurInt do.
struct Radii {
    Int whole;
    Int next;      // whole + 1, clamped likewise
    Int fraction;  // 0 to 65535
};

PILIB_INLINE Radii RadiiOf(Int share, float radius, std::int32_t maxFixed, std::int32_t largest) {
    const Int fixed = Min(Truncated(AsFloat(share) * radius), Splat(maxFixed));
    const Int whole = fixed >> 16;
    return {Min(whole, Splat(largest)), Min(whole + 1, Splat(largest)), fixed & 0xFFFF};
}

// One group: whole radii, and the next larger ones, that all its pixels share.
struct Group {
    std::ptrdiff_t wholeX;
    std::ptrdiff_t nextX;
    std::ptrdiff_t wholeY;
    std::ptrdiff_t nextY;
};

// c0 + fraction / 65536 of the way to c1, rounded. Halving first keeps the largest product in 32 bits.
template <class V>
PILIB_INLINE V Interpolated(V c0, V c1, V fraction) {
    return c0 + (((Times(fraction, c1 - c0) >> 1) + 16384) >> 15);
}

// The four channels of one pixel with two values each, in pairs: alpha, alpha, red, red ...
typedef std::int32_t Pairs __attribute__((vector_size(32)));
typedef float FloatPairs __attribute__((vector_size(32)));
typedef std::uint64_t Words __attribute__((vector_size(32)));
typedef std::int32_t Pixel4 __attribute__((vector_size(16)));
typedef double Double4 __attribute__((vector_size(32)));
typedef double Double2 __attribute__((vector_size(16)));

template <class V>
PILIB_INLINE V PairsSwapped(V v) {
    return __builtin_shufflevector(v, v, 1, 0, 3, 2, 5, 4, 7, 6);
}

PILIB_INLINE Pairs EveryPair(std::int32_t first, std::int32_t second) {
    return Pairs{first, second, first, second, first, second, first, second};
}

// The two fractional steps and their mean. `whole` holds a channel's value at the whole radii in its pair's
// first lane and at the next radius across in the second, `nextDown` that at the next radius down in the
// first.
PILIB_INLINE Pixel4 PairsMixed(Pairs whole, Pairs nextDown, std::int32_t fractionX, std::int32_t fractionY) {
    const Pairs from = __builtin_shufflevector(whole, whole, 0, 0, 2, 2, 4, 4, 6, 6);
    const Pairs to = __builtin_shufflevector(nextDown, whole, 0, 9, 2, 11, 4, 13, 6, 15);
    const Pairs steps = Interpolated(from, to, EveryPair(fractionY, fractionX));
    const Pairs mean = (steps + PairsSwapped(steps)) >> 1;
    return __builtin_shufflevector(mean, mean, 0, 2, 4, 6);
}

// Division of a box's sum by its area. The reciprocal is low by 2^-22, more than the singles' rounding, so
// that the estimate is never too large, and for quotients of up to 16 bits too small by one at most.
PILIB_INLINE float LowReciprocal(std::int32_t area) {
    return 1.0F / static_cast<float>(area) * (1.0F - 0x1p-22F);
}

template <class V, class F>
PILIB_INLINE V Mean(V sum, V area, F reciprocal) {
    const V estimate = __builtin_convertvector(__builtin_convertvector(sum, F) * reciprocal, V);
    return Minus(estimate, Minus(sum, Times(estimate, area)) >= area);
}

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
        Int area;
        Float reciprocal;

        PILIB_INLINE Neighbours(std::ptrdiff_t radiusX, std::ptrdiff_t radiusY, std::ptrdiff_t stride)
            : bottomRight(radiusY * stride + radiusX),
              bottomLeft(radiusY * stride - radiusX - 1),
              topRight(-(radiusY + 1) * stride + radiusX),
              topLeft(-(radiusY + 1) * stride - radiusX - 1),
              area(Splat(static_cast<std::int32_t>((2 * radiusX + 1) * (2 * radiusY + 1)))),
              reciprocal(Float{} + LowReciprocal(area[0])) {}

        PILIB_INLINE Int mean(const Entry* table) const {
            const Uint sum = Load<Uint>(table + bottomRight) - Load<Uint>(table + bottomLeft) -
                             Load<Uint>(table + topRight) + Load<Uint>(table + topLeft);
            return Mean(reinterpret_cast<Int>(sum), area, reciprocal);
        }
    };

    // The entries at `cell` and its right neighbour, in all tables.
    static PILIB_INLINE Pairs entriesAt(const BlurRow<Entry>& row, std::ptrdiff_t cell) {
        const auto word = [cell](const Entry* table)
                              PILIB_INLINE_LAMBDA { return Load<std::uint64_t>(table + cell); };
        return reinterpret_cast<Pairs>(
            Words{word(row.alpha), word(row.red), word(row.green), word(row.blue)});
    }

    // The sums of the boxes between the table rows `top` and `bottom`: in a pair of the whole radius and of
    // the next one.
    static PILIB_INLINE Pairs sumsBetween(const BlurRow<Entry>& row, std::ptrdiff_t top,
                                          std::ptrdiff_t bottom, std::ptrdiff_t radius) {
        const Pairs right = Minus(entriesAt(row, bottom + radius), entriesAt(row, top + radius));
        const Pairs left = Minus(entriesAt(row, bottom - radius - 2), entriesAt(row, top - radius - 2));
        return Minus(right, PairsSwapped(left));
    }

    template <class Depth>
    static PILIB_INLINE Pixel4 readPixel(const BlurRow<Entry>& row, std::ptrdiff_t centre,
                                         std::int32_t radiusX, std::int32_t radiusY, std::int32_t fractionX,
                                         std::int32_t fractionY) {
        const std::ptrdiff_t top = centre - (radiusY + 1) * row.stride;
        const std::ptrdiff_t bottom = centre + radiusY * row.stride;
        const Pairs whole = sumsBetween(row, top, bottom, radiusX);
        const Pairs nextDown = sumsBetween(row, top - row.stride, bottom + row.stride, radiusX);
        const std::int32_t width = 2 * radiusX + 1;
        const std::int32_t height = 2 * radiusY + 1;
        const Pairs areas = EveryPair(width * height, (width + 2) * height);
        const Pairs nextAreas = areas + EveryPair(2 * width, 2 * (width + 2));
        const auto reciprocals = [](Pairs area) PILIB_INLINE_LAMBDA {
            return 1.0F / __builtin_convertvector(area, FloatPairs) * (1.0F - 0x1p-22F);
        };
        return PairsMixed(Mean(whole, areas, reciprocals(areas)) & Depth::kMask,
                          Mean(nextDown, nextAreas, reciprocals(nextAreas)) & Depth::kMask, fractionX,
                          fractionY);
    }
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

    // Samples of two tables, each at the half-width's distance and at the next one's: across the row's centre
    // to the left, in the middle, to the right.
    struct RowOfPairs {
        Double4 at[3];

        PILIB_INLINE RowOfPairs(const Entry* one, const Entry* two, std::ptrdiff_t centre,
                                std::ptrdiff_t halfX) {
            const auto both = [&](std::ptrdiff_t cell) PILIB_INLINE_LAMBDA {
                return __builtin_shufflevector(Load<Double2>(one + cell), Load<Double2>(two + cell), 0, 1, 2,
                                               3);
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

    template <class Depth>
    static PILIB_INLINE Pixel4 readPixel(const BlurRow<Entry>& row, std::ptrdiff_t centre,
                                         std::int32_t radiusX, std::int32_t radiusY, std::int32_t fractionX,
                                         std::int32_t fractionY) {
        const std::ptrdiff_t halfX = radiusX + 1;
        const std::ptrdiff_t halfY = radiusY + 1;
        const std::ptrdiff_t top = centre - halfY * row.stride;
        const std::ptrdiff_t bottom = centre + halfY * row.stride;
        const auto rowOfPairs = [&](const Entry* one, const Entry* two, std::ptrdiff_t cell)
                                    PILIB_INLINE_LAMBDA { return RowOfPairs(one, two, cell, halfX); };
        const RowOfPairs middleAlphaRed = rowOfPairs(row.alpha, row.red, centre);
        const RowOfPairs middleGreenBlue = rowOfPairs(row.green, row.blue, centre);
        const double whole = reciprocalOf(halfX, halfY);
        const double nextAcross = reciprocalOf(halfX + 1, halfY);
        const Double4 reciprocals = {whole, nextAcross, whole, nextAcross};
        const auto mean = [](Double4 sum, Double4 reciprocal) PILIB_INLINE_LAMBDA {
            return __builtin_convertvector(sum * reciprocal + 0.5, Pixel4) & Depth::kMask;
        };
        const Pixel4 alphaRed = mean(weighted(rowOfPairs(row.alpha, row.red, top).at, middleAlphaRed.at,
                                              rowOfPairs(row.alpha, row.red, bottom).at),
                                     reciprocals);
        const Pixel4 greenBlue = mean(weighted(rowOfPairs(row.green, row.blue, top).at, middleGreenBlue.at,
                                               rowOfPairs(row.green, row.blue, bottom).at),
                                      reciprocals);
        const Pixel4 nextDown = mean(weighted(RowOfTables(row, top - row.stride, halfX).at,
                                              RowOfTables(middleAlphaRed, middleGreenBlue).at,
                                              RowOfTables(row, bottom + row.stride, halfX).at),
                                     Double4{} + reciprocalOf(halfX, halfY + 1));
        return PairsMixed(__builtin_shufflevector(alphaRed, greenBlue, 0, 1, 2, 3, 4, 5, 6, 7),
                          __builtin_shufflevector(nextDown, nextDown, 0, 0, 1, 1, 2, 2, 3, 3), fractionX,
                          fractionY);
    }
};

template <class Depth>
PILIB_INLINE void Straighten(Channels& c) {
    const Int opaque = c.alpha == Depth::kOne;
    if (Bits(opaque) == (1U << kLanes) - 1U) return;
    const Int transparent = c.alpha == 0;
    const Int factor = Depth::straightenFactor(c.alpha - transparent);  // transparent lanes divide by 1
    const auto scaled = [&](Int colour) {
        const Uint product = AsUnsigned(colour) * AsUnsigned(factor);
        return Select(opaque, colour, reinterpret_cast<Int>(product >> 16) & Depth::kMask & ~transparent);
    };
    c.red = scaled(c.red);
    c.green = scaled(c.green);
    c.blue = scaled(c.blue);
}

// Blocks of more runs of equal radii than this are read pixel by pixel: a group costs about as much as a
// quarter of the block's pixels do by themselves, and all of a block of four.
constexpr int kMostRuns = kLanes == 4 ? kLanes : kLanes / 4;

PILIB_INLINE int Runs(Int wholeX, Int wholeY) {
    const Int changes =
        (wholeX != Arranged<Previous>(wholeX, wholeX)) | (wholeY != Arranged<Previous>(wholeY, wholeY));
    return 1 + __builtin_popcount(Bits(changes));
}

// All lanes at one group's radii, premultiplied.
template <class Blur, class Depth>
PILIB_INLINE Channels ReadGroup(const BlurRow<typename Blur::Entry>& row, std::ptrdiff_t centre,
                                const Group& group, Int fractionX, Int fractionY) {
    using Neighbours = typename Blur::Neighbours;
    const Neighbours whole(group.wholeX, group.wholeY, row.stride);
    const Neighbours nextAcross(group.nextX, group.wholeY, row.stride);
    const Neighbours nextDown(group.wholeX, group.nextY, row.stride);
    const auto channel = [&](const typename Blur::Entry* table) PILIB_INLINE_LAMBDA {
        const Int c00 = whole.mean(table + centre) & Depth::kMask;
        const Int c10 = nextAcross.mean(table + centre) & Depth::kMask;
        const Int c01 = nextDown.mean(table + centre) & Depth::kMask;
        return (Interpolated(c00, c10, fractionX) + Interpolated(c00, c01, fractionY)) >> 1;
    };
    return {channel(row.alpha), channel(row.red), channel(row.green), channel(row.blue)};
}

// A block whose lanes `wanted` are blurred, group by group.
template <class Blur, class Depth>
PILIB_INLINE Channels ReadGroups(const BlurRow<typename Blur::Entry>& row, std::ptrdiff_t centre,
                                 const Radii& x, const Radii& y, unsigned wanted) {
    Channels result{};
    while (wanted != 0) {
        const int lane = __builtin_ctz(wanted);
        const Group group = {x.whole[lane], x.next[lane], y.whole[lane], y.next[lane]};
        const Int members = (x.whole == x.whole[lane]) & (y.whole == y.whole[lane]);
        result = Select(members, ReadGroup<Blur, Depth>(row, centre, group, x.fraction, y.fraction), result);
        wanted &= ~Bits(members);
    }
    return result;
}

// The same pixel by pixel. Needs radii that are not clamped.
template <class Blur, class Depth>
PILIB_INLINE Channels ReadPixels(const BlurRow<typename Blur::Entry>& row, std::ptrdiff_t centre,
                                 const Radii& x, const Radii& y, unsigned wanted) {
    std::int32_t wholeX[kLanes];
    std::int32_t wholeY[kLanes];
    std::int32_t fractionX[kLanes];
    std::int32_t fractionY[kLanes];
    std::memcpy(wholeX, &x.whole, sizeof wholeX);
    std::memcpy(wholeY, &y.whole, sizeof wholeY);
    std::memcpy(fractionX, &x.fraction, sizeof fractionX);
    std::memcpy(fractionY, &y.fraction, sizeof fractionY);
    Int pixels[4] = {};
    for (; wanted != 0; wanted &= wanted - 1) {
        const int lane = __builtin_ctz(wanted);
        const Pixel4 pixel = Blur::template readPixel<Depth>(row, centre + lane, wholeX[lane], wholeY[lane],
                                                             fractionX[lane], fractionY[lane]);
        std::memcpy(reinterpret_cast<char*>(pixels) + sizeof pixel * static_cast<unsigned>(lane), &pixel,
                    sizeof pixel);
    }
    const auto channel = [&]<class Order>(Order /*order*/) PILIB_INLINE_LAMBDA {
        return Arranged<JoinFirstHalves>(Arranged<Order>(pixels[0], pixels[1]),
                                         Arranged<Order>(pixels[2], pixels[3]));
    };
    return {channel(EveryFourth<0>{}), channel(EveryFourth<1>{}), channel(EveryFourth<2>{}),
            channel(EveryFourth<3>{})};
}

// Pixels x .. x + count - 1 of the row, of which `count` is at most the lanes.
template <class Blur, class Depth>
PILIB_INLINE void ReadBlock(const BlurRow<typename Blur::Entry>& row, int x, int count) {
    using Type = typename Depth::Type;
    const Type* const input = static_cast<const Type*>(row.input) + 4 * static_cast<std::ptrdiff_t>(x);
    Type* const output = static_cast<Type*>(row.output) + 4 * static_cast<std::ptrdiff_t>(x);
    const Int map = LoadWidened(static_cast<const Type*>(row.map) + x, count);
    const Int blurred = map != 0;
    const unsigned wanted = Bits(blurred);
    if (wanted == 0) {
        std::memcpy(output, input, 4 * sizeof(Type) * static_cast<std::size_t>(count));
        return;
    }
    const Int share = Depth::shareOf(map);
    const std::int32_t largestX = row.borderX - Blur::kClampedBelowBorder;
    const std::int32_t largestY = row.borderY - Blur::kClampedBelowBorder;
    const Radii radiiX = RadiiOf(share, row.radiusX, row.maxFixedRadiusX, largestX);
    const Radii radiiY = RadiiOf(share, row.radiusY, row.maxFixedRadiusY, largestY);
    const std::ptrdiff_t centre = row.centre + x + Blur::kCentreShift * (row.stride + 1);

    const bool isClamped = row.maxFixedRadiusX >> 16 >= largestX || row.maxFixedRadiusY >> 16 >= largestY;
    Channels result = isClamped || Runs(radiiX.whole, radiiY.whole) <= kMostRuns
                          ? ReadGroups<Blur, Depth>(row, centre, radiiX, radiiY, wanted)
                          : ReadPixels<Blur, Depth>(row, centre, radiiX, radiiY, wanted);
    Straighten<Depth>(result);
    Depth::store(output, input, count, blurred, result);
}

template <class Blur, class Depth>
void ReadRow(const BlurRow<typename Blur::Entry>& row) {
    int x = 0;
    for (; x + kLanes <= row.count; x += kLanes)
        ReadBlock<Blur, Depth>(row, x, kLanes);
    if (x < row.count) ReadBlock<Blur, Depth>(row, x, row.count - x);
}

// v summed along its lanes.
template <int kDistance = 1>
PILIB_INLINE Int RunningSums(Int v) {
    if constexpr (kDistance < kLanes) {
        return RunningSums<2 * kDistance>(v + Arranged<ShiftedUp<kDistance>>(v, Int{}));
    } else {
        return v;
    }
}

// Pixels x .. x + count - 1, of which `count` is at most the lanes, to the running sums that end in `sums`,
// of red, green, blue and alpha.
template <class Depth>
PILIB_INLINE void SumPixels(const PrefixRow& row, Int (&sums)[4], int x, int count) {
    const Channels c = Depth::load(
        static_cast<const typename Depth::Type*>(row.pixels) + 4 * static_cast<std::ptrdiff_t>(x), count);
    const Int premultiplied[4] = {Depth::product(c.red, c.alpha), Depth::product(c.green, c.alpha),
                                  Depth::product(c.blue, c.alpha), c.alpha};
    for (int table = 0; table < 4; ++table) {
        const Int running = sums[table] + RunningSums(premultiplied[table]);
        std::memcpy(row.sums[table] + x, &running, sizeof(std::int32_t) * static_cast<unsigned>(count));
        sums[table] = Arranged<Last>(running, running);
    }
}

template <class Depth>
void SumRow(const PrefixRow& row) {
    Int sums[4] = {Splat(row.start[0]), Splat(row.start[1]), Splat(row.start[2]), Splat(row.start[3])};
    int x = 0;
    for (; x + kLanes <= row.count; x += kLanes)
        SumPixels<Depth>(row, sums, x, kLanes);
    if (x < row.count) SumPixels<Depth>(row, sums, x, row.count - x);
}

}  // namespace

extern const BlurRowKernels PILIB_KERNELS = {
    ReadRow<Box, Depth8>,   ReadRow<Box, Depth15>, ReadRow<Tent, Depth8>,
    ReadRow<Tent, Depth15>, SumRow<Depth8>,        SumRow<Depth15>,
};

}  // namespace PILib::detail
