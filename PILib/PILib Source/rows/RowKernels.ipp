// The vector kernels of rows, compiled once per instruction set with PILIB_LANES 32-bit lanes.

#include <type_traits>

#include "BlurRow.ipp"
#include "PrefixRow.ipp"
#include "RowKernels.h"

#if PILIB_LANES >= 8
#include "BlendRow.ipp"
#endif

namespace PILib::detail {

namespace {

// A kernel that is no faster than the code it would replace is left null.
template <class Depth>
constexpr DepthKernels KernelsAt() {
    constexpr int kFewestLanesForSums = std::is_same_v<Depth, Depth8> ? 8 : 16;
    DepthKernels kernels{ReadBoxRow<Depth>, ReadTentRow<Depth>, nullptr, nullptr};
    if constexpr (kLanes >= kFewestLanesForSums) kernels.prefix = SumRow<Depth>;
#if PILIB_LANES >= 8
    kernels.blend = MoveRow<Depth>;
#endif
    return kernels;
}

}  // namespace

extern const RowKernels PILIB_KERNELS = {KernelsAt<Depth8>(), KernelsAt<Depth15>()};

}  // namespace PILib::detail
