#include "Kestrel.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

#include "SATExactTentBlur.h"
#include "ThreadRows.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::FrameBuffer;
using PILib::Pixel;
using PILib::PixelBuf;

// Users know these failures by file and line, which do not follow the source
// (docs/decisions/assertion-lines.md).
constexpr char kFile[] = "Kestrel";
constexpr int kSourcesCoverOutput = 1;
constexpr int kSupportedDepth = 82;

bool Covers(const FrameBuffer& source, const FrameBuffer& output) {
    return source.width >= output.width && source.height >= output.height;
}

template <class P>
std::unique_ptr<PILib::SATBlur<P>> MakeBlur(PILib::PIContext& context, const PixelBuf<P>& input, bool fine,
                                            int radiusX, int radiusY, PILib::SimdLevel level) {
    if (fine) return std::make_unique<PILib::SATExactTentBlur<P>>(context, input, radiusX, radiusY, level);
    return std::make_unique<PILib::SATBoxBlur<P>>(context, input, radiusX, radiusY, level);
}

template <class C>
void RenderAtDepth(PILib::PIContext& context, const FrameBuffer& output, const FrameBuffer& input,
                   const FrameBuffer& control, bool fine, float radiusX, float radiusY,
                   PILib::SimdLevel level) {
    using P = Pixel<C>;
    DepthDispatch<P>(context, dynamic_cast<const PixelBuf<P>&>(output),
                     dynamic_cast<const PixelBuf<P>&>(input), dynamic_cast<const ChannelBuf<C>&>(control),
                     fine, radiusX, radiusY, level);
}

}  // namespace

template <class P>
void KestrelThreadHandler<P>::rowOp(PILib::PIContext& /*context*/, int row) {
    readOut(row, 0, output.width);
}

template <class P>
void KestrelThreadHandler<P>::bandOp(PILib::PIContext& /*context*/, int first, int count) {
    constexpr int kStripColumns = 256;
    for (int x = 0; x < output.width; x += kStripColumns) {
        for (int row = first; row < first + count; ++row)
            readOut(row, x, std::min(kStripColumns, output.width - x));
    }
}

template <class P>
void KestrelThreadHandler<P>::readOut(int row, int x, int count) const {
    blur->getBlurRow(x, row, control.row(row).begin() + x, input.row(row).begin() + x,
                     output.row(row).begin() + x, count, radiusX, radiusY);
}

template <class P>
void DepthDispatch(PILib::PIContext& context, const PixelBuf<P>& output, const PixelBuf<P>& input,
                   const ChannelBuf<typename P::ChannelType>& control, bool fine, float radiusX,
                   float radiusY, PILib::SimdLevel level) {
    PILib::_Assert(Covers(input, output) && Covers(control, output), kSourcesCoverOutput, kFile);
    if (output.width <= 0 || output.height <= 0) return;

    const int maxX = PILib::TruncToInt32(std::ceil(radiusX));
    const int maxY = PILib::TruncToInt32(std::ceil(radiusY));
    const auto blur = MakeBlur(context, input, fine, maxX, maxY, level);
    context.setProgress(0.0F, 0.25F);
    blur->initialize();
    context.setProgress(0.25F, 1.0F);

    KestrelThreadHandler<P> handler{output, input, control, blur.get(), radiusX, radiusY};
    PILib::ThreadRows(context, handler, output.height, -1);
}

template <class P>
void DepthDispatch(PILib::PIContext& context, const PixelBuf<P>& output, const PixelBuf<P>& input,
                   const ChannelBuf<typename P::ChannelType>& control, bool fine, float radiusX,
                   float radiusY) {
    DepthDispatch<P>(context, output, input, control, fine, radiusX, radiusY, PILib::BestSimdLevel());
}

void Kestrel(PILib::PIContext& context, const PILib::PixelBuffer& output, const PILib::PixelBuffer& input,
             const PILib::ChannelBuffer& control, bool fine, float radiusX, float radiusY) {
    Kestrel(context, output, input, control, fine, radiusX, radiusY, PILib::BestSimdLevel());
}

void Kestrel(PILib::PIContext& context, const PILib::PixelBuffer& output, const PILib::PixelBuffer& input,
             const PILib::ChannelBuffer& control, bool fine, float radiusX, float radiusY,
             PILib::SimdLevel level) {
    switch (output.elementKey()) {
        case PILib::kElementKey<Pixel<Channel8>>:
            return RenderAtDepth<Channel8>(context, output, input, control, fine, radiusX, radiusY, level);
        case PILib::kElementKey<Pixel<Channel15>>:
            return RenderAtDepth<Channel15>(context, output, input, control, fine, radiusX, radiusY, level);
        default:
            PILib::_Assert(false, kSupportedDepth, kFile);
    }
}

template struct KestrelThreadHandler<Pixel<Channel8>>;
template struct KestrelThreadHandler<Pixel<Channel15>>;
template void DepthDispatch(PILib::PIContext&, const PixelBuf<Pixel<Channel8>>&,
                            const PixelBuf<Pixel<Channel8>>&, const ChannelBuf<Channel8>&, bool, float,
                            float);
template void DepthDispatch(PILib::PIContext&, const PixelBuf<Pixel<Channel15>>&,
                            const PixelBuf<Pixel<Channel15>>&, const ChannelBuf<Channel15>&, bool, float,
                            float);
template void DepthDispatch(PILib::PIContext&, const PixelBuf<Pixel<Channel8>>&,
                            const PixelBuf<Pixel<Channel8>>&, const ChannelBuf<Channel8>&, bool, float, float,
                            PILib::SimdLevel);
template void DepthDispatch(PILib::PIContext&, const PixelBuf<Pixel<Channel15>>&,
                            const PixelBuf<Pixel<Channel15>>&, const ChannelBuf<Channel15>&, bool, float,
                            float, PILib::SimdLevel);
