// From a blur to its row kernel: the choice by level and depth, and the kernel's view of the blur.
#pragma once

#include <type_traits>

#include "BlurRow.h"
#include "Pixel.h"
#include "SimdLevel.h"

namespace PILib::detail {

// The kernels of a level other than Scalar.
const BlurRowKernels& KernelsOf(SimdLevel level);

template <class C>
auto BoxRowKernel(SimdLevel level) {
    return std::is_same_v<C, Channel8> ? KernelsOf(level).box8 : KernelsOf(level).box15;
}

template <class C>
auto TentRowKernel(SimdLevel level) {
    return std::is_same_v<C, Channel8> ? KernelsOf(level).tent8 : KernelsOf(level).tent15;
}

template <class C>
auto PrefixKernel(SimdLevel level) {
    return std::is_same_v<C, Channel8> ? KernelsOf(level).prefix8 : KernelsOf(level).prefix15;
}

template <class Blur, class P>
auto RowOf(const Blur& blur, int x, int y, const typename P::Type* map, const P* input, P* output, int count,
           float radiusX, float radiusY) {
    using Entry = std::remove_reference_t<decltype(blur.sumAlpha[0])>;
    return BlurRow<Entry>{blur.sumAlpha.get(),
                          blur.sumRed.get(),
                          blur.sumGreen.get(),
                          blur.sumBlue.get(),
                          blur.tableWidth,
                          static_cast<std::ptrdiff_t>(y + blur.borderY) * blur.tableWidth + blur.borderX + x,
                          blur.borderX,
                          blur.borderY,
                          blur.maxFixedRadiusX,
                          blur.maxFixedRadiusY,
                          radiusX,
                          radiusY,
                          count,
                          map,
                          input,
                          output};
}

}  // namespace PILib::detail
