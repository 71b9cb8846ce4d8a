// What a job takes of the threads that it is given.
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>

#include "PictureFiles.h"
#include "RenderJob.h"
#include "ReplacedFile.h"
#include "ScriptedEffect.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

// For the watcher of temporary files, which has no state of its own.
ThreadBudget* gBudget = nullptr;  // set once the frame is rendered
std::future<void> gOther;         // work that has nothing to do with the frame
bool gIsOtherDone = false;

void workBesideTheFile(const std::string&) {
    if (gBudget == nullptr) return;
    gOther = std::async(std::launch::async, [] { const ThreadShare share(gBudget); });
    gIsOtherDone = gOther.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
}

TEST(JobThreadsTest, AFileOnItsWayToTheDiskLeavesTheThreadToOthers) {
    const TemporaryFolder folder;
    writeFile<std::uint8_t>(folder / "in.png", {}, {10, 20, 30, 255});
    const FramePlan plan{
        .isSequence = false, .frames = {{0, folder / "in.png", folder / "out.png", {}}}, .stillLayers = {}};
    ThreadBudget budget(1);
    RenderSettings settings;
    settings.budget = &budget;
    ScriptedEffect script;
    script.on(PF_Cmd_RENDER, [&](const EffectCall&) {
        gBudget = &budget;
        return PF_Err_NONE;
    });
    pictures::watchTemporaryFiles({.appears = workBesideTheFile, .isGone = [](const std::string&) {}});
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    RenderReport report;
    renderFrames(effect, settings, {}, plan, {}, report);
    pictures::watchTemporaryFiles(
        {.appears = [](const std::string&) {}, .isGone = [](const std::string&) {}});
    ASSERT_TRUE(gOther.valid()) << "no temporary file appeared";
    gOther.get();
    gBudget = nullptr;
    EXPECT_TRUE(gIsOtherDone);
}

}  // namespace
}  // namespace perch::test
