#include "SimdLevel.h"

#include "RowDispatch.h"

namespace PILib {

bool IsSupported(SimdLevel level) {
    switch (level) {
        case SimdLevel::Scalar:
            return true;
        case SimdLevel::Baseline:
            return PILIB_HAS_BASELINE != 0;
#if PILIB_HAS_X86_LEVELS
        case SimdLevel::Avx2:
            return __builtin_cpu_supports("avx2") != 0;
        case SimdLevel::Avx512:
            return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
                   __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vl") != 0;
#endif
        default:
            return false;
    }
}

SimdLevel BestSimdLevel() {
    static const SimdLevel best = [] {
        for (const SimdLevel level : {SimdLevel::Avx512, SimdLevel::Avx2, SimdLevel::Baseline}) {
            if (IsSupported(level)) return level;
        }
        return SimdLevel::Scalar;
    }();
    return best;
}

namespace detail {

namespace {

constexpr RowKernels kNoKernels{};

const RowKernels& KernelsOf(SimdLevel level) {
    switch (level) {
#if PILIB_HAS_X86_LEVELS
        case SimdLevel::Avx512:
            return kRowKernelsAvx512;
        case SimdLevel::Avx2:
            return kRowKernelsAvx2;
#endif
#if PILIB_HAS_BASELINE
        case SimdLevel::Baseline:
            return kRowKernelsBaseline;
#endif
        default:
            return kNoKernels;
    }
}

}  // namespace

template <>
const DepthKernels& KernelsFor<Channel8>(SimdLevel level) {
    return KernelsOf(level).depth8;
}

template <>
const DepthKernels& KernelsFor<Channel15>(SimdLevel level) {
    return KernelsOf(level).depth15;
}

}  // namespace detail

}  // namespace PILib
