// A row moved toward another by vectors.
#pragma once

#include <cstring>

#include "RowKernels.h"
#include "RowLanes.ipp"

namespace PILib::detail {

namespace {

// The two rows' weights, which sum up to 65536.
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

template <class Type>
void Blend(const BlendRow& row) {
    Type* const values = static_cast<Type*>(row.values);
    const Type* const other = static_cast<const Type*>(row.other);
    const std::int32_t count = row.count;
    const BlendWeights weights = {0x10000U - row.weight, row.weight};
    int x = 0;
    for (; x + kLanes <= count; x += kLanes)
        BlendValues(values + x, other + x, weights, kLanes);
    if (x < count) BlendValues(values + x, other + x, weights, count - x);
}

}  // namespace

}  // namespace PILib::detail
