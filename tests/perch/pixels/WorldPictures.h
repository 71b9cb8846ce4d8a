// Generated pictures for the tests of pixel operations; P is the pixel type.
#pragma once

#include <algorithm>
#include <cstdint>
#include <random>

#include "PixelAccess.h"
#include "World.h"

namespace perch::test {

template <class P>
constexpr bool kDeep = sizeof(P) == sizeof(PF_Pixel16);

template <class P>
P& at(World& world, std::int32_t x, std::int32_t y) {
    return rowOf<P>(world.record(), y)[x];
}

template <class P>
bool same(const P& a, const P& b) {
    return a.alpha == b.alpha && a.red == b.red && a.green == b.green && a.blue == b.blue;
}

template <class P>
P grey(std::uint32_t alpha, std::uint32_t value) {
    const auto v = static_cast<ChannelOf<P>>(value);
    return {static_cast<ChannelOf<P>>(alpha), v, v, v};
}

// Random pixels in padded rows.
template <class P>
World noise(std::int32_t width, std::int32_t height, unsigned seed) {
    World world(width, height, kDeep<P>, 3 * static_cast<std::int32_t>(sizeof(P)));
    std::mt19937 random(seed);
    const auto channel = [&] { return static_cast<ChannelOf<P>>(random() % (kWhite<P> + 1)); };
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x)
            at<P>(world, x, y) = {channel(), channel(), channel(), channel()};
    }
    return world;
}

template <class P>
World opaqueNoise(std::int32_t width, std::int32_t height, unsigned seed) {
    World world = noise<P>(width, height, seed);
    for (std::int32_t y = 0; y < height; ++y) {
        for (P& pixel : pixelRow<P>(world.record(), y))
            pixel.alpha = kWhite<P>;
    }
    return world;
}

template <class P>
World filled(std::int32_t width, std::int32_t height, P value) {
    World world(width, height, kDeep<P>);
    for (std::int32_t y = 0; y < height; ++y)
        std::ranges::fill(pixelRow<P>(world.record(), y), value);
    return world;
}

}  // namespace perch::test
