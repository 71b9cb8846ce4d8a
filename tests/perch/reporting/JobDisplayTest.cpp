// What a job says of itself.
#include "JobDisplay.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Console.h"
#include "Error.h"
#include "PictureFiles.h"
#include "ProgressText.h"
#include "TemporaryFolder.h"
#include "Whereabouts.h"

namespace perch::test {
namespace {

using Json = nlohmann::json;

TEST(JobTotalsTest, SummaryCountsFramesAndSaysWhereTheyAre) {
    struct Case {
        JobTotals totals;
        double seconds;
        const char* text;
    };
    const Case cases[] = {
        {{.done = 24, .skipped = {}, .failed = {}}, 3.2, "24 frames done in 3.2 s, 7.5 per second: o.#.png"},
        {{.done = 1, .skipped = {}, .failed = {}}, 0.04, "1 frame done in 0.0 s: o.#.png"},
        {{.done = 0, .skipped = {4}, .failed = {}}, 0, "0 frames done, 1 skipped in 0.0 s: o.#.png"},
        {{.done = 2, .skipped = {4, 5}, .failed = {1, 2, 3, 9}, .notRendered = 1, .triedAgain = 3},
         4,
         "2 frames done, 2 skipped, 4 failed (1-3,9), 1 not rendered, 3 tried again in 4.0 s, 0.5 per "
         "second: o.#.png"},
    };
    for (const auto& [totals, seconds, text] : cases)
        EXPECT_EQ(summaryText(totals, seconds, "o.#.png"), text);
}

TEST(ProgressTextTest, RateAndTimeLeftComeOnceThereIsSomethingToGoBy) {
    struct Case {
        JobProgress progress;
        const char* text;
    };
    const Case cases[] = {
        {{.number = 1, .count = 4, .fraction = 0, .seconds = 0}, "frame 1 of 4:   0%"},
        {{.number = 1, .count = 4, .fraction = 0, .seconds = 30}, "frame 1 of 4:   0%"},
        {{.number = 1, .count = 4, .fraction = 0.5, .seconds = 0.9}, "frame 1 of 4:  12%"},
        {{.number = 1, .count = 1, .fraction = 0.25, .seconds = 20},
         "frame 1 of 1:  25%, 0.013 per second, 1:00 left"},
        {{.number = 3, .count = 4, .fraction = 0, .seconds = 10},
         "frame 3 of 4:  50%, 0.2 per second, 0:10 left"},
        {{.number = 1001, .count = 5001, .fraction = 0, .seconds = 1000},
         "frame 1001 of 5001:  19%, 1 per second, 1:06:41 left"},
        {{.number = 1, .count = 1000000, .fraction = 0.5, .seconds = 3600},
         "frame 1 of 1000000:   0%, 0.00014 per second"},
    };
    for (const auto& [progress, text] : cases)
        EXPECT_EQ(progressText(progress), text);
}

FramePlan planOf(std::vector<std::int32_t> numbers) {
    FramePlan plan{.isSequence = true, .frames = {}, .stillLayers = {}};
    for (const std::int32_t number : numbers)
        plan.frames.push_back({number, "in.png", "out." + std::to_string(number) + ".png", {}});
    return plan;
}

struct Output {
    std::string out;
    std::string err;
};

// Of frames 7, 8 and 9, the second of which fails after a second try.
void runJob(JobDisplay& display, const std::string& failure = "") {
    FramePlan plan = planOf({7, 8, 9});
    plan.skipped = {3};
    display.begin(plan, "out.#.png");
    for (std::size_t i = 0; i < plan.frames.size(); ++i) {
        display.frameBegins(i);
        display.tellMessage("RENDER", "well");
        display.frameProgresses(0.5);
        const bool fails = i == 1;
        display.frameEnds({.index = i,
                           .state = fails ? FrameEnd::State::Failed : FrameEnd::State::Done,
                           .message = fails ? "why" : "",
                           .retries = fails ? 1 : 0,
                           .renderTime = std::chrono::milliseconds(1500)});
    }
    display.tellNote("note: by the way");
    display.finish(failure);
}

Output jobAs(ProgressForm form, bool isQuiet = false, bool isVerbose = false,
             const std::string& failure = "") {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        JobDisplay display(form, isQuiet, isVerbose);
        runJob(display, failure);
    }
    return {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

TEST(JobDisplayTest, LinesAreOneForEachFrameThatIsDone) {
    const Output job = jobAs(ProgressForm::Lines);
    EXPECT_EQ(job.out, "");
    const std::string lines =
        "perch: frame 7: RENDER: \"well\"\nperch: frame 7 done, 1 of 3\n"
        "perch: frame 8: RENDER: \"well\"\n"
        "perch: frame 9: RENDER: \"well\"\nperch: frame 9 done, 3 of 3\n"
        "perch: note: by the way\n"
        "perch: 2 frames done, 1 skipped, 1 failed (8), 1 tried again in ";
    EXPECT_EQ(job.err.substr(0, lines.size()), lines);
}

TEST(JobDisplayTest, LogOfAShortJobHasNoProgress) {
    for (const ProgressForm form : {ProgressForm::Auto, ProgressForm::None}) {
        const Output job = jobAs(form);
        EXPECT_EQ(job.out, "");
        EXPECT_EQ(std::ranges::count(job.err, '\n'), 5) << job.err;
        EXPECT_EQ(job.err.find('\r'), std::string::npos);
    }
}

TEST(JobDisplayTest, QuietJobSaysNothing) {
    for (const ProgressForm form : {ProgressForm::Auto, ProgressForm::Lines, ProgressForm::None}) {
        const Output job = jobAs(form, true);
        EXPECT_EQ(job.out + job.err, "");
    }
}

// In a program that ends: the log stays open for good.
TEST(JobDisplayDeathTest, LogOfAQuietJobHasWhatItDoesNotSay) {
    const TemporaryFolder folder;
    const std::filesystem::path log = folder / "made" / "log";
    EXPECT_EXIT(
        {
            keepLog(log);
            JobDisplay display(ProgressForm::Lines, true);
            runJob(display);
            std::_Exit(0);
        },
        testing::ExitedWithCode(0), testing::Eq(""));
    std::string told;
    std::istringstream lines(bytesOf(log));
    for (std::string time, sentence; lines >> time && std::getline(lines, sentence);)
        told += sentence + "\n";
    EXPECT_TRUE(
        told.starts_with(" frame 7: RENDER: \"well\"\n frame 7 done, 1 of 3\n"
                         " frame 8: RENDER: \"well\"\n"
                         " frame 9: RENDER: \"well\"\n frame 9 done, 3 of 3\n"
                         " note: by the way\n"
                         " 2 frames done, 1 skipped, 1 failed (8), 1 tried again in "))
        << told;
}

TEST(JobDisplayTest, VerboseJobTellsOfFilesAndTimes) {
    const std::string line =
        "perch: frame 7 done, 1 of 3: in.png -> out.7.png; decoded in 0.000 s, rendered in 1.500 s, encoded "
        "in "
        "0.000 s\n";
    for (const ProgressForm form : {ProgressForm::Auto, ProgressForm::Lines})
        EXPECT_NE(jobAs(form, false, true).err.find(line), std::string::npos);
    EXPECT_EQ(jobAs(ProgressForm::Lines, false, true).err.find("frame 8 done"), std::string::npos);
}

// What a terminal on stderr is given of a job of two frames whose effect tells less than before.
std::string shownOfAnUnsteadyJob() {
    int terminal = -1;
    int programsTerminal = -1;
    if (openpty(&terminal, &programsTerminal, nullptr, nullptr, nullptr) != 0) return "no terminal";
    const int before = dup(STDERR_FILENO);
    dup2(programsTerminal, STDERR_FILENO);
    const FramePlan plan = planOf({7, 8});
    {
        JobDisplay display(ProgressForm::Auto, false);
        display.begin(plan, "out.#.png");
        for (std::size_t i = 0; i < plan.frames.size(); ++i) {
            display.frameBegins(i);
            for (const double fraction : {0.5, 0.2, 0.75, 0.0})
                display.frameProgresses(fraction);
        }
    }
    dup2(before, STDERR_FILENO);
    close(before);
    close(programsTerminal);  // so that reading comes to an end
    std::string shown;
    char part[256];
    for (ssize_t size = 0; (size = read(terminal, part, sizeof part)) > 0;)
        shown.append(part, static_cast<std::size_t>(size));
    close(terminal);
    return shown;
}

TEST(JobDisplayTest, LineOnATerminalNeverRunsBackwards) {
    const std::string shown = shownOfAnUnsteadyJob();
    std::vector<int> percents;
    for (std::size_t at = 0; (at = shown.find('%', at)) != std::string::npos; ++at)
        percents.push_back(std::stoi(shown.substr(at - 3, 3)));
    EXPECT_EQ(percents, (std::vector<int>{0, 25, 37, 50, 75, 87})) << shown;
}

TEST(JobDisplayTest, SchedulersOfOpenJobDescriptionGetWholePercents) {
    const Output job = jobAs(ProgressForm::OpenJd, true);
    EXPECT_EQ(job.err, "");
    const std::string lines =
        "openjd_progress: 0\nopenjd_progress: 16\nopenjd_progress: 33\nopenjd_progress: 50\nopenjd_progress: "
        "66\nopenjd_progress: 83\n"
        "openjd_progress: 100\nopenjd_status: 2 frames done, 1 skipped, 1 failed (8), 1 tried again in ";
    EXPECT_EQ(job.out.substr(0, lines.size()), lines);
    EXPECT_TRUE(jobAs(ProgressForm::OpenJd, true, false, "frame 3: no\nopenjd_env: A=B")
                    .out.ends_with("\nopenjd_fail: frame 3: no?openjd_env: A=B\n"));
}

// It is told from within the effect, through which no exception may pass.
TEST(JobDisplayTest, ProgressThatCannotBePrintedIsTheFramesEnd) {
    const FramePlan plan = planOf({7});
    JobDisplay display(ProgressForm::OpenJd, true);
    display.begin(plan, "out.#.png");
    display.frameBegins(0);
    const int before = dup(STDOUT_FILENO);
    const int full = open("/dev/full", O_WRONLY);
    dup2(full, STDOUT_FILENO);
    EXPECT_NO_THROW(display.frameProgresses(0.5));
    EXPECT_NO_THROW(display.frameProgresses(0.7));
    dup2(before, STDOUT_FILENO);
    close(full);
    close(before);
    EXPECT_THROW(display.frameEnds({.index = 0}), OutputError);
}

TEST(JobDisplayTest, LastLineCountsTheFramesThatAJobHasNotComeTo) {
    const FramePlan plan = planOf({7, 8, 9});
    testing::internal::CaptureStderr();
    JobDisplay display(ProgressForm::None, false);
    display.begin(plan, "out.#.png");
    display.frameBegins(0);
    display.frameEnds({.index = 0});
    display.frameBegins(1);
    EXPECT_TRUE(
        whereabouts().lastLineOfFailure.get().starts_with("1 frame done, 1 failed (8), 1 not rendered in "))
        << "where the effect crashes at it";
    EXPECT_TRUE(whereabouts().lastLine.get().starts_with("1 frame done, 2 not rendered in "))
        << "where the user ends it";
    display.finish();
    EXPECT_TRUE(
        testing::internal::GetCapturedStderr().starts_with("perch: 1 frame done, 2 not rendered in "));
    EXPECT_EQ(whereabouts().lastLine.get(), "") << "nobody needs to tell it again";
}

// The parent answers for a worker that the effect has ended.
TEST(JobDisplayTest, FramesWithoutAnAnswerAreKeptForTheParent) {
    const FramePlan plan = planOf({7, 8, 9});
    const Whereabouts& at = whereabouts();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    JobDisplay display(ProgressForm::Json, true);
    display.begin(plan, "out.#.png", true);
    EXPECT_EQ(at.unanswered.get(), "");
    display.framesAreAsked({2, 0, 1});
    display.frameBegins(2);
    EXPECT_EQ(at.unanswered.get(), "9,7,8");
    display.frameEnds({.index = 2});
    display.frameBegins(0);
    EXPECT_EQ(at.unanswered.get(), "7,8");
    const Json totals = Json::parse(at.totals.get());
    EXPECT_EQ(totals["done"], 1);
    EXPECT_EQ(totals["failed"], Json({7, 8}));
    testing::internal::GetCapturedStdout();
    testing::internal::CaptureStdout();
    display.effectBreaks("no");
    display.finish();
    EXPECT_TRUE(testing::internal::GetCapturedStdout().starts_with(
        "{\"frame\":7,\"state\":\"failed\",\"message\":\"no\"}\n"
        "{\"frame\":8,\"state\":\"failed\",\"message\":\"no\"}\n"
        "{\"done\":1,\"upToDate\":0,\"skipped\":[],\"failed\":[7,8],"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(at.unanswered.get() + at.totals.get(), "") << "nobody needs to tell it again";
}

TEST(JobDisplayTest, TotalsBeforeAFailureAreToldOnce) {
    const FramePlan plan = planOf({7, 8, 9});
    testing::internal::CaptureStdout();
    JobDisplay display(ProgressForm::Json, true);
    display.begin(plan, "out.#.png", true);
    display.framesAreAsked({0, 1});
    display.frameBegins(0);
    display.frameEnds({.index = 0, .state = FrameEnd::State::Failed});
    display.finishBeforeFailure();
    const Whereabouts& at = whereabouts();
    EXPECT_EQ(at.unanswered.get() + at.totals.get(), "") << "a crash behind it tells them again";
    EXPECT_NE(at.lastLine.get(), "");
    testing::internal::GetCapturedStdout();
}

TEST(JobDisplayTest, OfFramesThatNobodyAsksForTheOneUnderWayIsLost) {
    const FramePlan plan = planOf({7, 8, 9});
    testing::internal::CaptureStdout();
    JobDisplay display(ProgressForm::Json, true);
    display.begin(plan, "out.#.png");
    display.frameBegins(0);
    display.frameBegins(1);
    display.frameEnds({.index = 0});
    EXPECT_EQ(whereabouts().unanswered.get(), "8");
    display.frameEnds({.index = 1});
    EXPECT_EQ(whereabouts().unanswered.get(), "");
    testing::internal::GetCapturedStdout();
}

TEST(JobDisplayTest, JsonIsALineForEachFrameAndOneForAll) {
    const Output job = jobAs(ProgressForm::Json, true);
    EXPECT_EQ(job.err, "");
    std::istringstream stream(job.out);
    std::vector<Json> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(Json::parse(line));
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0]["frame"], 7);
    EXPECT_EQ(lines[0]["state"], "done");
    EXPECT_EQ(lines[0]["output"], "out.7.png");
    EXPECT_EQ(lines[0]["renderSeconds"], 1.5);
    EXPECT_FALSE(lines[0].contains("message"));
    EXPECT_EQ(lines[1]["state"], "failed");
    EXPECT_EQ(lines[1]["message"], "why");
    EXPECT_EQ(lines[1]["retries"], 1);
    EXPECT_EQ(lines[2]["number"], 3);
    EXPECT_EQ(lines[2]["of"], 3);
    EXPECT_EQ(lines[3]["done"], 2);
    EXPECT_EQ(lines[3]["skipped"], Json({3}));
    EXPECT_EQ(lines[3]["failed"], Json({8}));
}

}  // namespace
}  // namespace perch::test
