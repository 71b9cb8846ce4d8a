#include "FrameBufferOps.h"

#include <cmath>
#include <type_traits>

namespace PILib {

namespace {

void Require(bool condition, int line) {
    _Assert(condition, line, site::kFrameBufferOpsFile);
}

template <class T>
const ChannelBuf<T>& AsChannels(const FrameBuffer& buffer) {
    return dynamic_cast<const ChannelBuf<T>&>(buffer);
}

template <class C>
const PixelBuf<Pixel<C>>& AsPixels(const FrameBuffer& buffer) {
    return dynamic_cast<const PixelBuf<Pixel<C>>&>(buffer);
}

// Calls op.template operator()<C>() for the channel type of a channel buffer's key; fails at `line` for
// another key.
template <class Op>
void DispatchChannels(int key, int line, Op op) {
    switch (key) {
        case kElementKey<Channel8>:
            return op.template operator()<Channel8>();
        case kElementKey<Channel15>:
            return op.template operator()<Channel15>();
        case kElementKey<Channel16>:
            return op.template operator()<Channel16>();
        case kElementKey<Channel32>:
            return op.template operator()<Channel32>();
        case kElementKey<Channel32f>:
            return op.template operator()<Channel32f>();
        default:
            Require(false, line);
    }
}

// The same for the channel type of a pixel buffer's key.
template <class Op>
void DispatchPixels(int key, int line, Op op) {
    DispatchChannels(key - kElementKey<Pixel<Channel8>>, line, op);
}

// Replaces every element by op(element).
template <class Buffer, class Op>
void Transform(const Buffer& buffer, Op op) {
    for (int y = 0; y < buffer.height; ++y) {
        for (auto& element : buffer.row(y))
            element = op(element);
    }
}

// A float result as an element: truncated at integer depths.
template <class C>
typename C::Type Narrowed(float value) {
    if constexpr (std::is_same_v<C, Channel32f>) {
        return value;
    } else {
        return static_cast<typename C::Type>(TruncToInt32(value));
    }
}

template <class C>
constexpr auto kFull = static_cast<typename C::Type>(C::kFloatOne);

// The channels other than alpha: a colour-derived value times alpha. `valueOf` yields the value at the
// pixel's depth.
template <class C, class ValueOf>
void ExtractPremultiplied(const ChannelBuf<C>& destination, const PixelBuf<Pixel<C>>& source,
                          ValueOf valueOf) {
    for (int y = 0; y < source.height; ++y) {
        const auto out = destination.row(y);
        const auto in = source.row(y);
        for (int x = 0; x < in.size(); ++x) {
            const auto value = static_cast<std::uint32_t>(valueOf(in[x]));
            out[x] = static_cast<typename C::Type>(C::mul(value, in[x].alpha));
        }
    }
}

template <class C>
std::uint32_t Luma(const Pixel<C>& p) {
    return (77U * p.red + 150U * p.green + 29U * p.blue) >> 8;
}

template <class C>
void Extract(const ChannelBuf<C>& destination, const PixelBuf<Pixel<C>>& source, ChannelID id) {
    using P = Pixel<C>;
    Require(destination.width >= source.width && destination.height >= source.height, site::kExtractCovers);
    switch (id) {
        case kChannelAlpha:
            for (int y = 0; y < source.height; ++y) {
                const auto out = destination.row(y);
                const auto in = source.row(y);
                for (int x = 0; x < in.size(); ++x)
                    out[x] = in[x].alpha;
            }
            return;
        case kChannelRed:
            return ExtractPremultiplied(destination, source, [](const P& p) { return p.red; });
        case kChannelGreen:
            return ExtractPremultiplied(destination, source, [](const P& p) { return p.green; });
        case kChannelBlue:
            return ExtractPremultiplied(destination, source, [](const P& p) { return p.blue; });
        case kChannelLuma:
            return ExtractPremultiplied(destination, source, Luma<C>);
        case kChannelLightness:
            return ExtractPremultiplied(destination, source, lightness<C>);
        case kChannelBrightness:
            return ExtractPremultiplied(destination, source,
                                        [](const P& p) { return max(p.red, p.green, p.blue); });
        case kChannelReserved7:
            return Require(false, site::kExtractId7);
        case kChannelReserved8:
            return Require(false, site::kExtractId8);
    }
    Require(false, site::kExtractIdUnknown);
}

template <class C>
void MultiplyAlpha(const PixelBuffer& destination, const PixelBuffer& source) {
    const auto& out = AsPixels<C>(destination);
    const auto& in = AsPixels<C>(source);
    Require(out.width == in.width && out.height == in.height, site::kMultAlphaSize);
    for (int y = 0; y < out.height; ++y) {
        const auto outRow = out.row(y);
        const auto inRow = in.row(y);
        for (int x = 0; x < outRow.size(); ++x) {
            outRow[x].alpha = static_cast<typename C::Type>(C::mul(outRow[x].alpha, inRow[x].alpha));
        }
    }
}

template <class C>
void MaskAlphaWith(const PixelBuffer& destination, const ChannelBuffer& mask, int keyLine) {
    Require(mask.elementKey() == kElementKey<C>, keyLine);
    const auto& out = AsPixels<C>(destination);
    const auto& in = AsChannels<C>(mask);
    Require(out.width == in.width && out.height == in.height, site::kMaskAlphaSize);
    out.multiplyAlpha(in);
}

template <class C>
void PreviewAlphaOf(PIContext& context, const PixelBuf<Pixel<C>>& buffer) {
    for (int y = 0; y < buffer.height; ++y) {
        context.checkAbort();
        for (auto& pixel : buffer.row(y))
            pixel = Pixel<C>(kFull<C>, pixel.alpha, pixel.alpha, pixel.alpha);
    }
}

}  // namespace

void ExtractChannel(PIContext& /*context*/, const ChannelBuffer& destination, const PixelBuffer& source,
                    ChannelID id) {
    switch (source.elementKey()) {
        case kElementKey<Pixel<Channel8>>:
            return Extract(AsChannels<Channel8>(destination), AsPixels<Channel8>(source), id);
        case kElementKey<Pixel<Channel15>>:
            return Extract(AsChannels<Channel15>(destination), AsPixels<Channel15>(source), id);
        default:
            Require(false, site::kExtractKey);
    }
}

void Threshold(const ChannelBuffer& buffer, float level) {
    DispatchChannels(buffer.elementKey(), site::kThresholdKey, [&]<class C>() {
        if constexpr (std::is_same_v<C, Channel32f>) {
            Transform(AsChannels<C>(buffer), [level](float v) { return v >= level ? 1.0F : 0.0F; });
        } else {
            // Compared as a float: a level far beyond full, or NaN, has no integer and is reached by nothing.
            const double threshold = std::trunc(level * C::kFloatOne);
            Transform(AsChannels<C>(buffer), [threshold](typename C::Type v) {
                return static_cast<double>(v) >= threshold ? kFull<C> : C::kZeroValue;
            });
        }
    });
}

void Invert(const ChannelBuffer& buffer) {
    DispatchChannels(buffer.elementKey(), site::kInvertKey, [&]<class C>() {
        Transform(AsChannels<C>(buffer),
                  [](typename C::Type v) { return static_cast<typename C::Type>(kFull<C> - v); });
    });
}

void Brighten(const FrameBuffer& buffer, float amount) {
    const int key = buffer.elementKey();
    const bool isPixels = key >= kElementKey<Pixel<Channel8>>;
    const float strength = std::fabs(amount);
    Require(strength <= 1.0F, isPixels ? site::kBrightenPixelAmount : site::kBrightenChannelAmount);
    if (strength < 0.01F) return;
    const float k = 1.0F - 0.75F * strength;

    const auto brightened = [amount, k]<class C>(typename C::Type value) {
        const auto v = static_cast<float>(value);
        return Narrowed<C>(amount > 0.0F ? C::kFloatOne - k * (C::kFloatOne - v) : k * v);
    };
    if (isPixels) {
        DispatchPixels(key, site::kBrightenKey, [&]<class C>() {
            Transform(AsPixels<C>(buffer), [&](const Pixel<C>& p) {
                return Pixel<C>(p.alpha, brightened.template operator()<C>(p.red),
                                brightened.template operator()<C>(p.green),
                                brightened.template operator()<C>(p.blue));
            });
        });
    } else {
        DispatchChannels(key, site::kBrightenKey, [&]<class C>() {
            Transform(AsChannels<C>(buffer),
                      [&](typename C::Type v) { return brightened.template operator()<C>(v); });
        });
    }
}

void MultAlphaChannels(const PixelBuffer& destination, const PixelBuffer& source) {
    const int key = source.elementKey();
    switch (destination.elementKey()) {
        case kElementKey<Pixel<Channel8>>:
            Require(key == kElementKey<Pixel<Channel8>>, site::kMultAlphaKey8);
            return MultiplyAlpha<Channel8>(destination, source);
        case kElementKey<Pixel<Channel15>>:
            Require(key == kElementKey<Pixel<Channel15>>, site::kMultAlphaKey15);
            return MultiplyAlpha<Channel15>(destination, source);
        case kElementKey<Pixel<Channel16>>:
            Require(key == kElementKey<Pixel<Channel16>>, site::kMultAlphaKey16);
            return MultiplyAlpha<Channel16>(destination, source);
        case kElementKey<Pixel<Channel32>>:
            Require(key == kElementKey<Pixel<Channel32>>, site::kMultAlphaKey32);
            return Require(false, site::kMultAlphaNot32);
        case kElementKey<Pixel<Channel32f>>:
            Require(key == kElementKey<Pixel<Channel32f>>, site::kMultAlphaKey32f);
            return Require(false, site::kMultAlphaNot32f);
        default:
            Require(false, site::kMultAlphaKey);
    }
}

void MaskAlpha(const PixelBuffer& destination, const ChannelBuffer& mask) {
    switch (destination.elementKey()) {
        case kElementKey<Pixel<Channel8>>:
            return MaskAlphaWith<Channel8>(destination, mask, site::kMaskAlphaKey8);
        case kElementKey<Pixel<Channel15>>:
            return MaskAlphaWith<Channel15>(destination, mask, site::kMaskAlphaKey15);
        case kElementKey<Pixel<Channel16>>:
            return MaskAlphaWith<Channel16>(destination, mask, site::kMaskAlphaKey16);
        default:
            Require(false, site::kMaskAlphaKey);
    }
}

void PreviewAlpha(PIContext& context, const PixelBuffer& buffer) {
    switch (buffer.elementKey()) {
        case kElementKey<Pixel<Channel8>>:
            return PreviewAlphaOf(context, AsPixels<Channel8>(buffer));
        case kElementKey<Pixel<Channel15>>:
            return PreviewAlphaOf(context, AsPixels<Channel15>(buffer));
        default:
            Require(false, site::kPreviewAlphaKey);
    }
}

}  // namespace PILib
