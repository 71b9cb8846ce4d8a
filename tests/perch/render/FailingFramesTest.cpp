// What a job does about frames that fail.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <future>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "PictureFiles.h"
#include "RenderJob.h"
#include "ScriptedEffect.h"
#include "TemporaryFolder.h"
#include "WaitForFrames.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct FailingFramesTest : testing::Test {
    TemporaryFolder folder;
    FramePlan plan{.isSequence = true, .frames = {}, .stillLayers = {}};
    RenderSettings settings;
    ScriptedEffect script;
    RenderWatch watch;
    std::vector<FrameEnd> ends;
    RenderReport report;

    FailingFramesTest() {
        for (int frame = 1; frame <= 5; ++frame) {
            const std::string name = std::to_string(frame) + ".png";
            writeFile<std::uint8_t>(folder / ("in." + name), {}, {10, 20, 30, 255});
            plan.frames.push_back({frame, folder / ("in." + name), folder / ("out." + name), {}});
        }
        watch.frameEnds = [this](const FrameEnd& end) { ends.push_back(end); };
    }

    void damageInputOf(int frame) {
        writeBytes(plan.frames[static_cast<std::size_t>(frame - 1)].input, "no picture");
    }

    // Longer than a file's name may be, which shows when the written file is given its name.
    void makeOutputImpossibleOf(int frame) {
        plan.frames[static_cast<std::size_t>(frame - 1)].output = folder / (std::string(300, 'x') + ".png");
    }

    void failEffectAt(int frame) {
        script.on(PF_Cmd_RENDER,
                  [frame](const EffectCall& call) { return call.in->current_time == frame ? 4 : 0; });
    }

    void render() {
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        renderFrames(effect, settings, {}, plan, watch, report);
    }

    // Of the frames that have ended, in their order.
    std::vector<std::string> states() const {
        std::vector<std::string> texts;
        for (const FrameEnd& end : ends)
            texts.push_back(std::to_string(plan.frames[end.index].frame) +
                            (end.state == FrameEnd::State::Done ? " done" : " failed"));
        return texts;
    }
};

TEST_F(FailingFramesTest, JobGoesOnWhereItIsTo) {
    settings.goesOn = true;
    damageInputOf(2);
    failEffectAt(3);
    makeOutputImpossibleOf(4);
    for (const std::size_t framesAhead : {1U, 8U}) {
        settings.framesAhead = framesAhead;
        ends.clear();
        render();
        EXPECT_THAT(states(), ElementsAre("1 done", "2 failed", "3 failed", "4 failed", "5 done"));
        EXPECT_THAT(ends[1].message, HasSubstr("frame 2: cannot read \"" + plan.frames[1].input.string()));
        EXPECT_THAT(ends[2].message, HasSubstr("frame 3: plug-in returned 4 at RENDER"));
        EXPECT_THAT(ends[3].message, HasSubstr("frame 4: cannot write"));
    }
    EXPECT_EQ(report.framesWritten, 4U) << "in two jobs";
    for (std::size_t i = 0; i < plan.frames.size(); ++i)
        EXPECT_EQ(std::filesystem::exists(folder / ("out." + std::to_string(i + 1) + ".png")),
                  i == 0 || i == 4)
            << i;
}

TEST_F(FailingFramesTest, JobEndsAtTheFirstWhereItIsNotToGoOn) {
    settings.framesAhead = 8;
    failEffectAt(3);
    EXPECT_THROW(render(), EffectError);
    EXPECT_THAT(states(), ElementsAre("1 done", "2 done", "3 failed"));
    damageInputOf(2);
    ends.clear();
    EXPECT_THROW(render(), Error);
    EXPECT_THAT(states(), ElementsAre("1 done", "2 failed"));
}

// Frames that were begun before the failure showed may follow it.
TEST_F(FailingFramesTest, FirstFailureIsThatOfTheFirstFrame) {
    settings.framesAhead = 8;
    makeOutputImpossibleOf(1);
    damageInputOf(3);
    try {
        render();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Error& error) {
        EXPECT_THAT(error.what(), HasSubstr("frame 1: cannot write"));
    }
    EXPECT_EQ(states().front(), "1 failed");
}

TEST_F(FailingFramesTest, EffectIsAskedAgainAsOftenAsWanted) {
    std::map<A_long, int> failures;
    script.on(PF_Cmd_RENDER,
              [&](const EffectCall& call) { return failures[call.in->current_time]++ < 2 ? 4 : 0; });
    settings.retries = 2;
    render();
    for (const FrameEnd& end : ends)
        EXPECT_EQ(end.retries, 2);
    EXPECT_EQ(report.framesWritten, 5U);
    failures.clear();
    ends.clear();
    settings.retries = 1;
    EXPECT_THROW(render(), EffectError);
    EXPECT_THAT(states(), ElementsAre("1 failed"));
    EXPECT_EQ(ends[0].retries, 1);
}

TEST_F(FailingFramesTest, FilesAreTriedAgainAsOftenAsWanted) {
    settings.goesOn = true;
    settings.retries = 3;
    damageInputOf(1);
    makeOutputImpossibleOf(2);
    render();
    EXPECT_THAT(states(), ElementsAre("1 failed", "2 failed", "3 done", "4 done", "5 done"));
    EXPECT_EQ(ends[0].retries, 3);
    EXPECT_EQ(ends[1].retries, 3);
    EXPECT_EQ(ends[2].retries, 0);
}

// Whatever waits for a thread, the job comes to its end.
TEST_F(FailingFramesTest, OneThreadDoesEverythingInTurn) {
    ThreadBudget budget(1);
    settings.budget = &budget;
    settings.framesAhead = 8;
    settings.goesOn = true;
    damageInputOf(2);
    render();
    EXPECT_THAT(states(), ElementsAre("1 done", "2 failed", "3 done", "4 done", "5 done"));
    const ThreadShare free(&budget);
}

TEST_F(FailingFramesTest, NothingIsDoneWithoutAShareOfTheThreads) {
    constexpr std::chrono::milliseconds kLong{50};  // for what does not wait
    plan.frames.resize(1);
    ThreadBudget budget(1);
    settings.budget = &budget;
    std::atomic<bool> isRead{false};
    watch.frameBegins = [&](std::size_t) { isRead = true; };
    std::atomic<bool> isOthersTurn{false};
    std::future<void> other;  // whose turn is between rendering and writing
    script.on(PF_Cmd_RENDER, [&](const EffectCall&) {
        other = std::async(std::launch::async, [&, turn = ThreadTurn(&budget)]() mutable {
            const ThreadShare share(std::move(turn));
            isOthersTurn = true;
            std::this_thread::sleep_for(kLong);
            EXPECT_EQ(report.framesWritten, 0U);
        });
        std::this_thread::sleep_for(kLong);
        EXPECT_FALSE(isOthersTurn) << "while the effect renders";
        return PF_Err_NONE;
    });
    std::optional<ThreadShare> own(&budget);
    std::future<void> job = std::async(std::launch::async, [this] { render(); });
    std::this_thread::sleep_for(kLong);
    EXPECT_FALSE(isRead);
    own.reset();
    job.get();
    other.get();
    EXPECT_EQ(report.framesWritten, 1U);
}

// A frame of one pixel takes 16 bytes: its codes and samples, before and after.
TEST_F(FailingFramesTest, FramesInMemoryAreAsManyAsThereIsRoomFor) {
    settings.framesAhead = 8;
    settings.memory = 31;
    watch.frameBegins = [&](std::size_t index) { EXPECT_EQ(ends.size(), index); };
    render();
    EXPECT_EQ(ends.size(), 5U);
    settings.memory = 15;
    try {
        render();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Error& error) {
        EXPECT_EQ(error.status(), kBadInput);
        EXPECT_THAT(error.what(), HasSubstr("frame 1: its pictures take 1 MB, and --max-memory allows 0"));
    }
}

TEST_F(FailingFramesTest, CancelEndsAJobThatGoesOn) {
    settings.goesOn = true;
    settings.retries = 9;
    std::atomic<bool> cancelled{false};
    watch.cancelled = &cancelled;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        if (call.in->current_time < 3) return PF_Err_NONE;
        waitForFrames(report, 2);
        cancelled = true;
        return PF_Err_NONE;
    });
    EXPECT_THROW(render(), Cancelled);
    EXPECT_THAT(states(), ElementsAre("1 done", "2 done"));
}

// Each is done, and told of, before the next are asked for.
TEST_F(FailingFramesTest, FramesAreRenderedAsTheyAreAskedFor) {
    settings.goesOn = true;
    settings.framesAhead = 8;
    failEffectAt(3);
    std::vector<std::vector<std::size_t>> orders{{4, 2}, {}, {0}, {4}};
    std::vector<std::size_t> endsBefore;
    watch.nextFrames = [&]() -> std::optional<std::vector<std::size_t>> {
        endsBefore.push_back(ends.size());
        if (orders.empty()) return std::nullopt;
        const std::vector<std::size_t> next = orders.front();
        orders.erase(orders.begin());
        return next;
    };
    render();
    EXPECT_THAT(states(), ElementsAre("5 done", "3 failed", "1 done", "5 done"));
    EXPECT_THAT(endsBefore, ElementsAre(0, 2, 2, 3, 4));
}

TEST_F(FailingFramesTest, NothingMoreIsAskedForAfterAFailureThatEndsTheJob) {
    failEffectAt(3);
    int asked = 0;
    watch.nextFrames = [&]() -> std::optional<std::vector<std::size_t>> {
        ++asked;
        return std::vector<std::size_t>{2};
    };
    EXPECT_THROW(render(), EffectError);
    EXPECT_EQ(asked, 1);
}

TEST_F(FailingFramesTest, CancelWhileNothingIsAskedForEndsTheJob) {
    std::atomic<bool> cancelled{false};
    watch.cancelled = &cancelled;
    watch.nextFrames = [&]() -> std::optional<std::vector<std::size_t>> {
        cancelled = true;
        return std::nullopt;
    };
    EXPECT_THROW(render(), Cancelled);
}

TEST_F(FailingFramesTest, NothingIsTriedAgainAfterACancel) {
    settings.retries = 9;
    std::atomic<bool> cancelled{false};
    watch.cancelled = &cancelled;
    int tries = 0;
    script.on(PF_Cmd_RENDER, [&](const EffectCall&) {
        ++tries;
        cancelled = true;
        return 4;
    });
    EXPECT_THROW(render(), Error);
    EXPECT_EQ(tries, 1);
}

TEST_F(FailingFramesTest, UsersChoicesAreToldOnceThoughTheFirstFrameFails) {
    settings.goesOn = true;
    damageInputOf(1);
    int tellings = 0;
    script.declareFlags(PF_OutFlag_SEND_UPDATE_PARAMS_UI);
    script.on(PF_Cmd_UPDATE_PARAMS_UI, [&](const EffectCall&) {
        ++tellings;
        return PF_Err_NONE;
    });
    render();
    EXPECT_EQ(tellings, 1);
    EXPECT_EQ(report.framesWritten, 4U);
}

}  // namespace
}  // namespace perch::test
