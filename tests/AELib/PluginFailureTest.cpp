// A host that fails, at every call it can fail at.

#include <gtest/gtest.h>

#include "PluginHost.h"
#include "RandomImage.h"

namespace {

// A frame in which the effect uses every callback that a render can reach.
class PluginFailureTest : public testing::TestWithParam<bool> {
protected:
    PluginFailureTest() {
        values.focalPoint = 20;
        values.maximumBlur = 5;
        values.blend = 30;
    }

    void start(PluginHost& host) {
        ASSERT_EQ(PF_Err_NONE, host.setUp()) << host.message();
        host.set(values);
        host.param(kSourceIndex).u.ld = source.def;
        host.output = &output.def;
        host.control = &control;
    }

    void expectRightFrame(PluginHost& host, const std::string& what) {
        ASSERT_EQ(PF_Err_NONE, host.renderFrame()) << what << ": " << host.message();
        const oracle::Image conformed = HostResampled(control.image(), kWidth, kHeight);
        ASSERT_EQ(ExpectedFrame(values, host, source.image(), &conformed, true).values, output.image().values)
            << what;
    }

    static constexpr int kWidth = 40;
    static constexpr int kHeight = 36;
    const std::uint32_t full = GetParam() ? oracle::kFull15 : oracle::kFull8;
    std::mt19937 random{11};
    HostWorld source{oracle::RandomImage(random, kWidth, kHeight, full)};
    HostWorld control{oracle::RandomImage(random, 20, 50, full)};
    HostWorld output{kWidth, kHeight, GetParam()};
    PanelValues values;
};

// What the command answers when the callback answers 87. Without the iteration suite a frame is rendered on
// one thread. A failure to give something back does not fail the command, and some callbacks return no code.
PF_Err ReportedFor(Callback callback) {
    switch (callback) {
        case Callback::kNewHandle:
            return PF_Err_OUT_OF_MEMORY;
        case Callback::kAcquireSuite:
        case Callback::kCheckinParam:
        case Callback::kDisposeWorld:
        case Callback::kLockHandle:
        case Callback::kUnlockHandle:
        case Callback::kDisposeHandle:
        case Callback::kGetHandleSize:
            return PF_Err_NONE;
        default:
            return 87;
    }
}

TEST_P(PluginFailureTest, EveryCallbackFailsOnceAtEachOfItsCalls) {
    int reached = 0;
    for (int index = 0; index < static_cast<int>(Callback::kCount); ++index) {
        const auto callback = static_cast<Callback>(index);
        for (int nth = 1;; ++nth) {
            const std::string what = std::string(NameOf(callback)) + ", call " + std::to_string(nth);
            PluginHost host;  // loads the library anew: suites and the processor count are asked again
            start(host);
            if (HasFatalFailure()) return;
            const int handles = host.liveHandles();
            host.failures.at(callback, nth, 87);
            const PF_Err result = host.renderFrame();
            if (host.failures.calls(callback) < nth) break;
            ++reached;
            const PF_Err reported = ReportedFor(callback);
            ASSERT_EQ(reported, result) << what << ": " << host.message();
            const std::string message =
                reported == PF_Err_NONE ? "" : "Error " + std::to_string(reported) + " in Kestrel";
            ASSERT_EQ(message, host.message()) << what;
            ASSERT_EQ("", host.faults()) << what;
            ASSERT_EQ(handles, host.liveHandles()) << what;
            host.failures.clear();
            expectRightFrame(host, what);
            host.tearDown();
            ASSERT_EQ(0, host.liveHandles()) << what;
            ASSERT_EQ(0, host.liveSuites()) << what;
            ASSERT_EQ("", host.faults()) << what;
        }
    }
    EXPECT_GT(reached, 15);
}

TEST_P(PluginFailureTest, CancelIsSilentAtEachOfItsCalls) {
    for (const Callback callback : {Callback::kProgress, Callback::kAbort}) {
        for (int nth = 1;; ++nth) {
            PluginHost host;
            start(host);
            if (HasFatalFailure()) return;
            host.failures.at(callback, nth, PF_Interrupt_CANCEL);
            const PF_Err result = host.renderFrame();
            if (host.failures.calls(callback) < nth) break;
            ASSERT_EQ(PF_Interrupt_CANCEL, result) << NameOf(callback) << " " << nth;
            ASSERT_EQ("", host.message());
            ASSERT_EQ("", host.faults());
            host.failures.clear();
            expectRightFrame(host, NameOf(callback));
        }
    }
}

// Wider than the strips that rows are rendered in.
TEST_P(PluginFailureTest, RowsBeforeACancelAreWholeAndTheOthersAsTheyWere) {
    constexpr int kRows = 150;
    constexpr int kTableReports = 11;  // one in 16 of the rows and a border of 6 on either side
    values.blend = 0;
    const HostWorld input(oracle::RandomImage(random, 300, kRows, full));
    const HostWorld matte(oracle::RandomImage(random, 300, kRows, full));
    const oracle::Image before = oracle::RandomImage(random, 300, kRows, full);
    PluginHost host;
    host.threads = 1;
    start(host);
    host.param(kSourceIndex).u.ld = input.def;
    host.control = &matte;
    const oracle::Image controlImage = matte.image();
    const oracle::Image whole = ExpectedFrame(values, host, input.image(), &controlImage, true);
    for (int row = 0; row < kRows; row += 16) {
        HostWorld target(before);
        host.output = &target.def;
        host.failures.clear();
        host.failures.at(Callback::kProgress, kTableReports + row / 16 + 1, PF_Interrupt_CANCEL);
        ASSERT_EQ(PF_Interrupt_CANCEL, host.renderFrame()) << row << host.message();
        const oracle::Image rendered = target.image();
        for (int y = 0; y < kRows; ++y) {
            const oracle::Image& expected = y < row ? whole : before;
            for (int x = 0; x < 300; ++x)
                ASSERT_EQ(expected.at(x, y), rendered.at(x, y))
                    << "cancelled at " << row << ": " << x << ", " << y;
        }
    }
    EXPECT_EQ("", host.faults());
}

INSTANTIATE_TEST_SUITE_P(Depths, PluginFailureTest, testing::Bool(),
                         [](const auto& test) { return test.param ? "Deep" : "Shallow"; });

TEST(PluginMissingSuiteTest, FramesNeedNoSuite) {
    std::mt19937 random(3);
    const HostWorld source(oracle::RandomImage(random, 12, 10, oracle::kFull8));
    const oracle::Image control = source.image();
    for (const char* suite : {"PF Iterate8 Suite", "PF Param Utils Suite", "AEGP PF Interface Suite",
                              "AEGP Stream Suite", "AEGP Dynamic Stream Suite", "AEGP Effect Suite"}) {
        PluginHost host;
        host.missingSuites = {suite};
        ASSERT_EQ(PF_Err_NONE, host.setUp()) << suite;
        HostWorld output(12, 10, false);
        host.param(kSourceIndex).u.ld = source.def;
        host.output = &output.def;
        host.control = &source;
        EXPECT_EQ(PF_Err_NONE, host.renderFrame()) << suite;
        EXPECT_EQ(ExpectedFrame(PanelValues(), host, source.image(), &control, true).values,
                  output.image().values)
            << suite;
        EXPECT_EQ("", host.faults()) << suite;
    }
}

TEST(PluginMissingSuiteTest, GlobalSetupNeedsTheUtilitySuite) {
    PluginHost host;
    host.missingSuites = {"AEGP Utility Suite"};
    EXPECT_EQ(512, host.setUp());
    EXPECT_EQ("Error 512 in Kestrel", host.message());
    host.tearDown();
    EXPECT_EQ(0, host.liveHandles());
    EXPECT_EQ(0, host.liveSuites());
}

}  // namespace
