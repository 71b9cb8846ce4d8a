#include "FocusPipeline.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include "FrameBufferOps.h"
#include "Kestrel.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::ChannelBuffer;
using PILib::FrameBuffer;
using PILib::kElementKey;
using PILib::Pixel;
using PILib::PixelBuf;
using PILib::PixelBuffer;

// Users know these failures by file and line, which do not follow the source
// (docs/decisions/assertion-lines.md).
constexpr char kFile[] = "AEKestrel";
constexpr int kFrameSizesMatch = 1;
constexpr int kProcessChannelDepth = 335;
constexpr int kPaintFocusDepth = 411;

struct Radii {
    float x;
    float y;
};

// The largest radius in the frame's pixels, narrowed in one direction to a fifth at most by the aspect.
Radii RadiiFor(const RenderInputs& inputs, Downsample downsample) {
    const float blur = inputs.maxBlur * std::min(downsample.x, downsample.y);
    if (inputs.aspect < 0.0F) return {blur / (1.0F - 4.0F * inputs.aspect), blur};
    return {blur, blur / (1.0F + 4.0F * inputs.aspect)};
}

void AssertSizeOf(const FrameBuffer& output, const FrameBuffer& other) {
    PILib::_Assert(other.width == output.width && other.height == output.height, kFrameSizesMatch, kFile);
}

// max(0, |value - focus| - range) in place. `N` holds every step.
template <class N, class C>
void MapDistances(const ChannelBuf<C>& channel, N focus, N range, bool invert) {
    using Type = typename C::Type;
    for (int y = 0; y < channel.height; ++y) {
        for (Type& value : channel.row(y)) {
            const N v = invert ? C::kOne - value : value;
            const N distance = (focus < v ? v - focus : focus - v) - range;
            value = static_cast<Type>(std::max<N>(distance, 0));
        }
    }
}

template <class C>
void ProcessChannelAt(const ChannelBuf<C>& channel, float focalPoint, float inFocusRange, bool invert) {
    const std::int32_t focus = PILib::TruncToInt32(focalPoint * C::kFloatOne);
    const std::int32_t range = PILib::TruncToInt32(inFocusRange * C::kFloatOne);
    // 32 bits hold every distance of the controls' own ranges, and twice as many to a vector.
    const auto isSmall = [](std::int32_t value) { return value >= -C::kOne && value <= 2 * C::kOne; };
    if (isSmall(focus) && isSmall(range)) {
        MapDistances<std::int32_t>(channel, focus, range, invert);
    } else {
        MapDistances<std::int64_t>(channel, focus, range, invert);
    }
}

template <class C>
void PaintFocusAt(const PixelBuf<Pixel<C>>& output, const PixelBuf<Pixel<C>>& input,
                  const ChannelBuf<C>& map) {
    AssertSizeOf(output, input);
    AssertSizeOf(output, map);
    constexpr auto kOpaque = static_cast<typename C::Type>(C::kOne);
    for (int y = 0; y < output.height; ++y) {
        const auto out = output.row(y);
        const auto in = input.row(y);
        const auto defocus = map.row(y);
        for (int x = 0; x < out.size(); ++x) {
            out[x] = defocus[x] != 0 ? Pixel<C>(kOpaque, defocus[x], defocus[x], defocus[x]) : in[x];
        }
    }
}

template <class C>
const PixelBuf<Pixel<C>>& AsPixels(const PixelBuffer& buffer) {
    return dynamic_cast<const PixelBuf<Pixel<C>>&>(buffer);
}

template <class C>
const ChannelBuf<C>& AsChannels(const ChannelBuffer& buffer) {
    return dynamic_cast<const ChannelBuf<C>&>(buffer);
}

}  // namespace

bool ShowsOriginal(const RenderInputs& inputs) {
    return inputs.blend >= 0.999F;
}

void RenderFrame(PILib::PIContext& context, const RenderInputs& inputs, Downsample downsample,
                 const PixelBuffer& output, const PixelBuffer& input, const PixelBuffer* control,
                 PILib::SimdLevel level) {
    if (ShowsOriginal(inputs) || control == nullptr) {
        output.load(input, PILib::kAlignTopLeft);
        return;
    }
    AssertSizeOf(output, input);
    AssertSizeOf(output, *control);

    const Radii radii = RadiiFor(inputs, downsample);
    const std::unique_ptr<ChannelBuffer> map(control->newChannelBuffer(control->width, control->height));
    PILib::ExtractChannel(context, *map, *control, static_cast<PILib::ChannelID>(inputs.channel));
    ProcessChannel(*map, inputs.focalPoint, inputs.inFocusRange, inputs.invert);
    if (inputs.viewMode == 0) {
        Kestrel(context, output, input, *map, inputs.blurType == 1, radii.x, radii.y, level);
    } else {
        PaintFocus(output, input, *map);
    }
    output.blend(context, input, inputs.blend);
}

void ProcessChannel(const ChannelBuffer& channel, float focalPoint, float inFocusRange, bool invert) {
    switch (channel.elementKey()) {
        case kElementKey<Channel8>:
            return ProcessChannelAt(AsChannels<Channel8>(channel), focalPoint, inFocusRange, invert);
        case kElementKey<Channel15>:
            return ProcessChannelAt(AsChannels<Channel15>(channel), focalPoint, inFocusRange, invert);
        default:
            PILib::_Assert(false, kProcessChannelDepth, kFile);
    }
}

void PaintFocus(const PixelBuffer& output, const PixelBuffer& input, const ChannelBuffer& map) {
    switch (output.elementKey()) {
        case kElementKey<Pixel<Channel8>>:
            return PaintFocusAt(AsPixels<Channel8>(output), AsPixels<Channel8>(input),
                                AsChannels<Channel8>(map));
        case kElementKey<Pixel<Channel15>>:
            return PaintFocusAt(AsPixels<Channel15>(output), AsPixels<Channel15>(input),
                                AsChannels<Channel15>(map));
        default:
            PILib::_Assert(false, kPaintFocusDepth, kFile);
    }
}
