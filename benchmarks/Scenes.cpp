#include "Scenes.h"

#include <algorithm>
#include <random>

namespace bench {

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::Pixel;
using PILib::PixelBuf;

template <class C>
typename C::Type Share(int part, int whole) {
    return static_cast<typename C::Type>(std::int64_t{C::kOne} * std::clamp(part, 0, whole) / whole);
}

}  // namespace

const char* NameOf(Matte matte) {
    switch (matte) {
        case Matte::Ramp:
            return "ramp";
        case Matte::Objects:
            return "objects";
        case Matte::Noise:
            return "noise";
    }
    return "";
}

template <class C>
void PaintBeauty(const PixelBuf<Pixel<C>>& picture) {
    for (int y = 0; y < picture.height; ++y) {
        const auto row = picture.row(y);
        const auto alpha = Share<C>(y * 8 - picture.height, picture.height);  // transparent, an edge, opaque
        for (int x = 0; x < row.size(); ++x) {
            row[x] = Pixel<C>(alpha, Share<C>((x * 7 + y) % 256, 255), Share<C>((x ^ y) % 256, 255),
                              Share<C>((y * 3 + x / 2) % 256, 255));
        }
    }
}

template <class C>
void PaintMatte(const ChannelBuf<C>& map, Matte matte) {
    std::mt19937 random(1);  // NOLINT(bugprone-random-generator-seed,cert-msc51-cpp): the same at every run
    for (int y = 0; y < map.height; ++y) {
        const auto row = map.row(y);
        for (int x = 0; x < row.size(); ++x) {
            const bool inObject = x / 160 % 2 == 1 && y / 120 % 2 == 1;
            switch (matte) {
                case Matte::Ramp:
                    row[x] = Share<C>(x, row.size());
                    break;
                case Matte::Objects:
                    row[x] = inObject ? Share<C>((x / 160 + y / 120) % 5, 4) : Share<C>(y, map.height);
                    break;
                case Matte::Noise:
                    row[x] = Share<C>(static_cast<int>(random() % 32769U), 32768);
                    break;
            }
        }
    }
}

template <class C>
void PaintControl(const PixelBuf<Pixel<C>>& control, Matte matte) {
    const ChannelBuf<C> map(control.width, control.height);
    PaintMatte(map, matte);
    control.loadARGB(map);
}

template void PaintBeauty(const PixelBuf<Pixel<Channel8>>&);
template void PaintBeauty(const PixelBuf<Pixel<Channel15>>&);
template void PaintMatte(const ChannelBuf<Channel8>&, Matte);
template void PaintMatte(const ChannelBuf<Channel15>&, Matte);
template void PaintControl(const PixelBuf<Pixel<Channel8>>&, Matte);
template void PaintControl(const PixelBuf<Pixel<Channel15>>&, Matte);

}  // namespace bench
