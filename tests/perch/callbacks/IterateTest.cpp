// The iterate calls as an effect meets them: which pixels, which threads, which code comes back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <stdexcept>
#include <thread>

#include "ScriptedEffect.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct IterateTest : testing::Test {
    ScriptedEffect script;
    World picture{4, 3, false};
    FrameRequest request;

    IterateTest() {
        request.input = &picture;
        for (A_long y = 0; y < 3; ++y)
            for (A_long x = 0; x < 4; ++x)
                pixel(picture.record(), x, y) = {255, code(x, y), 0, 0};
    }
    static A_u_char code(A_long x, A_long y) { return static_cast<A_u_char>(10 * y + x + 1); }
    static PF_Pixel& pixel(const PF_EffectWorld& world, A_long x, A_long y) {
        return *reinterpret_cast<PF_Pixel*>(reinterpret_cast<char*>(world.data) + y * world.rowbytes + 4 * x);
    }
    // Renders one frame by `body` with three threads; the codes of the output's red, row by row.
    template <typename F>
    std::vector<int> render(const F& body) {
        script.on(PF_Cmd_RENDER, body);
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        Sequence sequence(effect);
        const RenderedFrame frame = sequence.render(request);
        EXPECT_THAT(faults(effect), IsEmpty());
        std::vector<int> reds;
        for (A_long y = 0; y < frame.picture.height(); ++y)
            for (A_long x = 0; x < frame.picture.width(); ++x)
                reds.push_back(pixel(frame.picture.record(), x, y).red);
        return reds;
    }
};

PF_Err copyPixel(void*, A_long, A_long, PF_Pixel* in, PF_Pixel* out) {
    *out = *in;
    return PF_Err_NONE;
}

TEST_F(IterateTest, EveryPixelOfTheDestinationGetsItsSource) {
    const auto reds = render([](const EffectCall& call) {
        return call.utilities().iterate(call.in, 0, 3, &call.params[0]->u.ld, nullptr, nullptr, copyPixel,
                                        call.output);
    });
    EXPECT_THAT(reds, ElementsAre(1, 2, 3, 4, 11, 12, 13, 14, 21, 22, 23, 24));
}

TEST_F(IterateTest, AreaLimitsThePixels) {
    const auto reds = render([](const EffectCall& call) {
        const PF_Rect area{1, 1, 3, 99};
        return call.utilities().iterate(call.in, 0, 3, &call.params[0]->u.ld, &area, nullptr, copyPixel,
                                        call.output);
    });
    EXPECT_THAT(reds, ElementsAre(0, 0, 0, 0, 0, 12, 13, 0, 0, 22, 23, 0));
}

TEST_F(IterateTest, OriginShiftsTheSourceAndSkipsWhatItDoesNotCover) {
    const auto reds = render([](const EffectCall& call) {
        const PF_Point origin{1, -1};
        return call.utilities().iterate_origin(call.in, 0, 3, &call.params[0]->u.ld, nullptr, &origin,
                                               nullptr, copyPixel, call.output);
    });
    EXPECT_THAT(reds, ElementsAre(0, 11, 12, 13, 0, 21, 22, 23, 0, 0, 0, 0));
}

struct FarOrigin {
    const char* name;
    PF_Rect area;
    PF_Point origin;
    int pixels;           // iterated by the clipping call
    int pixelsUnclipped;  // and by the other
};

constexpr A_long kLowest = std::numeric_limits<A_long>::min();
constexpr A_long kHighest = std::numeric_limits<A_long>::max();
constexpr PF_Rect kEverything{kLowest, kLowest, kHighest, kHighest};

class FarOriginTest : public IterateTest, public testing::WithParamInterface<FarOrigin> {};

PF_Err countPixel(void* refcon, A_long, A_long, PF_Pixel*, PF_Pixel*) {
    ++*static_cast<std::atomic<int>*>(refcon);
    return PF_Err_NONE;
}

TEST_P(FarOriginTest, IteratesThePixelsThatAreThere) {
    std::atomic<int> pixels{0};
    std::atomic<int> pixelsUnclipped{0};
    render([&](const EffectCall& call) {
        PF_EffectWorld* const input = &call.params[0]->u.ld;
        if (const PF_Err code =
                call.utilities().iterate_origin(call.in, kLowest, kHighest, input, &GetParam().area,
                                                &GetParam().origin, &pixels, countPixel, call.output))
            return code;
        return call.utilities().iterate_origin_non_clip_src(call.in, kHighest, kLowest, input,
                                                            &GetParam().area, &GetParam().origin,
                                                            &pixelsUnclipped, countPixel, call.output);
    });
    EXPECT_EQ(pixels, GetParam().pixels);
    EXPECT_EQ(pixelsUnclipped, GetParam().pixelsUnclipped);
}

INSTANTIATE_TEST_SUITE_P(
    Extremes, FarOriginTest,
    testing::Values(FarOrigin{"AreaBeyondEverything", kEverything, {0, 0}, 12, 12},
                    FarOrigin{"AreaInsideOut", {kHighest, kHighest, kLowest, kLowest}, {0, 0}, 0, 0},
                    FarOrigin{"AreaFarAbove", {kLowest, kLowest, kHighest, 0}, {0, 0}, 0, 0},
                    FarOrigin{"AreaFarBelow", {0, kHighest, 4, kHighest}, {0, 0}, 0, 0},
                    FarOrigin{"LowestOrigin", kEverything, {kLowest, kLowest}, 0, 12},
                    FarOrigin{"HighestOrigin", kEverything, {kHighest, kHighest}, 0, 12}),
    [](const auto& test) { return test.param.name; });

TEST_F(IterateTest, NonClippingOriginGivesTransparentPixelsOutside) {
    const auto countTransparent = [](void* refcon, A_long, A_long, PF_Pixel* in, PF_Pixel* out) {
        if (in->alpha == 0) ++*static_cast<std::atomic<int>*>(refcon);
        *out = *in;
        return PF_Err{PF_Err_NONE};
    };
    std::atomic<int> transparent{0};
    render([&](const EffectCall& call) {
        const PF_Point origin{1, -1};
        return call.utilities().iterate_origin_non_clip_src(call.in, 0, 3, &call.params[0]->u.ld, nullptr,
                                                            &origin, &transparent, countTransparent,
                                                            call.output);
    });
    EXPECT_EQ(transparent, 6);
}

TEST_F(IterateTest, NullSourceGivesNullPixels) {
    const auto paint = [](void*, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out) {
        out->red = in == nullptr ? static_cast<A_u_char>(x + y) : 99;
        return PF_Err{PF_Err_NONE};
    };
    const auto reds = render([&](const EffectCall& call) {
        return call.utilities().iterate(call.in, 0, 3, nullptr, nullptr, nullptr, paint, call.output);
    });
    EXPECT_THAT(reds, ElementsAre(0, 1, 2, 3, 1, 2, 3, 4, 2, 3, 4, 5));
}

TEST_F(IterateTest, TablesMapTheirChannels) {
    const auto reds = render([](const EffectCall& call) {
        A_u_char inverted[256];
        for (int i = 0; i < 256; ++i)
            inverted[i] = static_cast<A_u_char>(255 - i);
        return call.utilities().iterate_lut(call.in, 0, 3, &call.params[0]->u.ld, nullptr, nullptr, inverted,
                                            nullptr, nullptr, call.output);
    });
    EXPECT_THAT(reds, ElementsAre(254, 253, 252, 251, 244, 243, 242, 241, 234, 233, 232, 231));
}

TEST_F(IterateTest, DeepWorldsAreIteratedInSixteenBits) {
    script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE);
    const World deep(3, 2, true);
    request.input = &deep;
    std::atomic<int> calls{0};
    const auto count = [](void* refcon, A_long, A_long, PF_Pixel16*, PF_Pixel16* out) {
        out->blue = 32768;
        ++*static_cast<std::atomic<int>*>(refcon);
        return PF_Err{PF_Err_NONE};
    };
    render([&](const EffectCall& call) {
        return call.utilities().iterate16(call.in, 0, 2, &call.params[0]->u.ld, nullptr, &calls, count,
                                          call.output);
    });
    EXPECT_EQ(calls, 6);
}

TEST_F(IterateTest, WorldOfAnotherDepthIsRefused) {
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        return call.utilities().iterate16(
            call.in, 0, 3, nullptr, nullptr, nullptr,
            [](void*, A_long, A_long, PF_Pixel16*, PF_Pixel16*) { return PF_Err{0}; }, call.output);
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    EXPECT_THROW(sequence.render(request), EffectError);
    EXPECT_THAT(faults(effect), ElementsAre("RENDER, iterate16: a world is of another depth than the call"));
}

TEST_F(IterateTest, WorldThatLeadsElsewhereIsRefused) {
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        PF_EffectWorld taller = *call.output;
        taller.height = 100000;
        const auto leave = [](void*, A_long, A_long, PF_Pixel*, PF_Pixel*) { return PF_Err{0}; };
        EXPECT_NE(call.utilities().iterate(call.in, 0, 3, nullptr, nullptr, nullptr, leave, &taller), 0);
        return call.utilities().iterate(call.in, 0, 3, &taller, nullptr, nullptr, leave, call.output);
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    EXPECT_THROW(sequence.render(request), EffectError);
    EXPECT_THAT(faults(effect),
                ElementsAre("RENDER, iterate: a world's record extends past the memory of its pixels"));
}

TEST_F(IterateTest, CodeOfThePixelFunctionComesBack) {
    PF_Err code = 0;
    render([&](const EffectCall& call) {
        code = call.utilities().iterate(
            call.in, 0, 3, nullptr, nullptr, nullptr,
            [](void*, A_long x, A_long y, PF_Pixel*, PF_Pixel*) {
                return x == 2 && y == 1 ? PF_Err{88} : PF_Err{0};
            },
            call.output);
        return PF_Err_NONE;
    });
    EXPECT_EQ(code, 88);
}

TEST_F(IterateTest, ExceptionOfThePixelFunctionIsACodeAndAFault) {
    PF_Err code = 0;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        code = call.utilities().iterate(
            call.in, 0, 3, nullptr, nullptr, nullptr,
            [](void*, A_long, A_long, PF_Pixel*, PF_Pixel*) -> PF_Err { throw std::runtime_error("pixel"); },
            call.output);
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    EXPECT_THROW(Sequence(effect).render(request), EffectBroke);
    EXPECT_EQ(code, PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_THAT(faults(effect), ElementsAre("RENDER, iterate: an exception left the effect's function"));
}

TEST_F(IterateTest, ExceptionOfTheCallersProgressReachesNoEffectCode) {
    PF_Err code = 0;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        code = call.utilities().iterate(call.in, 0, 3, &call.params[0]->u.ld, nullptr, nullptr, copyPixel,
                                        call.output);
        return PF_Err_NONE;
    });
    request.progress = [](double) { throw std::runtime_error("no terminal"); };
    HostOptions options = strictOptions();
    options.threads = 1;  // so that the calling thread is sure to have rows of its own
    Effect effect(ScriptedEffect::enter, {}, options);
    Sequence(effect).render(request);
    EXPECT_EQ(code, PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_THAT(faults(effect), ElementsAre("RENDER, iterate: no terminal"));
}

TEST_F(IterateTest, CancelEndsTheRows) {
    const std::atomic<bool> cancelled{true};
    request.cancelled = &cancelled;
    PF_Err code = 0;
    render([&](const EffectCall& call) {
        code = call.utilities().iterate(call.in, 0, 3, &call.params[0]->u.ld, nullptr, nullptr, copyPixel,
                                        call.output);
        return PF_Err_NONE;
    });
    EXPECT_EQ(code, PF_Interrupt_CANCEL);
}

TEST_F(IterateTest, ProgressFillsItsPartOfTheBar) {
    std::vector<double> shares;
    request.progress = [&](double share) { shares.push_back(share); };
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        return call.utilities().iterate(call.in, 5, 10, &call.params[0]->u.ld, nullptr, nullptr, copyPixel,
                                        call.output);
    });
    HostOptions options = strictOptions();
    options.threads = 1;  // the calling thread, which alone reports, has every row
    Effect effect(ScriptedEffect::enter, {}, options);
    Sequence(effect).render(request);
    ASSERT_EQ(shares.size(), static_cast<std::size_t>(request.input->height()));
    for (std::size_t row = 0; row < shares.size(); ++row)
        EXPECT_DOUBLE_EQ(shares[row],
                         0.5 + 0.5 * static_cast<double>(row + 1) / static_cast<double>(shares.size()));
}

struct GenericCase {
    A_long asked;
    A_long calls;
};

class IterateGenericTest : public IterateTest, public testing::WithParamInterface<GenericCase> {};

struct GenericLog {
    std::thread::id caller = std::this_thread::get_id();
    std::atomic<A_long> calls{0};
    std::atomic<A_long> sum{0};
    std::atomic<A_long> total{-7};
    std::atomic<int> mistakenThreads{0};
};

PF_Err logGeneric(void* refcon, A_long thread, A_long i, A_long total) {
    auto& log = *static_cast<GenericLog*>(refcon);
    ++log.calls;
    log.sum += i;
    log.total = total;
    if ((thread == 0) != (std::this_thread::get_id() == log.caller) || thread < 0 || thread > 2)
        ++log.mistakenThreads;
    return PF_Err_NONE;
}

TEST_P(IterateGenericTest, EachIterationIsCalledOnceAndThreadZeroIsTheCaller) {
    GenericLog log;
    render([&](const EffectCall& call) {
        return call.utilities().iterate_generic(GetParam().asked, &log, logGeneric);
    });
    EXPECT_EQ(log.calls, GetParam().calls);
    EXPECT_EQ(log.sum, GetParam().calls * (GetParam().calls - 1) / 2);
    EXPECT_EQ(log.total, GetParam().calls > 0 ? GetParam().calls : -7);
    EXPECT_EQ(log.mistakenThreads, 0);
}

INSTANTIATE_TEST_SUITE_P(Counts, IterateGenericTest,
                         testing::Values(GenericCase{0, 0}, GenericCase{1, 1}, GenericCase{2, 2},
                                         GenericCase{3, 3}, GenericCase{500, 500}, GenericCase{-1, 3}),
                         [](const auto& test) {
                             return test.param.asked < 0 ? std::string("OnePerProcessor")
                                                         : "Count" + std::to_string(test.param.asked);
                         });

TEST_F(IterateTest, CodeOfAGenericIterationComesBackAfterAllHaveRun) {
    std::atomic<int> calls{0};
    PF_Err code = 0;
    render([&](const EffectCall& call) {
        code = call.utilities().iterate_generic(50, &calls, [](void* refcon, A_long, A_long i, A_long) {
            ++*static_cast<std::atomic<int>*>(refcon);
            return i == 20 ? PF_Err{66} : PF_Err{0};
        });
        return PF_Err_NONE;
    });
    EXPECT_EQ(code, 66);
    EXPECT_EQ(calls, 50);
}

}  // namespace
}  // namespace perch::test
