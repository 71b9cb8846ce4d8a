// The picture operations through the tables: each call reaches its operation, and refuses what it cannot do.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PF_Suites.h"
#include "ScriptedEffect.h"

namespace perch::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

bool operator==(const PF_Pixel& a, const PF_Pixel& b) {
    return a.alpha == b.alpha && a.red == b.red && a.green == b.green && a.blue == b.blue;
}

struct PixelCallbacksTest : testing::Test {
    ScriptedEffect script;
    World picture{2, 2, false};
    FrameRequest request;
    std::vector<std::string> found;

    PixelCallbacksTest() {
        request.input = &picture;
        for (int i = 0; i < 2; ++i)
            for (PF_Pixel* pixel : {&at(picture, 0, i), &at(picture, 1, i)})
                *pixel = {255, 100, 50, 200};
    }
    static PF_Pixel& at(const World& world, int x, int y) {
        char* row = reinterpret_cast<char*>(world.record().data) + y * world.record().rowbytes;
        return reinterpret_cast<PF_Pixel*>(row)[x];
    }
    // The first output pixel after `body` at RENDER.
    template <typename F>
    PF_Pixel render(const F& body) {
        script.on(PF_Cmd_RENDER, body);
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        Sequence sequence(effect);
        const RenderedFrame frame = sequence.render(request);
        found = faults(effect);
        return at(frame.picture, 0, 0);
    }
};

struct Operation {
    const char* name;
    PF_Err (*apply)(const EffectCall& call, PF_EffectWorld* input, PF_EffectWorld* output);
    PF_Pixel expected;
};

const Operation kOperations[] = {
    {"copy",
     [](const EffectCall& call, PF_EffectWorld* input, PF_EffectWorld* output) {
         return call.utilities().copy(call.in->effect_ref, input, output, nullptr, nullptr);
     },
     {255, 100, 50, 200}},
    {"copy_hq",
     [](const EffectCall& call, PF_EffectWorld* input, PF_EffectWorld* output) {
         return call.suite<PF_WorldTransformSuite1>("PF World Transform Suite", 1)
             ->copy_hq(call.in->effect_ref, input, output, nullptr, nullptr);
     },
     {255, 100, 50, 200}},
    {"blend",
     [](const EffectCall& call, PF_EffectWorld* input, PF_EffectWorld* output) {
         return call.utilities().blend(call.in->effect_ref, input, output, 0, output);
     },
     {255, 100, 50, 200}},
    {"fill",
     [](const EffectCall& call, PF_EffectWorld*, PF_EffectWorld* output) {
         const PF_Pixel color{1, 2, 3, 4};
         return call.utilities().fill(call.in->effect_ref, &color, nullptr, output);
     },
     {1, 2, 3, 4}},
    {"premultiply_color",
     [](const EffectCall& call, PF_EffectWorld* input, PF_EffectWorld* output) {
         const PF_Pixel black{};
         return call.utilities().premultiply_color(call.in->effect_ref, input, &black, 1, output);
     },
     {255, 100, 50, 200}},
    {"composite_rect",
     [](const EffectCall& call, PF_EffectWorld* input, PF_EffectWorld* output) {
         return call.utilities().composite_rect(call.in->effect_ref, nullptr, 255, input, 0, 0,
                                                PF_Field_FRAME, PF_Xfer_COPY, output);
     },
     {255, 100, 50, 200}},
    {"transfer_rect",
     [](const EffectCall& call, PF_EffectWorld* input, PF_EffectWorld* output) {
         return call.utilities().transfer_rect(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME, nullptr,
                                               input, nullptr, nullptr, 0, 0, output);
     },
     {255, 100, 50, 200}},
    {"transform_world",
     [](const EffectCall& call, PF_EffectWorld* input, PF_EffectWorld* output) {
         const PF_FloatMatrix identity{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
         return call.utilities().transform_world(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME, input,
                                                 nullptr, nullptr, &identity, 1, 1, nullptr, output);
     },
     {255, 100, 50, 200}},
};

TEST_F(PixelCallbacksTest, EachOperationWritesItsOutput) {
    for (const Operation& operation : kOperations) {
        SCOPED_TRACE(operation.name);
        const PF_Pixel pixel = render([&](const EffectCall& call) {
            return operation.apply(call, &call.params[0]->u.ld, call.output);
        });
        EXPECT_TRUE(pixel == operation.expected)
            << int{pixel.alpha} << ' ' << int{pixel.red} << ' ' << int{pixel.green} << ' ' << int{pixel.blue};
        EXPECT_THAT(found, IsEmpty());
    }
}

TEST_F(PixelCallbacksTest, NullWorldIsNamed) {
    for (const Operation& operation : kOperations) {
        SCOPED_TRACE(operation.name);
        render([&](const EffectCall& call) {
            EXPECT_NE(operation.apply(call, &call.params[0]->u.ld, nullptr), 0);
            return PF_Err_NONE;
        });
        EXPECT_THAT(found, ElementsAre(std::string("RENDER, ") + operation.name + ": a world is null"));
    }
}

struct Forgery {
    void (*change)(PF_EffectWorld& record);
    const char* flaw;
};

const Forgery kForgeries[] = {
    {[](PF_EffectWorld& record) { record.data = nullptr; }, "a world has a size and no pixels"},
    {[](PF_EffectWorld& record) { record.data = reinterpret_cast<PF_PixelPtr>(std::uintptr_t{0x1230}); },
     "a world's pixels are not in memory"},
    {[](PF_EffectWorld& record) { record.height = 100000; },
     "a world's record extends past the memory of its pixels"},
};

// Records of the effect's own, in the place of the source and of the output.
TEST_F(PixelCallbacksTest, WorldThatCannotBeFollowedIsNamed) {
    for (const Operation& operation : kOperations) {
        for (const Forgery& forgery : kForgeries) {
            SCOPED_TRACE(std::string(operation.name) + ": " + forgery.flaw);
            render([&](const EffectCall& call) {
                PF_EffectWorld* const input = &call.params[0]->u.ld;
                PF_EffectWorld forged = *call.output;
                forgery.change(forged);
                EXPECT_EQ(operation.apply(call, input, &forged), PF_Err_BAD_CALLBACK_PARAM);
                const bool hasSource = std::string(operation.name) != "fill";
                if (hasSource) {
                    EXPECT_EQ(operation.apply(call, &forged, call.output), PF_Err_BAD_CALLBACK_PARAM);
                }
                return PF_Err_NONE;
            });
            EXPECT_THAT(found, ElementsAre(std::string("RENDER, ") + operation.name + ": " + forgery.flaw));
        }
    }
}

TEST_F(PixelCallbacksTest, MasksThatCannotBeFollowedAreNamed) {
    for (const Forgery& forgery : kForgeries) {
        if (std::string(forgery.flaw) == "a world has a size and no pixels") continue;  // no mask
        render([&](const EffectCall& call) {
            PF_MaskWorld mask{};
            mask.mask = call.params[0]->u.ld;
            forgery.change(mask.mask);
            PF_CompositeMode mode{};
            mode.opacity = 255;
            mode.xfer = PF_Xfer_COPY;
            EXPECT_EQ(
                call.utilities().transfer_rect(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME, nullptr,
                                               &call.params[0]->u.ld, &mode, &mask, 0, 0, call.output),
                PF_Err_BAD_CALLBACK_PARAM);
            return PF_Err_NONE;
        });
        EXPECT_THAT(found, ElementsAre(std::string("RENDER, transfer_rect: ") + forgery.flaw));
    }
}

TEST_F(PixelCallbacksTest, OperationsInPlaceNameAWorldWithASizeAndNoPixels) {
    render([](const EffectCall& call) {
        PF_EffectWorld bare = *call.output;
        bare.data = nullptr;
        EXPECT_EQ(call.utilities().premultiply(call.in->effect_ref, 1, &bare), PF_Err_BAD_CALLBACK_PARAM);
        bare.world_flags |= PF_WorldFlag_DEEP;
        EXPECT_EQ(call.utilities().fill16(call.in->effect_ref, nullptr, nullptr, &bare),
                  PF_Err_BAD_CALLBACK_PARAM);
        return PF_Err_NONE;
    });
    EXPECT_THAT(found, ElementsAre("RENDER, premultiply: a world has a size and no pixels",
                                   "RENDER, fill16: a world has a size and no pixels"));
}

TEST_F(PixelCallbacksTest, WorldWithoutASizeNeedsNoPixels) {
    render([](const EffectCall& call) {
        PF_EffectWorld empty = *call.output;
        empty.data = nullptr;
        empty.width = empty.height = 0;
        const PF_UtilCallbacks& utilities = call.utilities();
        EXPECT_EQ(utilities.fill(call.in->effect_ref, nullptr, nullptr, &empty), PF_Err_NONE);
        EXPECT_EQ(utilities.copy(call.in->effect_ref, &empty, &empty, nullptr, nullptr), PF_Err_NONE);
        EXPECT_EQ(utilities.blend(call.in->effect_ref, &empty, &empty, 32768, &empty), PF_Err_NONE);
        return PF_Err_NONE;
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(PixelCallbacksTest, SamplesAreTakenFromTheAnnouncedWorld) {
    render([](const EffectCall& call) {
        PF_SampPB params{};
        params.x_radius = params.y_radius = 1 << 15;
        params.src = &call.params[0]->u.ld;
        PF_Pixel sample{};
        EXPECT_EQ(call.utilities().begin_sampling(call.in->effect_ref, PF_Quality_HI, 0, &params), 0);
        EXPECT_EQ(call.utilities().subpixel_sample(call.in->effect_ref, 1 << 16, 0, &params, &sample), 0);
        EXPECT_EQ(sample.blue, 200);
        EXPECT_EQ(call.utilities().area_sample(call.in->effect_ref, 1 << 16, 0, &params, &sample), 0);
        EXPECT_EQ(sample.blue, 200);
        EXPECT_EQ(call.utilities().end_sampling(call.in->effect_ref, PF_Quality_HI, 0, &params), 0);
        PF_EffectWorld forged = call.params[0]->u.ld;
        forged.data = reinterpret_cast<PF_PixelPtr>(std::uintptr_t{0x1230});
        params.src = &forged;
        EXPECT_NE(call.utilities().subpixel_sample(call.in->effect_ref, 0, 0, &params, &sample), 0);
        EXPECT_NE(call.utilities().area_sample(call.in->effect_ref, 0, 0, &params, &sample), 0);
        params.src = nullptr;
        EXPECT_NE(call.utilities().subpixel_sample(call.in->effect_ref, 0, 0, &params, &sample), 0);
        return PF_Err_NONE;
    });
    EXPECT_THAT(found, Contains(HasSubstr("subpixel_sample: ")));
    EXPECT_THAT(found, Contains(HasSubstr("area_sample: ")));
}

TEST_F(PixelCallbacksTest, ColoursAreConvertedThereAndBack) {
    render([](const EffectCall& call) {
        const PF_ColorCallbacks& colors = call.utilities().colorCB;
        PF_Pixel rgb{255, 255, 0, 0};
        PF_Pixel back{};
        PF_Fixed components[3];
        A_long lightness = 0;
        EXPECT_EQ(colors.RGBtoHLS(call.in->effect_ref, &rgb, components), 0);
        EXPECT_EQ(components[0], 0);
        EXPECT_EQ(colors.HLStoRGB(call.in->effect_ref, components, &back), 0);
        EXPECT_EQ(back.red, 255);
        EXPECT_EQ(colors.RGBtoYIQ(call.in->effect_ref, &rgb, components), 0);
        EXPECT_EQ(colors.YIQtoRGB(call.in->effect_ref, components, &back), 0);
        EXPECT_EQ(back.red, 255);
        EXPECT_EQ(colors.Lightness(call.in->effect_ref, &rgb, &lightness), 0);
        EXPECT_NEAR(lightness, 128, 1);
        EXPECT_NE(colors.Hue(call.in->effect_ref, nullptr, &lightness), 0);
        return PF_Err_NONE;
    });
}

TEST_F(PixelCallbacksTest, FieldsAndMissingMatricesAreRefused) {
    render([](const EffectCall& call) {
        PF_EffectWorld* input = &call.params[0]->u.ld;
        EXPECT_NE(call.utilities().transfer_rect(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_UPPER,
                                                 nullptr, input, nullptr, nullptr, 0, 0, call.output),
                  0);
        const PF_FloatMatrix matrices[2]{};  // without an inverse
        for (const A_long count : {-1, 0, 1, 2, 1 << 30}) {
            EXPECT_NE(
                call.utilities().transform_world(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME, input,
                                                 nullptr, nullptr, matrices, count, 1, nullptr, call.output),
                0)
                << count;
        }
        EXPECT_NE(call.utilities().gaussian_kernel(call.in->effect_ref, 1.0, 0, 1.0, nullptr, nullptr), 0);
        return PF_Err_NONE;
    });
}

TEST_F(PixelCallbacksTest, MaskWithoutPixelsIsNone) {
    const PF_Pixel first = render([](const EffectCall& call) {
        const PF_MaskWorld mask{};
        return call.utilities().transfer_rect(call.in->effect_ref, PF_Quality_HI, 0, PF_Field_FRAME, nullptr,
                                              &call.params[0]->u.ld, nullptr, &mask, 0, 0, call.output);
    });
    EXPECT_EQ(first.green, 50);
}

}  // namespace
}  // namespace perch::test
