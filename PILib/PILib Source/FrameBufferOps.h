// Operations on whole buffers, in place and on the calling thread: extraction of a control channel,
// threshold, inversion, brightness and alpha masks.
//
// Each dispatches on the buffer's element key and casts to the concrete class: a key that the operation does
// not support fails the assertion named for it in AssertSites.h, a class that does not match its key is
// std::bad_cast. Nothing is written before these checks. Pixels are straight. "Full" below is the depth's
// kFloatOne.
#pragma once

#include <cstdint>

#include "FrameBuffer.h"

namespace PILib {

// What ExtractChannel reads from a pixel. The colour-derived ones come out premultiplied by alpha, so that a
// transparent pixel reads 0.
enum ChannelID : std::int32_t {
    kChannelAlpha = 0,
    kChannelRed = 1,
    kChannelGreen = 2,
    kChannelBlue = 3,
    kChannelLuma = 4,        // (77 R + 150 G + 29 B) / 256
    kChannelLightness = 5,   // mean of the largest and the smallest colour
    kChannelBrightness = 6,  // the largest colour
    kChannelReserved7 = 7,   // refused
    kChannelReserved8 = 8,   // refused
};

// Pixels of the host's two depths into a channel of the same depth that covers them.
void ExtractChannel(PIContext& context, const ChannelBuffer& destination, const PixelBuffer& source,
                    ChannelID id);

// Each element becomes full if it is at least level * full (truncated at integer depths), else 0. All channel
// depths.
void Threshold(const ChannelBuffer& buffer, float level);

// Each element becomes full minus itself. All channel depths.
void Invert(const ChannelBuffer& buffer);

// Moves values toward full (amount > 0) or 0 (amount < 0): at 1 a quarter of the distance to full is left, at
// -1 a quarter of the value. Asserts |amount| <= 1; below 0.01 nothing happens. All depths; pixels keep their
// alpha.
void Brighten(const FrameBuffer& buffer, float amount);

// Destination alpha times source alpha, for two buffers of the same size and depth (8, 15 or 16 bits).
void MultAlphaChannels(const PixelBuffer& destination, const PixelBuffer& source);

// Destination alpha times mask, for a mask of the same size and depth (8, 15 or 16 bits).
void MaskAlpha(const PixelBuffer& destination, const ChannelBuffer& mask);

// Every pixel becomes an opaque grey of its alpha. Checks for an abort before each row; rows done stay
// changed.
void PreviewAlpha(PIContext& context, const PixelBuffer& buffer);

}  // namespace PILib
