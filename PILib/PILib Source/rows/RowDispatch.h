// The choice of row kernels by level and depth, and their view of a blur.
#pragma once

#include <type_traits>

#include "Pixel.h"
#include "RowKernels.h"
#include "SATBlur.h"
#include "SimdLevel.h"

namespace PILib::detail {

// The kernels of a level that can run here; of Scalar they are all null.
template <HostDepth C>
const DepthKernels& KernelsFor(SimdLevel level);
template <>
const DepthKernels& KernelsFor<Channel8>(SimdLevel level);
template <>
const DepthKernels& KernelsFor<Channel15>(SimdLevel level);

// `count` pixels of the blurred picture from x, y on, out of `tables`. `map`, `input` and `output` point to
// the first of them; radii are in pixels.
template <class P, class Tables>
auto RowOf(const SATBlur<P>& blur, const Tables& tables, int x, int y, const typename P::Type* map,
           const P* input, P* output, int count, float radiusX, float radiusY) {
    using Entry = std::remove_reference_t<decltype(tables.sumAlpha[0])>;
    return RowToBlur<Entry>{
        .alpha = tables.sumAlpha.get(),
        .red = tables.sumRed.get(),
        .green = tables.sumGreen.get(),
        .blue = tables.sumBlue.get(),
        .stride = blur.tableWidth,
        .centre = static_cast<std::ptrdiff_t>(y + blur.borderY) * blur.tableWidth + blur.borderX + x,
        .borderX = blur.borderX,
        .borderY = blur.borderY,
        .maxFixedRadiusX = blur.maxFixedRadiusX,
        .maxFixedRadiusY = blur.maxFixedRadiusY,
        .radiusX = radiusX,
        .radiusY = radiusY,
        .count = count,
        .map = map,
        .input = input,
        .output = output,
    };
}

}  // namespace PILib::detail
