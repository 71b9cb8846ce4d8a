// The vector kernels of the blurs' rows, compiled once per instruction set with PILIB_LANES 32-bit lanes.
//
// A block of pixels is read out by groups of equal whole radii: within a group the corners of the boxes lie
// side by side in the tables. Neighbouring pixels of a depth matte mostly share their whole radius, so that
// most blocks are one group. In blocks of many groups each pixel is read by itself, its channels and the
// corners of neighbouring radii side by side. Each lane computes what getBlur computes, operation by
// operation.

#include "BlurRow.h"
#include "BlurRowFilters.ipp"
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

    static PILIB_INLINE Int product(Int a, Int b) {
        return reinterpret_cast<Int>(AsUnsigned(a) * AsUnsigned(b) >> 15);
    }

    // 32768 in 16.16 divided by alpha, truncated; saturated for alpha 1. The estimate is corrected by what is
    // left over.
    static PILIB_INLINE Int straightenFactor(Int alpha) {
        const Float divisor = AsFloat(alpha);
        const auto rest = [alpha](Int quotient) PILIB_INLINE_LAMBDA {
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
struct AxisRadii {
    Int whole;
    Int next;      // whole + 1, clamped likewise
    Int fraction;  // 0 to 65535
};

PILIB_INLINE AxisRadii RadiiOf(Int share, float radius, std::int32_t maxFixed, std::int32_t largest) {
    const Int fixed = Min(Truncated(AsFloat(share) * radius), Splat(maxFixed));
    const Int whole = fixed >> 16;
    return {Min(whole, Splat(largest)), Min(whole + 1, Splat(largest)), fixed & 0xFFFF};
}

// c0 + fraction / 65536 of the way to c1, rounded. Halving first keeps the largest product in 32 bits.
PILIB_INLINE Int Interpolated(Int c0, Int c1, Int fraction) {
    return c0 + (((Times(fraction, c1 - c0) >> 1) + 16384) >> 15);
}

// The mean of the steps across and down from a channel's value at the whole radii.
PILIB_INLINE Int Mixed(Int whole, Int nextAcross, Int nextDown, Int fractionX, Int fractionY) {
    return (Interpolated(whole, nextAcross, fractionX) + Interpolated(whole, nextDown, fractionY)) >> 1;
}

template <class Depth>
PILIB_INLINE void Straighten(Channels& c) {
    const Int opaque = c.alpha == Depth::kOne;
    if (Bits(opaque) == (1U << kLanes) - 1U) return;
    const Int transparent = c.alpha == 0;
    const Int factor = Depth::straightenFactor(c.alpha - transparent);  // transparent lanes divide by 1
    const auto scaled = [&](Int colour) PILIB_INLINE_LAMBDA {
        const Uint product = AsUnsigned(colour) * AsUnsigned(factor);
        return Select(opaque, colour, reinterpret_cast<Int>(product >> 16) & Depth::kMask & ~transparent);
    };
    c.red = scaled(c.red);
    c.green = scaled(c.green);
    c.blue = scaled(c.blue);
}

PILIB_INLINE int Runs(Int wholeX, Int wholeY) {
    const Int changes =
        (wholeX != Arranged<Previous>(wholeX, wholeX)) | (wholeY != Arranged<Previous>(wholeY, wholeY));
    return 1 + __builtin_popcount(Bits(changes));
}

// One group's lanes, premultiplied; what others hold means nothing.
template <class Blur, class Depth>
PILIB_INLINE Channels ReadGroup(const BlurRow<typename Blur::Entry>& row, std::ptrdiff_t centre,
                                const Group& group, Int fractionX, Int fractionY, unsigned members) {
    const typename Blur::Neighbours neighbours(group, row.stride);
    const auto channel = [&](const typename Blur::Entry* table) PILIB_INLINE_LAMBDA {
        const Means<Int> means = neighbours.read(table + centre, members);
        return Mixed(means.whole & Depth::kMask, means.across & Depth::kMask, means.down & Depth::kMask,
                     fractionX, fractionY);
    };
    return {channel(row.alpha), channel(row.red), channel(row.green), channel(row.blue)};
}

// A block whose lanes `wanted` are blurred, group by group.
template <class Blur, class Depth>
PILIB_INLINE Channels ReadGroups(const BlurRow<typename Blur::Entry>& row, std::ptrdiff_t centre,
                                 const AxisRadii& x, const AxisRadii& y, unsigned wanted) {
    Channels result{};
    while (wanted != 0) {
        const int lane = __builtin_ctz(wanted);
        const Group group = {x.whole[lane], x.next[lane], y.whole[lane], y.next[lane]};
        const Int isMember = (x.whole == x.whole[lane]) & (y.whole == y.whole[lane]);
        const unsigned members = Bits(isMember);
        result = Select(isMember, ReadGroup<Blur, Depth>(row, centre, group, x.fraction, y.fraction, members),
                        result);
        wanted &= ~members;
    }
    return result;
}

// Pixels of kValues values each, one behind the other, to one vector per value.
template <unsigned kValues>
PILIB_INLINE void SplitValues(const Int* pixels, Int* values, int step = 1) {
    if constexpr (kValues == 1) {
        *values = *pixels;
    } else {
        constexpr unsigned kHalf = kValues / 2;
        Int evens[kHalf];
        Int odds[kHalf];
        for (unsigned i = 0; i < kHalf; ++i) {
            evens[i] = Arranged<Evens>(pixels[2 * i], pixels[2 * i + 1]);
            odds[i] = Arranged<Odds>(pixels[2 * i], pixels[2 * i + 1]);
        }
        SplitValues<kHalf>(evens, values, 2 * step);
        SplitValues<kHalf>(odds, values + step, 2 * step);
    }
}

// The same with every pixel read by itself. Needs radii that are not clamped.
template <class Blur, class Depth>
PILIB_INLINE Channels ReadPixels(const BlurRow<typename Blur::Entry>& row, std::ptrdiff_t centre,
                                 const AxisRadii& x, const AxisRadii& y, unsigned wanted) {
    std::int32_t wholeX[kLanes];
    std::int32_t wholeY[kLanes];
    std::memcpy(wholeX, &x.whole, sizeof wholeX);
    std::memcpy(wholeY, &y.whole, sizeof wholeY);
    const typename Blur::Pixels pixels(x.whole, y.whole);
    Int wholeAndAcross[8] = {};
    Int down[4] = {};
    for (; wanted != 0; wanted &= wanted - 1) {
        const int lane = __builtin_ctz(wanted);
        const PixelValues values = pixels.readPixel(row, centre + lane, lane, wholeX[lane], wholeY[lane]);
        const auto to = [lane](Int* pixelValues, std::size_t size) {
            return reinterpret_cast<unsigned char*>(pixelValues) + static_cast<unsigned>(lane) * size;
        };
        std::memcpy(to(wholeAndAcross, sizeof values.wholeAndAcross), &values.wholeAndAcross,
                    sizeof values.wholeAndAcross);
        std::memcpy(to(down, sizeof values.down), &values.down, sizeof values.down);
    }
    Int means[8];
    Int meansDown[4];
    SplitValues<8>(wholeAndAcross, means);
    SplitValues<4>(down, meansDown);
    pixels.toMeans(means, meansDown);
    const auto channel = [&](int c) PILIB_INLINE_LAMBDA {
        return Mixed(means[2 * c] & Depth::kMask, means[2 * c + 1] & Depth::kMask,
                     meansDown[c] & Depth::kMask, x.fraction, y.fraction);
    };
    return {channel(0), channel(1), channel(2), channel(3)};
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
        if (output != input) std::memcpy(output, input, 4 * sizeof(Type) * static_cast<std::size_t>(count));
        return;
    }
    const Int share = Depth::shareOf(map);
    const std::int32_t largestX = row.borderX - Blur::kClampedBelowBorder;
    const std::int32_t largestY = row.borderY - Blur::kClampedBelowBorder;
    const AxisRadii radiiX = RadiiOf(share, row.radiusX, row.maxFixedRadiusX, largestX);
    const AxisRadii radiiY = RadiiOf(share, row.radiusY, row.maxFixedRadiusY, largestY);
    const std::ptrdiff_t centre = row.centre + x + Blur::kCentreShift * (row.stride + 1);

    const bool isClamped = row.maxFixedRadiusX >> 16 >= largestX || row.maxFixedRadiusY >> 16 >= largestY;
    Channels result = isClamped || Runs(radiiX.whole, radiiY.whole) <= Blur::kMostRuns
                          ? ReadGroups<Blur, Depth>(row, centre, radiiX, radiiY, wanted)
                          : ReadPixels<Blur, Depth>(row, centre, radiiX, radiiY, wanted);
    Straighten<Depth>(result);
    Depth::store(output, input, count, blurred, result);
}

// Fetches the lowest table row that the largest radius reaches: the rows above have brought in all others.
// Where radii differ from pixel to pixel its cells would be waited for one by one.
template <class Entry>
PILIB_INLINE void PrefetchLowestCells(const BlurRow<Entry>& row) {
    constexpr std::ptrdiff_t kCacheLine = 64 / sizeof(Entry);
    const auto reach = [](float radius, std::int32_t maxFixed) PILIB_INLINE_LAMBDA {
        const auto whole = static_cast<std::int32_t>(radius);
        return std::ptrdiff_t{whole < maxFixed >> 16 ? whole : maxFixed >> 16} + 1;
    };
    const std::ptrdiff_t reachX = reach(row.radiusX, row.maxFixedRadiusX);
    const std::ptrdiff_t below = row.centre + reach(row.radiusY, row.maxFixedRadiusY) * row.stride;
    for (std::ptrdiff_t cell = below - reachX; cell <= below + row.count + reachX; cell += kCacheLine) {
        for (const Entry* table : {row.alpha, row.red, row.green, row.blue})
            __builtin_prefetch(table + cell);
    }
}

template <class Blur, class Depth>
void ReadRow(const BlurRow<typename Blur::Entry>& row) {
    PrefetchLowestCells(row);
    int x = 0;
    for (; x + kLanes <= row.count; x += kLanes)
        ReadBlock<Blur, Depth>(row, x, kLanes);
    if (x < row.count) ReadBlock<Blur, Depth>(row, x, row.count - x);
}

// v summed along its lanes.
template <int kDistance = 1>
PILIB_INLINE Int RunningSums(Int v) {
    if constexpr (kDistance < kLanes) {
        return RunningSums<2 * kDistance>(Plus(v, Arranged<ShiftedUp<kDistance>>(v, Int{})));
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
        const Int running = Plus(sums[table], RunningSums(premultiplied[table]));
        std::memcpy(row.sums[table] + x, &running, sizeof(std::int32_t) * static_cast<unsigned>(count));
        sums[table] = Arranged<Last>(running, running);
    }
}

template <class Depth>
void SumRow(const PrefixRow& row) {
    Int sums[4];
    for (int table = 0; table < 4; ++table)
        sums[table] = Splat(static_cast<std::int32_t>(row.start[table]));
    int x = 0;
    for (; x + kLanes <= row.count; x += kLanes)
        SumPixels<Depth>(row, sums, x, kLanes);
    if (x < row.count) SumPixels<Depth>(row, sums, x, row.count - x);
}

}  // namespace

extern const BlurRowKernels PILIB_KERNELS = {
    {ReadRow<Box, Depth8>, ReadRow<Tent, Depth8>, kLanes >= 8 ? SumRow<Depth8> : nullptr},
    {ReadRow<Box, Depth15>, ReadRow<Tent, Depth15>, kLanes >= 16 ? SumRow<Depth15> : nullptr},
};

}  // namespace PILib::detail
