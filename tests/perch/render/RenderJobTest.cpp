// A sequence in this process, followed frame by frame.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

#include "PictureFiles.h"
#include "RenderJob.h"
#include "ScriptedEffect.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

// Tells when a file has been opened since.
class OpenWatch {
public:
    explicit OpenWatch(const std::filesystem::path& path) {
        if (inotify_add_watch(events, path.c_str(), IN_OPEN) < 0)
            throw std::system_error(errno, std::generic_category(), path);
    }
    ~OpenWatch() { close(events); }
    OpenWatch(const OpenWatch&) = delete;
    OpenWatch& operator=(const OpenWatch&) = delete;

    bool wasOpenedWithin(int milliseconds) const {
        pollfd waited{events, POLLIN, 0};
        return poll(&waited, 1, milliseconds) == 1;
    }

private:
    int events = inotify_init1(IN_CLOEXEC);
};

TEST(RenderJobTest, NextFrameIsReadWhileOneRenders) {
    const TemporaryFolder folder;
    FramePlan plan;
    plan.isSequence = true;
    for (const int frame : {1, 2}) {
        const std::string name = std::to_string(frame) + ".png";
        writeFile<std::uint8_t>(folder / ("in." + name), {}, {10, 20, 30, 255});
        plan.frames.push_back({frame, folder / ("in." + name), folder / ("out." + name), {}});
    }
    const OpenWatch second(plan.frames[1].input);
    bool isReadBesideTheFirst = false;
    RenderWatch watch;
    watch.frameBegins = [&](std::size_t index) {
        constexpr int kUntilAThreadRuns = 20000;  // milliseconds at most
        if (index == 0) isReadBesideTheFirst = second.wasOpenedWithin(kUntilAThreadRuns);
    };
    Effect effect(std::filesystem::path(PERCH_TEST_PLUGINS) / "Invert.so", strictOptions());
    RenderReport report;
    renderFrames(effect, {}, plan, watch, report);
    EXPECT_TRUE(isReadBesideTheFirst);
    EXPECT_EQ(report.framesWritten, 2U);
}

}  // namespace
}  // namespace perch::test
