// Painting, overlay and blend. Part of FrameBuffer.cpp.
// They exist for the host's two depths; the pixel buffers of the others compile and fail an assertion here.

#include <algorithm>
#include <cstddef>

#include "BlendRows.h"
#include "FrameBuffer.h"
#include "RowDispatch.h"

namespace PILib {

namespace detail {

// An 8-bit mask value as alpha of depth C: 255 becomes full.
template <HostDepth C>
typename C::Type AlphaFromMask8(std::uint8_t mask) {
    if constexpr (std::is_same_v<C, Channel8>) {
        return mask;
    } else {
        return static_cast<typename C::Type>((std::uint32_t{mask} * 65795) >> 9);
    }
}

// Composites `colour` over every pixel with the alpha that alphaOf(mask element) gives.
template <class C, class Mask, class AlphaOf>
void OverlayThrough(const PixelBuf<Pixel<C>>& buffer, const Mask& mask, const Pixel<Channel32f>& colour,
                    AlphaOf alphaOf) {
    Pixel<C> top = colour;
    for (int y = 0; y < buffer.height; ++y) {
        const auto out = buffer.row(y);
        const auto in = mask.row(y);
        for (int x = 0; x < out.size(); ++x) {
            top.alpha = alphaOf(in[x]);
            CompOver(out[x], out[x], top);
        }
    }
}

// `from` moved toward `to` by a 16.16 weight, rounded.
template <class T>
T Toward(T from, T to, std::int64_t weight) {
    const std::int64_t step = (weight * (std::int64_t{to} - from) + 32768) >> 16;
    return static_cast<T>(from + step);
}

// Every pixel of a row moved toward another row's by a 16.16 weight, which may be beyond 0 to 1.
template <HostDepth C>
void BlendRow(const Row<Pixel<C>>& row, const Row<Pixel<C>>& other, std::int32_t weight) {
    for (int x = 0; x < row.size(); ++x) {
        Pixel<C>& p = row[x];
        const Pixel<C>& to = other[x];
        p = Pixel<C>(Toward(p.alpha, to.alpha, weight), Toward(p.red, to.red, weight),
                     Toward(p.green, to.green, weight), Toward(p.blue, to.blue, weight));
    }
}

template <HostDepth C>
void BlendRows(const PixelBuf<Pixel<C>>& picture, const PixelBuf<Pixel<C>>& other, std::int32_t weight,
               SimdLevel level) {
    const auto kernel = weight >= 0 && weight <= 65536 ? KernelsFor<C>(level).blend : nullptr;
    for (int y = 0; y < picture.height; ++y) {
        const auto row = picture.row(y);
        const auto to = other.row(y);
        if (kernel == nullptr) {
            BlendRow(row, to, weight);
        } else {
            kernel({row.begin(), to.begin(), 4 * std::ptrdiff_t{row.size()},
                    static_cast<std::uint32_t>(weight)});
        }
    }
}

inline void FailUnsupportedDepth() {
    _Assert(false, site::kDepthCanBlend, site::kFrameBufferFile);
}

}  // namespace detail

template <class P>
void PixelBuf<P>::paint(const ChannelBuffer& mask, const Colour& colour) const {
    paint(dynamic_cast<const ChannelBuf<C>&>(mask), colour);
}

template <class P>
void PixelBuf<P>::paint(const ChannelBuf<C>& mask, const Colour& colour) const {
    this->assertCoveredBy(mask);
    P painted = colour;
    for (int y = 0; y < this->height; ++y) {
        const auto out = this->row(y);
        const auto in = mask.row(y);
        for (int x = 0; x < out.size(); ++x) {
            painted.alpha = in[x];
            out[x] = painted;
        }
    }
}

template <class P>
void PixelBuf<P>::overlay(const ChannelBuffer& mask, const Colour& colour) const {
    if (const auto* mask8 = dynamic_cast<const ChannelBuf<Channel8>*>(&mask)) {
        overlay8(*mask8, colour);
    } else {
        overlayT(dynamic_cast<const ChannelBuf<C>&>(mask), colour);
    }
}

template <class P>
void PixelBuf<P>::overlayT(const ChannelBuf<C>& mask, const Colour& colour) const {
    this->assertCoveredBy(mask);
    if constexpr (HostDepth<C>) {
        detail::OverlayThrough(*this, mask, colour, [](typename C::Type value) { return value; });
    } else {
        detail::FailUnsupportedDepth();
    }
}

template <class P>
void PixelBuf<P>::overlay8(const ChannelBuf<Channel8>& mask, const Colour& colour) const {
    this->assertCoveredBy(mask);
    if constexpr (HostDepth<C>) {
        detail::OverlayThrough(*this, mask, colour, detail::AlphaFromMask8<C>);
    } else {
        detail::FailUnsupportedDepth();
    }
}

template <class P>
void PixelBuf<P>::paint(Rect area, const Colour& colour) const {
    const P painted = colour;
    const int left = std::max<int>(area.left, 0);
    const int right = std::min<int>(area.right, this->width);
    const int bottom = std::min<int>(area.bottom, this->height);
    for (int y = std::max<int>(area.top, 0); y < bottom; ++y) {
        const auto out = this->row(y);
        for (int x = left; x < right; ++x)
            out[x] = painted;
    }
}

template <class P>
void PixelBuf<P>::paint(int x, int y, const Colour& colour) const {
    if (x >= 0 && x < this->width && y >= 0 && y < this->height) this->row(y)[x] = colour;
}

template <class P>
void PixelBuf<P>::blend(PIContext& /*context*/, const PixelBuffer& other, float fraction) const {
    if (fraction == 0.0F) return;
    if (fraction == 1.0F) {
        this->load(other, kAlignTopLeft);
        return;
    }
    const auto& typed = dynamic_cast<const PixelBuf<P>&>(other);
    _Assert(this->hasSizeOf(typed), site::kBlendSize, site::kFrameBufferFile);
    if constexpr (HostDepth<C>) {
        const std::int32_t weight = TruncToInt32(fraction * 65536.0F + 0.5F);
        detail::BlendRows(*this, typed, weight, BestSimdLevel());
    } else {
        detail::FailUnsupportedDepth();
    }
}

}  // namespace PILib
