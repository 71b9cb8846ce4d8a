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

typedef std::int32_t Pixel4 __attribute__((vector_size(16)));    // one value of each table
typedef std::int32_t Pixel4x2 __attribute__((vector_size(32)));  // a pair of each
typedef double Double4 __attribute__((vector_size(32)));

PILIB_INLINE Pixel4x2 Swapped(Pixel4x2 pairs) {
    return __builtin_shufflevector(pairs, pairs, 1, 0, 3, 2, 5, 4, 7, 6);
}

PILIB_INLINE Pixel4 FirstOfPairs(Pixel4x2 pairs) {
    return __builtin_shufflevector(pairs, pairs, 0, 2, 4, 6);
}

#if defined(__AVX512VL__) && PILIB_LANES == 16

// Loads go to their lanes under masks: a shuffle per load would cost as much again.

typedef double DoublePairs __attribute__((vector_size(64)));

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

PILIB_INLINE DoublePairs PairsAt(const RowToBlur<double>& row, std::ptrdiff_t cell) {
    __m512d pairs = _mm512_castpd128_pd512(_mm_loadu_pd(row.alpha + cell));
    pairs = _mm512_mask_broadcast_f64x2(pairs, 0x0C, _mm_loadu_pd(row.red + cell));
    pairs = _mm512_mask_broadcast_f64x2(pairs, 0x30, _mm_loadu_pd(row.green + cell));
    return reinterpret_cast<DoublePairs>(
        _mm512_mask_broadcast_f64x2(pairs, 0xC0, _mm_loadu_pd(row.blue + cell)));
}

PILIB_INLINE DoublePairs TwiceAt(const RowToBlur<double>& row, std::ptrdiff_t cell) {
    __m512d pairs = _mm512_set1_pd(row.alpha[cell]);
    pairs = _mm512_mask_broadcastsd_pd(pairs, 0x0C, _mm_load_sd(row.red + cell));
    pairs = _mm512_mask_broadcastsd_pd(pairs, 0x30, _mm_load_sd(row.green + cell));
    return reinterpret_cast<DoublePairs>(
        _mm512_mask_broadcastsd_pd(pairs, 0xC0, _mm_load_sd(row.blue + cell)));
}

PILIB_INLINE Double4 EntriesAt(const RowToBlur<double>& row, std::ptrdiff_t cell) {
    __m256d entries = _mm256_set1_pd(row.alpha[cell]);
    entries = _mm256_mask_broadcastsd_pd(entries, 0x2, _mm_load_sd(row.red + cell));
    entries = _mm256_mask_broadcastsd_pd(entries, 0x4, _mm_load_sd(row.green + cell));
    return reinterpret_cast<Double4>(_mm256_mask_broadcastsd_pd(entries, 0x8, _mm_load_sd(row.blue + cell)));
}

PILIB_INLINE DoublePairs Swapped(DoublePairs pairs) {
    return __builtin_shufflevector(pairs, pairs, 1, 0, 3, 2, 5, 4, 7, 6);
}

PILIB_INLINE Double4 FirstOfPairs(DoublePairs pairs) {
    return __builtin_shufflevector(pairs, pairs, 0, 2, 4, 6);
}

PILIB_INLINE DoublePairs Repeated(double first, double second) {
    return DoublePairs{first, second, first, second, first, second, first, second};
}

#else

struct DoublePairs {
    Double4 alphaRed;
    Double4 greenBlue;

    PILIB_INLINE DoublePairs operator+(const DoublePairs& other) const {
        return {alphaRed + other.alphaRed, greenBlue + other.greenBlue};
    }
    PILIB_INLINE DoublePairs operator-(const DoublePairs& other) const {
        return {alphaRed - other.alphaRed, greenBlue - other.greenBlue};
    }
    PILIB_INLINE DoublePairs operator*(const DoublePairs& other) const {
        return {alphaRed * other.alphaRed, greenBlue * other.greenBlue};
    }
    PILIB_INLINE DoublePairs operator+(double addend) const {
        return {alphaRed + addend, greenBlue + addend};
    }
    friend PILIB_INLINE DoublePairs operator*(double factor, const DoublePairs& pairs) {
        return {factor * pairs.alphaRed, factor * pairs.greenBlue};
    }
};

PILIB_INLINE Pixel4x2 PairsAt(const RowToBlur<std::uint32_t>& row, std::ptrdiff_t cell) {
    typedef std::uint64_t Words __attribute__((vector_size(32)));
    const auto pair = [cell](const std::uint32_t* table)
                          PILIB_INLINE_LAMBDA { return Load<std::uint64_t>(table + cell); };
    return reinterpret_cast<Pixel4x2>(Words{pair(row.alpha), pair(row.red), pair(row.green), pair(row.blue)});
}

PILIB_INLINE DoublePairs PairsAt(const RowToBlur<double>& row, std::ptrdiff_t cell) {
    typedef double Double2 __attribute__((vector_size(16)));
    const auto both = [cell](const double* one, const double* two) PILIB_INLINE_LAMBDA {
        return __builtin_shufflevector(Load<Double2>(one + cell), Load<Double2>(two + cell), 0, 1, 2, 3);
    };
    return {both(row.alpha, row.red), both(row.green, row.blue)};
}

PILIB_INLINE DoublePairs TwiceAt(const RowToBlur<double>& row, std::ptrdiff_t cell) {
    const double alpha = row.alpha[cell];
    const double red = row.red[cell];
    const double green = row.green[cell];
    const double blue = row.blue[cell];
    return {Double4{alpha, alpha, red, red}, Double4{green, green, blue, blue}};
}

PILIB_INLINE Double4 EntriesAt(const RowToBlur<double>& row, std::ptrdiff_t cell) {
    return Double4{row.alpha[cell], row.red[cell], row.green[cell], row.blue[cell]};
}

PILIB_INLINE DoublePairs Swapped(const DoublePairs& pairs) {
    const auto swapped = [](Double4 two)
                             PILIB_INLINE_LAMBDA { return __builtin_shufflevector(two, two, 1, 0, 3, 2); };
    return {swapped(pairs.alphaRed), swapped(pairs.greenBlue)};
}

PILIB_INLINE Double4 FirstOfPairs(const DoublePairs& pairs) {
    return __builtin_shufflevector(pairs.alphaRed, pairs.greenBlue, 0, 2, 4, 6);
}

PILIB_INLINE DoublePairs Repeated(double first, double second) {
    return {Double4{first, second, first, second}, Double4{first, second, first, second}};
}

PILIB_INLINE Pixel4x2 Truncated(const DoublePairs& pairs) {
    return __builtin_shufflevector(__builtin_convertvector(pairs.alphaRed, Pixel4),
                                   __builtin_convertvector(pairs.greenBlue, Pixel4), 0, 1, 2, 3, 4, 5, 6, 7);
}

#endif

}  // namespace

}  // namespace PILib::detail
