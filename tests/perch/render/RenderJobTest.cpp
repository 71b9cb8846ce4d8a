// A sequence in this process, followed frame by frame.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

#include "PictureFiles.h"
#include "PixelAccess.h"
#include "RenderJob.h"
#include "ReplacedFile.h"
#include "ScriptedEffect.h"
#include "TemporaryFolder.h"
#include "WaitForFrames.h"

namespace perch::test {
namespace {

constexpr int kUntilAThreadRuns = 20000;  // milliseconds at most

// Tells when one of the events (see inotify) has come to a file or folder since.
class FileWatch {
public:
    FileWatch(const std::filesystem::path& path, std::uint32_t mask) {
        if (inotify_add_watch(events, path.c_str(), mask) < 0)
            throw std::system_error(errno, std::generic_category(), path);
    }
    ~FileWatch() { close(events); }
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

    bool hasSeenOneWithin(int milliseconds) const {
        pollfd waited{events, POLLIN, 0};
        return poll(&waited, 1, milliseconds) == 1;
    }

private:
    int events = inotify_init1(IN_CLOEXEC);
};

// in.1.png and so on, which are written, to out.1.png. T is the type of their samples.
template <typename T = std::uint8_t>
FramePlan sequenceIn(const TemporaryFolder& folder, int frames) {
    FramePlan plan;
    plan.isSequence = true;
    for (int frame = 1; frame <= frames; ++frame) {
        const std::string name = std::to_string(frame) + ".png";
        writeFile<T>(folder / ("in." + name), {}, {10, 20, 30, std::numeric_limits<T>::max()});
        plan.frames.push_back({frame, folder / ("in." + name), folder / ("out." + name), {}});
    }
    return plan;
}

TEST(RenderJobTest, NextFrameIsReadWhileOneRenders) {
    const TemporaryFolder folder;
    const FramePlan plan = sequenceIn(folder, 2);
    const FileWatch second(plan.frames[1].input, IN_OPEN);
    bool isReadBesideTheFirst = false;
    RenderWatch watch;
    watch.frameBegins = [&](std::size_t index) {
        if (index == 0) isReadBesideTheFirst = second.hasSeenOneWithin(kUntilAThreadRuns);
    };
    Effect effect(std::filesystem::path(PERCH_TEST_PLUGINS) / "Invert.so", strictOptions());
    RenderReport report;
    renderFrames(effect, {}, {}, plan, watch, report);
    EXPECT_TRUE(isReadBesideTheFirst);
    EXPECT_EQ(report.framesWritten, 2U);
}

TEST(RenderJobTest, FrameThatACancelCameInIsNotWritten) {
    const TemporaryFolder folder;
    const FramePlan plan = sequenceIn(folder, 3);
    std::atomic<bool> cancelled{false};
    RenderWatch watch;
    watch.cancelled = &cancelled;
    RenderReport report;
    ScriptedEffect script;  // never asks whether it is to stop
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        if (call.in->current_time < 2) return PF_Err_NONE;
        waitForFrames(report, 1);
        cancelled = true;
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    EXPECT_THROW(renderFrames(effect, {}, {}, plan, watch, report), Cancelled);
    EXPECT_EQ(report.framesWritten, 1U);
    EXPECT_TRUE(std::filesystem::exists(plan.frames[0].output));
    EXPECT_FALSE(std::filesystem::exists(plan.frames[1].output));
}

// Set where the first temporary file appears, which is when the picture is encoded and about to be written.
std::atomic<bool>* gCancelledByTheFile = nullptr;

TEST(RenderJobTest, FileThatACancelCameInIsNotMade) {
    const TemporaryFolder folder;
    const FramePlan plan = sequenceIn(folder, 1);
    std::atomic<bool> cancelled{false};
    RenderWatch watch;
    watch.cancelled = &cancelled;
    watch.frameBegins = [&](std::size_t) { gCancelledByTheFile = &cancelled; };
    std::size_t ends = 0;
    watch.frameEnds = [&](const FrameEnd&) { ++ends; };
    pictures::watchTemporaryFiles({.appears =
                                       [](const std::string&) {
                                           if (gCancelledByTheFile != nullptr) *gCancelledByTheFile = true;
                                       },
                                   .isGone = [](const std::string&) {}});
    ScriptedEffect script;
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    RenderReport report;
    EXPECT_THROW(renderFrames(effect, {}, {}, plan, watch, report), Cancelled);
    gCancelledByTheFile = nullptr;
    EXPECT_TRUE(cancelled);
    EXPECT_EQ(ends, 0U);
    EXPECT_EQ(report.framesWritten, 0U);
    const auto files = std::filesystem::directory_iterator(folder.path);
    EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "the input alone";
}

TEST(RenderJobTest, FailedWriteEndsTheJobAtTheNextFrame) {
    const TemporaryFolder folder;
    constexpr int kFrames = 8;
    FramePlan plan = sequenceIn(folder, kFrames);
    // Longer than a file's name may be, which shows when the written file is given its name.
    plan.frames[0].output = folder / (std::string(300, 'x') + ".png");
    std::optional<FileWatch> failedFile;
    std::size_t begun = 0;
    bool hasFailed = false;
    RenderWatch watch;
    watch.frameBegins = [&](std::size_t index) {
        begun = index + 1;
        // The folder was tried out before.
        if (index == 0) failedFile.emplace(folder / "", IN_DELETE);
        if (index == 1) hasFailed = failedFile->hasSeenOneWithin(kUntilAThreadRuns);
        // The task has yet to end when its file is gone.
        if (index > 1) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    };
    RenderSettings settings;
    settings.framesAhead = kFrames;  // room for all of them to wait
    ScriptedEffect script;
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    RenderReport report;
    EXPECT_THROW(renderFrames(effect, settings, {}, plan, watch, report), Error);
    EXPECT_TRUE(hasFailed);
    EXPECT_LT(begun, static_cast<std::size_t>(kFrames) - 2);
}

template <typename T>
class SampleTypeTest : public testing::Test {
protected:
    SampleTypeTest() { script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE); }

    const TemporaryFolder folder;
    ScriptedEffect script;
};

using SampleTypes = testing::Types<std::uint8_t, std::uint16_t>;
TYPED_TEST_SUITE(SampleTypeTest, SampleTypes);

// The user sets the first of three sliders; the effect answers by changing the second.
TYPED_TEST(SampleTypeTest, SupervisedSettingsAreToldBeforeTheFirstFrameAndWhatTheyChangeHoldsForAll) {
    const FramePlan plan = sequenceIn<TypeParam>(this->folder, 2);
    ScriptedEffect& script = this->script;
    std::vector<PF_ParamDef> sliders(3, parameterOfType(PF_Param_SLIDER, "S"));
    sliders[0].flags = sliders[2].flags = PF_ParamFlag_SUPERVISE;
    script.declareParameters(sliders);
    script.on(PF_Cmd_USER_CHANGED_PARAM, [](const EffectCall& call) {
        EXPECT_EQ(static_cast<PF_UserChangedParamExtra*>(call.extra)->param_index, 1);
        EXPECT_EQ(call.params[1]->u.sd.value, 5);
        call.params[2]->u.sd.value = 50;
        call.params[2]->uu.change_flags = PF_ChangeFlag_CHANGED_VALUE;
        return PF_Err_NONE;
    });
    std::vector<A_long> rendered;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        rendered.push_back(call.params[2]->u.sd.value);
        return PF_Err_NONE;
    });
    std::vector<std::string> commands;
    HostOptions options = strictOptions();
    options.onCommand = [&](std::string_view command) { commands.emplace_back(command); };
    Effect effect(ScriptedEffect::enter, {}, options);
    RenderReport report;
    commands.clear();
    renderFrames(effect, {}, {constantCurve({1, {5}})}, plan, {}, report);
    EXPECT_EQ(rendered, (std::vector<A_long>{50, 50}));
    EXPECT_EQ(commands, (std::vector<std::string>{"SEQUENCE_SETUP", "USER_CHANGED_PARAM", "UPDATE_PARAMS_UI",
                                                  "FRAME_SETUP", "RENDER", "FRAME_SETDOWN", "FRAME_SETUP",
                                                  "RENDER", "FRAME_SETDOWN", "SEQUENCE_SETDOWN"}));
}

TEST(RenderJobTest, WhatTheEffectChangesGivesWayToKeys) {
    const TemporaryFolder folder;
    ScriptedEffect script;
    std::vector<PF_ParamDef> sliders(2, parameterOfType(PF_Param_SLIDER, "S"));
    sliders[0].flags = PF_ParamFlag_SUPERVISE;
    script.declareParameters(sliders);
    script.on(PF_Cmd_USER_CHANGED_PARAM, [](const EffectCall& call) {
        call.params[2]->u.sd.value = 50;
        call.params[2]->uu.change_flags = PF_ChangeFlag_CHANGED_VALUE;
        return PF_Err_NONE;
    });
    std::vector<A_long> rendered;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        rendered.push_back(call.params[2]->u.sd.value);
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    RenderReport report;
    const std::vector<ParameterCurve> curves{constantCurve({1, {5}}), {2, {{1, {10}}, {2, {20}}}}};
    renderFrames(effect, {}, curves, sequenceIn(folder, 2), {}, report);
    EXPECT_EQ(rendered, (std::vector<A_long>{10, 20}));
}

TEST(RenderJobTest, ShotLastsUntilItsLastFrameIsOver) {
    const TemporaryFolder folder;
    FramePlan plan = sequenceIn(folder, 2);
    plan.lastFrame = 2;
    ScriptedEffect script;
    std::vector<A_long> frames;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        frames.push_back(call.in->total_time / call.in->time_step);
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    RenderReport report;
    renderFrames(effect, {}, {}, plan, {}, report);
    EXPECT_EQ(frames, (std::vector<A_long>{3, 3})) << "0, 1 and 2";
}

TEST(RenderJobTest, FloatsStayFloatsThoughTheEffectGetsWholeNumbers) {
    const TemporaryFolder folder;
    struct Case {
        Depth depth;
        pictures::SampleType written;
    };
    for (const Case& c : {Case{Depth::Bits16, pictures::SampleType::Float},
                          Case{Depth::Bits8, pictures::SampleType::Bits8}}) {
        FramePlan plan;
        plan.frames.push_back({0, folder / "in.tif", folder / "out.tif", {}});
        writeFile<float>(folder / "in.tif", {}, {0.25F, 0.5F, 0.75F, 1});
        ScriptedEffect script;
        script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE);
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        RenderReport report;
        RenderSettings settings;
        settings.depth = c.depth;
        renderFrames(effect, settings, {}, plan, {}, report);
        EXPECT_EQ(readPictureFile(folder / "out.tif", "", {})->type(), c.written);
    }
}

// An effect of one slider, and the values that it has rendered with.
struct SliderEffect {
    ScriptedEffect script;
    std::vector<A_long> rendered;

    SliderEffect() {
        script.declareParameters({parameterOfType(PF_Param_SLIDER, "S")});
        script.on(PF_Cmd_RENDER, [this](const EffectCall& call) {
            rendered.push_back(call.params[1]->u.sd.value);
            return PF_Err_NONE;
        });
    }
};

TEST(RenderJobTest, KeysGiveEachFrameTheValueOfItsNumber) {
    const TemporaryFolder folder;
    FramePlan plan = sequenceIn(folder, 4);
    const auto numberOf = [&](std::size_t i) { return plan.frames[i].frame; };
    const ParameterCurve curve{
        1, {{.frame = numberOf(0), .numbers = {0}}, {.frame = numberOf(3), .numbers = {90}}}};
    SliderEffect slider;
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    RenderReport report;
    renderFrames(effect, {}, {curve}, plan, {}, report);
    EXPECT_EQ(slider.rendered, (std::vector<A_long>{0, 30, 60, 90}));
    plan.frames.erase(plan.frames.begin(), plan.frames.begin() + 2);
    slider.rendered.clear();
    renderFrames(effect, {}, {curve}, plan, {}, report);
    EXPECT_EQ(slider.rendered, (std::vector<A_long>{60, 90})) << "whichever frames are rendered beside them";
}

TEST(RenderJobTest, VariantsOfAFrameAreRenderedFromPicturesThatAreReadOnce) {
    const TemporaryFolder folder;
    const FramePlan plan = sequenceIn(folder, 2);
    SliderEffect slider;
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    RenderReport once;
    renderFrames(effect, {}, {}, plan, {}, once);
    for (const FrameFiles& files : plan.frames)
        std::filesystem::remove(files.output);
    slider.rendered.clear();
    RenderSettings settings;
    settings.variants = {{{1, {5}}}, {{1, {7}}}};
    std::size_t taken = 0;
    RenderWatch watch;
    watch.takesPicture = [&](const World&) { ++taken; };
    RenderReport report;
    renderFrames(effect, settings, {}, plan, watch, report);
    EXPECT_EQ(slider.rendered, (std::vector<A_long>{5, 7, 5, 7}));
    EXPECT_EQ(taken, 4U);
    EXPECT_EQ(report.pixelsRead, once.pixelsRead);
    EXPECT_FALSE(std::filesystem::exists(plan.frames[0].output));
}

// A layer that is this layer by default must not stand in for one that is missing.
TEST(RenderJobTest, FrameWithoutItsLayerIsRenderedWithNone) {
    const TemporaryFolder folder;
    FramePlan plan = sequenceIn(folder, 2);
    plan.frames[0].layers[1] = plan.frames[0].input;
    plan.frames[1].missingLayers = {1};
    ScriptedEffect script;
    PF_ParamDef layer = parameterOfType(PF_Param_LAYER, "L");
    layer.u.ld.dephault = PF_LayerDefault_MYSELF;
    script.declareParameters({layer});
    std::vector<bool> hasLayer;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        PF_ParamDef checkedOut{};
        const PF_InData& in = *call.in;
        const PF_Err error = in.inter.checkout_param(in.effect_ref, 1, in.current_time, in.time_step,
                                                     in.time_scale, &checkedOut);
        hasLayer.push_back(checkedOut.u.ld.data != nullptr);
        return error != 0 ? error : in.inter.checkin_param(in.effect_ref, &checkedOut);
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    RenderReport report;
    renderFrames(effect, {}, {}, plan, {}, report);
    EXPECT_EQ(hasLayer, (std::vector<bool>{true, false}));
}

// Four columns and three rows at a half, rounded up to two rows: a pixel of the first is the mean of two
// columns, of all of row 0 and half of row 1, which weigh 1365 and 683 of 2048.
TYPED_TEST(SampleTypeTest, PicturesAreMadeSmallerWhereThatIsAskedFor) {
    constexpr TypeParam kMost = std::numeric_limits<TypeParam>::max();
    const auto red = [](int x, int y) { return static_cast<TypeParam>(kMost / 16 * (x + 4 * y)); };
    std::vector<TypeParam> samples;
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            samples.insert(samples.end(), {red(x, y), kMost, 0, kMost});
    FramePlan plan;
    writeFile<TypeParam>(this->folder / "in.png", {.width = 4, .height = 3}, samples);
    plan.frames.push_back({0, this->folder / "in.png", this->folder / "out.png", {}});
    // As a code of a world.
    const auto codeAt = [&](int x, int y) {
        const std::uint32_t sample = red(x, y);
        return sizeof(TypeParam) == 1 ? sample : (sample * 32768 + kMost / 2) / kMost;
    };
    this->script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        EXPECT_EQ(call.output->width, 2);
        EXPECT_EQ(call.output->height, 2);
        EXPECT_EQ(call.in->width, 4);
        EXPECT_EQ(call.in->height, 3);
        EXPECT_EQ(call.in->downsample_x.den, 2U);
        const PF_LayerDef& input = call.params[0]->u.ld;
        forDepth(input, [&]<class P>() {
            for (int x = 0; x < 2; ++x) {
                const auto both = [&](int y) { return codeAt(2 * x, y) + codeAt(2 * x + 1, y); };
                EXPECT_EQ(rowOf<P>(input, 0)[x].red, (1365 * both(0) + 683 * both(1) + 2048) / 4096);
                EXPECT_EQ(rowOf<P>(input, 0)[x].green, kWhite<P>);
                EXPECT_EQ(rowOf<P>(input, 0)[x].alpha, kWhite<P>);
            }
        });
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    RenderSettings settings;
    settings.downsample = {1, 2};
    settings.resizes = true;
    RenderReport report;
    renderFrames(effect, settings, {}, plan, {}, report);
    EXPECT_EQ(readWorld(this->folder / "out.png").pixels.width(), 2);
}

}  // namespace
}  // namespace perch::test
