#include "Scenes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace bench {

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::Pixel;
using PILib::PixelBuf;

constexpr std::uint32_t kObjectSeed = 1;
constexpr std::uint32_t kGrainSeed = 2;
constexpr std::uint32_t kNoiseSeed = 3;
constexpr int kObjectCount = 24;

// 0 up to but not including 1. The standard distributions may differ from one library to the next.
float RandomShare(std::mt19937& random) {
    return static_cast<float>(random() >> 8) * (1.0F / 16777216.0F);
}

struct Disc {
    float x;  // centre, pixels
    float y;
    float radius;
    float depth;  // 0 to 1; every third disc is in focus
};

std::vector<Disc> Discs(int width, int height) {
    std::mt19937 random(kObjectSeed);
    std::vector<Disc> discs;
    for (int i = 0; i < kObjectCount; ++i) {
        const float x = RandomShare(random) * static_cast<float>(width);
        const float y = RandomShare(random) * static_cast<float>(height);
        const float radius = (0.03F + 0.09F * RandomShare(random)) * static_cast<float>(height);
        const float depth = RandomShare(random);
        discs.push_back({x, y, radius, i % 3 == 0 ? 0.0F : depth});
    }
    return discs;
}

// Calls paint(element, distance to the centre) for every element of the disc.
template <class T, class Paint>
void PaintDisc(const PILib::FrameBuf<T>& buffer, const Disc& disc, Paint paint) {
    const auto begin = [](float start) { return std::max(0, PILib::TruncToInt32(start)); };
    const auto end = [](float last, int size) { return std::min(size, PILib::TruncToInt32(last) + 1); };
    const int left = begin(disc.x - disc.radius);
    const int right = end(disc.x + disc.radius, buffer.width);
    const int bottom = end(disc.y + disc.radius, buffer.height);
    for (int y = begin(disc.y - disc.radius); y < bottom; ++y) {
        const auto row = buffer.row(y);
        for (int x = left; x < right; ++x) {
            const float distance = std::hypot(static_cast<float>(x) - disc.x, static_cast<float>(y) - disc.y);
            if (distance < disc.radius) paint(row[x], distance);
        }
    }
}

// Nothing above the horizon and full below it, with a soft edge. `down` is a share of the height.
float GroundAlpha(float down) {
    return std::clamp((down - 0.25F) * 20.0F, 0.0F, 1.0F);
}

// Sets every element to value(across, down), both shares of the size; the result is one of full intensity.
template <class C, class Value>
void Fill(const ChannelBuf<C>& channel, Value value) {
    const float perColumn = 1.0F / static_cast<float>(channel.width);
    for (int y = 0; y < channel.height; ++y) {
        const auto row = channel.row(y);
        const float down = static_cast<float>(y) / static_cast<float>(channel.height);
        for (int x = 0; x < row.size(); ++x)
            row[x] = C::fromFloat(value(static_cast<float>(x) * perColumn, down));
    }
}

template <class C>
void FillWithObjects(const ChannelBuf<C>& channel) {
    Fill(channel, [](float /*across*/, float down) { return 1.0F - 0.7F * down; });
    for (const Disc& disc : Discs(channel.width, channel.height)) {
        const auto depth = C::fromFloat(disc.depth);
        PaintDisc(channel, disc, [depth](auto& value, float /*distance*/) { value = depth; });
    }
}

template <class C>
void FillWithNoise(const ChannelBuf<C>& channel) {
    std::mt19937 random(kNoiseSeed);
    Fill(channel, [&random](float /*across*/, float /*down*/) { return RandomShare(random); });
}

}  // namespace

const char* NameOf(Matte matte) {
    switch (matte) {
        case Matte::kRamp:
            return "ramp";
        case Matte::kObjects:
            return "objects";
        case Matte::kNoise:
            return "noise";
    }
    return "";
}

template <class C>
void PaintBeauty(const PixelBuf<Pixel<C>>& picture) {
    std::mt19937 random(kGrainSeed);
    for (int y = 0; y < picture.height; ++y) {
        const float down = static_cast<float>(y) / static_cast<float>(picture.height);
        const auto alpha = C::fromFloat(GroundAlpha(down));
        for (Pixel<C>& pixel : picture.row(y)) {
            const float light = 0.5F * down + 0.4F * RandomShare(random);
            pixel =
                Pixel<C>(alpha, C::fromFloat(light), C::fromFloat(0.9F - light), C::fromFloat(0.8F * light));
        }
    }
    for (const Disc& disc : Discs(picture.width, picture.height)) {
        PaintDisc(picture, disc, [&disc](Pixel<C>& pixel, float distance) {
            const float alpha = std::min(1.0F, (1.0F - distance / disc.radius) * 8.0F);
            pixel.alpha = std::max(pixel.alpha, C::fromFloat(alpha));
            pixel.red = static_cast<typename C::Type>(C::kOne - pixel.red);
        });
    }
}

template <class C>
void PaintMatte(const ChannelBuf<C>& channel, Matte matte) {
    switch (matte) {
        case Matte::kRamp:
            return Fill(channel, [](float across, float down) { return 0.5F * (across + down); });
        case Matte::kObjects:
            return FillWithObjects(channel);
        case Matte::kNoise:
            return FillWithNoise(channel);
    }
}

template <class C>
void PaintControl(const PixelBuf<Pixel<C>>& control, Matte matte) {
    const ChannelBuf<C> channel(control.width, control.height);
    PaintMatte(channel, matte);
    control.loadARGB(channel);
}

template void PaintBeauty(const PixelBuf<Pixel<Channel8>>&);
template void PaintBeauty(const PixelBuf<Pixel<Channel15>>&);
template void PaintMatte(const ChannelBuf<Channel8>&, Matte);
template void PaintMatte(const ChannelBuf<Channel15>&, Matte);
template void PaintControl(const PixelBuf<Pixel<Channel8>>&, Matte);
template void PaintControl(const PixelBuf<Pixel<Channel15>>&, Matte);

}  // namespace bench
