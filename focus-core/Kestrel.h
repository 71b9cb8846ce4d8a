// The focus renderer: every output pixel is the input blurred by the radius that the defocus map gives there.
//
// Sizes and radii are in pixels of the buffers given. Input and map are read at the output's positions and
// must be at least as large as the output. The map is one channel of the pixels' depth: 0 is in focus, full
// scale the largest radius, linear between. Pixels are straight; those whose map value is 0 are copied bit
// for bit.
//
// Cost per pixel does not depend on the radius. The blur's tables are the only large allocation: 16 bytes
// per pixel of the input and its border (a tent 32 where its sums need 64 bits), kept for the next frame of
// the size where the system can take them back at need. Tables are built on the calling thread, the first
// quarter of the progress bar; rows are rendered on the context's threads.
#pragma once

#include "FrameBuffer.h"
#include "PIContext.h"
#include "SATBlur.h"
#include "SimdLevel.h"

// Renders at the depth of `output`, 8 or 15 bits: `fine` takes the tent blur, else the box blur. `radiusX`
// and `radiusY` are the largest horizontal and vertical radius, not negative. Another depth, or an input or
// map smaller than the output, fails an assertion; a buffer of another class is std::bad_cast. What the
// context or a row throws passes on, and rows already written stay written.
void Kestrel(PILib::PIContext& context, const PILib::PixelBuffer& output, const PILib::PixelBuffer& input,
             const PILib::ChannelBuffer& control, bool fine, float radiusX, float radiusY);

// The same for one pixel type: owns the blur of one render.
template <class P>
void DepthDispatch(PILib::PIContext& context, const PILib::PixelBuf<P>& output,
                   const PILib::PixelBuf<P>& input, const PILib::ChannelBuf<typename P::ChannelType>& control,
                   bool fine, float radiusX, float radiusY);

// Both at another level than the best: for channels within full scale it changes the speed alone.
void Kestrel(PILib::PIContext& context, const PILib::PixelBuffer& output, const PILib::PixelBuffer& input,
             const PILib::ChannelBuffer& control, bool fine, float radiusX, float radiusY,
             PILib::SimdLevel level);
template <class P>
void DepthDispatch(PILib::PIContext& context, const PILib::PixelBuf<P>& output,
                   const PILib::PixelBuf<P>& input, const PILib::ChannelBuf<typename P::ChannelType>& control,
                   bool fine, float radiusX, float radiusY, PILib::SimdLevel level);

// What the row threads share, read-only. A row writes its own output row alone, so that nothing is locked.
template <class P>
struct KestrelThreadHandler {
    const PILib::PixelBuf<P>& output;
    const PILib::PixelBuf<P>& input;
    const PILib::ChannelBuf<typename P::ChannelType>& control;
    PILib::SATBlur<P>* blur;  // initialised; owned by the caller
    float radiusX;            // pixels, not rounded
    float radiusY;

    void rowOp(PILib::PIContext& context, int row);

    // The same for a band of rows, in strips of columns: the part of the tables that a strip reads stays in
    // the processor's cache from one row to the next.
    static constexpr int kBandRows = 256;
    void bandOp(PILib::PIContext& context, int first, int count);

private:
    // Columns x .. x + count - 1 of one row.
    void readOut(int row, int x, int count) const;
};

extern template struct KestrelThreadHandler<PILib::Pixel<PILib::Channel8>>;
extern template struct KestrelThreadHandler<PILib::Pixel<PILib::Channel15>>;
