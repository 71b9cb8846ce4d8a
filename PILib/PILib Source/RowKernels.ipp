// The vector kernels of rows, compiled once per instruction set with PILIB_LANES 32-bit lanes.

#include "BlendRow.ipp"
#include "BlurRow.ipp"
#include "PrefixRow.ipp"
#include "RowKernels.h"

namespace PILib::detail {

// Kernels that are not ahead of the code they stand beside are left out.
extern const RowKernels PILIB_KERNELS = {
    {ReadBoxRow<Depth8>, ReadTentRow<Depth8>, kLanes >= 8 ? SumRow<Depth8> : nullptr,
     kLanes >= 8 ? Blend<std::uint8_t> : nullptr},
    {ReadBoxRow<Depth15>, ReadTentRow<Depth15>, kLanes >= 16 ? SumRow<Depth15> : nullptr,
     kLanes >= 8 ? Blend<std::uint16_t> : nullptr},
};

}  // namespace PILib::detail
