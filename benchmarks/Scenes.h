// What the benchmarks render: a picture with real alpha and three kinds of depth matte, the same at every
// run.
#pragma once

#include <cstdint>

#include "FrameBuffer.h"

namespace bench {

enum class Matte : std::int64_t {
    Ramp,     // smooth from left to right
    Objects,  // flat shapes with hard edges over a ramp
    Noise,    // a depth of its own at every pixel
};

const char* NameOf(Matte matte);

// Mostly opaque, with a transparent background at the top and soft edges.
template <class C>
void PaintBeauty(const PILib::PixelBuf<PILib::Pixel<C>>& picture);

template <class C>
void PaintMatte(const PILib::ChannelBuf<C>& map, Matte matte);

// The matte as an opaque grey picture, as a control layer holds it.
template <class C>
void PaintControl(const PILib::PixelBuf<PILib::Pixel<C>>& control, Matte matte);

}  // namespace bench
