// Between the library's buffers and the plain images of the reference renderer.
#pragma once

#include <cstdint>

#include "FrameBuffer.h"
#include "Image.h"

namespace oracle {

template <class C>
inline constexpr auto kFull = static_cast<std::uint32_t>(C::kOne);

template <class C>
Colour ColourOf(const PILib::Pixel<C>& pixel) {
    return {pixel.alpha, pixel.red, pixel.green, pixel.blue};
}

template <class C>
PILib::Pixel<C> PixelOf(const Colour& colour) {
    using Type = typename C::Type;
    return {static_cast<Type>(colour[kAlpha]), static_cast<Type>(colour[kRed]),
            static_cast<Type>(colour[kGreen]), static_cast<Type>(colour[kBlue])};
}

// Writes the part of the image that the buffer covers.
template <class C>
void Store(const Image& image, const PILib::PixelBuf<PILib::Pixel<C>>& buffer) {
    for (int y = 0; y < buffer.height; ++y) {
        const auto row = buffer.row(y);
        for (int x = 0; x < buffer.width; ++x)
            row[x] = PixelOf<C>(image.at(x, y));
    }
}

template <class C>
void Store(const Map& map, const PILib::ChannelBuf<C>& buffer) {
    for (int y = 0; y < buffer.height; ++y) {
        const auto row = buffer.row(y);
        for (int x = 0; x < buffer.width; ++x)
            row[x] = static_cast<typename C::Type>(map.at(x, y));
    }
}

template <class C>
Image Fetched(const PILib::PixelBuf<PILib::Pixel<C>>& buffer) {
    Image image(buffer.width, buffer.height, kFull<C>);
    for (int y = 0; y < buffer.height; ++y) {
        for (int x = 0; x < buffer.width; ++x)
            image.at(x, y) = ColourOf(buffer.row(y)[x]);
    }
    return image;
}

template <class C>
Map Fetched(const PILib::ChannelBuf<C>& buffer) {
    Map map(buffer.width, buffer.height, kFull<C>);
    for (int y = 0; y < buffer.height; ++y) {
        for (int x = 0; x < buffer.width; ++x)
            map.at(x, y) = buffer.row(y)[x];
    }
    return map;
}

}  // namespace oracle
