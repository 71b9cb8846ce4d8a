#include "SimdLevel.h"

#include "RowDispatch.h"

#if PILIB_HAS_X86_LEVELS
#include <cpuid.h>

#include <cstdint>
#endif

namespace PILib {

#if PILIB_HAS_X86_LEVELS

namespace {

// What the processor can do, and which registers the system keeps for each thread. Asked of the processor
// itself, as not every compiler's library answers __builtin_cpu_supports.
struct Processor {
    std::uint32_t features = 0;  // register ebx of CPUID leaf 7
    std::uint32_t kept = 0;      // XCR0: bit 1 xmm, bit 2 ymm, bits 5 to 7 zmm and masks

    static Processor here() {
        std::uint32_t eax = 0;
        std::uint32_t ebx = 0;
        std::uint32_t ecx = 0;
        std::uint32_t edx = 0;
        if (__get_cpuid(1, &eax, &ebx, &ecx, &edx) == 0 || (ecx & bit_OSXSAVE) == 0) return {};
        if (__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) == 0) return {};
        Processor processor{.features = ebx};
        __asm__("xgetbv" : "=a"(processor.kept), "=d"(edx) : "c"(0));
        return processor;
    }

    bool has(std::uint32_t wanted, std::uint32_t registers) const {
        return (features & wanted) == wanted && (kept & registers) == registers;
    }
};

}  // namespace

#endif

bool IsSupported(SimdLevel level) {
    switch (level) {
        case SimdLevel::Scalar:
            return true;
        case SimdLevel::Baseline:
            return PILIB_HAS_BASELINE != 0;
#if PILIB_HAS_X86_LEVELS
        case SimdLevel::Avx2:
            return Processor::here().has(bit_AVX2, 0x06);
        case SimdLevel::Avx512:
            return Processor::here().has(bit_AVX512F | bit_AVX512BW | bit_AVX512DQ | bit_AVX512VL, 0xE6);
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
