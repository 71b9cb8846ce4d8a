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

// The two rows' weights, which add up to 65536.
struct BlendWeights {
    std::uint32_t kept;
    std::uint32_t other;
};

// `count` values, at most the lanes.
PILIB_INLINE void BlendValues(std::uint8_t* values, const std::uint8_t* other, BlendWeights weights,
                              int count) {
    const Uint sum = AsUnsigned(LoadWidened(values, count)) * weights.kept +
                     AsUnsigned(LoadWidened(other, count)) * weights.other + 0x8000U;
    StoreNarrowed(reinterpret_cast<Int>(sum >> 16), values, count);
}

PILIB_INLINE void BlendAll(std::uint8_t* values, const std::uint8_t* other, BlendWeights weights,
                           std::ptrdiff_t count) {
    std::ptrdiff_t x = 0;
    for (; count - x >= kLanes; x += kLanes)
        BlendValues(values + x, other + x, weights, kLanes);
    if (x < count) BlendValues(values + x, other + x, weights, static_cast<int>(count - x));
}

// At 16 bits compilers make as good vectors of a plain loop; at 8 bits theirs take 1.4 times as long.
PILIB_INLINE void BlendAll(std::uint16_t* values, const std::uint16_t* other, BlendWeights weights,
                           std::ptrdiff_t count) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const std::uint32_t sum = values[x] * weights.kept + other[x] * weights.other + 0x8000U;
        values[x] = static_cast<std::uint16_t>(sum >> 16);
    }
}

template <class Depth>
void BlendRow(const RowToBlend& row) {
    BlendAll(static_cast<typename Depth::Type*>(row.values),
             static_cast<const typename Depth::Type*>(row.other),
             {.kept = 0x10000U - row.weight, .other = row.weight}, row.count);
}

}  // namespace

}  // namespace PILib::detail
