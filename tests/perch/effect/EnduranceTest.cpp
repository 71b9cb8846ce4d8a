// What a long job leaves behind: nothing. Memory in use, descriptors and threads are the same after 2,000
// frames and 100 loads as after a few.
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "Sequence.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

namespace fs = std::filesystem;

struct Usage {
    std::size_t memory;  // bytes in use; 0 where a sanitizer keeps the account
    std::ptrdiff_t descriptors;
    std::ptrdiff_t threads;
};

std::ptrdiff_t countIn(const char* folder) {
    return std::distance(fs::directory_iterator(folder), {});
}

Usage usage() {
    const struct mallinfo2 heap = mallinfo2();
    return {heap.uordblks + heap.hblkhd, countIn("/proc/self/fd"), countIn("/proc/self/task")};
}

void expectFlat(const Usage& before, const Usage& after) {
    // Caches of the C library and of the formatting library: less than 17 bytes a frame, 328 a load.
    constexpr std::size_t kSlack = 32 * 1024;
    EXPECT_LE(after.memory, before.memory + kSlack);
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.threads, before.threads);
    testing::Test::RecordProperty("memoryBefore", std::to_string(before.memory));
    testing::Test::RecordProperty("memoryAfter", std::to_string(after.memory));
}

const char* const kPlugins[] = {PERCH_EFFECT, PERCH_TEST_PLUGINS "/Smart.so"};

HostOptions options() {
    HostOptions options;
    options.threads = 3;
    return options;
}

// With a picture of some detail as input and as every layer.
void renderFrames(const Effect& effect, Sequence& sequence, int count) {
    const World input = noise<PF_Pixel>(64, 48, 3);
    FrameRequest request;
    request.input = &input;
    for (const Parameter& parameter : effect.description().parameters)
        if (isLayer(parameter)) request.layers[parameter.index] = &input;
    for (request.frame = 0; request.frame < count; ++request.frame)
        sequence.render(request);
}

void loadAndUnload(const char* plugin, int count) {
    for (int i = 0; i < count; ++i) {
        Effect effect(plugin, options());
        Sequence sequence(effect);
        renderFrames(effect, sequence, 1);
    }
}

TEST(EnduranceTest, ThousandsOfFramesLeaveNothingBehind) {
    for (const char* const plugin : kPlugins) {
        SCOPED_TRACE(plugin);
        Effect effect(plugin, options());
        Sequence sequence(effect);
        renderFrames(effect, sequence, 20);
        const Usage before = usage();
        renderFrames(effect, sequence, 2000);
        expectFlat(before, usage());
    }
}

TEST(EnduranceTest, AHundredLoadsLeaveNothingBehind) {
    for (const char* const plugin : kPlugins) {
        SCOPED_TRACE(plugin);
        loadAndUnload(plugin, 3);
        const Usage before = usage();
        loadAndUnload(plugin, 100);
        expectFlat(before, usage());
    }
}

}  // namespace
}  // namespace perch::test
