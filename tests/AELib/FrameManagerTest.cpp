// What a frame caches of its call, and its arithmetic of time.

#include "FrameManager.h"

#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "OracleBuffers.h"
#include "RandomImage.h"
#include "TestEffect.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::PixelBuf;

class FrameManagerTest : public HostedEffectTest {
protected:
    void cache(PF_Cmd command) {
        AELib::AEContext context = makeContext(command);
        frame.cacheRenderParams(context);
    }
    template <class C>
    oracle::Image inputImage() {
        return oracle::Fetched<C>(dynamic_cast<const PixelBuf<Pixel<C>>&>(*frame.input));
    }
    TestFrame frame;
};

TEST_F(FrameManagerTest, SetupCachesSizesAndRatiosAndNoPictures) {
    host.in.downsample_x = {1, 2};
    host.in.downsample_y = {1, 4};
    host.in.pixel_aspect_ratio = {10, 11};
    host.param(0).u.ld.width = 12;
    host.param(0).u.ld.height = 7;
    cache(PF_Cmd_FRAME_SETUP);
    EXPECT_EQ(12, frame.inputWidth);
    EXPECT_EQ(7, frame.inputHeight);
    EXPECT_EQ(0.5F, frame.downsampleX);
    EXPECT_EQ(0.25F, frame.downsampleY);
    EXPECT_EQ(10.0F / 11.0F, frame.pixelAspectRatio);
    EXPECT_EQ(nullptr, frame.input);
    EXPECT_EQ(nullptr, frame.output);
    EXPECT_EQ(&host.in, frame.inData);
    EXPECT_EQ(PF_Cmd_FRAME_SETUP, frame.context.cmd);
}

TEST_F(FrameManagerTest, CommandsThatAreNotItsOwnReachNothing) {
    for (PF_Cmd command = -1; command <= 31; ++command) {
        if (command >= PF_Cmd_FRAME_SETUP && command <= PF_Cmd_FRAME_SETDOWN) continue;
        AELib::AEContext context = makeContext(command);
        frame.handleCommand(context);
        EXPECT_TRUE(script.hooks.empty()) << command;
        EXPECT_EQ(nullptr, frame.inData) << command;
    }
}

TEST_F(FrameManagerTest, SetupAndRenderSeeTheirOwnCallAndSetdownThatOfTheRender) {
    const HostWorld sources[] = {{3, 1, false}, {4, 1, false}, {5, 1, false}};
    HostWorld output(2, 1, false);
    host.output = &output.def;
    std::vector<int> widths;
    for (const char* hook : {"frame.frameSetup", "frame.render", "frame.frameSetdown"})
        script.actions[hook] = [&](AELib::AEContext&) { widths.push_back(script.frame->inputWidth); };
    setUpSequence();
    for (int call = 0; call < 3; ++call) {
        host.param(0).u.ld = sources[call].def;
        EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP + call));
    }
    EXPECT_EQ((std::vector<int>{3, 4, 4}), widths);
}

struct NotedBuffer : PILib::SimplePixelBuffer<Pixel<Channel8>> {
    NotedBuffer(const char* name, std::vector<std::string>& ends)
        : SimplePixelBuffer(1, 1), name(name), ends(ends) {}
    ~NotedBuffer() override { ends.emplace_back(name); }
    const char* name;
    std::vector<std::string>& ends;
};

TEST_F(FrameManagerTest, OutputGoesBeforeInput) {
    std::vector<std::string> ends;
    {
        TestFrame ending;
        ending.input = std::make_unique<NotedBuffer>("input", ends);
        ending.output = std::make_unique<NotedBuffer>("output", ends);
    }
    EXPECT_EQ((std::vector<std::string>{"output", "input"}), ends);
}

TEST_F(FrameManagerTest, DenominatorOfZeroCountsAsOne) {
    host.in.downsample_x = host.in.pixel_aspect_ratio = {3, 0};
    cache(PF_Cmd_FRAME_SETUP);
    EXPECT_EQ(1.0F, frame.downsampleX);
    EXPECT_EQ(1.0F, frame.pixelAspectRatio);
}

template <class C>
class FramePictureTest : public FrameManagerTest {};
using Depths = testing::Types<Channel8, Channel15>;
TYPED_TEST_SUITE(FramePictureTest, Depths);

TYPED_TEST(FramePictureTest, SourceOfTheOutputsSizeIsViewedInPlace) {
    std::mt19937 random(1);
    const HostWorld source(oracle::RandomImage(random, 5, 4, oracle::kFull<TypeParam>));
    HostWorld output(5, 4, oracle::kFull<TypeParam> == oracle::kFull15);
    this->host.param(0).u.ld = source.def;
    this->host.output = &output.def;
    this->cache(PF_Cmd_RENDER);
    EXPECT_EQ(5, this->frame.outputWidth);
    EXPECT_EQ(4, this->frame.outputHeight);
    const auto& input = dynamic_cast<const PixelBuf<Pixel<TypeParam>>&>(*this->frame.input);
    EXPECT_EQ(static_cast<const void*>(source.def.data), static_cast<const void*>(input.data));
    EXPECT_EQ(source.image().values, this->template inputImage<TypeParam>().values);
    this->cache(PF_Cmd_FRAME_SETUP);
    EXPECT_EQ(nullptr, this->frame.input);
    EXPECT_EQ(nullptr, this->frame.output);
    EXPECT_EQ(5, this->frame.outputWidth) << "of the last render";
    EXPECT_EQ(4, this->frame.outputHeight);
}

TYPED_TEST(FramePictureTest, SourceOfAnotherSizeIsPlacedAtTheOutputOrigin) {
    struct Case {
        int width, height, originX, originY;
    };
    const Case cases[] = {{9, 8, 2, 3},  {9, 8, 0, 0}, {3, 2, -1, -1},
                          {9, 2, -3, 1}, {5, 9, 0, 8}, {9, 8, 20, 20}};
    std::mt19937 random(2);
    const oracle::Image image = oracle::RandomImage(random, 5, 4, oracle::kFull<TypeParam>);
    const HostWorld source(image);
    this->host.param(0).u.ld = source.def;
    for (const Case& c : cases) {
        HostWorld output(c.width, c.height, oracle::kFull<TypeParam> == oracle::kFull15);
        this->host.output = &output.def;
        this->host.in.output_origin_x = c.originX;
        this->host.in.output_origin_y = c.originY;
        this->cache(PF_Cmd_RENDER);
        oracle::Image expected(c.width, c.height, image.full);
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 5; ++x) {
                const int toX = x + c.originX, toY = y + c.originY;
                if (toX >= 0 && toX < c.width && toY >= 0 && toY < c.height)
                    expected.at(toX, toY) = image.at(x, y);
            }
        }
        EXPECT_EQ(expected.values, this->template inputImage<TypeParam>().values)
            << c.width << " x " << c.height << " at " << c.originX << ", " << c.originY;
        EXPECT_TRUE(source.guardsAreIntact());
    }
}

class FrameTimeTest : public FrameManagerTest {
protected:
    void setTimes(A_long current, A_long step, A_long localStep, A_long total, A_u_long scale) {
        host.in.current_time = current;
        host.in.time_step = step;
        host.in.local_time_step = localStep;
        host.in.total_time = total;
        host.in.time_scale = scale;
        frame.inData = &host.in;
    }
};

TEST_F(FrameTimeTest, QueriesReadTheHostsRecord) {
    setTimes(7007, -2002, -1001, 100100, 24000);
    EXPECT_EQ(7007, frame.getCurrentTime());
    EXPECT_EQ(-2002, frame.getTimeStep());
    EXPECT_EQ(-1001, frame.getLocalTimeStep());
    EXPECT_EQ(2002, frame.getAbsTimeStep());
    EXPECT_EQ(1001, frame.getAbsLocalTimeStep());
    EXPECT_EQ(100100, frame.getTotalTime());
    EXPECT_EQ(24000U, frame.getTimeScale());
}

TEST_F(FrameTimeTest, SecondsAreSinglePrecisionQuotients) {
    setTimes(-7007, -2002, -1001, 100100, 24000);
    EXPECT_EQ(-7007.0F / 24000.0F, frame.getCurrentTimeInSecs());
    EXPECT_EQ(2002.0F / 24000.0F, frame.getAbsTimeStepInSecs());
    EXPECT_EQ(1001.0F / 24000.0F, frame.getAbsLocalTimeStepInSecs());
    EXPECT_EQ(1001.0F / 24000.0F, frame.getFrameDurationInSecs());
    EXPECT_EQ(100100.0F / 24000.0F, frame.getTotalTimeInSecs());
    EXPECT_EQ(24000.0F / 1001.0F, frame.getFPS());
    EXPECT_EQ(12345.0F / 24000.0F, frame.cvtTimeToSecs(12345));
    EXPECT_EQ(3003.0F / 24000.0F, frame.cvtFrameNumberToSecs(3));
}

TEST_F(FrameTimeTest, TimeScaleIsUnsigned) {
    setTimes(1, 1, 1, 1, 4000000000U);
    EXPECT_EQ(1.0F / 4000000000.0F, frame.getCurrentTimeInSecs());
    EXPECT_EQ(4000000000.0F, frame.getFPS());
}

TEST_F(FrameTimeTest, ReversePlaybackCountsLikeForward) {
    for (const A_long step : {1001, -1001}) {
        setTimes(5006, 1001, step, 100100, 24000);
        EXPECT_EQ(5, frame.getCurrentFrameNumber()) << step;
        EXPECT_EQ(100, frame.getTotalFrames()) << step;
        EXPECT_EQ(24000.0F / 1001.0F, frame.getFPS()) << step;
        EXPECT_EQ(4, frame.cvtTimeToFrameNumber(5004)) << step;
        EXPECT_EQ(-4, frame.cvtTimeToFrameNumber(-5004)) << step;
        EXPECT_EQ(7007, frame.cvtFrameNumberToTime(7)) << step;
        EXPECT_EQ(-7007, frame.cvtFrameNumberToTime(-7)) << step;
    }
}

TEST_F(FrameTimeTest, SecondsRoundToTheNearestTimeHalvesAwayFromZero) {
    setTimes(0, 1, 1, 1, 25);
    EXPECT_EQ(13, frame.cvtSecsToTime(0.5F));
    EXPECT_EQ(-13, frame.cvtSecsToTime(-0.5F));
    EXPECT_EQ(12, frame.cvtSecsToTime(0.49F));
    EXPECT_EQ(25, frame.cvtSecsToTime(1.0F));
    EXPECT_EQ(0, frame.cvtSecsToTime(0.0F));
}

TEST_F(FrameTimeTest, StepsOfZeroAndTheSmallestStepDoNotTrap) {
    setTimes(10, 0, 0, 10, 25);
    EXPECT_EQ(0, frame.getCurrentFrameNumber());
    EXPECT_EQ(0, frame.getTotalFrames());
    EXPECT_EQ(0, frame.cvtFrameNumberToTime(3));
    setTimes(10, INT_MIN, INT_MIN, 10, 25);
    EXPECT_EQ(INT_MAX, frame.getAbsTimeStep());
    EXPECT_EQ(INT_MAX, frame.getAbsLocalTimeStep());
}

}  // namespace
