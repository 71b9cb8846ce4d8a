#include "TransferFormulas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace perch::test {
namespace {

double most(const Channels& c) {
    return std::max({c[1], c[2], c[3]});
}

double least(const Channels& c) {
    return std::min({c[1], c[2], c[3]});
}

// The colour moved to a luminance, and brought back into 0 to 1 along the line to grey.
Channels atLuma(Channels c, double wanted) {
    const double shift = wanted - luma(c);
    for (std::size_t i = 1; i < 4; ++i)
        c[i] += shift;
    const double low = least(c);
    const double high = most(c);
    for (std::size_t i = 1; i < 4; ++i) {
        if (low < 0) c[i] = wanted + (c[i] - wanted) * wanted / (wanted - low);
        if (high > 1) c[i] = wanted + (c[i] - wanted) * (1 - wanted) / (high - wanted);
    }
    return c;
}

Channels atSaturation(Channels c, double wanted) {
    const double low = least(c);
    const double range = most(c) - low;
    for (std::size_t i = 1; i < 4; ++i)
        c[i] = range == 0 ? 0 : (c[i] - low) * wanted / range;
    return c;
}

double saturationOf(const Channels& c) {
    return most(c) - least(c);
}

double dodge(double b, double s) {
    return b == 0 ? 0 : s == 1 ? 1 : b / (1 - s);
}

double burn(double b, double s) {
    return b == 1 ? 1 : s == 0 ? 0 : 1 - (1 - b) / s;
}

double hard(double b, double s) {
    return s <= 0.5 ? 2 * b * s : 1 - 2 * (1 - b) * (1 - s);
}

double soft(double b, double s) {
    if (s <= 0.5) return b - (1 - 2 * s) * b * (1 - b);
    const double d = b <= 0.25 ? 16 * b * b * b - 12 * b * b + 4 * b : std::sqrt(b);
    return b + (2 * s - 1) * (d - b);
}

// How a mode mixes one channel of the pixel below and of the source.
struct ChannelMode {
    PF_TransferMode mode;
    double (*mix)(double b, double s);
};

const ChannelMode kChannelModes[] = {
    {PF_Xfer_IN_FRONT, [](double, double s) { return s; }},
    {PF_Xfer_ADD, [](double b, double s) { return b + s; }},
    {PF_Xfer_MULTIPLY, [](double b, double s) { return b * s; }},
    {PF_Xfer_SCREEN, [](double b, double s) { return 1 - (1 - b) * (1 - s); }},
    {PF_Xfer_OVERLAY, [](double b, double s) { return hard(s, b); }},
    {PF_Xfer_SOFT_LIGHT, soft},
    {PF_Xfer_HARD_LIGHT, hard},
    {PF_Xfer_DARKEN, [](double b, double s) { return b < s ? b : s; }},
    {PF_Xfer_LIGHTEN, [](double b, double s) { return b > s ? b : s; }},
    {PF_Xfer_DIFFERENCE, [](double b, double s) { return b > s ? b - s : s - b; }},
    {PF_Xfer_COLOR_DODGE, dodge},
    {PF_Xfer_COLOR_BURN, burn},
    {PF_Xfer_EXCLUSION, [](double b, double s) { return b * (1 - s) + s * (1 - b); }},
    {PF_Xfer_DIFFERENCE2, [](double b, double s) { return b > s ? b - s : s - b; }},
    {PF_Xfer_COLOR_DODGE2, dodge},
    {PF_Xfer_COLOR_BURN2, burn},
    {PF_Xfer_LINEAR_DODGE, [](double b, double s) { return b + s; }},
    {PF_Xfer_LINEAR_BURN, [](double b, double s) { return b + s - 1; }},
    {PF_Xfer_LINEAR_LIGHT, [](double b, double s) { return b + 2 * s - 1; }},
    {PF_Xfer_VIVID_LIGHT, [](double b, double s) { return s <= 0.5 ? burn(b, 2 * s) : dodge(b, 2 * s - 1); }},
    {PF_Xfer_PIN_LIGHT,
     [](double b, double s) { return s <= 0.5 ? std::min(b, 2 * s) : std::max(b, 2 * s - 1); }},
    {PF_Xfer_HARD_MIX, [](double b, double s) { return b + s >= 1 ? 1.0 : 0.0; }},
    {PF_Xfer_SUBTRACT, [](double b, double s) { return b - s; }},
    {PF_Xfer_DIVIDE, [](double b, double s) { return s > 0   ? b / s
                                                     : b > 0 ? 1.0
                                                             : 0.0; }},
};

struct ColourMode {
    PF_TransferMode mode;
    Channels (*mix)(const Channels& b, const Channels& s);
};

const ColourMode kColourModes[] = {
    {PF_Xfer_HUE,
     [](const Channels& b, const Channels& s) { return atLuma(atSaturation(s, saturationOf(b)), luma(b)); }},
    {PF_Xfer_SATURATION,
     [](const Channels& b, const Channels& s) { return atLuma(atSaturation(b, saturationOf(s)), luma(b)); }},
    {PF_Xfer_COLOR, [](const Channels& b, const Channels& s) { return atLuma(s, luma(b)); }},
    {PF_Xfer_LUMINOSITY, [](const Channels& b, const Channels& s) { return atLuma(b, luma(s)); }},
    {PF_Xfer_LIGHTER_COLOR, [](const Channels& b, const Channels& s) { return luma(s) > luma(b) ? s : b; }},
    {PF_Xfer_DARKER_COLOR, [](const Channels& b, const Channels& s) { return luma(s) < luma(b) ? s : b; }},
};

// Straight colours from sums that are multiplied by alpha.
Channels straight(double alpha, const Channels& sums) {
    Channels result{alpha, 0, 0, 0};
    for (std::size_t i = 1; i < 4; ++i)
        result[i] = alpha > 0 ? sums[i] / alpha : 0;
    return result;
}

Channels overMixed(const Channels& b, const Channels& s, double share, const Channels& mixed) {
    const double a = s[0] * share;
    if (a == 0) return b;
    Channels sums{};
    for (std::size_t i = 1; i < 4; ++i)
        sums[i] = (1 - b[0]) * a * s[i] + b[0] * a * std::clamp(mixed[i], 0.0, 1.0) + (1 - a) * b[0] * b[i];
    return straight(1 - (1 - a) * (1 - b[0]), sums);
}

}  // namespace

double luma(const Channels& c) {
    return 0.3 * c[1] + 0.59 * c[2] + 0.11 * c[3];
}

// The modes that mix neither channels nor colours by themselves stand here.
Channels expected(PF_TransferMode mode, const Channels& b, const Channels& s, double share) {
    for (const ChannelMode& entry : kChannelModes) {
        if (entry.mode != mode) continue;
        Channels mixed{};
        for (std::size_t i = 1; i < 4; ++i)
            mixed[i] = entry.mix(b[i], s[i]);
        return overMixed(b, s, share, mixed);
    }
    for (const ColourMode& entry : kColourModes)
        if (entry.mode == mode) return overMixed(b, s, share, entry.mix(b, s));
    const double a = s[0] * share;
    Channels sums{};
    const auto weighted = [&](double alpha, double weightS, double weightB) {
        if (weightS + weightB == 0) return Channels{};
        for (std::size_t i = 1; i < 4; ++i)
            sums[i] = alpha * (weightS * s[i] + weightB * b[i]) / (weightS + weightB);
        return straight(alpha, sums);
    };
    switch (mode) {
        case PF_Xfer_COPY:
            return share == 0 ? b : weighted(a + b[0] * (1 - share), a, b[0] * (1 - share));
        case PF_Xfer_BEHIND:
            return a * (1 - b[0]) == 0 ? b : weighted(b[0] + a * (1 - b[0]), a * (1 - b[0]), b[0]);
        case PF_Xfer_ALPHA_ADD:
            return a == 0 ? b : weighted(std::min(1.0, a + b[0]), a, b[0]);
        case PF_Xfer_ADDITIVE_PREMUL: {
            const double alpha = 1 - (1 - a) * (1 - b[0]);
            if (share == 0 || alpha == 0) return b;
            for (std::size_t i = 1; i < 4; ++i)
                sums[i] = std::min(alpha, share * s[i] + (1 - a) * b[0] * b[i]);
            return straight(alpha, sums);
        }
        case PF_Xfer_MULTIPLY_ALPHA:
            return {b[0] * (1 - share + share * s[0]), b[1], b[2], b[3]};
        case PF_Xfer_MULTIPLY_ALPHA_LUMA:
            return {b[0] * (1 - share + share * s[0] * luma(s)), b[1], b[2], b[3]};
        case PF_Xfer_MULTIPLY_NOT_ALPHA:
            return {b[0] * (1 - share * s[0]), b[1], b[2], b[3]};
        case PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA:
            return {b[0] * (1 - share * s[0] * luma(s)), b[1], b[2], b[3]};
        default:
            ADD_FAILURE() << "no formula for mode " << mode;
            return {};
    }
}

}  // namespace perch::test
