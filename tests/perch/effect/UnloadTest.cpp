// The end of an effect that was loaded from a file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "Sequence.h"

namespace perch::test {
namespace {

class UnloadTest : public testing::TestWithParam<bool> {};

// The main thread keeps its own: it does not end.
TEST_P(UnloadTest, EffectsCodeStaysLoadedUntilTheWorkersHaveEnded) {
    constexpr int kThreads = 4;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    {
        HostOptions options;
        options.threads = kThreads;
        Effect effect(std::filesystem::path(PERCH_TEST_PLUGINS) / "PerThread.so", options);
        Sequence sequence(effect);
        const World input(2, 2, GetParam());
        FrameRequest request;
        request.input = &input;
        request.values = effect.defaultValues(2, 2);
        request.values[1].u.sd.value = ends[1];
        sequence.render(request);
    }
    close(ends[1]);
    std::string told(16, '\0');
    const ssize_t length = read(ends[0], told.data(), told.size());
    ASSERT_GE(length, 0);
    told.resize(static_cast<std::size_t>(length));
    close(ends[0]);
    EXPECT_EQ(told, std::string(kThreads - 1, 'x'));
}

INSTANTIATE_TEST_SUITE_P(Depth, UnloadTest, testing::Bool(),
                         [](const auto& depth) { return depth.param ? "Bits16" : "Bits8"; });

}  // namespace
}  // namespace perch::test
