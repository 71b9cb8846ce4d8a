// The cells that one pixel reads, from all four tables side by side: alpha, red, green, blue.
//
//     EntriesAt(cell)    a0       r0       g0       b0          the cell
//     PairsAt(cell)      a0 a1    r0 r1    g0 g1    b0 b1       the cell and its right neighbour
//     Swapped of those   a1 a0    r1 r0    g1 g0    b1 b0
//     TwiceAt(cell)      a0 a0    r0 r0    g0 g0    b0 b0
//
// The first of a pair goes to the sum at the whole radius, the second to the sum at the next one across.
#pragma once

#include <cstddef>
#include <cstdint>

#include "RowKernels.h"
#include "RowLanes.ipp"

namespace PILib::detail {

namespace {

typedef std::uint32_t Pixel4 __attribute__((vector_size(16)));    // one value of each table
typedef std::uint32_t Pixel4x2 __attribute__((vector_size(32)));  // a pair of each
typedef std::uint64_t WidePixel4 __attribute__((vector_size(32)));
typedef std::int32_t SignedPixel4 __attribute__((vector_size(16)));
typedef double Double4 __attribute__((vector_size(32)));

PILIB_INLINE Pixel4x2 Swapped(Pixel4x2 pairs) {
    return __builtin_shufflevector(pairs, pairs, 1, 0, 3, 2, 5, 4, 7, 6);
}

PILIB_INLINE Pixel4 FirstOfPairs(Pixel4x2 pairs) {
    return __builtin_shufflevector(pairs, pairs, 0, 2, 4, 6);
}

#if defined(__AVX512VL__) && PILIB_LANES == 16

// Loads go to their lanes under masks: a shuffle per load would cost as much again.

typedef std::uint64_t WidePixel4x2 __attribute__((vector_size(64)));

PILIB_INLINE Pixel4x2 PairsAt(const RowToBlur<std::uint32_t>& row, std::ptrdiff_t cell) {
    const auto pair = [cell](const std::uint32_t* table) PILIB_INLINE_LAMBDA {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(table + cell));
    };
    __m256i pairs = _mm256_castsi128_si256(pair(row.alpha));
    pairs = _mm256_mask_broadcastq_epi64(pairs, 0x2, pair(row.red));
    pairs = _mm256_mask_broadcastq_epi64(pairs, 0x4, pair(row.green));
    pairs = _mm256_mask_broadcastq_epi64(pairs, 0x8, pair(row.blue));
    return reinterpret_cast<Pixel4x2>(pairs);
}

PILIB_INLINE Pixel4x2 TwiceAt(const RowToBlur<std::uint32_t>& row, std::ptrdiff_t cell) {
    __m256i twice = _mm256_set1_epi32(static_cast<std::int32_t>(row.alpha[cell]));
    twice = _mm256_mask_broadcastd_epi32(twice, 0x0C, _mm_loadu_si32(row.red + cell));
    twice = _mm256_mask_broadcastd_epi32(twice, 0x30, _mm_loadu_si32(row.green + cell));
    twice = _mm256_mask_broadcastd_epi32(twice, 0xC0, _mm_loadu_si32(row.blue + cell));
    return reinterpret_cast<Pixel4x2>(twice);
}

PILIB_INLINE Pixel4 EntriesAt(const RowToBlur<std::uint32_t>& row, std::ptrdiff_t cell) {
    __m128i entries = _mm_set1_epi32(static_cast<std::int32_t>(row.alpha[cell]));
    entries = _mm_mask_broadcastd_epi32(entries, 0x2, _mm_loadu_si32(row.red + cell));
    entries = _mm_mask_broadcastd_epi32(entries, 0x4, _mm_loadu_si32(row.green + cell));
    return reinterpret_cast<Pixel4>(_mm_mask_broadcastd_epi32(entries, 0x8, _mm_loadu_si32(row.blue + cell)));
}

PILIB_INLINE WidePixel4x2 PairsAt(const RowToBlur<std::uint64_t>& row, std::ptrdiff_t cell) {
    const auto pair = [cell](const std::uint64_t* table) PILIB_INLINE_LAMBDA {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(table + cell));
    };
    __m512i pairs = _mm512_castsi128_si512(pair(row.alpha));
    pairs = _mm512_mask_broadcast_i64x2(pairs, 0x0C, pair(row.red));
    pairs = _mm512_mask_broadcast_i64x2(pairs, 0x30, pair(row.green));
    return reinterpret_cast<WidePixel4x2>(_mm512_mask_broadcast_i64x2(pairs, 0xC0, pair(row.blue)));
}

PILIB_INLINE __m128i WideEntry(const std::uint64_t* entry) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(entry));
}

PILIB_INLINE WidePixel4x2 TwiceAt(const RowToBlur<std::uint64_t>& row, std::ptrdiff_t cell) {
    __m512i twice = _mm512_set1_epi64(static_cast<long long>(row.alpha[cell]));
    twice = _mm512_mask_broadcastq_epi64(twice, 0x0C, WideEntry(row.red + cell));
    twice = _mm512_mask_broadcastq_epi64(twice, 0x30, WideEntry(row.green + cell));
    return reinterpret_cast<WidePixel4x2>(
        _mm512_mask_broadcastq_epi64(twice, 0xC0, WideEntry(row.blue + cell)));
}

PILIB_INLINE WidePixel4 EntriesAt(const RowToBlur<std::uint64_t>& row, std::ptrdiff_t cell) {
    __m256i entries = _mm256_set1_epi64x(static_cast<long long>(row.alpha[cell]));
    entries = _mm256_mask_broadcastq_epi64(entries, 0x2, WideEntry(row.red + cell));
    entries = _mm256_mask_broadcastq_epi64(entries, 0x4, WideEntry(row.green + cell));
    return reinterpret_cast<WidePixel4>(
        _mm256_mask_broadcastq_epi64(entries, 0x8, WideEntry(row.blue + cell)));
}

PILIB_INLINE WidePixel4x2 Swapped(WidePixel4x2 pairs) {
    return __builtin_shufflevector(pairs, pairs, 1, 0, 3, 2, 5, 4, 7, 6);
}

PILIB_INLINE WidePixel4 FirstOfPairs(WidePixel4x2 pairs) {
    return __builtin_shufflevector(pairs, pairs, 0, 2, 4, 6);
}

// Sums as means, by the reciprocals of the first of each pair and of the second.
PILIB_INLINE Pixel4x2 PairMeans(WidePixel4x2 sums, double first, double second) {
    const Double reciprocals = {first, second, first, second, first, second, first, second};
    return reinterpret_cast<Pixel4x2>(Truncated(AsDoubles(sums) * reciprocals + 0.5));
}

#else

struct WidePixel4x2 {
    WidePixel4 alphaRed;
    WidePixel4 greenBlue;

    PILIB_INLINE WidePixel4x2 operator+(const WidePixel4x2& other) const {
        return {alphaRed + other.alphaRed, greenBlue + other.greenBlue};
    }
    PILIB_INLINE WidePixel4x2 operator-(const WidePixel4x2& other) const {
        return {alphaRed - other.alphaRed, greenBlue - other.greenBlue};
    }
};

PILIB_INLINE Pixel4x2 PairsAt(const RowToBlur<std::uint32_t>& row, std::ptrdiff_t cell) {
    typedef std::uint64_t Words __attribute__((vector_size(32)));
    const auto pair = [cell](const std::uint32_t* table)
                          PILIB_INLINE_LAMBDA { return Load<std::uint64_t>(table + cell); };
    return reinterpret_cast<Pixel4x2>(Words{pair(row.alpha), pair(row.red), pair(row.green), pair(row.blue)});
}

PILIB_INLINE Pixel4x2 TwiceAt(const RowToBlur<std::uint32_t>& row, std::ptrdiff_t cell) {
    const std::uint32_t alpha = row.alpha[cell];
    const std::uint32_t red = row.red[cell];
    const std::uint32_t green = row.green[cell];
    const std::uint32_t blue = row.blue[cell];
    return Pixel4x2{alpha, alpha, red, red, green, green, blue, blue};
}

PILIB_INLINE Pixel4 EntriesAt(const RowToBlur<std::uint32_t>& row, std::ptrdiff_t cell) {
    return Pixel4{row.alpha[cell], row.red[cell], row.green[cell], row.blue[cell]};
}

PILIB_INLINE WidePixel4x2 PairsAt(const RowToBlur<std::uint64_t>& row, std::ptrdiff_t cell) {
    typedef std::uint64_t Pair __attribute__((vector_size(16)));
    const auto both = [cell](const std::uint64_t* one, const std::uint64_t* two) PILIB_INLINE_LAMBDA {
        return __builtin_shufflevector(Load<Pair>(one + cell), Load<Pair>(two + cell), 0, 1, 2, 3);
    };
    return {both(row.alpha, row.red), both(row.green, row.blue)};
}

PILIB_INLINE WidePixel4x2 TwiceAt(const RowToBlur<std::uint64_t>& row, std::ptrdiff_t cell) {
    const std::uint64_t alpha = row.alpha[cell];
    const std::uint64_t red = row.red[cell];
    const std::uint64_t green = row.green[cell];
    const std::uint64_t blue = row.blue[cell];
    return {WidePixel4{alpha, alpha, red, red}, WidePixel4{green, green, blue, blue}};
}

PILIB_INLINE WidePixel4 EntriesAt(const RowToBlur<std::uint64_t>& row, std::ptrdiff_t cell) {
    return WidePixel4{row.alpha[cell], row.red[cell], row.green[cell], row.blue[cell]};
}

PILIB_INLINE WidePixel4x2 Swapped(const WidePixel4x2& pairs) {
    const auto swapped = [](WidePixel4 two)
                             PILIB_INLINE_LAMBDA { return __builtin_shufflevector(two, two, 1, 0, 3, 2); };
    return {swapped(pairs.alphaRed), swapped(pairs.greenBlue)};
}

PILIB_INLINE WidePixel4 FirstOfPairs(const WidePixel4x2& pairs) {
    return __builtin_shufflevector(pairs.alphaRed, pairs.greenBlue, 0, 2, 4, 6);
}

// Sums as means, by the reciprocals of the first of each pair and of the second.
PILIB_INLINE Pixel4x2 PairMeans(const WidePixel4x2& sums, double first, double second) {
    const Double4 reciprocals = {first, second, first, second};
    const auto means = [reciprocals](WidePixel4 two) PILIB_INLINE_LAMBDA {
        return __builtin_convertvector(AsDoubles(two) * reciprocals + 0.5, SignedPixel4);
    };
    return reinterpret_cast<Pixel4x2>(
        __builtin_shufflevector(means(sums.alphaRed), means(sums.greenBlue), 0, 1, 2, 3, 4, 5, 6, 7));
}

#endif

PILIB_INLINE Pixel4 EntryMeans(WidePixel4 sums, double reciprocal) {
    return reinterpret_cast<Pixel4>(
        __builtin_convertvector(AsDoubles(sums) * reciprocal + 0.5, SignedPixel4));
}

}  // namespace

}  // namespace PILib::detail
