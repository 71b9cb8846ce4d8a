// What the reports of a job's tasks are together.
#include "MergedReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Error.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using State = FrameRecord::State;

FrameRecord frameOf(std::int32_t number, State state) {
    return {.frame = number,
            .state = state,
            .output = "out." + std::to_string(number) + ".png",
            .fingerprint = "0123456789abcdef"};
}

// The tasks 1/2 and 2/2 of four frames.
struct MergedReportTest : testing::Test {
    std::vector<NamedRecord> tasks{{"a.json", record("2026-11-22T05:16:10Z", 1)},
                                   {"b.json", record("2026-11-22T05:16:00Z", 2)}};

    static JobRecord record(const std::string& begin, std::int32_t first) {
        return {.version = "1.0.0",
                .arguments = {"-i", "in.#.png", "--shard", std::to_string(first) + "/2", "--report=r.#.json"},
                .shard = Shard{.number = static_cast<std::size_t>(first), .count = 2},
                .effect = "Effect",
                .effectBuild = "fedcba9876543210",
                .parameters = {{"--amount", "10"}},
                .state = "done",
                .begin = begin,
                .seconds = 4,
                .skipped = {first + 10},
                .notes = {"one", "of shard " + std::to_string(first)},
                .frames = {frameOf(first, State::Done), frameOf(first + 2, State::Done)}};
    }

    JobRecord merged() const { return mergedRecord(tasks); }

    std::vector<State> states() const {
        std::vector<State> states;
        for (const FrameRecord& frame : merged().frames)
            states.push_back(frame.state);
        return states;
    }
};

TEST_F(MergedReportTest, FramesOfAllTasksStandInOneReportByTheirNumbers) {
    const JobRecord whole = merged();
    std::vector<std::int32_t> numbers;
    for (const FrameRecord& frame : whole.frames)
        numbers.push_back(frame.frame);
    EXPECT_THAT(numbers, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(whole.arguments, ElementsAre("-i", "in.#.png"));
    EXPECT_EQ(whole.state, "done");
    EXPECT_EQ(whole.begin, "2026-11-22T05:16:00Z");
    EXPECT_EQ(whole.seconds, 14);
    EXPECT_THAT(whole.skipped, ElementsAre(11, 12));
    EXPECT_THAT(whole.notes, ElementsAre("one", "of shard 1", "of shard 2"));
}

TEST_F(MergedReportTest, FrameThatATaskHasDoneCountsOverOneThatAnotherHasNot) {
    JobRecord killed = tasks[0].record;
    killed.state = "running";
    killed.frames[1].state = State::Waiting;
    tasks.insert(tasks.begin(), {"killed.json", killed});
    EXPECT_THAT(states(), ElementsAre(State::Done, State::Done, State::Done, State::Done));
    EXPECT_EQ(merged().state, "done");
    tasks.push_back(tasks.front());
    EXPECT_EQ(merged().state, "done") << "in any order";
    tasks.erase(tasks.begin() + 1);
    EXPECT_THAT(states(), ElementsAre(State::Done, State::Done, State::Waiting, State::Done));
    EXPECT_EQ(merged().state, "running");
}

TEST_F(MergedReportTest, FailureCountsUntilAnotherTaskHasDoneTheFrame) {
    JobRecord& failed = tasks[1].record;
    failed.state = "failed";
    failed.error = "frame 4: no";
    failed.frames[1].state = State::Failed;
    failed.frames[1].error = "frame 4: no";
    EXPECT_EQ(merged().state, "failed");
    EXPECT_EQ(merged().error, "frame 4: no");
    EXPECT_EQ(merged().frames[3].error, "frame 4: no");
    JobRecord killed = record("2026-11-22T05:18:00Z", 2);
    killed.frames[1].state = State::Waiting;
    tasks.push_back({"killed.json", killed});
    EXPECT_EQ(states()[3], State::Failed) << "the other has not come to it";
    tasks.pop_back();
    tasks.push_back({"again.json", record("2026-11-22T05:20:00Z", 2)});
    EXPECT_EQ(merged().state, "done");
    EXPECT_EQ(merged().error, "");
    // Not of a frame, as a fault that strict mode has found.
    tasks[2].record.state = "failed";
    EXPECT_EQ(merged().state, "failed");
}

TEST_F(MergedReportTest, MissingTasksLeaveTheWholeIncomplete) {
    for (NamedRecord& task : tasks)
        task.record.shard->count = 5;
    EXPECT_EQ(merged().state, kIncomplete);
    EXPECT_EQ(merged().error, "the reports of shards 3-5 of 5 are missing; name those of all tasks");
    EXPECT_EQ(merged().frames.size(), 4U);
    tasks = {{"b.json", record("2026-11-22T05:16:00Z", 2)}};
    EXPECT_EQ(merged().error, "the report of shard 1 of 2 is missing; name those of all tasks");
    tasks.push_back(tasks.front());
    EXPECT_EQ(merged().state, kIncomplete) << "the same one twice";
    JobRecord byHand = record("2026-11-22T05:18:00Z", 1);
    byHand.shard.reset();
    tasks.push_back({"by-hand.json", byHand});
    EXPECT_EQ(merged().state, kIncomplete);
    tasks.push_back({"a.json", record("2026-11-22T05:16:10Z", 1)});
    EXPECT_EQ(merged().state, "done");
    EXPECT_FALSE(merged().shard);
}

TEST_F(MergedReportTest, FrameThatATaskHasIsNotSkipped) {
    tasks[0].record.skipped = {4, 12};  // missing then, and done by the other since
    EXPECT_THAT(merged().skipped, ElementsAre(12));
}

TEST_F(MergedReportTest, EveryConflictIsNamed) {
    tasks[1].record.version = "1.1.0";
    tasks[1].record.effectBuild = "0000000000000000";
    tasks[1].record.parameters = {};
    tasks[1].record.shard->count = 3;
    FrameRecord other = frameOf(1, State::Done);
    other.fingerprint = "0000000000000000";
    tasks[1].record.frames.push_back(other);
    tasks[1].record.frames[0].output = "out.3.png";
    FrameRecord elsewhere = frameOf(3, State::Done);
    elsewhere.output = "elsewhere.png";
    tasks[1].record.frames.push_back(elsewhere);
    try {
        merged();
        ADD_FAILURE();
    } catch (const Error& error) {
        for (const char* const conflict : {"\"b.json\" has another version of perch than \"a.json\"",
                                           "\"b.json\" has another build of the effect than \"a.json\"",
                                           "\"b.json\" has other parameters than \"a.json\"",
                                           "\"b.json\" is of 3 shards and \"a.json\" of 2",
                                           "frame 1 is not the same in \"a.json\" and \"b.json\"",
                                           "frame 3 is not the same in \"a.json\" and \"b.json\"",
                                           "frames 2 and 3 are both \"out.3.png\""})
            EXPECT_THAT(error.what(), HasSubstr(conflict));
    }
}

}  // namespace
}  // namespace perch::test
