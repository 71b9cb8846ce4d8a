// A row moved toward another by vectors of AVX2 or AVX-512.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "RowKernels.h"
#include "RowLanes.ipp"

namespace PILib::detail {

namespace {

// The first `count` lanes of `v`, which hold what an element can.
PILIB_INLINE void StoreNarrowed(Int v, std::uint8_t* to, int count) {
#if PILIB_LANES == 16
    const __m128i narrow = _mm512_maskz_cvtepi32_epi8(0xFFFF, reinterpret_cast<__m512i>(v));
#else
    const auto whole = reinterpret_cast<__m256i>(v);
    const __m128i shorts =
        _mm_packus_epi32(_mm256_castsi256_si128(whole), _mm256_extracti128_si256(whole, 1));
    const __m128i narrow = _mm_packus_epi16(shorts, shorts);
#endif
    std::memcpy(to, &narrow, static_cast<std::size_t>(count));
}

PILIB_INLINE void StoreNarrowed(Int v, std::uint16_t* to, int count) {
#if PILIB_LANES == 16
    const __m256i narrow = _mm512_maskz_cvtepi32_epi16(0xFFFF, reinterpret_cast<__m512i>(v));
#else
    const auto whole = reinterpret_cast<__m256i>(v);
    const __m128i narrow =
        _mm_packus_epi32(_mm256_castsi256_si128(whole), _mm256_extracti128_si256(whole, 1));
#endif
    std::memcpy(to, &narrow, 2 * static_cast<std::size_t>(count));
}

// The two rows' weights, which add up to 65536.
struct BlendWeights {
    std::uint32_t kept;
    std::uint32_t other;
};

// `count` values, at most the lanes.
template <class Type>
PILIB_INLINE void BlendValues(Type* values, const Type* other, BlendWeights weights, int count) {
    const Uint sum = AsUnsigned(LoadWidened(values, count)) * weights.kept +
                     AsUnsigned(LoadWidened(other, count)) * weights.other + 0x8000U;
    StoreNarrowed(reinterpret_cast<Int>(sum >> 16), values, count);
}

template <class Depth>
void BlendRow(const RowToBlend& row) {
    // Copies of the fields: the compiler cannot know that storing bytes leaves the fields alone.
    auto* const values = static_cast<typename Depth::Type*>(row.values);
    const auto* const other = static_cast<const typename Depth::Type*>(row.other);
    const std::ptrdiff_t count = row.count;
    const BlendWeights weights = {0x10000U - row.weight, row.weight};
    std::ptrdiff_t x = 0;
    for (; count - x >= kLanes; x += kLanes)
        BlendValues(values + x, other + x, weights, kLanes);
    if (x < count) BlendValues(values + x, other + x, weights, static_cast<int>(count - x));
}

}  // namespace

}  // namespace PILib::detail
