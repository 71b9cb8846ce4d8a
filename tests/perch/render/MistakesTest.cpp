// Jobs that can be done and are likely not what the user meant.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "PictureFiles.h"
#include "RenderJob.h"
#include "ScriptedEffect.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

constexpr PF_ParamIndex kMatte = 1;
constexpr PF_ParamIndex kAmount = 2;

class MistakesTest : public testing::Test {
protected:
    MistakesTest() {
        script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE);
        script.declareParameters(
            {parameterOfType(PF_Param_LAYER, "Matte"), parameterOfType(PF_Param_FLOAT_SLIDER, "Amount")});
    }

    template <typename T = std::uint8_t>
    void write(const std::string& name, const FileShape& shape) const {
        std::vector<T> samples(static_cast<std::size_t>(shape.width * shape.height * shape.channels));
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<T>(7 * i);
        writeFile(folder / name, shape, samples);
    }

    // What is said of the job: its notes without the folder, or its error.
    std::string said(const FramePlan& plan, const LayerReading& reading = {}, bool areErrors = false) {
        settings.layers[kMatte] = reading;
        settings.reading.acceptsDamage = acceptsDamage;
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        RenderReport report;
        report.notes.areWarningsErrors = areErrors;
        std::string text;
        try {
            renderFrames(effect, settings, curves, plan, {}, report);
            for (const Note& note : report.notes.all())
                text += (note.isWarning ? "warning: " : "note: ") + note.sentence;
        } catch (const Error& error) {
            text = std::string("error: ") + error.what();
        }
        const std::string path = folder.path.string() + "/";
        for (std::size_t at = text.find(path); at != std::string::npos; at = text.find(path))
            text.erase(at, path.size());
        return text;
    }

    FramePlan stillWith(const std::string& matte) const {
        return {.isSequence = false,
                .frames = {{0, folder / "in.png", folder / "out.png", {}}},
                .stillLayers = {{kMatte, folder / matte}}};
    }

    FramePlan shotOf(const std::vector<std::string>& names) const {
        FramePlan plan{.isSequence = true, .frames = {}, .stillLayers = {}};
        for (const std::string& name : names) {
            const auto frame = static_cast<std::int32_t>(plan.frames.size()) + 1;
            plan.frames.push_back({frame, folder / name, folder / ("out-" + name), {}});
        }
        return plan;
    }

    const TemporaryFolder folder;
    ScriptedEffect script;
    RenderSettings settings;
    std::vector<ParameterCurve> curves;
    bool acceptsDamage = false;
};

TEST_F(MistakesTest, LayersThatHardlyFitAreWarnedOf) {
    write("in.png", {4, 2, 3});
    write("fits.png", {4, 2, 1});
    write("small.png", {2, 1, 1});
    write("square.png", {2, 2, 1});
    writeFile<std::uint8_t>(folder / "flat.png", {4, 2, 2}, {9, 1, 9, 2, 9, 3, 9, 4, 9, 5, 9, 6, 9, 7, 9, 8});
    const auto readingOf = [](LayerChannel channel) {
        return LayerReading{.selected = "",
                            .option = "--matte",
                            .channelOption = "--matte-channel",
                            .usedChannel = channel,
                            .rangeOption = "",
                            .range = std::nullopt};
    };
    const struct {
        const char* matte;
        LayerChannel channel;
        std::string said;
    } cases[] = {
        {"fits.png", LayerChannel::Any, ""},
        {"fits.png", LayerChannel::Blue, ""},
        {"small.png", LayerChannel::Any,
         "\"small.png\" has 2 x 1 pixels and the input 4 x 2: it is scaled, or does not cover it"},
        {"square.png", LayerChannel::Any,
         "\"square.png\" has 2 x 2 pixels and the input 4 x 2: it is stretched to another aspect, or does "
         "not "
         "cover it"},
        {"fits.png", LayerChannel::Alpha,
         "the alpha of \"fits.png\" is the same everywhere, so that --matte makes no difference; choose "
         "another "
         "--matte-channel or picture"},
        {"flat.png", LayerChannel::Alpha, ""},
        {"flat.png", LayerChannel::Green,
         "the green of \"flat.png\" is the same everywhere, so that --matte makes no difference; choose "
         "another "
         "--matte-channel or picture"},
    };
    for (const auto& c : cases) {
        const FramePlan plan = stillWith(c.matte);
        EXPECT_EQ(said(plan, readingOf(c.channel)), c.said.empty() ? "" : "warning: " + c.said) << c.matte;
        EXPECT_EQ(said(plan, readingOf(c.channel), true), c.said.empty() ? "" : "error: " + c.said)
            << c.matte;
    }
}

TEST(NotesTest, EachKindIsSaidOnceOfTheFirstFrameThatHasIt) {
    Notes notes;
    notes.warn("size", "third", 3);
    notes.add("parts", "second", 2);
    notes.warn("size", "first", 1);
    notes.add("parts", "fourth", 4);
    notes.add("gaps", "job");
    std::string said;
    for (const Note& note : notes.all())
        said += note.sentence + " ";
    EXPECT_EQ(said, "job first second ");
    notes.areWarningsErrors = true;
    EXPECT_THROW(notes.warn("size", "fifth", 5), Error);
}

TEST_F(MistakesTest, MovesAtEightBitsAreToldOfOnce) {
    using Kind = ParameterKey::Kind;
    write("a.png", {4, 2, 3});
    write("b.png", {4, 2, 3});
    write<std::uint16_t>("deep.png", {4, 2, 3});
    const FramePlan shot = shotOf({"a.png", "b.png"});
    EXPECT_EQ(said(shot), "");
    curves = {{kAmount, {{1, {20}, Kind::Linear}, {48, {70}, Kind::Smooth}}}};
    EXPECT_EQ(said(shot),
              "note: a value moves from frame to frame, and 8 bits per channel show slow moves as steps; "
              "--depth 16 renders and writes finer ones");
    EXPECT_EQ(said(shotOf({"deep.png"})), "");
    FramePlan still = shotOf({"a.png"});
    still.isSequence = false;
    EXPECT_EQ(said(still), "") << "nothing moves";
    settings.depth = Depth::Bits16;
    EXPECT_EQ(said(shot), "");
    settings.depth = {};
    curves.front().keys.front().kind = Kind::Hold;
    EXPECT_EQ(said(shot), "");
    script.declareFlags(0);
    curves.front().keys.front().kind = Kind::Linear;
    EXPECT_EQ(said(shot), "") << "the effect has no 16 bits";
}

TEST_F(MistakesTest, WhatTheFormatWrittenDoesNotHoldIsNamedOnce) {
    for (const char* const name : {"a.exr", "b.exr"}) {
        OIIO::ImageSpec layout(4, 2, 3, OIIO::TypeHalf);
        layout["my.take"] = 7;
        const std::vector<float> samples(4 * 2 * 3, 0.5F);
        const std::string path = folder / name;
        const auto file = OIIO::ImageOutput::create(path);
        ASSERT_TRUE(file && file->open(path, layout) && file->write_image(OIIO::TypeFloat, samples.data()) &&
                    file->close());
    }
    FramePlan plan = shotOf({"a.exr", "b.exr"});
    for (FrameFiles& files : plan.frames)
        files.output.replace_extension(".tif");
    const std::string text = said(plan);
    EXPECT_NE(text.find("\"out-a.tif\" does not say all that the input's file does; without "),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("my.take"), std::string::npos) << text;
    EXPECT_EQ(text.find("out-b.tif"), std::string::npos) << text;
}

TEST_F(MistakesTest, FramesOfAnotherFormEndTheShot) {
    write("a.png", {4, 2, 3});
    write("b.png", {4, 2, 4});
    write("wide.png", {5, 2, 3});
    write<std::uint16_t>("deep.png", {4, 2, 3});
    EXPECT_EQ(said(shotOf({"a.png", "b.png"})), "");
    EXPECT_EQ(said(shotOf({"a.png", "wide.png"})),
              "error: frame 2: \"wide.png\" has 5 x 2 pixels of 8 bits and the first frame 4 x 2 pixels of 8 "
              "bits; give all frames of a shot one size and depth");
    EXPECT_EQ(
        said(shotOf({"a.png", "b.png", "deep.png"})),
        "error: frame 3: \"deep.png\" has 4 x 2 pixels of 16 bits and the first frame 4 x 2 pixels of 8 "
        "bits; give all frames of a shot one size and depth");
    FramePlan plan = shotOf({"a.png", "b.png"});
    plan.frames[0].layers[kMatte] = folder / "a.png";
    plan.frames[1].layers[kMatte] = folder / "deep.png";
    EXPECT_NE(said(plan).find("frame 2: \"deep.png\" has"), std::string::npos);
}

// A JPEG: at the end of a PNG that is cut short the image library forgets a string, which sanitizers report.
TEST_F(MistakesTest, DamagedPicturesAreTakenWhereThatIsAskedFor) {
    write("in.jpg", {64, 64, 3});
    const std::string whole = bytesOf(folder / "in.jpg");
    writeBytes(folder / "in.jpg", whole.substr(0, whole.size() - 20));
    FramePlan plan = shotOf({"in.jpg"});
    plan.frames.front().output = folder / "out.png";
    EXPECT_EQ(said(plan),
              "error: frame 1: cannot read \"in.jpg\": it is damaged or cut short; save or copy it again");
    acceptsDamage = true;
    EXPECT_EQ(said(plan), "note: \"in.jpg\" is damaged or cut short; what can be read of it is taken");
}

}  // namespace
}  // namespace perch::test
