// What the benchmarks render, in any size and at both depths. Everything is seeded: the same on every machine
// and in every run.
#pragma once

#include "FrameBuffer.h"

namespace bench {

// How the defocus varies across a frame, and with it how much neighbouring pixels share.
enum class Matte {
    kRamp,     // smooth: long runs of equal whole radius
    kObjects,  // constant depths with hard edges, some in focus, before a ramp
    kNoise,    // an unrelated value in every pixel
};
inline constexpr Matte kMattes[] = {Matte::kRamp, Matte::kObjects, Matte::kNoise};

const char* NameOf(Matte matte);

// Soft-edged objects before a transparent sky and an opaque ground, with grain.
template <class C>
void PaintBeauty(const PILib::PixelBuf<PILib::Pixel<C>>& picture);

// Fills a control channel; 0 is in focus.
template <class C>
void PaintMatte(const PILib::ChannelBuf<C>& channel, Matte matte);

// The matte as an opaque grey picture, as a control layer holds it.
template <class C>
void PaintControl(const PILib::PixelBuf<PILib::Pixel<C>>& control, Matte matte);

}  // namespace bench
