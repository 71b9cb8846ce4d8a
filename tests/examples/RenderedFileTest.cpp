#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>

#include "CommandLine.h"
#include "FocusPipeline.h"
#include "Pictures.h"
#include "ThreadPoolContext.h"

namespace {

struct Case {
    std::string name;
    std::string options;
    RenderInputs inputs;
    bool showsTheDefault = false;  // the result is that of no options

    friend std::ostream& operator<<(std::ostream& stream, const Case& c) { return stream << c.options; }
};

// A percentage as the host hands it on.
float Fraction(float percent) {
    return static_cast<float>(percent * 0.01);
}

// The sizes of beauty and control differ, and the alphas of both.
void WritePictures(const ScratchFolder& folder) {
    WriteRaw(folder.file("beauty.png"), Noise<std::uint8_t>(48, 32, 4, 1));
    WriteRaw(folder.file("beauty16.png"), Noise<std::uint16_t>(48, 32, 4, 2));
    WriteRaw(folder.file("control.png"), Noise<std::uint16_t>(31, 40, 4, 3));
}

// What the program is to write, by the library alone.
std::string Expected(const ScratchFolder& folder, const std::string& beautyName, const RenderInputs& inputs) {
    const Picture beauty = ReadPicture(folder.file(beautyName));
    const Picture control =
        ReadControl({.file = {.path = folder.file("control.png"), .selected = {}}}, beauty);
    const Picture result = NewPictureLike(beauty);
    PILib::ThreadPoolContext context(1);
    RenderFrame(context, inputs, Downsample{}, *result.pixels, *beauty.pixels, control.pixels.get());
    const ScratchFolder other;
    WritePicture(other.file("expected.png"), result);
    return BytesOf(other.file("expected.png"));
}

class RenderedFileTest : public testing::TestWithParam<Case> {};

TEST_P(RenderedFileTest, IsByteForByteThatOfTheLibrary) {
    const auto& [name, options, inputs, showsTheDefault] = GetParam();
    const ScratchFolder folder;
    WritePictures(folder);
    for (const std::string beauty : {"beauty.png", "beauty16.png"}) {
        const Outcome outcome = PullFocus(folder, beauty + " control.png out.png " + options);
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.out + outcome.err, "") << beauty;
        const std::string bytes = BytesOf(folder.file("out.png"));
        EXPECT_TRUE(bytes == Expected(folder, beauty, inputs)) << beauty;
        EXPECT_EQ(bytes == Expected(folder, beauty, {}), showsTheDefault) << beauty;
    }
    EXPECT_EQ(folder.names(),
              (std::set<std::string>{"beauty.png", "beauty16.png", "control.png", "out.png"}));
}

INSTANTIATE_TEST_SUITE_P(
    Options, RenderedFileTest,
    testing::Values(Case{"None", "", {}, true}, Case{"Focus", "--view-mode Focus", {.viewMode = 1}},
                    Case{"AnyCase", "--view-mode=foCUS", {.viewMode = 1}},
                    Case{"Fine", "--blur-type Fine", {.blurType = 1}},
                    Case{"ControlAlpha", "--control-channel Alpha", {.channel = 0}},
                    Case{"ControlBrightness", "--control-channel Brightness", {.channel = 6}},
                    Case{"FocalPoint", "--focal-point 33.3", {.focalPoint = Fraction(33.3F)}},
                    Case{"InFocusRange", "--in-focus-range 57", {.inFocusRange = Fraction(57.0F)}},
                    Case{"MaximumBlur", "--maximum-blur 200", {.maxBlur = 200.0F}},
                    Case{"Narrow", "--aspect-ratio -1", {.aspect = -1.0F}},
                    Case{"Flat", "--aspect-ratio 0.3", {.aspect = 0.3F}},
                    Case{"Inverted", "--invert-control", {.invert = true}},
                    Case{"Conformed", "--conform-control-size", {.conform = true}, true},
                    Case{"NotConformed", "--no-conform-control-size", {.conform = false}, true},
                    Case{"Blended", "--blend-with-original 70", {.blend = Fraction(70.0F)}},
                    Case{"ThreeThreads", "--threads 3", {}, true},
                    Case{"Together",
                         "--blur-type Fine --control-channel Red --focal-point 60 --in-focus-range 5 "
                         "--maximum-blur 12.5 --aspect-ratio -0.5 --invert-control --blend-with-original 10",
                         {.blurType = 1,
                          .channel = 1,
                          .focalPoint = Fraction(60.0F),
                          .inFocusRange = Fraction(5.0F),
                          .maxBlur = 12.5F,
                          .aspect = -0.5F,
                          .invert = true,
                          .blend = Fraction(10.0F)}}),
    [](const auto& test) { return test.param.name; });

TEST(PullFocusTest, BlendOfAllOfTheOriginalIsTheInput) {
    const ScratchFolder folder;
    WritePictures(folder);
    ASSERT_EQ(PullFocus(folder, "beauty.png control.png out.tif --blend-with-original 100").exitCode, 0);
    EXPECT_EQ(ReadRaw<std::uint8_t>(folder.file("out.tif")),
              ReadRaw<std::uint8_t>(folder.file("beauty.png")));
}

TEST(PullFocusTest, OutputReplacesNoInput) {
    const ScratchFolder folder;
    WritePictures(folder);
    for (const std::string name : {"beauty.png", "control.png"}) {
        const std::string before = BytesOf(folder.file(name));
        std::filesystem::create_symlink(name, folder.file("link-to-" + name));
        std::filesystem::create_hard_link(folder.file(name), folder.file("same-as-" + name));
        for (const std::string& output : {name, "link-to-" + name, "same-as-" + name}) {
            EXPECT_EQ(PullFocus(folder, "beauty.png control.png " + output).exitCode, 1) << output;
            EXPECT_TRUE(BytesOf(folder.file(name)) == before) << output;
        }
    }
}

TEST(PullFocusTest, FullDiskFailsAndLeavesTheOlderFile) {
    const ScratchFolder folder;
    WriteRaw(folder.file("rgb.png"), Noise<std::uint8_t>(48, 32, 3, 1));
    for (const std::string name : {"out.png", "out.tif", "out.jpg"}) {
        WriteBytes(folder.file(name), "older");
        const auto before = folder.names();
        // A limit of one block per file stands for the full disk; without the trap its signal ends the
        // program.
        const Outcome outcome = PullFocus(folder, "rgb.png rgb.png " + name, "trap '' XFSZ; ulimit -f 1;");
        EXPECT_EQ(outcome.exitCode, 1) << name;
        EXPECT_EQ(outcome.err, "pull-focus: cannot write \"" + name +
                                   "\": File too large; check its folder and the room on its disk\n");
        EXPECT_EQ(BytesOf(folder.file(name)), "older");
        EXPECT_EQ(folder.names(), before);
    }
}

}  // namespace
