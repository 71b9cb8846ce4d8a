// The vector kernels of rows, compiled once per instruction set with PILIB_LANES 32-bit lanes.
//
// To add a kernel:
//   1. RowKernels.h: declare what a row is given as a struct of plain C types, and a pointer in DepthKernels.
//   2. Write it in an .ipp file here, in an unnamed namespace, on the vectors of RowLanes.ipp and, where the
//      depths differ, on a `Depth` of RowDepths.ipp. Set the pointer in KernelsAt below.
//   3. Call it through KernelsFor(level) (RowDispatch.h), with plain code for levels where it is null.
//   4. Hold it equal to the plain code at every level in tests/PILib/rows/.
//
// To add a level:
//   1. Name it in SimdLevel.h. SimdLevel.cpp says when it can run, which kernels are its own, and its rank.
//   2. Add RowKernels_<level>.cpp, three lines with its lanes, and its flags in PILib/CMakeLists.txt.
//   3. RowLanes.ipp: add intrinsics where compilers make poor code of the portable vectors at that width.
//   4. Add it to tests/support/SimdLevels.h: every row test then goes through it.

#include <type_traits>

#include "BlurRow.ipp"
#include "RowKernels.h"
#include "RunningSums.ipp"

#if PILIB_LANES >= 8
#include "BlendRow.ipp"
#endif

namespace PILib::detail {

namespace {

// A kernel that is no faster than the code it would replace is left null.
template <class Depth>
constexpr DepthKernels KernelsAt() {
    constexpr int kFewestLanesForSums = std::is_same_v<Depth, Depth8> ? 8 : 16;
    DepthKernels kernels{
        .box = BlurRowByBoxes<Depth>,
        .narrowTent = BlurRowByTents<Depth, std::uint32_t>,
        .wideTent = BlurRowByTents<Depth, std::uint64_t>,
        .narrowSumsTwice = WriteRunningSumsTwice<Depth, NarrowSums, std::uint32_t>,
        .wideSumsTwice = WriteRunningSumsTwice<Depth, WideSums, std::uint64_t>,
        .narrowAddDown = AddDown<Uint, std::uint32_t>,
        .wideAddDown = AddDown<Ulong, std::uint64_t>,
    };
    if constexpr (kLanes >= kFewestLanesForSums) kernels.runningSums = WriteRunningSums<Depth>;
#if PILIB_LANES >= 8
    kernels.blend = BlendRow<Depth>;
#endif
    return kernels;
}

}  // namespace

extern const RowKernels PILIB_KERNELS = {KernelsAt<Depth8>(), KernelsAt<Depth15>()};

}  // namespace PILib::detail
