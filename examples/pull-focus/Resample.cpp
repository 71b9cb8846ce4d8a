#include "Resample.h"

#include <algorithm>
#include <cmath>
#include <vector>

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::PixelBuf;

namespace {

// The two source positions around a destination position, and the share of the second.
struct Tap {
    int first;
    int second;
    double share;
};

Tap TapAt(int position, int size, int sourceSize) {
    const double centre = (position + 0.5) * sourceSize / size - 0.5;
    const double first = std::floor(centre);
    const auto clamped = [sourceSize](double at) {
        return static_cast<int>(std::clamp(at, 0.0, sourceSize - 1.0));
    };
    return {clamped(first), clamped(first + 1), centre - first};
}

template <class C>
Pixel<C> Interpolate(const PixelBuf<Pixel<C>>& source, Tap x, Tap y) {
    double alpha = 0;
    double red = 0;
    double green = 0;
    double blue = 0;
    const auto add = [&](int atX, int atY, double share) {
        const Pixel<C>& p = source.row(atY)[atX];
        const double weight = share * p.alpha;
        alpha += weight;
        red += weight * p.red;
        green += weight * p.green;
        blue += weight * p.blue;
    };
    add(x.first, y.first, (1 - x.share) * (1 - y.share));
    add(x.second, y.first, x.share * (1 - y.share));
    add(x.first, y.second, (1 - x.share) * y.share);
    add(x.second, y.second, x.share * y.share);
    if (alpha == 0) return Pixel<C>::kTransparentColor;
    const auto rounded = [](double value) { return static_cast<typename C::Type>(std::lround(value)); };
    return {rounded(alpha), rounded(red / alpha), rounded(green / alpha), rounded(blue / alpha)};
}

}  // namespace

template <class C>
void Resample(const PixelBuf<Pixel<C>>& destination, const PixelBuf<Pixel<C>>& source) {
    std::vector<Tap> columns;
    for (int x = 0; x < destination.width; ++x)
        columns.push_back(TapAt(x, destination.width, source.width));
    for (int y = 0; y < destination.height; ++y) {
        const Tap line = TapAt(y, destination.height, source.height);
        auto column = columns.begin();
        for (Pixel<C>& pixel : destination.row(y))
            pixel = Interpolate(source, *column++, line);
    }
}

template void Resample(const PixelBuf<Pixel<Channel8>>&, const PixelBuf<Pixel<Channel8>>&);
template void Resample(const PixelBuf<Pixel<Channel15>>&, const PixelBuf<Pixel<Channel15>>&);
