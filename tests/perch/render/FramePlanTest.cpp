#include "FramePlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "Error.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

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
    const FramePlan plan = planFrames(names, layers);
    EXPECT_TRUE(plan.isSequence);
    EXPECT_THAT(numbersOf(plan), ElementsAre(1, 2, 4));
    EXPECT_EQ(plan.frames[2].input, folder / "in.04.png");
    EXPECT_EQ(plan.frames[2].output, folder / "out.04.png");
}

TEST_F(FramePlanTest, FramesAreThoseAskedForInTheirOrder) {
    for (const std::vector<std::int32_t>& frames : {std::vector{1}, {2, 4}, {4, 1, 2}}) {
        names.frames = frames;
        const FramePlan plan = planFrames(names, layers);
        EXPECT_EQ(numbersOf(plan), frames);
        EXPECT_EQ(plan.lastFrame, std::ranges::max(frames));
    }
}

TEST_F(FramePlanTest, LayersGoWithTheFrameOrStayTheSame) {
    names.frames = {{1, 2}};
    layers = {{kMatte, in("depth.####.png")}, {kMatte + 1, in("still.png")}};
    const FramePlan plan = planFrames(names, layers);
    EXPECT_EQ(plan.frames[1].layers.at(kMatte), folder / "depth.0002.png");
    EXPECT_EQ(plan.frames[1].layers.size(), 1U);
    EXPECT_EQ(plan.stillLayers.at(kMatte + 1), folder / "still.png");
}

TEST_F(FramePlanTest, FirstMissingFileIsNamed) {
    names.frames = {{1, 2, 3, 4}};
    EXPECT_THAT(refusal<Error>(), HasSubstr("frame 3 is missing: there is no file \"" + in("in.03.png")));
    names.frames.reset();
    layers[kMatte] = in("depth.####.png");
    EXPECT_THAT(refusal<Error>(),
                HasSubstr("frame 4 is missing: there is no file \"" + in("depth.0004.png")));
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
    layers[kMatte] = in("depth.@@.png");
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
    layers[kMatte] = in("in.01.png");
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
    layers[kMatte] = in("depth.####.png");
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("stands for many files and --input for one"));
    layers.clear();
    names.frames = {{1, 2}};
    EXPECT_THAT(refusal<UsageError>(), HasSubstr("--frames is for sequences"));
}

TEST_F(FramePlanTest, PicturesThatAreReadAreNotOverwritten) {
    const std::string reason = "it is read by this render; choose another name";
    names.output = in("in.%02d.png");
    EXPECT_THAT(refusal<Error>(), HasSubstr(reason));
    std::filesystem::create_directory_symlink(folder.path, folder / "link");
    names.output = in("link/in.##.png");
    EXPECT_THAT(refusal<Error>(), HasSubstr(reason));
    names.input = in("depth.####.png");
    names.output = in("still.####.png");
    layers[kMatte] = in("still.0001.png");
    writeBytes(folder / "still.0001.png", "");
    EXPECT_THAT(refusal<Error>(), HasSubstr(reason));
    names = {in("still.png"), in("./still.png"), {}};
    EXPECT_THAT(refusal<Error>(), HasSubstr(reason));
    writeBytes(folder / "source.png", "");
    std::filesystem::create_hard_link(folder / "source.png", folder / "hard.png");
    std::filesystem::create_symlink("source.png", folder / "soft.png");
    std::filesystem::create_symlink(folder / "soft.png", folder / "chain.png");
    const std::string spellings[] = {"source.png", "hard.png", "soft.png", "chain.png", "link/soft.png"};
    for (const std::string& input : spellings) {
        for (const std::string& output : spellings) {
            layers.clear();
            names = {in(input), in(output), {}};
            EXPECT_THAT(refusal<Error>(), HasSubstr(reason)) << input << " to " << output;
            layers[kMatte] = in(input);
            names = {in("still.0001.png"), in(output), {}};
            EXPECT_THAT(refusal<Error>(), HasSubstr(reason)) << input << " as a layer to " << output;
        }
    }
}

TEST_F(FramePlanTest, TwoFramesAreNotWrittenToOneFile) {
    writeBytes(folder / "out.01.png", "");
    std::filesystem::create_symlink("out.01.png", folder / "out.02.png");
    names.output = in("out.##.png");
    EXPECT_THAT(refusal<Error>(), HasSubstr("another frame is written to the same file"));
}

}  // namespace
}  // namespace perch::test
