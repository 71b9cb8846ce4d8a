// Which frames are rendered again.
#include "ExistingFrames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "PictureFiles.h"
#include "RenderJob.h"
#include "ScriptedEffect.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct ExistingFramesTest : testing::Test {
    static constexpr PF_ParamIndex kMatte = 2;

    const TemporaryFolder folder;
    std::string ending = ".png";
    RenderSettings settings;
    std::string maker = "perch 1, Effect 1";
    ParameterCurve curve{1, {{1, {10}}, {3, {30}}}};
    FrameTraces traces;

    ExistingFramesTest() {
        settings.encoding.software = "perch 1.0.0, Effect: --amount 10";
        for (const char* const name : {"in.1.png", "in.2.png", "in.3.png", "matte.png", "other.png"})
            writeFile<std::uint8_t>(folder / name, {8, 8, 3}, std::vector<std::uint8_t>(192, 90));
    }

    fs::path outputOf(int frame) const { return folder / ("out." + std::to_string(frame) + ending); }

    FramePlan plan() const {
        FramePlan plan{.isSequence = true, .frames = {}, .firstFrame = 1, .lastFrame = 3, .stillLayers = {}};
        for (const int frame : {1, 2, 3})
            plan.frames.push_back(
                {frame, folder / ("in." + std::to_string(frame) + ".png"), outputOf(frame), {}});
        plan.stillLayers[kMatte] = folder / "matte.png";
        for (FrameFiles& files : plan.frames) {
            files.fingerprint = frameFingerprint(
                {.plan = plan, .settings = settings, .parameters = {curve}, .maker = maker}, files);
        }
        return plan;
    }

    // Renders the frames that are not up to date and returns which those were.
    std::vector<int> render() const {
        FramePlan wanted = plan();
        takeCurrentFrames(wanted, traces, settings.reading, 2);
        std::vector<int> rendered;
        for (const FrameFiles& files : wanted.frames)
            rendered.push_back(files.frame);
        EXPECT_EQ(wanted.current.size() + rendered.size(), 3U);
        ScriptedEffect script;  // opaque, which every format holds
        script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
            for (A_long y = 0; y < call.output->height; ++y) {
                auto* const row =
                    reinterpret_cast<std::uint8_t*>(call.output->data) + y * call.output->rowbytes;
                std::fill_n(row, 4 * call.output->width, std::uint8_t{255});
            }
            return PF_Err_NONE;
        });
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        RenderReport report;
        renderFrames(effect, settings, {}, wanted, {}, report);
        return rendered;
    }
};

void touch(const fs::path& path) {
    fs::last_write_time(path, fs::last_write_time(path) + std::chrono::nanoseconds(1000));
}

TEST_F(ExistingFramesTest, FrameIsRenderedAgainWhereItsFileIsMissingDamagedOrMadeFromSomethingElse) {
    struct Case {
        const char* name;
        std::function<void(ExistingFramesTest&)> change;
        std::vector<int> rendered;
    };
    const std::vector<int> all{1, 2, 3};
    const Case cases[] = {
        {"nothing is different", [](auto&) {}, {}},
        {"a file is gone", [](auto& test) { fs::remove(test.outputOf(2)); }, {2}},
        {"a file is cut short", [](auto& test) { fs::resize_file(test.outputOf(3), 80); }, {3}},
        {"another program's file",
         [](auto& test) {
             fs::copy_file(test.folder / "in.1.png", test.outputOf(1), fs::copy_options::overwrite_existing);
         },
         {1}},
        {"another frame's file",
         [](auto& test) {
             fs::copy_file(test.outputOf(1), test.outputOf(2), fs::copy_options::overwrite_existing);
         },
         {2}},
        {"an input is written again", [](auto& test) { touch(test.folder / "in.2.png"); }, {2}},
        {"the layer is written again", [](auto& test) { touch(test.folder / "matte.png"); }, all},
        {"a key behind the first frame moves", [](auto& test) { test.curve.keys[1].numbers = {40}; }, {2, 3}},
        {"a key that changes no frame is added",
         [](auto& test) {
             test.curve.keys.push_back({9, {40}});
         },
         {}},
        {"another build of the effect", [](auto& test) { test.maker += '1'; }, all},
        {"another quality", [](auto& test) { test.settings.quality = PF_Quality_LO; }, all},
        {"another channel of the layer", [](auto& test) { test.settings.layers[kMatte].selected = "R"; },
         all},
        {"dithered", [](auto& test) { test.settings.isDithered = true; }, all},
        {"another compression", [](auto& test) { test.settings.encoding.compression = 6; }, all},
        {"more threads", [](auto& test) { test.settings.framesAhead = 3; }, {}},
    };
    EXPECT_EQ(render(), all);
    for (const auto& [name, change, rendered] : cases) {
        change(*this);
        EXPECT_EQ(render(), rendered) << name;
        EXPECT_THAT(render(), IsEmpty()) << name << ", and again";
    }
}

TEST_F(ExistingFramesTest, EveryFormatThatIsWrittenKeepsTheFingerprint) {
    for (const std::string format : {".png", ".tif", ".exr", ".jpg", ".tga", ".dpx"}) {
        ending = format;
        EXPECT_THAT(render(), ElementsAre(1, 2, 3)) << format;
        EXPECT_THAT(render(), IsEmpty()) << format;
    }
}

TEST_F(ExistingFramesTest, DamagedFileIsRenderedAgainThoughDamagedInputsAreTaken) {
    ending = ".dpx";
    settings.reading.acceptsDamage = true;
    EXPECT_THAT(render(), ElementsAre(1, 2, 3));
    fs::resize_file(outputOf(3), fs::file_size(outputOf(3)) - 20);
    EXPECT_THAT(render(), ElementsAre(3));
}

TEST_F(ExistingFramesTest, FilesThatTellNothingAreKnownByAReportAlone) {
    settings.encoding.software.clear();
    EXPECT_THAT(render(), ElementsAre(1, 2, 3));
    EXPECT_THAT(render(), ElementsAre(1, 2, 3));
    for (const FrameFiles& files : plan().frames)
        traces[{files.frame, files.output.string()}] = {files.fingerprint, *fileState(files.output)};
    EXPECT_THAT(render(), IsEmpty());
    touch(outputOf(3));  // somebody else has written it
    EXPECT_THAT(render(), ElementsAre(3));
}

TEST_F(ExistingFramesTest, RefusalNamesTheFirstFileThatIsThereAndAllItsFrames) {
    EXPECT_NO_THROW(refuseExistingFrames(plan()));
    writeBytes(outputOf(2), "");
    writeBytes(outputOf(3), "");
    try {
        refuseExistingFrames(plan());
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_THAT(error.what(),
                    HasSubstr("files of 2 frames, 2-3, exist, the first is \"" + outputOf(2).string()));
    }
}

}  // namespace
}  // namespace perch::test
