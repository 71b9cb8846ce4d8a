// Effects that render by rectangles: what passes at the two commands, results of other sizes than asked for,
// floating point, and what strict mode sees.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>

#include "Error.h"
#include "PF_Suites.h"
#include "ScriptedEffect.h"
#include "Sequence.h"
#include "SmartScript.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class P>
World madePicture(std::int32_t width, std::int32_t height) {
    if constexpr (kHasWholeChannels<P>) {
        return noise<P>(width, height, 9);
    } else {
        World world(width, height, PixelDepth::Float);
        for (std::int32_t y = 0; y < height; ++y)
            for (std::int32_t x = 0; x < width; ++x)
                rowOf<P>(world.record(), y)[x] = {1, static_cast<float>(x) / 8, static_cast<float>(y) / 4,
                                                  1.5F};
        return world;
    }
}

template <class P>
class SmartRenderTest : public testing::Test {
protected:
    static constexpr int kWidth = 11;
    static constexpr int kHeight = 7;

    SmartRenderTest() {
        script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE,
                            PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_FLOAT_COLOR_AWARE);
        script.on(PF_Cmd_SMART_PRE_RENDER, promiseInput);
        script.on(PF_Cmd_SMART_RENDER, invertInput<P>);
        request.input = &input;
        request.smart = SmartUse::On;
    }

    World render() {
        HostOptions options = strictOptions();
        options.onCommand = [this](std::string_view command) { commands.emplace_back(command); };
        Effect effect(ScriptedEffect::enter, {}, options);
        World picture = Sequence(effect).render(request).picture;
        effect.close();
        found = faults(effect);
        return picture;
    }

    // The picture is the input's inverse within the rectangle, and empty outside.
    void expectInvertedWithin(const World& picture, const PF_LRect& rect) {
        ASSERT_EQ(picture.width(), kWidth);
        ASSERT_EQ(picture.height(), kHeight);
        for (std::int32_t y = 0; y < kHeight; ++y) {
            for (std::int32_t x = 0; x < kWidth; ++x) {
                const bool isInside = x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
                const P want = isInside ? inverted(rowOf<P>(input.record(), y)[x]) : P{};
                EXPECT_TRUE(same(rowOf<P>(picture.record(), y)[x], want)) << x << ", " << y;
            }
        }
    }

    ScriptedEffect script;
    World input = madePicture<P>(kWidth, kHeight);
    FrameRequest request;
    std::vector<std::string> commands;
    std::vector<std::string> found;
};

using AllDepths = testing::Types<PF_Pixel, PF_Pixel16, PF_PixelFloat>;
TYPED_TEST_SUITE(SmartRenderTest, AllDepths);

TYPED_TEST(SmartRenderTest, WholeFrameIsAskedForAndRendered) {
    const short bits = static_cast<short>(sizeof(TypeParam) * 2);
    this->script.on(PF_Cmd_SMART_PRE_RENDER, [bits](const EffectCall& call) {
        const PF_PreRenderInput& asked = *preExtra(call).input;
        EXPECT_EQ(asked.output_request.rect.right, 11);
        EXPECT_EQ(asked.output_request.rect.bottom, 7);
        EXPECT_EQ(asked.output_request.channel_mask, PF_ChannelMask_ARGB);
        EXPECT_EQ(asked.bitdepth, bits);
        EXPECT_EQ(asked.what_gpu, PF_GPU_Framework_NONE);
        EXPECT_EQ(preExtra(call).cb->GuidMixInPtr(call.in->effect_ref, 4, "guid"), 0);
        return promiseInput(call);
    });
    const World picture = this->render();
    this->expectInvertedWithin(picture, {0, 0, 11, 7});
    EXPECT_THAT(this->found, IsEmpty());
    EXPECT_THAT(this->commands,
                ElementsAre("GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_SETUP", "SMART_PRE_RENDER",
                            "SMART_RENDER", "SEQUENCE_SETDOWN", "GLOBAL_SETDOWN"));
}

TYPED_TEST(SmartRenderTest, ResultSmallerThanAskedLeavesTheRestEmpty) {
    const PF_LRect part{2, 1, 9, 5};
    this->script.on(PF_Cmd_SMART_PRE_RENDER, [part](const EffectCall& call) {
        const PF_CheckoutResult layer = checkOut(call, 0, 0, part);
        EXPECT_EQ(layer.result_rect.left, 2);
        EXPECT_EQ(layer.max_result_rect.right, 11);
        EXPECT_EQ(layer.ref_width, 11);
        preExtra(call).output->result_rect = part;
        preExtra(call).output->max_result_rect = layer.max_result_rect;
        return PF_Err_NONE;
    });
    this->expectInvertedWithin(this->render(), part);
    EXPECT_THAT(this->found, IsEmpty());
}

TYPED_TEST(SmartRenderTest, EmptyResultIsAnEmptyFrameWithoutARender) {
    this->script.on(PF_Cmd_SMART_PRE_RENDER, [](const EffectCall&) { return PF_Err_NONE; });
    this->expectInvertedWithin(this->render(), {});
    EXPECT_THAT(this->commands, testing::Not(testing::Contains("SMART_RENDER")));
}

// A border of two pixels, which the host cuts off.
TYPED_TEST(SmartRenderTest, ResultLargerThanAskedIsCutOffAndNeedsItsFlag) {
    for (const bool isDeclared : {true, false}) {
        this->script.on(PF_Cmd_SMART_PRE_RENDER, [isDeclared](const EffectCall& call) {
            PF_PreRenderOutput& output = *preExtra(call).output;
            checkOut(call, 0, 0, {0, 0, 11, 7});
            output.result_rect = output.max_result_rect = {-2, -2, 13, 9};
            if (isDeclared) output.flags = PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS;
            return PF_Err_NONE;
        });
        this->script.on(PF_Cmd_SMART_RENDER, [](const EffectCall& call) {
            PF_EffectWorld* input = nullptr;
            PF_EffectWorld* output = nullptr;
            renderExtra(call).cb->checkout_layer_pixels(call.in->effect_ref, 0, &input);
            EXPECT_EQ(renderExtra(call).cb->checkout_output(call.in->effect_ref, &output), 0);
            EXPECT_EQ(output->width, 15);
            EXPECT_EQ(output->height, 11);
            for (A_long y = 0; y < 7; ++y)
                for (A_long x = 0; x < 11; ++x)
                    rowOf<TypeParam>(*output, y + 2)[x + 2] = inverted(rowOf<TypeParam>(*input, y)[x]);
            return PF_Err_NONE;
        });
        this->expectInvertedWithin(this->render(), {0, 0, 11, 7});
        if (isDeclared) {
            EXPECT_THAT(this->found, IsEmpty());
        } else {
            EXPECT_THAT(this->found,
                        ElementsAre("SMART_PRE_RENDER: result_rect exceeds the request without the flag "
                                    "RETURNS_EXTRA_PIXELS"));
        }
    }
}

TYPED_TEST(SmartRenderTest, LayersAreCheckedOutByRectangleAndNoneIsEmpty) {
    this->script.declareParameters(
        {parameterOfType(PF_Param_LAYER, "Layer"), parameterOfType(PF_Param_LAYER, "None")});
    const World layer = madePicture<TypeParam>(20, 3);
    this->request.layers[1] = &layer;
    this->script.on(PF_Cmd_SMART_PRE_RENDER, [](const EffectCall& call) {
        const PF_CheckoutResult given = checkOut(call, 1, 7, {-5, 1, 15, 99});
        EXPECT_EQ(given.result_rect.left, 0);
        EXPECT_EQ(given.result_rect.top, 1);
        EXPECT_EQ(given.result_rect.right, 15);
        EXPECT_EQ(given.result_rect.bottom, 3);
        EXPECT_EQ(given.max_result_rect.right, 20);
        EXPECT_EQ(checkOut(call, 2, 8, {0, 0, 5, 5}).result_rect.right, 0);
        EXPECT_EQ(checkOut(call, 1, 9, {}).max_result_rect.bottom, 3);
        return promiseInput(call);
    });
    this->script.on(PF_Cmd_SMART_RENDER, [&](const EffectCall& call) {
        PF_EffectWorld* world = nullptr;
        EXPECT_EQ(renderExtra(call).cb->checkout_layer_pixels(call.in->effect_ref, 7, &world), 0);
        EXPECT_EQ(world->width, 15);
        EXPECT_EQ(world->height, 2);
        EXPECT_TRUE(same(rowOf<TypeParam>(*world, 0)[3], rowOf<TypeParam>(layer.record(), 1)[3]));
        for (const A_long id : {8, 9}) {
            EXPECT_EQ(renderExtra(call).cb->checkout_layer_pixels(call.in->effect_ref, id, &world), 0);
            EXPECT_EQ(world, nullptr);
        }
        return invertInput<TypeParam>(call);
    });
    this->expectInvertedWithin(this->render(), {0, 0, 11, 7});
    EXPECT_THAT(this->found, IsEmpty());
}

int deleted = 0;

TYPED_TEST(SmartRenderTest, DataOfThePreRenderComesBackAndIsReleased) {
    deleted = 0;
    this->script.on(PF_Cmd_SMART_PRE_RENDER, [](const EffectCall& call) {
        PF_PreRenderOutput& output = *preExtra(call).output;
        output.pre_render_data = std::malloc(8);
        output.delete_pre_render_data_func = [](void* data) {
            ++deleted;
            std::free(data);
        };
        return promiseInput(call);
    });
    this->script.on(PF_Cmd_SMART_RENDER, [](const EffectCall& call) {
        EXPECT_NE(renderExtra(call).input->pre_render_data, nullptr);
        EXPECT_EQ(deleted, 0);
        return PF_Err_OUT_OF_MEMORY;
    });
    EXPECT_THROW(this->render(), EffectError);
    EXPECT_EQ(deleted, 1);
    this->script.on(PF_Cmd_SMART_PRE_RENDER, [](const EffectCall& call) {
        preExtra(call).output->pre_render_data = std::malloc(8);  // released with free
        return PF_Err_NONE;
    });
    this->render();
}

TYPED_TEST(SmartRenderTest, WritesToALayerAndOutsideTheOutputAreFound) {
    this->script.on(PF_Cmd_SMART_RENDER, [](const EffectCall& call) {
        const PF_Err code = invertInput<TypeParam>(call);
        PF_EffectWorld* input = nullptr;
        PF_EffectWorld* output = nullptr;
        renderExtra(call).cb->checkout_layer_pixels(call.in->effect_ref, 0, &input);
        renderExtra(call).cb->checkout_output(call.in->effect_ref, &output);
        ++rowOf<TypeParam>(*input, 0)[0].red;
        rowOf<TypeParam>(*output, 2)[output->width] = {};
        return code;
    });
    this->render();
    EXPECT_THAT(
        this->found,
        ElementsAre("SMART_RENDER, checkout_layer_pixels: the pixels of id 0 are checked out again; once "
                    "is all",
                    "SMART_RENDER, checkout_layer_pixels: the pixels of parameter 0 were written; they are "
                    "read-only",
                    "SMART_RENDER: the output: bytes in the gap after row 2 were written"));
}

TYPED_TEST(SmartRenderTest, CallsThatDoNotFitAreRefused) {
    this->script.on(PF_Cmd_SMART_PRE_RENDER, [](const EffectCall& call) {
        const PF_RenderRequest request = preExtra(call).input->output_request;
        PF_CheckoutResult result{};
        const auto checkOutAgain = [&](PF_ParamIndex index, A_long id) {
            return preExtra(call).cb->checkout_layer(call.in->effect_ref, index, id, &request, 0, 1, 24,
                                                     &result);
        };
        promiseInput(call);
        EXPECT_EQ(checkOutAgain(0, 0), PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_EQ(checkOutAgain(5, 1), PF_Err_INVALID_INDEX);
        EXPECT_EQ(checkOutAgain(-1, 2), PF_Err_INVALID_INDEX);
        return PF_Err_NONE;
    });
    this->script.on(PF_Cmd_SMART_RENDER, [](const EffectCall& call) {
        PF_EffectWorld* world = nullptr;
        EXPECT_NE(renderExtra(call).cb->checkout_layer_pixels(call.in->effect_ref, 77, &world), 0);
        const auto checkIn = [&] {
            return renderExtra(call).cb->checkin_layer_pixels(call.in->effect_ref, 0);
        };
        EXPECT_NE(checkIn(), 0) << "before the checkout";
        const PF_Err code = invertInput<TypeParam>(call);
        EXPECT_NE(checkIn(), 0) << "a second time";
        return code;
    });
    this->expectInvertedWithin(this->render(), {0, 0, 11, 7});
    EXPECT_EQ(this->found.size(), 5U);
}

TYPED_TEST(SmartRenderTest, PromiseOfMorePixelsThanAWorldMayHaveIsAFailure) {
    for (const PF_LRect rect : {PF_LRect{0, 0, 30001, 1}, PF_LRect{0, 0, 1, 30001}}) {
        this->script.on(PF_Cmd_SMART_PRE_RENDER, [rect](const EffectCall& call) {
            PF_PreRenderOutput& output = *preExtra(call).output;
            output.result_rect = output.max_result_rect = rect;
            output.flags = PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS;
            return PF_Err_NONE;
        });
        EXPECT_THROW(this->render(), Error) << rect.right << " x " << rect.bottom;
    }
}

TYPED_TEST(SmartRenderTest, PromiseThatIsNotKeptIsAFailureAndACancelIsACancel) {
    this->script.on(PF_Cmd_SMART_RENDER, [](const EffectCall&) { return PF_Err_NONE; });
    EXPECT_THROW(this->render(), Error);
    const std::atomic<bool> cancelled = true;
    this->request.cancelled = &cancelled;
    EXPECT_THROW(this->render(), Cancelled);
}

}  // namespace
}  // namespace perch::test
