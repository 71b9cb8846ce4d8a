// What a report holds while a job runs, and whether it is as its schema says.
#include "ReportFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>

#include "Error.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"
#include "ToolRun.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using State = FrameRecord::State;

struct ReportFileTest : testing::Test {
    const TemporaryFolder folder;
    const std::filesystem::path path = folder / "report.json";
    JobRecord record{.version = "1.0.0",
                     .arguments = {"-i", "in.####.png", "--label", "caf\xE9"},
                     .shard = Shard{.number = 2, .count = 8},
                     .effect = "Effect",
                     .effectBuild = "0123456789abcdef",
                     .parameters = {{"--amount", "1:10:linear,3:30:smooth"}},
                     .skipped = {4},
                     .notes = {"one"},
                     .frames = {}};

    ReportFileTest() {
        for (const std::int32_t frame : {1, 2, 3}) {
            const std::string name = std::to_string(frame) + ".png";
            writeBytes(folder / ("out." + name), "a picture");
            record.frames.push_back({.frame = frame,
                                     .input = "in." + name,
                                     .layers = {{"--matte", "none"}},
                                     .output = (folder / ("out." + name)).string(),
                                     .values = {{"--amount", "10"}},
                                     .fingerprint = "fedcba9876543210"});
        }
    }

    JobRecord onDisk() const { return readRecord(path).value(); }
};

bool isAsTheSchemaSays(const TemporaryFolder& folder, const std::string& report) {
    writeBytes(folder / "validate.py",
               "import json, jsonschema, sys\n"
               "schema = json.load(open(sys.argv[1]))\n"
               "jsonschema.Draft202012Validator.check_schema(schema)\n"
               "jsonschema.Draft202012Validator(schema).validate(json.load(open(sys.argv[2])))\n");
    try {
        runTool(folder.path, "python3 validate.py " PERCH_SOURCES "/docs/report.schema.json " + report);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

TEST_F(ReportFileTest, ItTellsWhatHasBecomeOfEachFrame) {
    ReportFile file(path, record);
    EXPECT_EQ(onDisk().state, "running");
    EXPECT_EQ(onDisk().frames[0].state, State::Waiting);
    file.addMessage(1, "RENDER: \"hello\"");
    file.frameEnds(1, {.index = 0, .retries = 2, .decodeTime = std::chrono::milliseconds(1500)});
    file.frameEnds(3, {.index = 1, .state = FrameEnd::State::Failed, .message = "frame 3: no"});
    file.finish("failed", "frame 3: no", {"two"});
    const JobRecord end = onDisk();
    EXPECT_EQ(end.state, "failed");
    EXPECT_EQ(end.error, "frame 3: no");
    EXPECT_THAT(end.notes, ElementsAre("one", "two"));
    EXPECT_EQ(end.frames[0].state, State::Done);
    EXPECT_EQ(end.frames[0].retries, 2);
    EXPECT_EQ(end.frames[0].seconds.value().decode, 1.5);
    EXPECT_EQ(end.frames[0].outputState, fileState(folder / "out.1.png"));
    EXPECT_THAT(end.frames[0].messages, ElementsAre("RENDER: \"hello\""));
    EXPECT_EQ(end.frames[1].state, State::Waiting);
    EXPECT_EQ(end.frames[2].state, State::Failed);
    EXPECT_EQ(end.frames[2].error, "frame 3: no");
    EXPECT_EQ(recordText(end), bytesOf(path));
    EXPECT_EQ(tracesOf(end).size(), 1U);
}

TEST_F(ReportFileTest, OfAJobThatIsFedItHasTheFramesThatWereAskedFor) {
    record.frames[2].state = State::Done;
    ReportFile file(path, record, true);
    file.frameIsAsked(2);
    file.addMessage(2, "RENDER: \"hello\"");
    file.frameEnds(2, {.index = 1, .state = FrameEnd::State::Failed, .message = "frame 2: no"});
    file.frameIsAsked(2);
    file.frameEnds(2, {.index = 1});
    file.finish("done", "", {});
    const JobRecord end = onDisk();
    ASSERT_EQ(end.frames.size(), 2U) << "nobody has asked for frame 1";
    EXPECT_EQ(end.frames[0].frame, 2);
    EXPECT_EQ(end.frames[0].state, State::Done);
    EXPECT_EQ(end.frames[0].error, "");
    EXPECT_TRUE(end.frames[0].messages.empty()) << "of the time before";
    EXPECT_EQ(end.frames[1].frame, 3) << "up to date before";
    EXPECT_TRUE(isAsTheSchemaSays(folder, "report.json")) << bytesOf(folder / "tool.log");
}

TEST_F(ReportFileTest, FrameThatFailedLeavesNoTraceThoughItHasAFile) {
    record.frames[0].outputState = fileState(folder / "out.1.png");
    record.frames[1].outputState = fileState(folder / "out.2.png");
    record.frames[0].state = State::Failed;
    record.frames[1].state = State::Done;
    const FrameTraces traces = tracesOf(record);
    EXPECT_EQ(traces.size(), 1U);
    EXPECT_TRUE(traces.contains({2, (folder / "out.2.png").string()}));
}

TEST_F(ReportFileTest, ItIsAsItsSchemaSays) {
    ReportFile file(path, record);
    EXPECT_TRUE(isAsTheSchemaSays(folder, "report.json")) << bytesOf(folder / "tool.log");
    file.frameEnds(1, {.index = 0});
    file.frameEnds(2, {.index = 1, .state = FrameEnd::State::Failed, .message = "no"});
    file.finish("failed", "no", {});
    EXPECT_TRUE(isAsTheSchemaSays(folder, "report.json")) << bytesOf(folder / "tool.log");
    file.finish("done", "no", {});
    EXPECT_FALSE(isAsTheSchemaSays(folder, "report.json")) << "done, with an error";
}

TEST_F(ReportFileTest, ItIsBroughtToItsEndByAnotherWhereTheProgramCannot) {
    ReportFile(path, record).frameEnds(1, {.index = 0});
    closeReport(path, "failed", "frame 2: it crashed", 2);
    const JobRecord end = onDisk();
    EXPECT_EQ(end.state, "failed");
    EXPECT_EQ(end.error, "frame 2: it crashed");
    EXPECT_EQ(end.frames[1].state, State::Failed);
    EXPECT_EQ(end.frames[1].error, "frame 2: it crashed");
    EXPECT_EQ(end.frames[2].state, State::Waiting);
    EXPECT_TRUE(isAsTheSchemaSays(folder, "report.json")) << bytesOf(folder / "tool.log");
    closeReport(path, "interrupted", "too late", std::nullopt);
    EXPECT_EQ(onDisk().state, "failed") << "it has come to its end";
    record.frames[0].state = State::Done;
    const ReportFile ended(path, record);
    closeReport(path, "failed", "it crashed when frame 1 was done", 1);
    EXPECT_EQ(onDisk().frames[0].state, State::Done);
    std::filesystem::remove(path);
    closeReport(path, "failed", "it crashed", std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ReportFileTest, AnotherFileIsNotTakenForAReport) {
    EXPECT_FALSE(readRecord(path));
    for (const char* const text : {"", "{}", "[1, 2]", "{\"form\": 2}"}) {
        writeBytes(path, text);
        EXPECT_THROW(readRecord(path), Error) << text;
    }
    std::string later = recordText(record);
    const std::string form = "\"form\": 1";
    later.replace(later.find(form), form.size(), "\"form\": 2");
    writeBytes(path, later);
    EXPECT_THROW(readRecord(path), Error) << "of a later form, and else like ours";
}

TEST_F(ReportFileTest, ShardIsOneOfItsCount) {
    for (const Shard shard : {Shard{.number = 0, .count = 2},
                              {.number = 3, .count = 2},
                              {.number = 1, .count = std::numeric_limits<std::size_t>::max()}}) {
        record.shard = shard;
        writeBytes(path, recordText(record));
        EXPECT_THROW(readRecord(path), Error) << shard.number << " of " << shard.count;
    }
}

}  // namespace
}  // namespace perch::test
