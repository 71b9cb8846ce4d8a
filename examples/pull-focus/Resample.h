// A picture at another size.
#pragma once

#include "FrameBuffer.h"

// Fills `destination` with `source`, bilinear: the frames' edges are aligned, positions beyond the outermost
// pixel centres take those pixels, and colours are weighted by alpha, so that a transparent pixel lends its
// neighbours no colour. Enlarging is smooth; below half size pixels are skipped.
template <class C>
void Resample(const PILib::PixelBuf<PILib::Pixel<C>>& destination,
              const PILib::PixelBuf<PILib::Pixel<C>>& source);

extern template void Resample(const PILib::PixelBuf<PILib::Pixel<PILib::Channel8>>&,
                              const PILib::PixelBuf<PILib::Pixel<PILib::Channel8>>&);
extern template void Resample(const PILib::PixelBuf<PILib::Pixel<PILib::Channel15>>&,
                              const PILib::PixelBuf<PILib::Pixel<PILib::Channel15>>&);
