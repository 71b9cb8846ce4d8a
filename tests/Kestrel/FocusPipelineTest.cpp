#include "FocusPipeline.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <typeinfo>
#include <utility>
#include <vector>

#include "ChannelTypes.h"
#include "ExpectAssertion.h"
#include "FakeContext.h"
#include "FrameBufferOps.h"
#include "Kestrel.h"
#include "NaivePipeline.h"
#include "OracleBuffers.h"
#include "RandomImage.h"

namespace {

using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::Pixel;
using PILib::SimplePixelBuffer;

constexpr int kWidth = 13;
constexpr int kHeight = 9;

template <class C>
struct Frame {
    explicit Frame(unsigned seed)
        : random(seed),
          inputImage(oracle::RandomImage(random, kWidth, kHeight, oracle::kFull<C>)),
          controlImage(oracle::RandomImage(random, kWidth, kHeight, oracle::kFull<C>)) {
        oracle::Store<C>(inputImage, input);
        oracle::Store<C>(controlImage, control);
        output.clear();
    }

    // The frame that the inputs give at full resolution unless told otherwise.
    std::vector<oracle::Colour> rendered(const RenderInputs& inputs, Downsample downsample = {}) {
        FakeContext context;
        output.clear();
        RenderFrame(context, inputs, downsample, output, input, &control);
        return oracle::Fetched(output).values;
    }

    // The control layer's luma as a defocus map.
    void loadMap(const ChannelBuf<C>& map, const RenderInputs& inputs) {
        FakeContext context;
        PILib::ExtractChannel(context, map, control, PILib::kChannelLuma);
        ProcessChannel(map, inputs.focalPoint, inputs.inFocusRange, inputs.invert);
    }

    std::mt19937 random;
    oracle::Image inputImage;
    oracle::Image controlImage;
    SimplePixelBuffer<Pixel<C>> input{kWidth, kHeight};
    SimplePixelBuffer<Pixel<C>> control{kWidth, kHeight};
    SimplePixelBuffer<Pixel<C>> output{kWidth, kHeight};
};

// Claims to hold 8-bit elements and does not.
struct MislabelledChannel : ChannelBuf<Channel16> {
    using ChannelBuf<Channel16>::ChannelBuf;
    int elementKey() const override { return 0; }
};

struct MislabelledPixels : SimplePixelBuffer<Pixel<Channel16>> {
    using SimplePixelBuffer<Pixel<Channel16>>::SimplePixelBuffer;
    int elementKey() const override { return 5; }
};

template <class C>
class FocusPipelineTypedTest : public testing::Test {};

TYPED_TEST_SUITE(FocusPipelineTypedTest, HostChannels, ChannelNames);

TEST(RenderInputsTest, DefaultsAreThoseOfAFreshlyAppliedEffect) {
    const RenderInputs inputs;
    EXPECT_EQ(0, inputs.viewMode);
    EXPECT_EQ(0, inputs.blurType);
    EXPECT_EQ(PILib::kChannelLuma, inputs.channel);
    EXPECT_FLOAT_EQ(0.0F, inputs.focalPoint);
    EXPECT_FLOAT_EQ(0.0F, inputs.inFocusRange);
    EXPECT_FLOAT_EQ(10.0F, inputs.maxBlur);
    EXPECT_FLOAT_EQ(0.0F, inputs.aspect);
    EXPECT_FALSE(inputs.invert);
    EXPECT_TRUE(inputs.conform);
    EXPECT_FLOAT_EQ(0.0F, inputs.blend);
}

TEST(ProcessChannelTest, DistanceFromTheFocusBandIsKeptInChannelUnits) {
    struct Distance {
        float focalPoint, inFocusRange;
        bool invert;
        int value, expected;
    };
    // A focal point of 50% is 127 of 255, a range of 10% is 25.
    for (const Distance& d : {
             Distance{0.5F, 0.1F, false, 0, 102}, Distance{0.5F, 0.1F, false, 101, 1},
             Distance{0.5F, 0.1F, false, 102, 0}, Distance{0.5F, 0.1F, false, 127, 0},
             Distance{0.5F, 0.1F, false, 152, 0}, Distance{0.5F, 0.1F, false, 153, 1},
             Distance{0.5F, 0.1F, false, 200, 48}, Distance{0.5F, 0.1F, true, 55, 48},
             Distance{0.0F, 0.0F, false, 255, 255}, Distance{0.0F, 0.0F, true, 255, 0},
             Distance{1.0F, 0.0F, false, 255, 0}, Distance{1.0F, 1.0F, false, 0, 0},
             Distance{0.5F, 1e10F, true, 255, 127},  // a range that no integer holds is the most negative one
             Distance{0.5F, 10.0F, false, 255, 0},   // beyond the control's own range
         }) {
        const ChannelBuf<Channel8> channel(1, 1);
        channel.row(0)[0] = static_cast<std::uint8_t>(d.value);
        ProcessChannel(channel, d.focalPoint, d.inFocusRange, d.invert);
        EXPECT_EQ(d.expected, channel.row(0)[0]) << d.value << " at focal point " << d.focalPoint
                                                 << ", range " << d.inFocusRange << ", invert " << d.invert;
    }
}

TEST(ProcessChannelTest, InvertReads15BitZeroAsFull) {
    const ChannelBuf<Channel15> channel(2, 1);
    channel.row(0)[0] = 0;
    channel.row(0)[1] = 32768;
    ProcessChannel(channel, 0.0F, 0.0F, true);
    EXPECT_EQ(32768, channel.row(0)[0]);
    EXPECT_EQ(0, channel.row(0)[1]);
}

TYPED_TEST(FocusPipelineTypedTest, EveryControlValueBecomesTheReferencesDefocus) {
    constexpr int kCodes = TypeParam::kOne + 1;
    oracle::Map codes(kCodes, 1, oracle::kFull<TypeParam>);
    for (int value = 0; value < kCodes; ++value)
        codes.at(value, 0) = static_cast<std::uint32_t>(value);
    const ChannelBuf<TypeParam> channel(kCodes, 1);
    for (const float focalPoint : {0.0F, 0.013F, 0.3F, 0.5F, 0.999F, 1.0F}) {
        for (const float inFocusRange : {0.0F, 0.007F, 0.1F, 0.7F, 1.0F}) {
            for (const bool invert : {false, true}) {
                oracle::Store<TypeParam>(codes, channel);
                ProcessChannel(channel, focalPoint, inFocusRange, invert);
                ASSERT_EQ(oracle::DefocusMap(codes, focalPoint, inFocusRange, invert).values,
                          oracle::Fetched(channel).values)
                    << "focal point " << focalPoint << ", range " << inFocusRange << ", invert " << invert;
            }
        }
    }
}

TEST(ProcessChannelTest, OtherDepthsFailTheirAssertionAndMislabelledBuffersAreBadCast) {
    const ChannelBuf<Channel16> channel(2, 2);
    const MislabelledChannel mislabelled(2, 2);
    channel.clear();
    EXPECT_TRUE(FailsAssertion("AEKestrel", 335, [&] { ProcessChannel(channel, 0.5F, 0.0F, true); }));
    EXPECT_EQ(0, channel.row(0)[0]);
    EXPECT_THROW(ProcessChannel(mislabelled, 0.5F, 0.0F, true), std::bad_cast);
}

TYPED_TEST(FocusPipelineTypedTest, FocusViewIsGreyWhereTheMapIsNotZeroAndTheInputElsewhere) {
    Frame<TypeParam> frame(1);
    const oracle::Map map = oracle::RandomMap(frame.random, kWidth, kHeight, oracle::kFull<TypeParam>);
    const ChannelBuf<TypeParam> channel(kWidth, kHeight);
    oracle::Store<TypeParam>(map, channel);
    PaintFocus(frame.output, frame.input, channel);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const std::uint32_t d = map.at(x, y);
            const oracle::Colour grey{oracle::kFull<TypeParam>, d, d, d};
            ASSERT_EQ(d != 0 ? grey : frame.inputImage.at(x, y), oracle::ColourOf(frame.output.row(y)[x]))
                << x << ", " << y << ", map " << d;
        }
    }
}

TEST(PaintFocusTest, OtherDepthsFailTheirAssertionAndWrongBuffersAreBadCast) {
    const Frame<Channel8> at8(2);
    const Frame<Channel15> at15(3);
    const ChannelBuf<Channel8> map8(kWidth, kHeight);
    const ChannelBuf<Channel15> map15(kWidth, kHeight);
    const SimplePixelBuffer<Pixel<Channel16>> output16(kWidth, kHeight);
    const MislabelledPixels mislabelled(kWidth, kHeight);
    output16.clear();
    EXPECT_TRUE(FailsAssertion("AEKestrel", 411, [&] { PaintFocus(output16, at8.input, map8); }));
    EXPECT_EQ(Pixel<Channel16>::kTransparentColor, output16.row(0)[0]);
    EXPECT_THROW(PaintFocus(mislabelled, at8.input, map8), std::bad_cast);
    EXPECT_THROW(PaintFocus(at8.output, at15.input, map8), std::bad_cast);
    EXPECT_THROW(PaintFocus(at8.output, at8.input, map15), std::bad_cast);
    EXPECT_THROW(PaintFocus(at15.output, at8.input, map15), std::bad_cast);
    EXPECT_THROW(PaintFocus(at15.output, at15.input, map8), std::bad_cast);
}

TYPED_TEST(FocusPipelineTypedTest, CompleteBlendShowsTheInputAndNeverTouchesTheControl) {
    Frame<TypeParam> frame(4);
    const SimplePixelBuffer<Pixel<Channel16>> unusable(1, 1);
    for (const float blend : {0.999F, 0.9995F, 1.0F}) {
        FakeContext context;
        RenderInputs inputs;
        inputs.blend = blend;
        EXPECT_TRUE(ShowsOriginal(inputs)) << blend;
        frame.output.clear();
        RenderFrame(context, inputs, {}, frame.output, frame.input, &unusable);
        EXPECT_EQ(frame.inputImage.values, oracle::Fetched(frame.output).values) << blend;
        EXPECT_TRUE(context.progressCalls.empty()) << blend;
    }
    RenderInputs inputs;
    inputs.blend = 0.99899F;
    EXPECT_FALSE(ShowsOriginal(inputs));
}

TYPED_TEST(FocusPipelineTypedTest, WithoutAControlLayerTheOutputIsTheInput) {
    Frame<TypeParam> frame(5);
    for (const int viewMode : {0, 1}) {
        for (const float blend : {0.0F, 0.5F}) {
            FakeContext context;
            RenderInputs inputs;
            inputs.viewMode = viewMode;
            inputs.maxBlur = 200.0F;
            inputs.blend = blend;
            frame.output.clear();
            RenderFrame(context, inputs, {}, frame.output, frame.input, nullptr);
            EXPECT_EQ(frame.inputImage.values, oracle::Fetched(frame.output).values)
                << viewMode << ", " << blend;
        }
    }
}

// What the renderer alone gives for the radii that the pipeline should compute.
TYPED_TEST(FocusPipelineTypedTest, MaximumBlurIsScaledByTheSmallerFactorAndSplitByTheAspect) {
    struct Split {
        float maxBlur, aspect;
        Downsample downsample;
        float radiusX, radiusY;
    };
    Frame<TypeParam> frame(6);
    for (const Split& s : {
             Split{30.0F, 0.0F, {}, 30.0F, 30.0F},
             Split{30.0F, 0.5F, {}, 30.0F, 10.0F},
             Split{30.0F, 1.0F, {}, 30.0F, 6.0F},
             Split{30.0F, -0.25F, {}, 15.0F, 30.0F},
             Split{30.0F, -1.0F, {}, 6.0F, 30.0F},
             Split{30.0F, 0.5F, {0.5F, 1.0F}, 15.0F, 5.0F},
             Split{30.0F, -1.0F, {1.0F, 0.25F}, 1.5F, 7.5F},
             Split{30.0F, 0.0F, {0.5F, 0.25F}, 7.5F, 7.5F},
             Split{0.0F, 0.5F, {}, 0.0F, 0.0F},
         }) {
        for (const bool fine : {false, true}) {
            RenderInputs inputs;
            inputs.maxBlur = s.maxBlur;
            inputs.aspect = s.aspect;
            inputs.blurType = fine ? 1 : 0;
            const ChannelBuf<TypeParam> map(kWidth, kHeight);
            frame.loadMap(map, inputs);
            FakeContext context;
            const SimplePixelBuffer<Pixel<TypeParam>> expected(kWidth, kHeight);
            Kestrel(context, expected, frame.input, map, fine, s.radiusX, s.radiusY);
            EXPECT_EQ(oracle::Fetched(expected).values, frame.rendered(inputs, s.downsample))
                << "blur " << s.maxBlur << ", aspect " << s.aspect << ", downsampling " << s.downsample.x
                << " x " << s.downsample.y << ", fine " << fine;
        }
    }
}

TYPED_TEST(FocusPipelineTypedTest, EachControlChannelGivesItsOwnMap) {
    Frame<TypeParam> frame(7);
    for (int channel = 0; channel <= 6; ++channel) {
        RenderInputs inputs;
        inputs.viewMode = 1;
        inputs.channel = channel;
        inputs.focalPoint = 0.4F;
        inputs.inFocusRange = 0.05F;
        const oracle::Map map = oracle::DefocusMap(oracle::ExtractedChannel(frame.controlImage, channel),
                                                   inputs.focalPoint, inputs.inFocusRange, false);
        EXPECT_EQ(oracle::FocusView(frame.inputImage, map).values, frame.rendered(inputs))
            << "channel " << channel;
    }
}

TYPED_TEST(FocusPipelineTypedTest, ChannelsBeyondBrightnessAreRefused) {
    Frame<TypeParam> frame(8);
    for (const auto& [channel, line] : {std::pair{7, 273}, {8, 279}, {9, 284}}) {
        RenderInputs inputs;
        inputs.channel = channel;
        EXPECT_TRUE(
            FailsAssertion("PILib/PILib Source/FrameBufferOps", line, [&] { frame.rendered(inputs); }));
    }
}

TYPED_TEST(FocusPipelineTypedTest, EveryViewButTheFirstIsTheFocusView) {
    Frame<TypeParam> frame(15);
    RenderInputs inputs;
    inputs.viewMode = 1;
    const std::vector<oracle::Colour> focusView = frame.rendered(inputs);
    inputs.viewMode = 2;
    EXPECT_EQ(focusView, frame.rendered(inputs));
    inputs.viewMode = 0;
    EXPECT_NE(focusView, frame.rendered(inputs));
}

TYPED_TEST(FocusPipelineTypedTest, EveryBlurTypeButTheSecondIsCoarse) {
    Frame<TypeParam> frame(16);
    RenderInputs inputs;
    const std::vector<oracle::Colour> coarse = frame.rendered(inputs);
    for (const int type : {-1, 2, 255}) {
        inputs.blurType = type;
        EXPECT_EQ(coarse, frame.rendered(inputs)) << type;
    }
    inputs.blurType = 1;
    EXPECT_NE(coarse, frame.rendered(inputs));
}

TYPED_TEST(FocusPipelineTypedTest, FocusViewWithTheWholeRangeInFocusIsTheInputThenBlended) {
    Frame<TypeParam> frame(9);
    for (const float blend : {0.0F, 0.5F}) {
        RenderInputs inputs;
        inputs.viewMode = 1;
        inputs.inFocusRange = 1.0F;
        inputs.blend = blend;
        EXPECT_EQ(frame.inputImage.values, frame.rendered(inputs)) << blend;
    }
}

TYPED_TEST(FocusPipelineTypedTest, BothViewsAreBlendedWithTheInput) {
    Frame<TypeParam> frame(10);
    for (const int viewMode : {0, 1}) {
        RenderInputs inputs;
        inputs.viewMode = viewMode;
        oracle::Image processed(kWidth, kHeight, oracle::kFull<TypeParam>);
        processed.values = frame.rendered(inputs);
        for (const float blend : {0.25F, 0.5F, 0.9985F}) {
            inputs.blend = blend;
            EXPECT_EQ(oracle::Blended(processed, frame.inputImage, blend).values, frame.rendered(inputs))
                << "view " << viewMode << ", blend " << blend;
        }
    }
}

// Counts its blends, which may fail.
template <class C>
struct BlendCounter : SimplePixelBuffer<Pixel<C>> {
    using SimplePixelBuffer<Pixel<C>>::SimplePixelBuffer;

    void blend(PILib::PIContext& context, const PILib::PixelBuffer& other, float fraction) const override {
        ++blends;
        if (fails) throw 23;
        SimplePixelBuffer<Pixel<C>>::blend(context, other, fraction);
    }

    bool fails = false;
    mutable int blends = 0;
};

TYPED_TEST(FocusPipelineTypedTest, EveryProcessedFrameIsBlendedOnceHoweverSmallTheShare) {
    struct Case {
        float blend;
        bool hasControl;
        int blends;
    };
    Frame<TypeParam> frame(16);
    for (const int viewMode : {0, 1}) {
        for (const Case& c : {Case{0.0F, true, 1}, Case{0.5F, true, 1}, Case{0.999F, true, 0},
                              Case{0.0F, false, 0}, Case{0.5F, false, 0}}) {
            FakeContext context;
            RenderInputs inputs;
            inputs.viewMode = viewMode;
            inputs.blend = c.blend;
            const BlendCounter<TypeParam> output(kWidth, kHeight);
            RenderFrame(context, inputs, {}, output, frame.input, c.hasControl ? &frame.control : nullptr);
            EXPECT_EQ(c.blends, output.blends)
                << "view " << viewMode << ", blend " << c.blend << ", control " << c.hasControl;
        }
    }
}

// Counts the channel buffers that it has made, and those that are still alive.
template <class C>
struct MapCounter : SimplePixelBuffer<Pixel<C>> {
    using SimplePixelBuffer<Pixel<C>>::SimplePixelBuffer;

    struct Counted : ChannelBuf<C> {
        Counted(int width, int height, int& live) : ChannelBuf<C>(width, height), live(live) { ++live; }
        ~Counted() override { --live; }
        int& live;
    };

    PILib::ChannelBuffer* newChannelBuffer(int width, int height) const override {
        ++made;
        return new Counted(width, height, live);
    }

    mutable int made = 0;
    mutable int live = 0;
};

TYPED_TEST(FocusPipelineTypedTest, MapIsGoneWhenTheFrameIsDoneOrHasFailed) {
    Frame<TypeParam> frame(17);
    for (const bool fails : {false, true}) {
        FakeContext context;
        const MapCounter<TypeParam> control(kWidth, kHeight);
        oracle::Store<TypeParam>(frame.controlImage, control);
        BlendCounter<TypeParam> output(kWidth, kHeight);
        output.fails = fails;
        const auto render = [&] { RenderFrame(context, {}, {}, output, frame.input, &control); };
        if (fails) {
            EXPECT_THROW(render(), int);
        } else {
            render();
        }
        EXPECT_EQ(1, control.made) << "fails " << fails;
        EXPECT_EQ(0, control.live) << "fails " << fails;
    }
}

TYPED_TEST(FocusPipelineTypedTest, ConformControlSizeChangesNothing) {
    Frame<TypeParam> frame(11);
    RenderInputs inputs;
    inputs.conform = true;
    const std::vector<oracle::Colour> conformed = frame.rendered(inputs);
    inputs.conform = false;
    EXPECT_EQ(conformed, frame.rendered(inputs));
}

TYPED_TEST(FocusPipelineTypedTest, FrameSizesMustMatch) {
    Frame<TypeParam> frame(12);
    FakeContext context;
    const SimplePixelBuffer<Pixel<TypeParam>> other(kWidth, kHeight + 1);
    for (const int viewMode : {0, 1}) {
        RenderInputs inputs;
        inputs.viewMode = viewMode;
        EXPECT_TRUE(FailsAssertion(
            "AEKestrel", 1, [&] { RenderFrame(context, inputs, {}, frame.output, other, &frame.control); }));
        EXPECT_TRUE(FailsAssertion(
            "AEKestrel", 1, [&] { RenderFrame(context, inputs, {}, frame.output, frame.input, &other); }));
    }
}

TEST(RenderFrameTest, BuffersOfAnotherDepthAreRefused) {
    Frame<Channel8> at8(13);
    Frame<Channel15> at15(14);
    FakeContext context;
    for (const int viewMode : {0, 1}) {
        RenderInputs inputs;
        inputs.viewMode = viewMode;
        EXPECT_THROW(RenderFrame(context, inputs, {}, at8.output, at15.input, &at8.control), std::bad_cast);
        EXPECT_THROW(RenderFrame(context, inputs, {}, at8.output, at8.input, &at15.control), std::bad_cast);
        EXPECT_THROW(RenderFrame(context, inputs, {}, at8.output, at15.input, nullptr), std::bad_cast);
    }
}

}  // namespace
