#include "TransferModes.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "PF_Values.h"

namespace perch {
namespace {

struct Colour {
    double red, green, blue;
};

Colour colourOf(const UnitPixel& pixel) {
    return {pixel.red, pixel.green, pixel.blue};
}

double held(double value) {
    return std::clamp(value, 0.0, 1.0);
}

double luminance(const Colour& c) {
    return perch::luminance(c.red, c.green, c.blue);
}

// Modes that mix each channel by itself: b below, s of the source.

double multiply(double b, double s) {
    return b * s;
}

double screen(double b, double s) {
    return b + s - b * s;
}

double hardLight(double b, double s) {
    return s <= 0.5 ? multiply(b, 2 * s) : screen(b, 2 * s - 1);
}

double overlay(double b, double s) {
    return hardLight(s, b);
}

double softLight(double b, double s) {
    if (s <= 0.5) return b - (1 - 2 * s) * b * (1 - b);
    const double lighter = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
    return b + (2 * s - 1) * (lighter - b);
}

double add(double b, double s) {
    return b + s;
}

double darken(double b, double s) {
    return std::min(b, s);
}

double lighten(double b, double s) {
    return std::max(b, s);
}

double difference(double b, double s) {
    return std::abs(b - s);
}

double exclusion(double b, double s) {
    return b + s - 2 * b * s;
}

double colorDodge(double b, double s) {
    if (b <= 0) return 0;
    return s >= 1 ? 1 : b / (1 - s);
}

double colorBurn(double b, double s) {
    if (b >= 1) return 1;
    return s <= 0 ? 0 : 1 - (1 - b) / s;
}

double linearBurn(double b, double s) {
    return b + s - 1;
}

double linearLight(double b, double s) {
    return b + 2 * s - 1;
}

double vividLight(double b, double s) {
    return s <= 0.5 ? colorBurn(b, 2 * s) : colorDodge(b, 2 * s - 1);
}

double pinLight(double b, double s) {
    return s <= 0.5 ? std::min(b, 2 * s) : std::max(b, 2 * s - 1);
}

double hardMix(double b, double s) {
    return b + s >= 1 ? 1 : 0;
}

double subtract(double b, double s) {
    return b - s;
}

double divide(double b, double s) {
    if (s <= 0) return b <= 0 ? 0 : 1;
    return b / s;
}

// Modes that mix colours as a whole.

double saturation(const Colour& c) {
    return std::max({c.red, c.green, c.blue}) - std::min({c.red, c.green, c.blue});
}

// Brings a colour back between 0 and 1 towards its own luminance, or all the way where that is outside too,
// as it can be in worlds of floats.
Colour withinRange(const Colour& c) {
    const double grey = luminance(c);
    if (grey <= 0 || grey >= 1) return {held(grey), held(grey), held(grey)};
    const double low = std::min({c.red, c.green, c.blue});
    const double high = std::max({c.red, c.green, c.blue});
    double share = 1;
    if (low < 0) share = std::min(share, grey / (grey - low));
    if (high > 1) share = std::min(share, (1 - grey) / (high - grey));
    const auto moved = [&](double channel) { return grey + (channel - grey) * share; };
    return {moved(c.red), moved(c.green), moved(c.blue)};
}

Colour withLuminance(const Colour& c, double wanted) {
    const double shift = wanted - luminance(c);
    return withinRange({c.red + shift, c.green + shift, c.blue + shift});
}

// The least channel becomes 0, the greatest `wanted`, and the one between keeps its place between them.
Colour withSaturation(const Colour& c, double wanted) {
    const double low = std::min({c.red, c.green, c.blue});
    const double range = saturation(c);
    if (range <= 0) return {0, 0, 0};
    const auto scaled = [&](double channel) { return (channel - low) * wanted / range; };
    return {scaled(c.red), scaled(c.green), scaled(c.blue)};
}

Colour mixHue(const Colour& b, const Colour& s) {
    return withLuminance(withSaturation(s, saturation(b)), luminance(b));
}

Colour mixSaturation(const Colour& b, const Colour& s) {
    return withLuminance(withSaturation(b, saturation(s)), luminance(b));
}

Colour mixColour(const Colour& b, const Colour& s) {
    return withLuminance(s, luminance(b));
}

Colour mixLuminosity(const Colour& b, const Colour& s) {
    return withLuminance(b, luminance(s));
}

Colour lighterColour(const Colour& b, const Colour& s) {
    return luminance(s) > luminance(b) ? s : b;
}

Colour darkerColour(const Colour& b, const Colour& s) {
    return luminance(s) < luminance(b) ? s : b;
}

UnitPixel mixedOver(const UnitPixel& below, const UnitPixel& source, double share, const Colour& mixture) {
    const double a = source.alpha * share;
    const double alpha = a + below.alpha * (1 - a);
    if (a <= 0 || alpha <= 0) return below;
    const auto channel = [&](double b, double s, double mixed) {
        return (a * (1 - below.alpha) * s + a * below.alpha * mixed + (1 - a) * below.alpha * b) / alpha;
    };
    return {alpha, channel(below.red, source.red, mixture.red),
            channel(below.green, source.green, mixture.green),
            channel(below.blue, source.blue, mixture.blue)};
}

template <double (*mix)(double, double)>
UnitPixel byChannel(const UnitPixel& below, const UnitPixel& source, double share) {
    return mixedOver(below, source, share,
                     {held(mix(below.red, source.red)), held(mix(below.green, source.green)),
                      held(mix(below.blue, source.blue))});
}

template <Colour (*mix)(const Colour&, const Colour&)>
UnitPixel byColour(const UnitPixel& below, const UnitPixel& source, double share) {
    const Colour mixture = mix(colourOf(below), colourOf(source));
    return mixedOver(below, source, share, {held(mixture.red), held(mixture.green), held(mixture.blue)});
}

UnitPixel inFront(const UnitPixel& below, const UnitPixel& source, double share) {
    return mixedOver(below, source, share, colourOf(source));
}

// Two pixels by what each adds to the sum of alpha.
UnitPixel weighted(double alpha, const UnitPixel& a, double weightA, const UnitPixel& b, double weightB) {
    const double sum = weightA + weightB;
    if (sum <= 0) return {};
    const auto channel = [&](double x, double y) { return (weightA * x + weightB * y) / sum; };
    return {alpha, channel(a.red, b.red), channel(a.green, b.green), channel(a.blue, b.blue)};
}

UnitPixel copyOver(const UnitPixel& below, const UnitPixel& source, double share) {
    if (share <= 0) return below;
    const double a = source.alpha * share;
    const double b = below.alpha * (1 - share);
    return weighted(a + b, source, a, below, b);
}

UnitPixel behind(const UnitPixel& below, const UnitPixel& source, double share) {
    const double a = source.alpha * share * (1 - below.alpha);
    return a <= 0 ? below : weighted(below.alpha + a, below, below.alpha, source, a);
}

UnitPixel alphaAdd(const UnitPixel& below, const UnitPixel& source, double share) {
    const double a = source.alpha * share;
    return a <= 0 ? below : weighted(std::min(1.0, below.alpha + a), below, below.alpha, source, a);
}

// The source's colours are taken as multiplied by its alpha already.
UnitPixel additivePremultiplied(const UnitPixel& below, const UnitPixel& source, double share) {
    if (share <= 0) return below;
    const double a = source.alpha * share;
    const double alpha = a + below.alpha * (1 - a);
    if (alpha <= 0) return below;
    const auto channel = [&](double b, double s) {
        return held((s * share + (1 - a) * below.alpha * b) / alpha);
    };
    return {alpha, channel(below.red, source.red), channel(below.green, source.green),
            channel(below.blue, source.blue)};
}

UnitPixel withAlpha(const UnitPixel& pixel, double factor) {
    return {pixel.alpha * factor, pixel.red, pixel.green, pixel.blue};
}

UnitPixel multiplyAlpha(const UnitPixel& below, const UnitPixel& source, double share) {
    return withAlpha(below, 1 - share * (1 - source.alpha));
}

UnitPixel multiplyAlphaLuma(const UnitPixel& below, const UnitPixel& source, double share) {
    return withAlpha(below, 1 - share * (1 - source.alpha * held(luminance(colourOf(source)))));
}

UnitPixel multiplyNotAlpha(const UnitPixel& below, const UnitPixel& source, double share) {
    return withAlpha(below, 1 - share * source.alpha);
}

UnitPixel multiplyNotAlphaLuma(const UnitPixel& below, const UnitPixel& source, double share) {
    return withAlpha(below, 1 - share * source.alpha * held(luminance(colourOf(source))));
}

struct Mode {
    PF_TransferMode mode;
    const char* name;
    TransferFunction function;  // null: not of two pixels alone
};

constexpr std::array kModes{
    Mode{PF_Xfer_NONE, "NONE", nullptr},
    Mode{PF_Xfer_COPY, "COPY", copyOver},
    Mode{PF_Xfer_BEHIND, "BEHIND", behind},
    Mode{PF_Xfer_IN_FRONT, "IN_FRONT", inFront},
    Mode{PF_Xfer_DISSOLVE, "DISSOLVE", nullptr},  // also of chance
    Mode{PF_Xfer_ADD, "ADD", byChannel<add>},
    Mode{PF_Xfer_MULTIPLY, "MULTIPLY", byChannel<multiply>},
    Mode{PF_Xfer_SCREEN, "SCREEN", byChannel<screen>},
    Mode{PF_Xfer_OVERLAY, "OVERLAY", byChannel<overlay>},
    Mode{PF_Xfer_SOFT_LIGHT, "SOFT_LIGHT", byChannel<softLight>},
    Mode{PF_Xfer_HARD_LIGHT, "HARD_LIGHT", byChannel<hardLight>},
    Mode{PF_Xfer_DARKEN, "DARKEN", byChannel<darken>},
    Mode{PF_Xfer_LIGHTEN, "LIGHTEN", byChannel<lighten>},
    Mode{PF_Xfer_DIFFERENCE, "DIFFERENCE", byChannel<difference>},
    Mode{PF_Xfer_HUE, "HUE", byColour<mixHue>},
    Mode{PF_Xfer_SATURATION, "SATURATION", byColour<mixSaturation>},
    Mode{PF_Xfer_COLOR, "COLOR", byColour<mixColour>},
    Mode{PF_Xfer_LUMINOSITY, "LUMINOSITY", byColour<mixLuminosity>},
    Mode{PF_Xfer_MULTIPLY_ALPHA, "MULTIPLY_ALPHA", multiplyAlpha},
    Mode{PF_Xfer_MULTIPLY_ALPHA_LUMA, "MULTIPLY_ALPHA_LUMA", multiplyAlphaLuma},
    Mode{PF_Xfer_MULTIPLY_NOT_ALPHA, "MULTIPLY_NOT_ALPHA", multiplyNotAlpha},
    Mode{PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA, "MULTIPLY_NOT_ALPHA_LUMA", multiplyNotAlphaLuma},
    Mode{PF_Xfer_ADDITIVE_PREMUL, "ADDITIVE_PREMUL", additivePremultiplied},
    Mode{PF_Xfer_ALPHA_ADD, "ALPHA_ADD", alphaAdd},
    Mode{PF_Xfer_COLOR_DODGE, "COLOR_DODGE", byChannel<colorDodge>},
    Mode{PF_Xfer_COLOR_BURN, "COLOR_BURN", byChannel<colorBurn>},
    Mode{PF_Xfer_EXCLUSION, "EXCLUSION", byChannel<exclusion>},
    Mode{PF_Xfer_DIFFERENCE2, "DIFFERENCE2", byChannel<difference>},
    Mode{PF_Xfer_COLOR_DODGE2, "COLOR_DODGE2", byChannel<colorDodge>},
    Mode{PF_Xfer_COLOR_BURN2, "COLOR_BURN2", byChannel<colorBurn>},
    Mode{PF_Xfer_LINEAR_DODGE, "LINEAR_DODGE", byChannel<add>},
    Mode{PF_Xfer_LINEAR_BURN, "LINEAR_BURN", byChannel<linearBurn>},
    Mode{PF_Xfer_LINEAR_LIGHT, "LINEAR_LIGHT", byChannel<linearLight>},
    Mode{PF_Xfer_VIVID_LIGHT, "VIVID_LIGHT", byChannel<vividLight>},
    Mode{PF_Xfer_PIN_LIGHT, "PIN_LIGHT", byChannel<pinLight>},
    Mode{PF_Xfer_HARD_MIX, "HARD_MIX", byChannel<hardMix>},
    Mode{PF_Xfer_LIGHTER_COLOR, "LIGHTER_COLOR", byColour<lighterColour>},
    Mode{PF_Xfer_DARKER_COLOR, "DARKER_COLOR", byColour<darkerColour>},
    Mode{PF_Xfer_SUBTRACT, "SUBTRACT", byChannel<subtract>},
    Mode{PF_Xfer_DIVIDE, "DIVIDE", byChannel<divide>},
};

const Mode* findMode(PF_TransferMode mode) {
    const auto* const found = std::ranges::find(kModes, mode, &Mode::mode);
    return found != kModes.end() ? found : nullptr;
}

}  // namespace

double luminance(double red, double green, double blue) {
    return 0.3 * red + 0.59 * green + 0.11 * blue;
}

TransferFunction transferFunction(PF_TransferMode mode) {
    const Mode* const found = findMode(mode);
    return found != nullptr ? found->function : nullptr;
}

bool isMultiplyAlpha(PF_TransferMode mode) {
    return mode >= PF_Xfer_MULTIPLY_ALPHA && mode <= PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA;
}

std::string transferModeName(PF_TransferMode mode) {
    const Mode* const found = findMode(mode);
    return found != nullptr ? found->name : std::to_string(mode);
}

}  // namespace perch
