// An effect that has the host put one picture onto another: every transfer mode, opacity, masks and matrices,
// pixel by pixel against the formulas, at both depths.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "PF_Suites.h"
#include "ScriptedEffect.h"
#include "TransferFormulas.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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
    struct Case {
        PF_TransferMode mode;
        A_long opacity;
        double share;
    };
    // Opacities outside 0 to 255 are the nearest of them.
    for (const auto& [mode, opacity, share] :
         {Case{PF_Xfer_COPY, 153, 0.6}, Case{PF_Xfer_BEHIND, 153, 0.6}, Case{PF_Xfer_IN_FRONT, 153, 0.6},
          Case{PF_Xfer_SCREEN, 153, 0.6}, Case{PF_Xfer_IN_FRONT, 1000, 1}, Case{PF_Xfer_SCREEN, -5, 0}}) {
        const RenderedFrame frame = this->render([&](const EffectCall& call, PF_EffectWorld* source) {
            return call.utilities().composite_rect(call.in->effect_ref, nullptr, opacity, source, 0, 0,
                                                   PF_Field_FRAME, mode, call.output);
        });
        this->expectEveryPixel(
            frame,
            [&](int x, int y) { return expected(mode, this->belowAt(x, y), this->sourceAt(x, y), share); },
            "mode " + std::to_string(mode) + " by " + std::to_string(opacity));
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
