// The vector kernels of the blurs' rows, compiled once per instruction set with PILIB_LANES 32-bit lanes. The
// compilers' portable vector types are used, so that one text serves every instruction set.
//
// A block of pixels is read out by groups of equal whole radii: within a group the corners of the boxes lie
// side by side in the tables. Neighbouring pixels of a depth matte mostly share their whole radius, so that
// most blocks are one group; blocks of many groups gather cell by cell. Each lane computes what getBlur
// computes, operation by operation.

#include <cstring>

#include "BlurRow.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace PILib::detail {

namespace {

constexpr int kLanes = PILIB_LANES;

typedef std::int32_t Int __attribute__((vector_size(4 * PILIB_LANES)));
typedef std::uint32_t Uint __attribute__((vector_size(4 * PILIB_LANES)));
typedef float Float __attribute__((vector_size(4 * PILIB_LANES)));
typedef double Double __attribute__((vector_size(4 * PILIB_LANES)));  // half as many lanes
typedef std::int32_t HalfInt __attribute__((vector_size(2 * PILIB_LANES)));
typedef std::uint8_t Bytes __attribute__((vector_size(PILIB_LANES)));
typedef std::uint16_t Shorts __attribute__((vector_size(2 * PILIB_LANES)));

#define PILIB_INLINE __attribute__((always_inline)) inline

template <class V, class E>
PILIB_INLINE V Load(const E* from) {
    V v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

template <class V>
PILIB_INLINE V LoadSome(const void* from, int bytes) {
    V v{};
    std::memcpy(&v, from, static_cast<std::size_t>(bytes));
    return v;
}

PILIB_INLINE Int Splat(std::int32_t value) {
    return Int{} + value;
}

PILIB_INLINE Int Select(Int mask, Int a, Int b) {
    return (a & mask) | (b & ~mask);
}

PILIB_INLINE Int Min(Int a, Int b) {
    return Select(a < b, a, b);
}

PILIB_INLINE Float AsFloat(Int v) {
    return __builtin_convertvector(v, Float);
}

PILIB_INLINE Int Truncated(Float v) {
    return __builtin_convertvector(v, Int);
}

// Sums and products that may wrap, in lanes that are not wanted or by intention.
PILIB_INLINE Int Plus(Int a, Int b) {
    return reinterpret_cast<Int>(reinterpret_cast<Uint>(a) + reinterpret_cast<Uint>(b));
}

PILIB_INLINE Int Minus(Int a, Int b) {
    return reinterpret_cast<Int>(reinterpret_cast<Uint>(a) - reinterpret_cast<Uint>(b));
}

PILIB_INLINE Int Times(Int a, Int b) {
    return reinterpret_cast<Int>(reinterpret_cast<Uint>(a) * reinterpret_cast<Uint>(b));
}

// One bit per lane of a comparison's result.
PILIB_INLINE unsigned Bits(Int mask) {
#if defined(__AVX512DQ__) && PILIB_LANES == 16
    return _mm512_movepi32_mask(reinterpret_cast<__m512i>(mask));
#elif defined(__AVX__) && PILIB_LANES == 8
    return static_cast<unsigned>(_mm256_movemask_ps(reinterpret_cast<__m256>(mask)));
#elif defined(__SSE2__) && PILIB_LANES == 4
    return static_cast<unsigned>(_mm_movemask_ps(reinterpret_cast<__m128>(mask)));
#else
    unsigned bits = 0;
    for (int lane = 0; lane < kLanes; ++lane)
        bits |= (static_cast<unsigned>(mask[lane]) & 1U) << lane;
    return bits;
#endif
}

// The lanes of a and b in turn: the first halves, or the second halves. Each lane's neighbour to the left.
#if PILIB_LANES == 4
#define PILIB_ZIP_FIRST 0, 4, 1, 5
#define PILIB_ZIP_SECOND 2, 6, 3, 7
#define PILIB_PREVIOUS 0, 0, 1, 2
#elif PILIB_LANES == 8
#define PILIB_ZIP_FIRST 0, 8, 1, 9, 2, 10, 3, 11
#define PILIB_ZIP_SECOND 4, 12, 5, 13, 6, 14, 7, 15
#define PILIB_PREVIOUS 0, 0, 1, 2, 3, 4, 5, 6
#else
#define PILIB_ZIP_FIRST 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23
#define PILIB_ZIP_SECOND 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31
#define PILIB_PREVIOUS 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14
#endif

struct Channels {
    Int alpha;
    Int red;
    Int green;
    Int blue;
};

// What differs between the two depths.
struct Depth8 {
    using Type = std::uint8_t;
    using MapVector = Bytes;
    static constexpr std::int32_t kOne = 255;
    static constexpr std::int32_t kMask = 0xFF;

    static PILIB_INLINE Int shareOf(Int map) { return (map * 32897) >> 7; }

    // 255 in 16.16 divided by alpha, truncated. The quotient of two exact singles is one step too large at
    // most.
    static PILIB_INLINE Int straightenFactor(Int alpha) {
        constexpr std::int32_t kNumerator = kOne << 16;
        const Int quotient = Truncated(static_cast<float>(kNumerator) / AsFloat(alpha));
        return Plus(quotient, Minus(Splat(kNumerator), Times(quotient, alpha)) < 0);
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
    using MapVector = Shorts;
    static constexpr std::int32_t kOne = 32768;
    static constexpr std::int32_t kMask = 0xFFFF;

    static PILIB_INLINE Int shareOf(Int map) { return map * 2; }

    // 32768 in 16.16 divided by alpha, truncated; saturated for alpha 1. The estimate is corrected by what is
    // left over.
    static PILIB_INLINE Int straightenFactor(Int alpha) {
        const Float divisor = AsFloat(alpha);
        const auto rest = [alpha](Int quotient) {
            return reinterpret_cast<Int>((Uint{} + 0x80000000U) -
                                         reinterpret_cast<Uint>(quotient) * reinterpret_cast<Uint>(alpha));
        };
        Int quotient =
            Truncated(2147483520.0F / divisor);  // the single before 2^31 stays in range for alpha 1
        quotient = Plus(quotient, Truncated(AsFloat(rest(quotient)) / divisor));
        const Int left = rest(quotient);
        quotient = Plus(Minus(quotient, left >= alpha), left < 0);
        return Select(alpha == 1, Splat(0x7FFFFFFF), quotient);
    }

    static PILIB_INLINE void store(Type* to, const Type* unblurred, int count, Int blurred,
                                   const Channels& c) {
        const Int low = c.alpha | c.red << 16;
        const Int high = c.green | c.blue << 16;
        const Int pixels[2] = {__builtin_shufflevector(low, high, PILIB_ZIP_FIRST),
                               __builtin_shufflevector(low, high, PILIB_ZIP_SECOND)};
        const Int masks[2] = {__builtin_shufflevector(blurred, blurred, PILIB_ZIP_FIRST),
                              __builtin_shufflevector(blurred, blurred, PILIB_ZIP_SECOND)};
        Int kept[2] = {};
        std::memcpy(kept, unblurred, 8U * static_cast<std::size_t>(count));
        const Int result[2] = {Select(masks[0], pixels[0], kept[0]), Select(masks[1], pixels[1], kept[1])};
        std::memcpy(to, result, 8U * static_cast<std::size_t>(count));
    }
};

// The radii of a block, split and clamped as getBlur and getBlurInt do.
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

// Table entries of neighbouring cells: all lanes have the same radii, so that offsets are plain numbers.
struct SideBySide {
    using Offset = std::ptrdiff_t;
    std::ptrdiff_t centre;  // cell of lane 0

    PILIB_INLINE Uint entries(const std::uint32_t* table, Offset offset) const {
        return Load<Uint>(table + centre + offset);
    }
    PILIB_INLINE Double entries(const double* table, Offset offset, int half) const {
        return Load<Double>(table + centre + offset + half * (kLanes / 2));
    }
    static PILIB_INLINE Int lanes(Offset value) { return Splat(static_cast<std::int32_t>(value)); }
};

// Table entries cell by cell: every lane has its own offset from its own centre.
struct Scattered {
    using Offset = Int;
    std::ptrdiff_t centre;
    Int cells;  // 0, 1, 2 ...: the lanes' centres, relative to lane 0

    PILIB_INLINE Uint entries(const std::uint32_t* table, Offset offset) const {
        const Int from = offset + cells;
#if defined(__AVX512F__) && PILIB_LANES == 16
        return reinterpret_cast<Uint>(_mm512_mask_i32gather_epi32(
            _mm512_setzero_si512(), 0xFFFF, reinterpret_cast<__m512i>(from), table + centre, 4));
#elif defined(__AVX2__) && PILIB_LANES == 8
        return reinterpret_cast<Uint>(_mm256_i32gather_epi32(reinterpret_cast<const int*>(table + centre),
                                                             reinterpret_cast<__m256i>(from), 4));
#else
        std::int32_t indices[kLanes];
        std::uint32_t values[kLanes];
        std::memcpy(indices, &from, sizeof indices);
        for (int lane = 0; lane < kLanes; ++lane)
            values[lane] = table[centre + indices[lane]];
        return Load<Uint>(values);
#endif
    }
    PILIB_INLINE Double entries(const double* table, Offset offset, int half) const {
        const Int from = offset + cells;
        HalfInt indices;
        std::memcpy(&indices,
                    reinterpret_cast<const char*>(&from) + sizeof indices * static_cast<unsigned>(half),
                    sizeof indices);
#if defined(__AVX512F__) && PILIB_LANES == 16
        return reinterpret_cast<Double>(_mm512_mask_i32gather_pd(
            _mm512_setzero_pd(), 0xFF, reinterpret_cast<__m256i>(indices), table + centre, 8));
#elif defined(__AVX2__) && PILIB_LANES == 8
        return reinterpret_cast<Double>(
            _mm256_mask_i32gather_pd(_mm256_setzero_pd(), table + centre, reinterpret_cast<__m128i>(indices),
                                     _mm256_castsi256_pd(_mm256_set1_epi64x(-1)), 8));
#else
        double values[kLanes / 2];
        for (int lane = 0; lane < kLanes / 2; ++lane)
            values[lane] = table[centre + indices[lane]];
        return Load<Double>(values);
#endif
    }
    static PILIB_INLINE Int lanes(Offset value) {
        return value;
    }
};

// The mean of a box from the four corners around it.
template <class Access>
struct BoxReadOut {
    using Offset = typename Access::Offset;
    using Entry = std::uint32_t;
    static constexpr std::int32_t kClampedBelowBorder = 1;  // radii reach borderX - 1
    static constexpr std::ptrdiff_t kCentreShift = 0;

    Offset bottomRight;
    Offset bottomLeft;
    Offset topRight;
    Offset topLeft;
    Int area;
    Float reciprocal;

    PILIB_INLINE BoxReadOut(Offset radiusX, Offset radiusY, std::int32_t stride)
        : bottomRight(radiusY * stride + radiusX),
          bottomLeft(radiusY * stride - radiusX - 1),
          topRight(-(radiusY + 1) * stride + radiusX),
          topLeft(-(radiusY + 1) * stride - radiusX - 1),
          area(Access::lanes((2 * radiusX + 1) * (2 * radiusY + 1))),
          reciprocal(1.0F / AsFloat(area)) {}

    // sum / area, truncated: a single-precision estimate that is off by one at most, and its correction.
    PILIB_INLINE Int mean(Access access, const std::uint32_t* table) const {
        const Int sum =
            reinterpret_cast<Int>(access.entries(table, bottomRight) - access.entries(table, bottomLeft) -
                                  access.entries(table, topRight) + access.entries(table, topLeft));
        const Int estimate = Truncated(AsFloat(sum) * reciprocal);
        const Int rest = Minus(sum, Times(estimate, area));
        return Plus(Minus(estimate, rest >= area), rest < 0);
    }
};

// The tent from nine samples of the second-order sums.
template <class Access>
struct TentReadOut {
    using Offset = typename Access::Offset;
    using Entry = double;
    static constexpr std::int32_t kClampedBelowBorder =
        2;  // half-widths, one more than radii, reach borderX - 1
    static constexpr std::ptrdiff_t kCentreShift = -1;

    Offset halfX;
    Offset rowOffset;
    Int weight;

    PILIB_INLINE TentReadOut(Offset radiusX, Offset radiusY, std::int32_t stride)
        : halfX(radiusX + 1),
          rowOffset((radiusY + 1) * stride),
          weight(Access::lanes((radiusX + 1) * (radiusY + 1) * ((radiusX + 1) * (radiusY + 1)))) {}

    PILIB_INLINE HalfInt half(Access access, const double* table, int which) const {
        const auto at = [&](Offset offset) { return access.entries(table, offset, which); };
        const Offset none = halfX - halfX;
        const Double sum = at(-rowOffset - halfX) - 2.0 * at(-rowOffset) + at(-rowOffset + halfX) -
                           2.0 * at(-halfX) + 4.0 * at(none) - 2.0 * at(halfX) + at(rowOffset - halfX) -
                           2.0 * at(rowOffset) + at(rowOffset + halfX);
        HalfInt weights;
        std::memcpy(&weights,
                    reinterpret_cast<const char*>(&weight) + sizeof weights * static_cast<unsigned>(which),
                    sizeof weights);
        const Double reciprocal = 1.0 / __builtin_convertvector(weights, Double);
        return __builtin_convertvector(sum * reciprocal + 0.5, HalfInt);
    }

    PILIB_INLINE Int mean(Access access, const double* table) const {
        const HalfInt halves[2] = {half(access, table, 0), half(access, table, 1)};
        return Load<Int>(halves);
    }
};

// c0 + fraction / 65536 of the way to c1, rounded. Halving first keeps the largest product in 32 bits.
PILIB_INLINE Int Interpolated(Int c0, Int c1, Int fraction) {
    return c0 + (((Times(fraction, c1 - c0) >> 1) + 16384) >> 15);
}

// A whole block, premultiplied, before straightening.
template <template <class> class ReadOut, class Depth, class Access>
PILIB_INLINE Channels ReadBlock(const BlurRow<typename ReadOut<Access>::Entry>& row, Access access,
                                typename Access::Offset wholeX, typename Access::Offset nextX,
                                typename Access::Offset wholeY, typename Access::Offset nextY, Int fractionX,
                                Int fractionY) {
    const auto stride = static_cast<std::int32_t>(row.stride);
    const ReadOut<Access> p00(wholeX, wholeY, stride);
    const ReadOut<Access> p10(nextX, wholeY, stride);
    const ReadOut<Access> p01(wholeX, nextY, stride);
    const auto channel = [&](const typename ReadOut<Access>::Entry* table) {
        const Int c00 = p00.mean(access, table) & Depth::kMask;
        const Int c10 = p10.mean(access, table) & Depth::kMask;
        const Int c01 = p01.mean(access, table) & Depth::kMask;
        return (Interpolated(c00, c10, fractionX) + Interpolated(c00, c01, fractionY)) >> 1;
    };
    return {channel(row.alpha), channel(row.red), channel(row.green), channel(row.blue)};
}

PILIB_INLINE Channels Select(Int mask, const Channels& a, const Channels& b) {
    return {Select(mask, a.alpha, b.alpha), Select(mask, a.red, b.red), Select(mask, a.green, b.green),
            Select(mask, a.blue, b.blue)};
}

template <class Depth>
PILIB_INLINE void Straighten(Channels& c) {
    const Int opaque = c.alpha == Depth::kOne;
    if (Bits(opaque) == (1U << kLanes) - 1U) return;
    const Int transparent = c.alpha == 0;
    const Int factor = Depth::straightenFactor(c.alpha - transparent);  // transparent lanes divide by 1
    const auto scaled = [&](Int colour) {
        const Uint product = reinterpret_cast<Uint>(colour) * reinterpret_cast<Uint>(factor);
        return Select(opaque, colour, reinterpret_cast<Int>(product >> 16) & Depth::kMask & ~transparent);
    };
    c.red = scaled(c.red);
    c.green = scaled(c.green);
    c.blue = scaled(c.blue);
}

// Blocks of more runs of equal radii than this are gathered: reading a run costs about as much as a quarter
// of that.
constexpr int kMostRuns = kLanes / 4;

PILIB_INLINE int Runs(Int wholeX, Int wholeY) {
    const Int changes = (wholeX != __builtin_shufflevector(wholeX, wholeX, PILIB_PREVIOUS)) |
                        (wholeY != __builtin_shufflevector(wholeY, wholeY, PILIB_PREVIOUS));
    return 1 + __builtin_popcount(Bits(changes));
}

PILIB_INLINE Int LaneNumbers() {
    Int lanes{};
    for (int lane = 0; lane < kLanes; ++lane)
        lanes[lane] = lane;
    return lanes;
}

// Pixels x .. x + count - 1, of which `count` is at most the lanes.
template <template <class> class ReadOut, class Depth>
PILIB_INLINE void ReadPixels(const BlurRow<typename ReadOut<SideBySide>::Entry>& row, int x, int count) {
    using Type = typename Depth::Type;
    constexpr std::int32_t kClamp = ReadOut<SideBySide>::kClampedBelowBorder;
    const Type* const input = static_cast<const Type*>(row.input) + 4 * static_cast<std::ptrdiff_t>(x);
    Type* const output = static_cast<Type*>(row.output) + 4 * static_cast<std::ptrdiff_t>(x);
    const auto values = LoadSome<typename Depth::MapVector>(static_cast<const Type*>(row.map) + x,
                                                            count * static_cast<int>(sizeof(Type)));
    const Int map = __builtin_convertvector(values, Int);
    const Int blurred = map != 0;
    unsigned remaining = Bits(blurred);
    if (remaining == 0) {
        std::memcpy(output, input, 4 * sizeof(Type) * static_cast<std::size_t>(count));
        return;
    }
    const Int share = Depth::shareOf(map);
    const Radii radiiX = RadiiOf(share, row.radiusX, row.maxFixedRadiusX, row.borderX - kClamp);
    const Radii radiiY = RadiiOf(share, row.radiusY, row.maxFixedRadiusY, row.borderY - kClamp);
    const std::ptrdiff_t centre = row.centre + x + ReadOut<SideBySide>::kCentreShift * (row.stride + 1);

    Channels result{};
    if (Runs(radiiX.whole, radiiY.whole) > kMostRuns) {
        const Int lanes = LaneNumbers();
        result = ReadBlock<ReadOut, Depth>(row, Scattered{centre, lanes}, radiiX.whole, radiiX.next,
                                           radiiY.whole, radiiY.next, radiiX.fraction, radiiY.fraction);
        remaining = 0;
    }
    while (remaining != 0) {
        const int lane = __builtin_ctz(remaining);
        const std::int32_t wholeX = radiiX.whole[lane];
        const std::int32_t wholeY = radiiY.whole[lane];
        const Int group = (radiiX.whole == wholeX) & (radiiY.whole == wholeY);
        const Channels read =
            ReadBlock<ReadOut, Depth>(row, SideBySide{centre}, wholeX, radiiX.next[lane], wholeY,
                                      radiiY.next[lane], radiiX.fraction, radiiY.fraction);
        result = Select(group, read, result);
        remaining &= ~Bits(group);
    }
    Straighten<Depth>(result);
    Depth::store(output, input, count, blurred, result);
}

template <template <class> class ReadOut, class Depth>
void ReadRow(const BlurRow<typename ReadOut<SideBySide>::Entry>& row) {
    int x = 0;
    for (; x + kLanes <= row.count; x += kLanes)
        ReadPixels<ReadOut, Depth>(row, x, kLanes);
    if (x < row.count) ReadPixels<ReadOut, Depth>(row, x, row.count - x);
}

}  // namespace

extern const BlurRowKernels PILIB_KERNELS = {
    ReadRow<BoxReadOut, Depth8>,
    ReadRow<BoxReadOut, Depth15>,
    ReadRow<TentReadOut, Depth8>,
    ReadRow<TentReadOut, Depth15>,
};

}  // namespace PILib::detail
