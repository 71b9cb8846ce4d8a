// Transfers between buffers: load, transpose, and the moves between pixels and channels. Part of
// FrameBuffer.cpp.

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "FrameBuffer.h"

namespace PILib {

namespace detail {

// Where a source row stands on a destination row.
struct RowSpan {
    int destination;  // first destination column that is copied to
    int source;       // first source column that is copied from
    int count;        // elements copied
    int marginLeft;   // zeroed elements before the copy
    int marginRight;  // first of the zeroed elements after it
};

// Deliberate: the count is the narrower of the two widths, whatever the offset. The two alignments always
// give spans that fit both rows; for any other offset the span is cut to them, which changes nothing for
// those two. Pinned by FrameBufferLoadTest.CentredSpansAreNotShortenedByTheirOffset.
inline RowSpan SpanOf(int width, int sourceWidth, int dx) {
    const auto inRow = [width](std::int64_t column) {
        return static_cast<int>(std::clamp<std::int64_t>(column, 0, width));
    };
    RowSpan span{};
    span.destination = inRow(dx);
    span.source = static_cast<int>(std::clamp<std::int64_t>(-std::int64_t{dx}, 0, sourceWidth));
    span.count = std::min({sourceWidth, width, width - span.destination, sourceWidth - span.source});
    span.marginLeft = span.destination;
    span.marginRight = inRow(std::int64_t{dx} + sourceWidth);
    return span;
}

// Applies op(destination element, source element) to every element of the destination, rows top to bottom.
template <class Destination, class Source, class Op>
void ForEachElement(const Destination& destination, const Source& source, Op op) {
    for (int y = 0; y < destination.height; ++y) {
        const auto out = destination.row(y);
        const auto in = source.row(y);
        for (int x = 0; x < out.size(); ++x)
            op(out[x], in[x]);
    }
}

template <class Buffer>
void TransposeInto(const Buffer& destination, const Buffer& source) {
    for (int y = 0; y < destination.height; ++y) {
        const auto out = destination.row(y);
        for (int x = 0; x < out.size(); ++x)
            out[x] = source.row(x)[y];
    }
}

}  // namespace detail

template <class T>
void FrameBuf<T>::load(const FrameBuffer& source, TPoint<int> offset) const {
    if (&source == this) return;
    const auto& typed = dynamic_cast<const FrameBuf<T>&>(source);
    const detail::RowSpan span = detail::SpanOf(width, typed.width, offset.x);
    const auto bytes = [](int elements) { return static_cast<std::size_t>(elements) * sizeof(Element); };
    for (int y = 0; y < height; ++y) {
        unsigned char* const out = rowAddress(y);
        const std::int64_t sourceY = std::int64_t{y} - offset.y;
        if (sourceY < 0 || sourceY >= typed.height) {
            std::memset(out, 0, bytes(width));
            continue;
        }
        std::memset(out, 0, bytes(span.marginLeft));
        std::memcpy(out + bytes(span.destination),
                    typed.rowAddress(static_cast<int>(sourceY)) + bytes(span.source), bytes(span.count));
        std::memset(out + bytes(span.marginRight), 0, bytes(width - span.marginRight));
    }
}

template <class T>
void FrameBuf<T>::load(const FrameBuffer& source, Alignment align) const {
    if (&source == this) return;
    _Assert(align == kAlignTopLeft || align == kAlignCenter, site::kAlignment, site::kFrameBufferFile);
    TPoint<int> offset{0, 0};
    if (align == kAlignCenter) offset = {(width - source.width) / 2, (height - source.height) / 2};
    load(source, offset);
}

template <class P>
void PixelBuf<P>::transpose(const FrameBuffer& source) const {
    if (&source == this) return;
    const auto* typed = dynamic_cast<const PixelBuf<P>*>(&source);
    _Assert(typed != nullptr, site::kTransposePixel, site::kFrameBufferFile);
    _Assert(typed->width >= this->height && typed->height >= this->width, site::kSourceCoversDestination,
            site::kFrameBufferFile);
    detail::TransposeInto(*this, *typed);
}

template <class P>
void PixelBuf<P>::loadAlpha(const ChannelBuffer& channel) const {
    loadAlpha(dynamic_cast<const ChannelBuf<C>&>(channel));
}

template <class P>
void PixelBuf<P>::loadAlpha(const ChannelBuf<C>& channel) const {
    this->assertCoveredBy(channel);
    detail::ForEachElement(*this, channel, [](P& pixel, typename C::Type value) { pixel.alpha = value; });
}

template <class P>
void PixelBuf<P>::loadARGB(const ChannelBuffer& channel) const {
    loadARGB(dynamic_cast<const ChannelBuf<C>&>(channel));
}

template <class P>
void PixelBuf<P>::loadARGB(const ChannelBuf<C>& channel) const {
    this->assertCoveredBy(channel);
    constexpr auto kOpaque = static_cast<typename C::Type>(C::kFloatOne);
    detail::ForEachElement(*this, channel,
                           [](P& pixel, typename C::Type value) { pixel = P(kOpaque, value, value, value); });
}

template <class P>
void PixelBuf<P>::multiplyAlpha(const ChannelBuffer& mask) const {
    multiplyAlpha(dynamic_cast<const ChannelBuf<C>&>(mask));
}

template <class P>
void PixelBuf<P>::multiplyAlpha(const ChannelBuf<C>& mask) const {
    this->assertCoveredBy(mask);
    detail::ForEachElement(*this, mask, [](P& pixel, typename C::Type value) {
        pixel.alpha = static_cast<typename C::Type>(C::mul(pixel.alpha, value));
    });
}

template <class P>
ChannelBuffer* PixelBuf<P>::getAlpha() const {
    auto* const channel = new ChannelBuf<C>(this->width, this->height);
    detail::ForEachElement(*channel, *this,
                           [](typename C::Type& value, const P& pixel) { value = pixel.alpha; });
    return channel;
}

template <class P>
void PixelBuf<P>::loadChans(const PixelBuffer& source, ChannelSelector selector) const {
    loadChans(dynamic_cast<const PixelBuf<P>&>(source), selector);
}

template <class P>
void PixelBuf<P>::loadChans(const PixelBuf<P>& source, ChannelSelector selector) const {
    this->assertCoveredBy(source);
    detail::ForEachElement(*this, source, [selector](P& out, const P& in) {
        if ((selector & kSelectAlpha) != 0) out.alpha = in.alpha;
        if ((selector & kSelectRed) != 0) out.red = in.red;
        if ((selector & kSelectGreen) != 0) out.green = in.green;
        if ((selector & kSelectBlue) != 0) out.blue = in.blue;
    });
}

template <class P>
Pixel<Channel32f> PixelBuf<P>::getPixel32f(int x, int y) const {
    const P& pixel = this->row(y)[x];
    return {ToFloat<C>(pixel.alpha), ToFloat<C>(pixel.red), ToFloat<C>(pixel.green), ToFloat<C>(pixel.blue)};
}

template <class C>
void ChannelBuf<C>::loadAlpha(const PixelBuffer& source) const {
    const auto* typed = dynamic_cast<const PixelBuf<Pixel<C>>*>(&source);
    _Assert(typed != nullptr, site::kLoadAlphaType, site::kFrameBufferFile);
    loadAlpha(*typed);
}

template <class C>
void ChannelBuf<C>::loadAlpha(const PixelBuf<Pixel<C>>& source) const {
    if constexpr (std::is_same_v<C, Channel32f>) {
        // Deliberate: only the heights are compared at this depth; a narrower source fails the general check.
        // Pinned by FrameBufferTransferTest.FloatLoadAlphaComparesHeightsOnly.
        _Assert(this->height == source.height, site::kLoadFloatAlphaSize, site::kFrameBufferFile);
        this->assertCoveredBy(source);
    } else {
        _Assert(this->hasSizeOf(source), site::kLoadAlphaSize, site::kFrameBufferFile);
    }
    detail::ForEachElement(*this, source,
                           [](typename C::Type& value, const Pixel<C>& pixel) { value = pixel.alpha; });
}

template <class C>
void ChannelBuf<C>::transpose(const FrameBuffer& source) const {
    if (&source == this) return;
    const auto* typed = dynamic_cast<const ChannelBuf<C>*>(&source);
    _Assert(typed != nullptr, site::kTransposeChannel, site::kFrameBufferFile);
    _Assert(typed->width >= this->height && typed->height >= this->width, site::kSourceCoversDestination,
            site::kFrameBufferFile);
    detail::TransposeInto(*this, *typed);
}

}  // namespace PILib
