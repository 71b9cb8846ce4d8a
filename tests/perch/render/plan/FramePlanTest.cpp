#include "FramePlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Error.h"
#include "FrameList.h"
#include "FramePattern.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr PF_ParamIndex kMatte = 1;

struct FramePlanTest : testing::Test {
    TemporaryFolder folder;
    PictureNames names;
    LayerNames layers;

    FramePlanTest() {
        for (const char* const name :
             {"in.01.png", "in.02.png", "in.04.png", "depth.0001.png", "depth.0002.png", "still.png"})
            writeBytes(folder / name, "");
        names.input = in("in.##.png");
        names.output = in("out.##.png");
    }
    std::string in(const std::string& name) const { return (folder / name).string(); }

    // What is said of the names; empty where they are taken.
    template <typename E>
    std::string refusal() const {
        try {
            planFrames(names, layers);
        } catch (const E& error) {
            return error.what();
        }
        return "";
    }
};

std::vector<std::int32_t> numbersOf(const FramePlan& plan) {
    std::vector<std::int32_t> numbers;
    for (const FrameFiles& files : plan.frames)
        numbers.push_back(files.frame);
    return numbers;
}

TEST_F(FramePlanTest, SequenceHasTheFramesThatThereAre) {
    writeBytes(folder / "in.03.png", "");
    const FramePlan plan = planFrames(names, layers);
    EXPECT_TRUE(plan.isSequence);
    EXPECT_THAT(numbersOf(plan), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(plan.frames[3].input, folder / "in.04.png");
    EXPECT_EQ(plan.frames[3].output, folder / "out.04.png");
    EXPECT_THAT(plan.notes, IsEmpty());
}

struct Gap {
    const char* name;
    std::vector<std::int32_t> onDisk;
    const char* refusal;  // null: none
    std::vector<std::int32_t> skipped;
};

TEST_F(FramePlanTest, GapIsAnErrorOrSkippedAndToldOf) {
    const Gap gaps[] = {
        {"ones", {1, 2, 3}, nullptr, {}},
        {"one", {7}, nullptr, {}},
        {"twos", {2, 4, 6}, nullptr, {}},
        {"two", {3, 10}, nullptr, {}},
        {"hole", {1, 2, 5, 6}, "frame 3 is missing", {3, 4}},
        {"hole of twos", {1, 3, 7}, "frame 5 is missing", {5}},
        {"odd one", {10, 20, 25}, "frame 15 is missing", {15}},
        {"below zero", {-2, 0, 1}, "frame -1 is missing", {-1}},
    };
    for (const auto& [name, onDisk, reason, skipped] : gaps) {
        std::filesystem::create_directory(folder / name);
        names = {};
        names.input = in(std::string(name) + "/a.###.png");
        names.output = in("out.###.png");
        for (const std::int32_t frame : onDisk)
            writeBytes(FramePattern::parse(names.input)->pathOf(frame), "");
        const std::string refused = refusal<Error>();
        EXPECT_EQ(refused.empty(), reason == nullptr) << name << ": " << refused;
        if (reason != nullptr) {
            EXPECT_THAT(refused, HasSubstr(reason)) << name;
        }
        names.missingFrame = MissingFrame::Skip;
        const FramePlan plan = planFrames(names, layers);
        EXPECT_EQ(numbersOf(plan), onDisk) << name;
        EXPECT_EQ(plan.notes.empty(), skipped.empty()) << name;
        for (const Note& note : plan.notes) {
            EXPECT_THAT(note.sentence, HasSubstr("has no file for " + countedFrames(skipped) + ";")) << name;
            EXPECT_TRUE(note.isWarning) << name;
        }
    }
}

TEST_F(FramePlanTest, FramesThatAreAllMissingOrTooManyAreAnError) {
    names.missingFrame = MissingFrame::Skip;
    names.frames = {{7, 8}};
    EXPECT_THAT(refusal<Error>(), HasSubstr("has no file for 2 frames, 7-8, which is all"));
    names.frames.reset();
    writeBytes(folder / "in.999999999.png", "");
    EXPECT_THAT(refusal<Error>(),
                HasSubstr("extend from frame 1 to 999999999, with more than 1000000 frames"));
}

// depth.0001 and 0002 are there.
struct LayerCase {
    MissingLayerFrame missing;
    std::int32_t offset;
    std::vector<const char*> files;  // of frames 1, 2, 4; null: none
    const char* note;
};

TEST_F(FramePlanTest, LayersFileIsOffsetAndHeldOrNoneWhereItIsMissing) {
    const LayerCase cases[] = {
        {MissingLayerFrame::Hold,
         0,
         {"depth.0001.png", "depth.0002.png", "depth.0002.png"},
         "1 frame, 4; the one before is held"},
        {MissingLayerFrame::None,
         0,
         {"depth.0001.png", "depth.0002.png", nullptr},
         "1 frame, 4; rendered without"},
        {MissingLayerFrame::Hold,
         -1,
         {"depth.0001.png", "depth.0001.png", "depth.0002.png"},
         "2 frames, 1,4; the one before is held, or the first where none is before"},
        {MissingLayerFrame::None, 1, {"depth.0002.png", nullptr, nullptr}, "2 frames, 2,4; rendered without"},
        {MissingLayerFrame::Hold,
         100,
         {"depth.0002.png", "depth.0002.png", "depth.0002.png"},
         "3 frames, 1-2,4; the one before is held"},
    };
    names.frames = {{1, 2, 4}};
    for (const auto& [missing, offset, files, note] : cases) {
        layers[kMatte] = {in("depth.####.png"), offset};
        names.missingLayerFrame = missing;
        const FramePlan plan = planFrames(names, layers);
        for (std::size_t i = 0; i < files.size(); ++i) {
            EXPECT_EQ(plan.frames[i].missingLayers.contains(kMatte), files[i] == nullptr) << note << i;
            EXPECT_EQ(plan.frames[i].layers.contains(kMatte), files[i] != nullptr) << note << i;
            if (files[i] != nullptr) {
                EXPECT_EQ(plan.frames[i].layers.at(kMatte), folder / files[i]) << note << i;
            }
        }
        EXPECT_THAT(plan.notes, ElementsAre(testing::Field(&Note::sentence, HasSubstr(note))));
    }
}

TEST_F(FramePlanTest, MissingLayerIsNamedWithWhatToDo) {
    layers[kMatte] = {in("depth.####.png"), 2};
    names.frames = {{1}};
    EXPECT_THAT(refusal<Error>(),
                HasSubstr("frame 1 lacks a layer: there is no file \"" + in("depth.0003.png")));
    layers[kMatte].name = in("deep.####.png");
    for (const MissingLayerFrame missing : {MissingLayerFrame::Hold, MissingLayerFrame::None}) {
        names.missingLayerFrame = missing;
        EXPECT_THAT(refusal<Error>(), HasSubstr("no file is named like \"" + in("deep.####.png")));
    }
    const std::string reason = "an offset is for a layer with a file per frame";
    layers[kMatte].name = in("still.png");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr(reason));
    names = {};
    names.input = in("in.01.png");
    names.output = in("out.png");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr(reason));
}

TEST_F(FramePlanTest, ShardsShareOutThePlan) {
    struct Part {
        Shard shard;
        std::vector<std::int32_t> frames;
        std::vector<std::int32_t> skipped{};
    };
    names.frames = {{4, 3, 2, 1}};
    names.missingFrame = MissingFrame::Skip;  // 3 keeps its turn
    layers[kMatte].name = in("depth.####.png");
    names.missingLayerFrame = MissingLayerFrame::None;  // 4 has none, so that 2 has the first
    for (const auto& [shard, frames, skipped] :
         {Part{{1, 1}, {4, 2, 1}, {3}}, Part{{1, 2}, {4, 2}}, Part{{2, 2}, {1}, {3}}, Part{{1, 3}, {4, 1}},
          Part{{2, 3}, {}, {3}}, Part{{3, 3}, {2}}, Part{{5, 5}, {}}}) {
        names.shard = shard;
        const FramePlan plan = planFrames(names, layers);
        EXPECT_EQ(numbersOf(plan), frames) << shard.number << '/' << shard.count;
        EXPECT_EQ(plan.skipped, skipped) << shard.number << '/' << shard.count;
        EXPECT_EQ(plan.firstFrame, 4) << shard.number << '/' << shard.count;
        EXPECT_EQ(plan.lastFrame, 4) << shard.number << '/' << shard.count;
        EXPECT_EQ(plan.firstLayers.at(kMatte), folder / "depth.0002.png");
        EXPECT_EQ(plan.notes.size(), frames.empty() ? 3U : 2U) << shard.number << '/' << shard.count;
    }
}

TEST_F(FramePlanTest, ShardDoesNotOverwriteWhatAnotherReads) {
    for (const char* const name : {"a.1.png", "a.2.png", "b.0.png", "b.1.png"})
        writeBytes(folder / name, "");
    names.input = in("a.#.png");
    names.output = in("b.#.png");
    layers[kMatte] = {in("b.#.png"), -1};  // b.1, the first shard's output, goes with a.2
    names.shard = {1, 2};
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("b.1.png\": it is read by this render"));
}

TEST_F(FramePlanTest, FramesAreThoseAskedForInTheirOrder) {
    for (const std::vector<std::int32_t>& frames : {std::vector{1}, {2, 4}, {4, 1, 2}}) {
        names.frames = frames;
        const FramePlan plan = planFrames(names, layers);
        EXPECT_EQ(numbersOf(plan), frames);
        EXPECT_EQ(plan.lastFrame, 4);  // of all, so that a frame's time does not depend on those beside it
    }
}

TEST_F(FramePlanTest, LayersGoWithTheFrameOrStayTheSame) {
    names.frames = {{1, 2}};
    layers = {{kMatte, {in("depth.####.png")}}, {kMatte + 1, {in("still.png")}}};
    const FramePlan plan = planFrames(names, layers);
    EXPECT_EQ(plan.frames[1].layers.at(kMatte), folder / "depth.0002.png");
    EXPECT_EQ(plan.frames[1].layers.size(), 1U);
    EXPECT_EQ(plan.stillLayers.at(kMatte + 1), folder / "still.png");
}

TEST_F(FramePlanTest, FirstMissingFileIsNamed) {
    names.frames = {{1, 2, 3, 4}};
    EXPECT_THAT(refusal<Error>(), HasSubstr("frame 3 is missing: there is no file \"" + in("in.03.png")));
    names.frames.reset();
    names.input = in("none.##.png");
    EXPECT_THAT(refusal<Error>(), HasSubstr("no file is named like \"" + in("none.##.png")));
}

TEST_F(FramePlanTest, NamesAreThoseOfFilesWhereNoPatternIsWanted) {
    writeBytes(folder / "take#2.png", "");
    names.input = in("take#2.png");
    names.output = in("out.####.png");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("has 4 digits for the frame number and --input has 1"));
    names.output = in("out.#.png");
    EXPECT_THAT(refusal<Error>(), HasSubstr("--no-pattern takes the file of just this name"));
    names.areFiles = true;
    layers[kMatte].name = in("depth.@@.png");
    const FramePlan plan = planFrames(names, layers);
    EXPECT_FALSE(plan.isSequence);
    EXPECT_EQ(plan.frames[0].input, folder / "take#2.png");
    EXPECT_EQ(plan.frames[0].output, folder / "out.#.png");
    EXPECT_EQ(plan.stillLayers.at(kMatte), folder / "depth.@@.png");
    names.frames = {{1, 2}};
    EXPECT_THAT(refusal<UsageError>(),
                HasSubstr("--frames is for sequences and --no-pattern for one picture"));
}

TEST_F(FramePlanTest, StillIsOneFrameWithAllItsLayers) {
    names.input = in("still.png");
    names.output = in("out.png");
    layers[kMatte].name = in("in.01.png");
    const FramePlan plan = planFrames(names, layers);
    EXPECT_FALSE(plan.isSequence);
    EXPECT_THAT(numbersOf(plan), ElementsAre(0));
    EXPECT_EQ(plan.stillLayers.at(kMatte), folder / "in.01.png");
}

TEST_F(FramePlanTest, NamesThatDoNotGoTogetherAreRefused) {
    names.output = in("out.png");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("would hold every frame"));
    names.output = in("out.###.png");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("3 digits for the frame number and --input has 2"));
    names.input = in("still.png");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("stands for many files and --input for one"));
    names.output = in("out.png");
    layers[kMatte].name = in("depth.####.png");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("stands for many files and --input for one"));
    layers.clear();
    names.frames = {{1, 2}};
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("--frames is for sequences"));
    names.frames.reset();
    names.shard = {1, 2};
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("--shard is for sequences"));
}

TEST_F(FramePlanTest, PicturesThatAreReadAreNotOverwritten) {
    const std::string reason = "it is read by this render; choose another name";
    names.missingFrame = MissingFrame::Skip;
    names.output = in("in.%02d.png");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr(reason));
    std::filesystem::create_directory_symlink(folder.path, folder / "link");
    names.output = in("link/in.##.png");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr(reason));
    names.input = in("depth.####.png");
    names.output = in("still.####.png");
    layers[kMatte].name = in("still.0001.png");
    writeBytes(folder / "still.0001.png", "");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr(reason));
    names = {in("still.png"), in("./still.png"), {}};
    EXPECT_THAT(refusal<UsageError>(), HasSubstr(reason));
    writeBytes(folder / "source.png", "");
    std::filesystem::create_hard_link(folder / "source.png", folder / "hard.png");
    std::filesystem::create_symlink("source.png", folder / "soft.png");
    std::filesystem::create_symlink(folder / "soft.png", folder / "chain.png");
    const std::string spellings[] = {"source.png", "hard.png", "soft.png", "chain.png", "link/soft.png"};
    for (const std::string& input : spellings) {
        for (const std::string& output : spellings) {
            layers.clear();
            names = {in(input), in(output), {}};
            EXPECT_THAT(refusal<UsageError>(), HasSubstr(reason)) << input << " to " << output;
            layers[kMatte].name = in(input);
            names = {in("still.0001.png"), in(output), {}};
            EXPECT_THAT(refusal<UsageError>(), HasSubstr(reason)) << input << " as a layer to " << output;
        }
    }
}

TEST_F(FramePlanTest, ReportAndLogAreNoPicturesAndNotOneFile) {
    names.missingFrame = MissingFrame::Skip;
    const struct {
        std::vector<AccountName> accounts;
        const char* refusal;
    } cases[] = {
        {{{"--report", in("out.01.png")}}, "--report names \""},
        {{{"--report", in("./in.01.png")}}, "which is read by this render; choose another name"},
        {{{"--log", in("out.01.png")}}, "out.01.png\", to which this render writes something else"},
        {{{"--report", in("a.json")}, {"--log", in("./a.json")}}, "--log names \""},
    };
    for (const auto& [accounts, expected] : cases) {
        names.accounts = accounts;
        EXPECT_THAT(refusal<UsageError>(), HasSubstr(expected));
    }
    names.accounts = {{"--report", in("report.json")}, {"--log", in("job.log")}};
    EXPECT_EQ(planFrames(names, layers).frames.size(), 3U);
}

TEST_F(FramePlanTest, TwoFramesAreNotWrittenToOneFile) {
    writeBytes(folder / "out.01.png", "");
    std::filesystem::create_symlink("out.01.png", folder / "out.02.png");
    names.output = in("out.##.png");
    names.missingFrame = MissingFrame::Skip;
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("another frame is written to the same file"));
}

}  // namespace
}  // namespace perch::test
