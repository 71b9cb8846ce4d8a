#include "ColorConversions.h"

#include <algorithm>
#include <cmath>

namespace perch {
namespace {

constexpr double kFixedOne = 65536;

PF_Fixed fixed(double value) {
    return static_cast<PF_Fixed>(std::lround(value * kFixedOne));
}

A_u_char byte(double value) {
    return static_cast<A_u_char>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

struct Hls {
    double hue;  // degrees
    double lightness;
    double saturation;
};

Hls hlsOf(const PF_Pixel& rgb) {
    const double red = rgb.red / 255.0;
    const double green = rgb.green / 255.0;
    const double blue = rgb.blue / 255.0;
    const double high = std::max({red, green, blue});
    const double low = std::min({red, green, blue});
    const double range = high - low;
    const double sum = high + low;
    if (range == 0) return {0, sum / 2, 0};
    const double saturation = range / (sum <= 1 ? sum : 2 - sum);
    double hue = 0;
    if (high == red) {
        hue = (green - blue) / range;
    } else if (high == green) {
        hue = 2 + (blue - red) / range;
    } else {
        hue = 4 + (red - green) / range;
    }
    return {hue < 0 ? hue * 60 + 360 : hue * 60, sum / 2, saturation};
}

}  // namespace

void toHls(const PF_Pixel& rgb, PF_Fixed (&hls)[3]) {
    const Hls color = hlsOf(rgb);
    hls[0] = fixed(color.hue / 360);
    hls[1] = fixed(color.lightness);
    hls[2] = fixed(color.saturation);
}

void fromHls(const PF_Fixed (&hls)[3], PF_Pixel& rgb) {
    const double hue = hls[0] / kFixedOne * 360;
    const double lightness = hls[1] / kFixedOne;
    const double chroma = (1 - std::abs(2 * lightness - 1)) * (hls[2] / kFixedOne);
    // Each primary falls from its own hue to both sides over a sixth of the circle, after a plateau of
    // another.
    const auto primary = [&](double ownHue) {
        double distance = std::fmod(std::abs(hue - ownHue), 360.0);
        distance = std::min(distance, 360 - distance);
        return lightness - chroma / 2 + chroma * std::clamp(2 - distance / 60, 0.0, 1.0);
    };
    rgb.red = byte(primary(0));
    rgb.green = byte(primary(120));
    rgb.blue = byte(primary(240));
}

// The weights are those of the NTSC colour space.
void toYiq(const PF_Pixel& rgb, PF_Fixed (&yiq)[3]) {
    const double red = rgb.red / 255.0;
    const double green = rgb.green / 255.0;
    const double blue = rgb.blue / 255.0;
    yiq[0] = fixed(0.299 * red + 0.587 * green + 0.114 * blue);
    yiq[1] = fixed(0.5959 * red - 0.2746 * green - 0.3213 * blue);
    yiq[2] = fixed(0.2115 * red - 0.5227 * green + 0.3112 * blue);
}

void fromYiq(const PF_Fixed (&yiq)[3], PF_Pixel& rgb) {
    const double y = yiq[0] / kFixedOne;
    const double i = yiq[1] / kFixedOne;
    const double q = yiq[2] / kFixedOne;
    rgb.red = byte(y + 0.9563 * i + 0.6210 * q);
    rgb.green = byte(y - 0.2721 * i - 0.6474 * q);
    rgb.blue = byte(y - 1.1070 * i + 1.7046 * q);
}

A_long luminance100(const PF_Pixel& rgb) {
    return static_cast<A_long>(std::lround(29.9 * rgb.red + 58.7 * rgb.green + 11.4 * rgb.blue));
}

A_long hue255(const PF_Pixel& rgb) {
    return static_cast<A_long>(std::lround(hlsOf(rgb).hue / 360 * 255));
}

A_long lightness255(const PF_Pixel& rgb) {
    return static_cast<A_long>(std::lround(hlsOf(rgb).lightness * 255));
}

A_long saturation255(const PF_Pixel& rgb) {
    return static_cast<A_long>(std::lround(hlsOf(rgb).saturation * 255));
}

}  // namespace perch
