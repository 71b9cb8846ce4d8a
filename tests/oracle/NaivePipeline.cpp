#include "NaivePipeline.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "NaiveBlur.h"

namespace oracle {

namespace {

std::uint32_t ChannelOf(const Colour& pixel, int channel, std::uint32_t full) {
    const std::uint32_t largest = std::max({pixel[kRed], pixel[kGreen], pixel[kBlue]});
    const std::uint32_t smallest = std::min({pixel[kRed], pixel[kGreen], pixel[kBlue]});
    const std::uint32_t luma = (77 * pixel[kRed] + 150 * pixel[kGreen] + 29 * pixel[kBlue]) / 256;
    const std::array<std::uint32_t, 7> straight = {
        full, pixel[kRed], pixel[kGreen], pixel[kBlue], luma, (largest + smallest) / 2, largest};
    return Multiply(straight[static_cast<std::size_t>(channel)], pixel[kAlpha], full);
}

// A map value as a 16.16 share of full intensity.
std::uint32_t FixedShare(std::uint32_t value, std::uint32_t full) {
    return full == kFull8 ? value * 32897 / 128 : value * 2;
}

std::int32_t FixedRadius(std::uint32_t share, float radius) {
    const float product = static_cast<float>(share) * radius;
    return static_cast<std::int32_t>(product);
}

}  // namespace

Map ExtractedChannel(const Image& image, int channel) {
    Map map(image.width, image.height, image.full);
    for (std::size_t i = 0; i < map.values.size(); ++i)
        map.values[i] = ChannelOf(image.values[i], channel, image.full);
    return map;
}

Map DefocusMap(const Map& control, float focalPoint, float inFocusRange, bool invert) {
    const auto full = static_cast<int>(control.full);
    const float scaledPoint = focalPoint * static_cast<float>(full);
    const float scaledRange = inFocusRange * static_cast<float>(full);
    const auto point = static_cast<int>(scaledPoint);
    const auto range = static_cast<int>(scaledRange);
    Map map = control;
    for (std::uint32_t& value : map.values) {
        const int v = invert ? full - static_cast<int>(value) : static_cast<int>(value);
        const int distance = std::abs(point - v) - range;
        value = distance >= 0 ? static_cast<std::uint32_t>(distance) : 0;
    }
    return map;
}

Image FocusView(const Image& input, const Map& map) {
    Image view = input;
    for (std::size_t i = 0; i < view.values.size(); ++i) {
        const std::uint32_t d = map.values[i];
        if (d != 0) view.values[i] = {input.full, d, d, d};
    }
    return view;
}

Image Defocused(int width, int height, const Image& input, const Map& map, bool fine, float radiusX,
                float radiusY) {
    const Blur blur = MakeBlur(fine ? Shape::kTent : Shape::kBox, input, static_cast<int>(std::ceil(radiusX)),
                               static_cast<int>(std::ceil(radiusY)));
    Image output(width, height, input.full);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::uint32_t share = FixedShare(map.at(x, y), map.full);
            output.at(x, y) = share == 0 ? input.at(x, y)
                                         : ReadFractional(blur, x, y, FixedRadius(share, radiusX),
                                                          FixedRadius(share, radiusY));
        }
    }
    return output;
}

Image Blended(const Image& processed, const Image& original, float fraction) {
    if (fraction == 0.0F) return processed;
    if (fraction == 1.0F) return original;
    const float scaled = fraction * 65536.0F;
    const float rounded = scaled + 0.5F;
    const auto weight = static_cast<std::int64_t>(rounded);
    Image result = processed;
    for (std::size_t i = 0; i < result.values.size(); ++i) {
        for (std::size_t channel = 0; channel < 4; ++channel) {
            const std::int64_t from = processed.values[i][channel];
            const std::int64_t to = original.values[i][channel];
            result.values[i][channel] =
                static_cast<std::uint32_t>(from + FloorDivide(weight * (to - from) + 32768, 65536));
        }
    }
    return result;
}

Image RenderedFrame(const Controls& controls, const Image& input, const Image* control) {
    if (controls.blend >= 0.999F || control == nullptr) return input;

    const float scale = std::min(controls.downsampleX, controls.downsampleY);
    const float blur = controls.maximumBlur * scale;
    float radiusX = blur;
    float radiusY = blur;
    if (controls.aspect < 0.0F) {
        const float quadruple = 4.0F * controls.aspect;
        radiusX = blur / (1.0F - quadruple);
    } else {
        const float quadruple = 4.0F * controls.aspect;
        radiusY = blur / (1.0F + quadruple);
    }
    const Map map = DefocusMap(ExtractedChannel(*control, controls.channel), controls.focalPoint,
                               controls.inFocusRange, controls.invert);
    const Image processed = controls.focusView ? FocusView(input, map)
                                               : Defocused(input.width, input.height, input, map,
                                                           controls.fine, radiusX, radiusY);
    return Blended(processed, input, controls.blend);
}

}  // namespace oracle
