// Whole renders through the plug-in's entry point.

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <ostream>
#include <utility>

#include "PluginHost.h"
#include "RandomImage.h"

namespace {

constexpr unsigned kRenders = 1200;
constexpr std::array kThreads = {1, 2, 3, 4, 7, 16, 33, 64};

// One frame: its pictures and where they lie.
struct Frame {
    unsigned seed = 0;
    bool deep = false;
    int width = 0;
    int height = 0;
    int outputWidth = 0;
    int outputHeight = 0;
    PF_Point origin = {};  // of the source in the output
    int controlWidth = 0;  // 0 for no control layer
    int controlHeight = 0;
    int padding = 0;  // pixels
    PF_RationalScale downsampleX = {1, 1};
    PF_RationalScale downsampleY = {1, 1};
    PanelValues values;
};

std::ostream& operator<<(std::ostream& out, const Frame& f) {
    return out << "seed " << f.seed << (f.deep ? ", 16 bits" : ", 8 bits") << ", source " << f.width << " x "
               << f.height << ", output " << f.outputWidth << " x " << f.outputHeight << " at " << f.origin.h
               << ", " << f.origin.v << ", control " << f.controlWidth << " x " << f.controlHeight
               << ", padding " << f.padding << ", downsampling 1/" << f.downsampleX.den << " x 1/"
               << f.downsampleY.den << ", " << f.values;
}

int Pick(std::mt19937& random, int largest) {
    return oracle::RandomUpTo(random, largest);
}

double PickReal(std::mt19937& random, double largest) {
    return Pick(random, 1000) * largest / 1000;
}

PanelValues RandomValues(std::mt19937& random, bool large) {
    PanelValues v;
    v.viewMode = Pick(random, 3) == 0 ? 1 : 0;
    v.blurType = Pick(random, 1);
    v.channel = Pick(random, 6);
    v.focalPoint = PickReal(random, 100);
    v.inFocusRange = PickReal(random, Pick(random, 1) == 0 ? 20 : 100);
    v.maximumBlur = PickReal(random, large ? 12 : 60);
    v.aspect = Pick(random, 4) == 0 ? 0 : PickReal(random, 2) - 1;
    v.invert = Pick(random, 1) == 1;
    v.conform = Pick(random, 1) == 1;
    constexpr std::array kBlends = {0.0, 0.0, 50.0, 99.8, 99.9, 100.0};
    const auto blend = static_cast<std::size_t>(Pick(random, 11));
    v.blend = blend < kBlends.size() ? kBlends[blend] : PickReal(random, 100);
    return v;
}

Frame RandomFrame(unsigned seed, std::mt19937& random) {
    const bool large = seed % 10 == 0;
    Frame f;
    f.seed = seed;
    f.deep = seed % 2 == 1;
    f.width = f.outputWidth = 1 + Pick(random, large ? 60 : 18);
    f.height = f.outputHeight = 1 + Pick(random, large ? 44 : 14);
    f.controlWidth = f.width;
    f.controlHeight = f.height;
    f.padding = Pick(random, 5);
    if (seed % 7 == 0) {
        f.outputWidth += Pick(random, 6);
        f.outputHeight += Pick(random, 6);
        f.origin = {Pick(random, 4) - 1, Pick(random, 4) - 1};
    }
    if (seed % 5 == 0) {
        f.controlWidth = 1 + Pick(random, 24);
        f.controlHeight = 1 + Pick(random, 24);
    }
    if (seed % 13 == 0) f.controlWidth = f.controlHeight = 0;
    f.downsampleX = {1, static_cast<A_u_long>(1 + Pick(random, 3))};
    f.downsampleY = {1, static_cast<A_u_long>(1 + Pick(random, 3))};
    f.values = RandomValues(random, large);
    return f;
}

oracle::Image Placed(const oracle::Image& source, const Frame& f) {
    oracle::Image placed(f.outputWidth, f.outputHeight, source.full);
    for (int y = 0; y < placed.height; ++y) {
        for (int x = 0; x < placed.width; ++x) {
            const int fromX = x - f.origin.h, fromY = y - f.origin.v;
            if (fromX >= 0 && fromX < source.width && fromY >= 0 && fromY < source.height)
                placed.at(x, y) = source.at(fromX, fromY);
        }
    }
    return placed;
}

// Renders the frame and compares output, and everything that must not change.
void RenderAndCompare(PluginHost& host, const Frame& f, std::mt19937& random) {
    const std::uint32_t full = f.deep ? oracle::kFull15 : oracle::kFull8;
    const int padding = f.padding * (f.deep ? 8 : 4);
    const HostWorld source(oracle::RandomImage(random, f.width, f.height, full), padding);
    HostWorld output(f.outputWidth, f.outputHeight, f.deep, padding);
    std::optional<HostWorld> control;
    if (f.controlWidth > 0)
        control.emplace(oracle::RandomImage(random, f.controlWidth, f.controlHeight, full), padding);
    const oracle::Image sourceBefore = source.image();

    host.param(kSourceIndex).u.ld = source.def;
    host.output = &output.def;
    host.control = control ? &*control : nullptr;
    host.in.output_origin_x = f.origin.h;
    host.in.output_origin_y = f.origin.v;
    host.in.downsample_x = f.downsampleX;
    host.in.downsample_y = f.downsampleY;
    host.set(f.values);
    ASSERT_EQ(PF_Err_NONE, host.renderFrame()) << host.message() << ": " << f;

    const bool samePlace = f.width == f.outputWidth && f.height == f.outputHeight;
    const oracle::Image input = samePlace ? sourceBefore : Placed(sourceBefore, f);
    std::optional<oracle::Image> conformed;
    if (control) conformed = HostResampled(control->image(), f.outputWidth, f.outputHeight);
    const oracle::Image expected =
        ExpectedFrame(f.values, host, input, conformed ? &*conformed : nullptr, samePlace);
    for (int y = 0; y < f.outputHeight; ++y) {
        for (int x = 0; x < f.outputWidth; ++x)
            ASSERT_EQ(expected.at(x, y), output.at(x, y)) << x << ", " << y << ": " << f;
    }
    ASSERT_EQ(sourceBefore.values, source.image().values) << f;
    ASSERT_TRUE(output.guardsAreIntact() && source.guardsAreIntact()) << f;
    ASSERT_TRUE(!control || control->guardsAreIntact()) << f;
    ASSERT_EQ("", host.faults()) << f;
}

class PluginThreadsTest : public testing::TestWithParam<int> {};

TEST_P(PluginThreadsTest, RandomFramesEqualTheReference) {
    PluginHost host;
    host.threads = GetParam();
    ASSERT_EQ(PF_Err_NONE, host.setUp()) << host.message();
    for (unsigned i = 0; i < kRenders / kThreads.size(); ++i) {
        const unsigned seed = static_cast<unsigned>(GetParam()) * 1000 + i;
        std::mt19937 random(seed);
        const Frame frame = RandomFrame(seed, random);
        RenderAndCompare(host, frame, random);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(host.iterations.size(), 50U);
    for (const A_long iterations : host.iterations)
        ASSERT_EQ(-1, iterations) << "one iteration per thread of the host";
    host.tearDown();
    EXPECT_EQ(0, host.liveHandles());
    EXPECT_EQ(0, host.liveSuites());
}

INSTANTIATE_TEST_SUITE_P(Threads, PluginThreadsTest, testing::ValuesIn(kThreads));

class PluginRenderTest : public testing::Test {
protected:
    PluginRenderTest() { EXPECT_EQ(PF_Err_NONE, host.setUp()) << host.message(); }
    ~PluginRenderTest() override {
        host.tearDown();
        EXPECT_EQ("", host.faults());
    }
    Frame frameOf(int width, int height) {
        Frame f;
        f.width = f.outputWidth = f.controlWidth = width;
        f.height = f.outputHeight = f.controlHeight = height;
        return f;
    }
    std::mt19937 random{42};
    PluginHost host;
};

TEST_F(PluginRenderTest, FreshlyAppliedEffectRendersItsDefaults) {
    HostWorld source(oracle::RandomImage(random, 24, 20, oracle::kFull8));
    const HostWorld control(oracle::RandomImage(random, 24, 20, oracle::kFull8));
    HostWorld output(24, 20, false);
    host.param(kSourceIndex).u.ld = source.def;
    host.output = &output.def;
    host.control = &control;
    ASSERT_EQ(PF_Err_NONE, host.renderFrame()) << host.message();
    const oracle::Image controlImage = control.image();
    EXPECT_EQ(ExpectedFrame(PanelValues(), host, source.image(), &controlImage, true).values,
              output.image().values);
    ASSERT_EQ(1U, host.checkouts.size());
    EXPECT_EQ(static_cast<PF_ParamIndex>(kControlLayerIndex), host.checkouts[0].index);
    EXPECT_EQ(host.in.current_time, host.checkouts[0].time);
}

TEST_F(PluginRenderTest, EveryControlReachesThePipelineUnderItsIdentifier) {
    PanelValues base;
    base.focalPoint = 30;
    base.inFocusRange = 5;
    base.maximumBlur = 6;
    std::vector<PanelValues> variations(11, base);
    variations[1].viewMode = 1;
    variations[2].blurType = 1;
    variations[3].channel = 1;
    variations[4].focalPoint = 80;
    variations[5].inFocusRange = 40;
    variations[6].maximumBlur = 150;
    variations[7].aspect = -1;
    variations[8].invert = true;
    variations[9].conform = false;
    variations[10].blend = 40;
    for (std::size_t i = 0; i < variations.size(); ++i) {
        Frame f = frameOf(17, 13);
        f.seed = static_cast<unsigned>(i);
        f.values = variations[i];
        RenderAndCompare(host, f, random);
        if (HasFatalFailure()) return;
    }
}

TEST_F(PluginRenderTest, ControlLayerOfAnotherSizeIsStretchedByTheHost) {
    Frame f = frameOf(15, 8);
    f.controlWidth = 10;
    f.controlHeight = 16;
    for (const bool conform : {true, false}) {
        host.transforms.clear();
        f.values.conform = conform;
        RenderAndCompare(host, f, random);
        ASSERT_EQ(1U, host.transforms.size());
        EXPECT_EQ(1.5, host.transforms[0].matrix.mat[0][0]);
        EXPECT_EQ(0.5, host.transforms[0].matrix.mat[1][1]);
        EXPECT_EQ(0.0, host.transforms[0].matrix.mat[2][0]);
        EXPECT_EQ(0.0, host.transforms[0].matrix.mat[2][1]);
        EXPECT_EQ(1, host.transforms[0].sourceToDestination);
        EXPECT_EQ(PF_Quality_HI, host.transforms[0].quality);
        EXPECT_EQ(PF_MF_Alpha_STRAIGHT, host.transforms[0].modeFlags);
        EXPECT_TRUE(host.transforms[0].wholeDestination);
    }
}

TEST_F(PluginRenderTest, ControlLayerOfAnotherDepthIsRefused) {
    for (const bool deep : {false, true}) {
        HostWorld source(oracle::RandomImage(random, 6, 5, deep ? oracle::kFull15 : oracle::kFull8));
        HostWorld output(6, 5, deep);
        const HostWorld control(6, 5, !deep);
        host.param(kSourceIndex).u.ld = source.def;
        host.output = &output.def;
        host.control = &control;
        EXPECT_EQ(512, host.renderFrame());
        EXPECT_EQ("Error 512 in Kestrel", host.message());
        EXPECT_EQ("", host.faults());
    }
}

TEST_F(PluginRenderTest, OriginalIsShownWithoutTouchingTheControlLayer) {
    for (const double blend : {99.9, 100.0}) {
        Frame f = frameOf(9, 9);
        f.values.blend = blend;
        RenderAndCompare(host, f, random);
        EXPECT_TRUE(host.checkouts.empty()) << blend;
    }
}

TEST_F(PluginRenderTest, NoControlLayerShowsTheInputWithoutABlend) {
    Frame f = frameOf(9, 9);
    f.controlWidth = 0;
    f.values.viewMode = 1;
    f.values.blend = 50;
    RenderAndCompare(host, f, random);
    EXPECT_TRUE(host.blends.empty());
    EXPECT_EQ(1U, host.checkouts.size());
}

TEST_F(PluginRenderTest, ControlLayerOfNoSizeIsNoControlLayer) {
    for (const bool narrow : {true, false}) {
        HostWorld source(oracle::RandomImage(random, 9, 8, oracle::kFull8));
        HostWorld output(9, 8, false);
        HostWorld control(9, 8, false);
        (narrow ? control.def.width : control.def.height) = 0;
        host.param(kSourceIndex).u.ld = source.def;
        host.output = &output.def;
        host.control = &control;
        EXPECT_EQ(PF_Err_NONE, host.renderFrame()) << host.message();
        EXPECT_EQ(source.image().values, output.image().values);
        EXPECT_TRUE(host.transforms.empty());
    }
}

// The conformed control picture is disposed before its layer is checked in, also when the render fails.
TEST_F(PluginRenderTest, TheControlPictureIsDisposedBeforeItsLayerIsCheckedIn) {
    const std::pair<Callback, int> ends[] = {{Callback::kBlend, 0},
                                             {Callback::kTransformWorld, 1},
                                             {Callback::kProgress, 1},
                                             {Callback::kBlend, 1}};
    for (const auto& [callback, call] : ends) {
        HostWorld source(oracle::RandomImage(random, 9, 8, oracle::kFull8));
        HostWorld output(9, 8, false);
        const HostWorld control(oracle::RandomImage(random, 5, 4, oracle::kFull8));
        host.param(kSourceIndex).u.ld = source.def;
        host.output = &output.def;
        host.control = &control;
        PanelValues values;
        values.blend = 50;
        host.set(values);
        host.log.clear();
        host.failures.at(callback, call, 5);
        EXPECT_EQ(call == 0 ? PF_Err_NONE : 5, host.renderFrame());
        const auto disposed = std::find(host.log.begin(), host.log.end(), "dispose_world");
        const auto checkedIn = std::find(host.log.begin(), host.log.end(), "checkin_param");
        EXPECT_NE(host.log.end(), disposed);
        EXPECT_NE(host.log.end(), std::find(disposed, host.log.end(), "checkin_param"));
        EXPECT_LT(disposed - host.log.begin(), checkedIn - host.log.begin());
    }
}

TEST_F(PluginRenderTest, SetupNeedsNeitherOutputNorPixels) {
    host.output = nullptr;
    host.param(kSourceIndex).u.ld = PF_LayerDef{};
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP)) << host.message();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN)) << host.message();
}

TEST_F(PluginRenderTest, SourceWithoutPixelsIsRefusedAtRender) {
    HostWorld output(4, 4, false);
    host.output = &output.def;
    host.param(kSourceIndex).u.ld = output.def;
    host.param(kSourceIndex).u.ld.data = nullptr;
    EXPECT_EQ(512, host.renderFrame());
    EXPECT_NE("", host.message());
}

TEST_F(PluginRenderTest, UtilityCallbacksAreThoseOfTheCurrentCall) {
    Frame f = frameOf(9, 7);
    f.values.blend = 30;
    RenderAndCompare(host, f, random);
    auto second = std::make_unique<PF_UtilCallbacks>(host.utils);
    host.in.utils = second.get();
    RenderAndCompare(host, f, random);
    second = std::make_unique<PF_UtilCallbacks>();  // the earlier table is gone
    host.in.utils = &host.utils;
    RenderAndCompare(host, f, random);
}

struct HostKind {
    const char* what;
    PF_SpecVersion version;
    bool hasSuites;
};

TEST(PluginHostsTest, EveryHostGetsItsFrames) {
    const HostKind kinds[] = {{"12.10", {12, 10}, true},
                              {"12.11", {12, 11}, true},
                              {"13.29", {13, 29}, true},
                              {"without suites", {13, 29}, false}};
    for (const HostKind& kind : kinds) {
        SCOPED_TRACE(kind.what);
        PluginHost host;
        host.in.version = kind.version;
        if (!kind.hasSuites) host.in.pica_basicP = nullptr;
        ASSERT_EQ(PF_Err_NONE, host.setUp()) << host.message();
        std::mt19937 random(5);
        for (unsigned seed = 0; seed < 20; ++seed) {
            RenderAndCompare(host, RandomFrame(seed, random), random);
            if (testing::Test::HasFatalFailure()) return;
        }
        EXPECT_EQ(kind.hasSuites, !host.iterations.empty());
    }
}

}  // namespace
