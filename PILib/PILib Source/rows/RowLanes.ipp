// Vectors of PILIB_LANES 32-bit lanes, as the row kernels use them. The compilers' portable vector types give
// one text for every instruction set; what they compile badly goes through the processor's own intrinsics.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__ARM_NEON)
#include <arm_neon.h>
#endif

namespace PILib::detail {

namespace {

constexpr int kLanes = PILIB_LANES;

typedef std::int32_t Int __attribute__((vector_size(4 * PILIB_LANES)));
typedef std::uint32_t Uint __attribute__((vector_size(4 * PILIB_LANES)));
typedef float Float __attribute__((vector_size(4 * PILIB_LANES)));
typedef std::uint64_t Ulong __attribute__((vector_size(4 * PILIB_LANES)));  // half as many lanes
typedef double Double __attribute__((vector_size(4 * PILIB_LANES)));        // likewise
typedef std::int32_t HalfInt __attribute__((vector_size(2 * PILIB_LANES)));

#define PILIB_INLINE __attribute__((always_inline)) inline
#define PILIB_INLINE_LAMBDA __attribute__((always_inline))  // a call would pass vectors through memory

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

// The first `count` of `from`, zero-extended; the lanes after them are 0.
PILIB_INLINE Int LoadWidened(const std::uint8_t* from, int count) {
#if defined(__AVX512F__) && PILIB_LANES == 16
    return reinterpret_cast<Int>(_mm512_maskz_cvtepu8_epi32(0xFFFF, LoadSome<__m128i>(from, count)));
#elif defined(__AVX2__) && PILIB_LANES == 8
    return reinterpret_cast<Int>(_mm256_cvtepu8_epi32(LoadSome<__m128i>(from, count)));
#elif defined(__SSE2__) && PILIB_LANES == 4
    const __m128i shorts =
        _mm_unpacklo_epi8(_mm_cvtsi32_si128(LoadSome<std::int32_t>(from, count)), _mm_setzero_si128());
    return reinterpret_cast<Int>(_mm_unpacklo_epi16(shorts, _mm_setzero_si128()));
#else
    typedef std::uint8_t Bytes __attribute__((vector_size(PILIB_LANES)));
    return __builtin_convertvector(LoadSome<Bytes>(from, count), Int);
#endif
}

PILIB_INLINE Int LoadWidened(const std::uint16_t* from, int count) {
#if defined(__AVX512F__) && PILIB_LANES == 16
    return reinterpret_cast<Int>(_mm512_maskz_cvtepu16_epi32(0xFFFF, LoadSome<__m256i>(from, 2 * count)));
#elif defined(__AVX2__) && PILIB_LANES == 8
    return reinterpret_cast<Int>(_mm256_cvtepu16_epi32(LoadSome<__m128i>(from, 2 * count)));
#elif defined(__SSE2__) && PILIB_LANES == 4
    return reinterpret_cast<Int>(
        _mm_unpacklo_epi16(_mm_cvtsi64_si128(LoadSome<std::int64_t>(from, 2 * count)), _mm_setzero_si128()));
#else
    typedef std::uint16_t Shorts __attribute__((vector_size(2 * PILIB_LANES)));
    return __builtin_convertvector(LoadSome<Shorts>(from, 2 * count), Int);
#endif
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

// Lanes that are not wanted may hold anything. Numbers that no integer holds become some integer by the
// processor's own instructions; the portable conversion, which leaves them undefined, is for other
// processors.
PILIB_INLINE Int Truncated(Float v) {
#if defined(__AVX512F__) && PILIB_LANES == 16
    return reinterpret_cast<Int>(_mm512_maskz_cvttps_epi32(0xFFFF, reinterpret_cast<__m512>(v)));
#elif defined(__AVX__) && PILIB_LANES == 8
    return reinterpret_cast<Int>(_mm256_cvttps_epi32(reinterpret_cast<__m256>(v)));
#elif defined(__SSE2__) && PILIB_LANES == 4
    return reinterpret_cast<Int>(_mm_cvttps_epi32(reinterpret_cast<__m128>(v)));
#elif defined(__ARM_NEON) && PILIB_LANES == 4
    return reinterpret_cast<Int>(vcvtq_s32_f32(reinterpret_cast<float32x4_t>(v)));
#else
    return __builtin_convertvector(v, Int);
#endif
}

PILIB_INLINE HalfInt Truncated(Double v) {
#if defined(__AVX512F__) && PILIB_LANES == 16
    return reinterpret_cast<HalfInt>(_mm512_maskz_cvttpd_epi32(0xFF, reinterpret_cast<__m512d>(v)));
#elif defined(__AVX__) && PILIB_LANES == 8
    return reinterpret_cast<HalfInt>(_mm256_cvttpd_epi32(reinterpret_cast<__m256d>(v)));
#elif defined(__SSE2__) && PILIB_LANES == 4
    const auto ints = reinterpret_cast<Int>(_mm_cvttpd_epi32(reinterpret_cast<__m128d>(v)));
    return __builtin_shufflevector(ints, ints, 0, 1);
#elif defined(__ARM_NEON) && PILIB_LANES == 4
    return reinterpret_cast<HalfInt>(vmovn_s64(vcvtq_s64_f64(reinterpret_cast<float64x2_t>(v))));
#else
    return __builtin_convertvector(v, HalfInt);
#endif
}

// Sums and products that may wrap, in lanes that are not wanted or on purpose; for any vectors of 32-bit
// lanes. The second may be a comparison's result: for clang on Windows its lanes are of another type, long.
template <class V>
struct UnsignedLanes {
    typedef std::uint32_t Type __attribute__((vector_size(sizeof(V))));
};

template <class V>
PILIB_INLINE auto AsUnsigned(V v) {
    return reinterpret_cast<typename UnsignedLanes<V>::Type>(v);
}

template <class V, class W>
PILIB_INLINE V Plus(V a, W b) {
    return reinterpret_cast<V>(AsUnsigned(a) + AsUnsigned(b));
}

template <class V, class W>
PILIB_INLINE V Minus(V a, W b) {
    return reinterpret_cast<V>(AsUnsigned(a) - AsUnsigned(b));
}

template <class V, class W>
PILIB_INLINE V Times(V a, W b) {
    return reinterpret_cast<V>(AsUnsigned(a) * AsUnsigned(b));
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

// Which lane of two vectors side by side, a and then b, goes to a lane of the result.
struct ZipFirstHalves {
    static constexpr int at(int lane) { return lane / 2 + lane % 2 * kLanes; }
};
struct ZipSecondHalves {
    static constexpr int at(int lane) { return kLanes / 2 + lane / 2 + lane % 2 * kLanes; }
};
struct Evens {
    static constexpr int at(int lane) { return 2 * lane; }
};
struct Odds {
    static constexpr int at(int lane) { return 2 * lane + 1; }
};
template <int kDistance>
struct ShiftedUp {  // b's first lane comes in from below
    static constexpr int at(int lane) { return lane < kDistance ? kLanes : lane - kDistance; }
};
struct Last {
    static constexpr int at(int /*lane*/) { return kLanes - 1; }
};
struct LastPair {
    static constexpr int at(int lane) { return kLanes - 2 + lane % 2; }
};
struct Previous {
    static constexpr int at(int lane) { return lane == 0 ? 0 : lane - 1; }
};

template <class Order, class V, int... kLane>
PILIB_INLINE V ArrangedLanes(V a, V b, std::integer_sequence<int, kLane...> /*lanes*/) {
    return __builtin_shufflevector(a, b, Order::at(kLane)...);
}

template <class Order, class V>
PILIB_INLINE V Arranged(V a, V b) {
    return ArrangedLanes<Order>(a, b, std::make_integer_sequence<int, kLanes>{});
}

template <int... kLane>
PILIB_INLINE Int JoinedLanes(HalfInt low, HalfInt high, std::integer_sequence<int, kLane...> /*lanes*/) {
    return __builtin_shufflevector(low, high, kLane...);
}

template <int kFirst, int... kLane>
PILIB_INLINE HalfInt HalfOf(Int v, std::integer_sequence<int, kLane...> /*lanes*/) {
    return __builtin_shufflevector(v, v, (kFirst + kLane)...);
}

PILIB_INLINE HalfInt FirstHalf(Int v) {
    return HalfOf<0>(v, std::make_integer_sequence<int, kLanes / 2>{});
}

PILIB_INLINE HalfInt SecondHalf(Int v) {
    return HalfOf<kLanes / 2>(v, std::make_integer_sequence<int, kLanes / 2>{});
}

PILIB_INLINE Int Joined(HalfInt low, HalfInt high) {
    return JoinedLanes(low, high, std::make_integer_sequence<int, kLanes>{});
}

// Whole numbers below 2^52 as doubles: they are the last digits of 2^52 and more, whose bits stand in front.
template <class V>
PILIB_INLINE auto AsDoubles(V v) {
    typedef double Doubles __attribute__((vector_size(sizeof(V))));
#if defined(__AVX512DQ__)
    return __builtin_convertvector(v, Doubles);
#else
    return reinterpret_cast<Doubles>(v | 0x4330000000000000U) - 0x1p52;
#endif
}

// Half of the lanes as doubles, likewise.
PILIB_INLINE Double FirstHalfAsDoubles(Uint v) {
    return reinterpret_cast<Double>(Arranged<ZipFirstHalves>(v, Uint{} + 0x43300000U)) - 0x1p52;
}

PILIB_INLINE Double SecondHalfAsDoubles(Uint v) {
    return reinterpret_cast<Double>(Arranged<ZipSecondHalves>(v, Uint{} + 0x43300000U)) - 0x1p52;
}

}  // namespace

}  // namespace PILib::detail
