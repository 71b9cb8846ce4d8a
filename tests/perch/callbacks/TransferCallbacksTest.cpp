// An effect that has the host put one picture onto another: every transfer mode, opacity, masks and matrices,
// pixel by pixel against the formulas, at both depths.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "PF_Suites.h"
#include "ScriptedEffect.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Channels = std::array<double, 4>;  // alpha, red, green, blue

double luma(const Channels& c) {
    return 0.3 * c[1] + 0.59 * c[2] + 0.11 * c[3];
}

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

// What the modes make of two pixels; those that mix neither channels nor colours by themselves stand here.
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

constexpr PF_TransferMode kRefused[] = {PF_Xfer_NONE,      PF_Xfer_DISSOLVE,  PF_Xfer_RESERVED0,
                                        PF_Xfer_RESERVED1, PF_Xfer_NUM_MODES, 99};

template <class P>
Channels channelsOf(const P& p) {
    const double one = kWhite<P>;
    return {p.alpha / one, p.red / one, p.green / one, p.blue / one};
}

// One code of rounding, and the colour of what is transparent, do not matter.
template <class P>
bool isNear(const P& p, const Channels& wanted) {
    const double one = kWhite<P>;
    const Channels given = channelsOf(p);
    for (std::size_t i = 0; i < 4; ++i) {
        const double steps = std::abs(given[i] - wanted[i]) * one;
        if (steps > 1.0 && !(i > 0 && given[0] == 0)) return false;
    }
    return true;
}

// Noise with many black, white, transparent and opaque channels, where the formulas branch.
template <class P>
World edgyNoise(std::int32_t width, std::int32_t height, unsigned seed) {
    World world = noise<P>(width, height, seed);
    std::mt19937 random(seed + 1);
    for (std::int32_t y = 0; y < height; ++y)
        for (P& p : pixelRow<P>(world.record(), y))
            for (auto* channel : {&p.alpha, &p.red, &p.green, &p.blue})
                if (random() % 3 == 0) *channel = static_cast<ChannelOf<P>>(random() % 2 * kWhite<P>);
    return world;
}

// Runs a body at RENDER on an output that already holds a picture.
template <class P>
class TransferCallbacksTest : public testing::Test {
protected:
    using Body = std::function<PF_Err(const EffectCall&, PF_EffectWorld* source)>;

    RenderedFrame render(const Body& body) {
        script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE);
        script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
            EXPECT_EQ(
                call.utilities().copy(call.in->effect_ref, &below.record(), call.output, nullptr, nullptr),
                0);
            return body(call, &call.params[0]->u.ld);
        });
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        FrameRequest request;
        request.input = &source;
        RenderedFrame frame = Sequence(effect).render(request);
        found = faults(effect);
        return frame;
    }

    template <typename F>
    void expectEveryPixel(const RenderedFrame& frame, const F& wanted, const std::string& what) {
        int wrong = 0;
        for (std::int32_t y = 0; y < kHeight; ++y) {
            for (std::int32_t x = 0; x < kWidth; ++x) {
                const P& p = rowOf<P>(frame.picture.record(), y)[x];
                const Channels want = wanted(x, y);
                if (isNear(p, want) || ++wrong > 3) continue;
                const Channels given = channelsOf(p);
                ADD_FAILURE() << what << " at " << x << ", " << y << ": " << given[0] << " " << given[1]
                              << " " << given[2] << " " << given[3] << ", not " << want[0] << " " << want[1]
                              << " " << want[2] << " " << want[3];
            }
        }
        EXPECT_EQ(wrong, 0) << what;
    }

    Channels belowAt(int x, int y) { return channelsOf(at<P>(below, x, y)); }
    Channels sourceAt(int x, int y) {
        const bool isInside = x >= 0 && y >= 0 && x < kWidth && y < kHeight;
        return isInside ? channelsOf(at<P>(source, x, y)) : Channels{};
    }

    P pixelAt(int x, int y) {
        const bool isInside = x >= 0 && y >= 0 && x < kWidth && y < kHeight;
        return isInside ? at<P>(source, x, y) : P{};
    }

    static constexpr int kWidth = 23;
    static constexpr int kHeight = 17;
    ScriptedEffect script;
    World source = edgyNoise<P>(kWidth, kHeight, 1);
    World below = edgyNoise<P>(kWidth, kHeight, 2);
    World matte = edgyNoise<P>(kWidth, kHeight, 3);
    std::vector<std::string> found;
};

using Depths = testing::Types<PF_Pixel, PF_Pixel16>;
TYPED_TEST_SUITE(TransferCallbacksTest, Depths);

template <class P>
PF_CompositeMode modeOf(PF_TransferMode mode, double opacity, bool rgbOnly = false) {
    return {mode, 0, static_cast<A_u_char>(std::lround(opacity * 255)), static_cast<PF_Boolean>(rgbOnly),
            static_cast<A_u_short>(std::lround(opacity * 32768))};
}

TYPED_TEST(TransferCallbacksTest, EveryModeOfTwoPixelsFollowsItsFormula) {
    std::vector<PF_TransferMode> modes;
    for (PF_TransferMode mode = PF_Xfer_COPY; mode < PF_Xfer_NUM_MODES; ++mode)
        if (std::ranges::find(kRefused, mode) == std::end(kRefused)) modes.push_back(mode);
    ASSERT_EQ(modes.size(), 38U);
    for (const PF_TransferMode mode : modes) {
        // Fifths are whole at either depth's opacity to within a code.
        for (const double share : {1.0, 0.0, 0.6}) {
            const PF_CompositeMode how = modeOf<TypeParam>(mode, share);
            const double given = sizeof(TypeParam) == 4 ? how.opacity / 255.0 : how.opacitySu / 32768.0;
            const RenderedFrame frame = this->render([&](const EffectCall& call, PF_EffectWorld* source) {
                return call.utilities().transfer_rect(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME,
                                                      nullptr, source, &how, nullptr, 0, 0, call.output);
            });
            EXPECT_THAT(this->found, IsEmpty());
            this->expectEveryPixel(
                frame,
                [&](int x, int y) {
                    return expected(mode, this->belowAt(x, y), this->sourceAt(x, y), given);
                },
                "mode " + std::to_string(mode) + " by " + std::to_string(share));
        }
    }
}

TYPED_TEST(TransferCallbacksTest, ColoursAloneLeaveAlphaExceptForModesOfAlpha) {
    for (const PF_TransferMode mode : {PF_Xfer_SCREEN, PF_Xfer_COPY, PF_Xfer_MULTIPLY_ALPHA}) {
        const PF_CompositeMode how = modeOf<TypeParam>(mode, 1, true);
        const RenderedFrame frame = this->render([&](const EffectCall& call, PF_EffectWorld* source) {
            return call.utilities().transfer_rect(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME,
                                                  nullptr, source, &how, nullptr, 0, 0, call.output);
        });
        this->expectEveryPixel(
            frame,
            [&](int x, int y) {
                Channels want = expected(mode, this->belowAt(x, y), this->sourceAt(x, y), 1);
                if (mode != PF_Xfer_MULTIPLY_ALPHA) want[0] = this->belowAt(x, y)[0];
                return want;
            },
            "mode " + std::to_string(mode));
    }
}

TYPED_TEST(TransferCallbacksTest, MaskShowsWhereItIsOpaqueOrLightOrTheOtherWayRound) {
    constexpr int kLeft = 3;
    constexpr int kTop = -2;
    for (PF_MaskFlags flags = 0; flags <= (PF_MaskFlag_INVERTED | PF_MaskFlag_LUMINANCE); ++flags) {
        for (const PF_TransferMode mode : {PF_Xfer_COPY, PF_Xfer_IN_FRONT, PF_Xfer_MULTIPLY}) {
            const PF_CompositeMode how = modeOf<TypeParam>(mode, 1);
            const RenderedFrame frame = this->render([&](const EffectCall& call, PF_EffectWorld* source) {
                const PF_MaskWorld mask{this->matte.record(), {kLeft, kTop}, flags};
                return call.utilities().transfer_rect(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME,
                                                      nullptr, source, &how, &mask, 0, 0, call.output);
            });
            const auto shown = [&](int x, int y) {
                const int mx = x - kLeft;
                const int my = y - kTop;
                Channels m{};
                if (mx >= 0 && my >= 0 && mx < this->kWidth && my < this->kHeight)
                    m = channelsOf(at<TypeParam>(this->matte, mx, my));
                const double part = (flags & PF_MaskFlag_LUMINANCE) != 0 ? m[0] * luma(m) : m[0];
                const double one = kWhite<TypeParam>;
                const double turned = (flags & PF_MaskFlag_INVERTED) != 0 ? 1 - part : part;
                return std::floor(turned * one + 0.5) / one;
            };
            this->expectEveryPixel(
                frame,
                [&](int x, int y) {
                    return expected(mode, this->belowAt(x, y), this->sourceAt(x, y), shown(x, y));
                },
                "mask " + std::to_string(flags) + ", mode " + std::to_string(mode));
        }
    }
}

TYPED_TEST(TransferCallbacksTest, PartIsPutWhereItIsAskedForUnderItsPartOfTheMask) {
    const PF_Rect part{4, 3, 15, 11};
    const PF_CompositeMode how = modeOf<TypeParam>(PF_Xfer_IN_FRONT, 1);
    const RenderedFrame frame = this->render([&](const EffectCall& call, PF_EffectWorld* source) {
        const PF_MaskWorld mask{this->matte.record(), {0, 0}, PF_MaskFlag_NONE};
        return call.utilities().transfer_rect(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME, &part,
                                              source, &how, &mask, 7, 9, call.output);
    });
    this->expectEveryPixel(
        frame,
        [&](int x, int y) {
            const int sx = x - 7 + part.left;
            const int sy = y - 9 + part.top;
            const bool isInside = sx >= part.left && sx < part.right && sy >= part.top && sy < part.bottom;
            if (!isInside) return this->belowAt(x, y);
            return expected(PF_Xfer_IN_FRONT, this->belowAt(x, y), this->sourceAt(sx, sy),
                            channelsOf(at<TypeParam>(this->matte, sx, sy))[0]);
        },
        "part");
}

TYPED_TEST(TransferCallbacksTest, RectanglesAreCompositedByTheSameFormulas) {
    for (const PF_TransferMode mode : {PF_Xfer_COPY, PF_Xfer_BEHIND, PF_Xfer_IN_FRONT, PF_Xfer_SCREEN}) {
        const RenderedFrame frame = this->render([&](const EffectCall& call, PF_EffectWorld* source) {
            return call.utilities().composite_rect(call.in->effect_ref, nullptr, 153, source, 0, 0,
                                                   PF_Field_FRAME, mode, call.output);
        });
        this->expectEveryPixel(
            frame,
            [&](int x, int y) { return expected(mode, this->belowAt(x, y), this->sourceAt(x, y), 0.6); },
            "mode " + std::to_string(mode));
    }
}

// In whole codes, as it is drawn before it is put down.
template <class P>
P meanOf(const P& a, const P& b) {
    const std::uint64_t sum = std::uint64_t{a.alpha} + b.alpha;
    if (sum == 0) return {};
    const auto mean = [&](std::uint64_t x, std::uint64_t y) {
        return static_cast<ChannelOf<P>>((a.alpha * x + b.alpha * y + sum / 2) / sum);
    };
    return {static_cast<ChannelOf<P>>((sum + 1) / 2), mean(a.red, b.red), mean(a.green, b.green),
            mean(a.blue, b.blue)};
}

TYPED_TEST(TransferCallbacksTest, MatricesMoveTheSourceAndSeveralGiveTheirMean) {
    const auto shift = [](double x, double y) { return PF_FloatMatrix{{{1, 0, 0}, {0, 1, 0}, {x, y, 1}}}; };
    const PF_FloatMatrix matrices[] = {shift(2, 1), shift(4, 1)};
    const PF_CompositeMode how = modeOf<TypeParam>(PF_Xfer_MULTIPLY, 1);
    for (const A_long count : {1, 2}) {
        const RenderedFrame frame = this->render([&](const EffectCall& call, PF_EffectWorld* source) {
            return call.utilities().transform_world(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME,
                                                    source, &how, nullptr, matrices, count, 1, nullptr,
                                                    call.output);
        });
        EXPECT_THAT(this->found, IsEmpty());
        const auto moved = [&](int x, int y) {
            const Channels first = this->sourceAt(x - 2, y - 1);
            if (count == 1) return first;
            const TypeParam a = this->pixelAt(x - 2, y - 1);
            const TypeParam b = this->pixelAt(x - 4, y - 1);
            return channelsOf(meanOf(a, b));
        };
        this->expectEveryPixel(
            frame,
            [&](int x, int y) { return expected(PF_Xfer_MULTIPLY, this->belowAt(x, y), moved(x, y), 1); },
            std::to_string(count) + " matrices");
    }
}

TYPED_TEST(TransferCallbacksTest, OtherModesAreRefusedByName) {
    const std::map<PF_TransferMode, std::string> names{
        {PF_Xfer_NONE, "NONE"}, {PF_Xfer_DISSOLVE, "DISSOLVE"}, {PF_Xfer_NUM_MODES, "41"}, {99, "99"}};
    for (const auto& [mode, name] : names) {
        const PF_CompositeMode how = modeOf<TypeParam>(mode, 1);
        try {
            this->render([&](const EffectCall& call, PF_EffectWorld* source) {
                return call.utilities().transfer_rect(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME,
                                                      nullptr, source, &how, nullptr, 0, 0, call.output);
            });
            ADD_FAILURE() << name;
        } catch (const EffectError& error) {
            EXPECT_THAT(error.what(),
                        HasSubstr("transfer_rect: the transfer mode " + name + " is not offered"));
        }
    }
}

}  // namespace
}  // namespace perch::test
