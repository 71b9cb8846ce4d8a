// The blend of two pictures at a given level of vectors; PixelBuf::blend takes the best one.
#pragma once

#include <cstdint>

#include "FrameBuffer.h"
#include "SimdLevel.h"

namespace PILib::detail {

// Moves every channel value toward the other picture's: by weight * (other - value) / 65536, rounded. A
// weight beyond 0 to 65536 goes pixel by pixel. The pictures have one size, and are one or do not overlap.
template <HostDepth C>
void BlendRows(const PixelBuf<Pixel<C>>& picture, const PixelBuf<Pixel<C>>& other, std::int32_t weight,
               SimdLevel level);

}  // namespace PILib::detail
