// What becomes of the lines by which frames are asked for.
#include "FrameFeed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <string_view>

namespace perch::test {
namespace {

using testing::ElementsAre;

// A job of frames 3, 1 and 2, beside which 7 is up to date, and the other end of its input.
struct FrameFeedTest : testing::Test {
    int ends[2] = {-1, -1};
    const std::atomic<bool> isCancelled{false};
    FramePlan plan{.isSequence = true, .frames = {}, .stillLayers = {}};
    JobDisplay display{ProgressForm::Json, false};

    FrameFeedTest() {
        for (const std::int32_t frame : {3, 1, 2})
            plan.frames.push_back({frame, "in.png", "out.png", {}});
        plan.current.push_back({7, "in.png", "out.7.png", {}});
        EXPECT_EQ(pipe(ends), 0);
    }
    ~FrameFeedTest() override { close(ends[0]); }

    // The feed of these lines and no more.
    FrameFeed feedOf(std::string_view text) {
        EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(ends[1]);
        return {plan, InputLines(ends[0], isCancelled), display};
    }
};

TEST_F(FrameFeedTest, LinesThatAreThereAreTakenTogether) {
    FrameFeed feed = feedOf("2\n1-3\n");
    EXPECT_THAT(feed.next().value(), ElementsAre(2, 1, 2, 0));
    EXPECT_EQ(feed.next(), std::nullopt);
    EXPECT_TRUE(display.totals().isWhole());
}

TEST_F(FrameFeedTest, WhoeverNeverStopsAskingGetsAnswersInBetween) {
    std::string text;
    for (int i = 0; i < 1001; ++i)
        text += "1\n";
    FrameFeed feed = feedOf(text);
    EXPECT_EQ(feed.next().value().size(), 1000U);
    EXPECT_EQ(feed.next().value().size(), 1U);
    EXPECT_EQ(feed.next(), std::nullopt);
}

TEST_F(FrameFeedTest, FramesOfALongLineAreHandedOutInParts) {
    for (std::int32_t frame = 4; frame <= 1003; ++frame)
        plan.frames.push_back({frame, "in.png", "out.png", {}});
    FrameFeed feed = feedOf("3,1,4-1003\n2\n");
    const std::vector<std::size_t> first = feed.next().value();
    ASSERT_EQ(first.size(), 1000U);
    EXPECT_EQ(first.front(), 0U);
    EXPECT_THAT(feed.next().value(), ElementsAre(1001, 1002, 2));
    EXPECT_EQ(feed.next(), std::nullopt);
}

TEST_F(FrameFeedTest, WhatIsNotRenderedIsAnsweredAtOnce) {
    testing::internal::CaptureStdout();
    FrameFeed feed = feedOf("first\n\n7\n3,4\n9-1x0\n");
    EXPECT_THAT(feed.next().value(), ElementsAre(0));
    EXPECT_EQ(feed.next(), std::nullopt);
    const std::string hint =
        "write them like 12, 1-24, 1-24x2 or 9-1, with commas between several and numbers up to 999999999";
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "{\"line\":\"first\",\"state\":\"failed\",\"message\":\"standard input: \\\"first\\\" is not a "
              "frame or a "
              "range; " +
                  hint +
                  "\"}\n"
                  "{\"line\":\"\",\"state\":\"failed\",\"message\":\"standard input: \\\"\\\" is not a frame "
                  "or a range; " +
                  hint +
                  "\"}\n"
                  "{\"frame\":7,\"state\":\"upToDate\",\"output\":\"out.7.png\"}\n"
                  "{\"frame\":4,\"state\":\"failed\",\"message\":\"frame 4 is not one of the job's; --frames "
                  "names them, "
                  "or they are those that the input had when the job began\"}\n"
                  "{\"line\":\"9-1x0\",\"state\":\"failed\",\"message\":\"standard input: \\\"9-1x0\\\" is "
                  "not a frame or a "
                  "range; " +
                  hint + "\"}\n");
    EXPECT_EQ(display.totals().refusedLines, 3U);
    EXPECT_THAT(display.totals().failed, ElementsAre(4));
    EXPECT_FALSE(display.totals().isWhole());
}

}  // namespace
}  // namespace perch::test
