// The fake must be right for the tests that stand on it to mean anything.
#include "FakeContext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Runs {
    std::vector<std::vector<int>> calls;  // thread, i, iterations

    static int note(void* refcon, int thread, int i, int iterations) {
        static_cast<Runs*>(refcon)->calls.push_back({thread, i, iterations});
        return i == 1 ? 7 : 0;
    }
};

TEST(FakeContextTest, IterationsRunOncePerProcessorInTheGivenOrder) {
    FakeContext context;
    context.processors = 3;
    context.order = {2, 0, 1};
    Runs runs;
    EXPECT_EQ(7, context.multiThread(-1, &runs, &Runs::note));
    EXPECT_EQ((std::vector<std::vector<int>>{{2, 2, 3}, {0, 0, 3}, {1, 1, 3}}), runs.calls);
    EXPECT_EQ(3, context.lastIterations);
}

TEST(FakeContextTest, ContextWithoutThreadsCallsOnce) {
    FakeContext context;
    context.processors = 8;
    context.canThread = false;
    context.order = {1, 0};
    Runs runs;
    EXPECT_EQ(0, context.multiThread(5, &runs, &Runs::note));
    EXPECT_EQ((std::vector<std::vector<int>>{{0, 0, 1}}), runs.calls);
}

TEST(FakeContextTest, RealThreadsRunAtOnceAndIterationZeroOnTheCaller) {
    struct Meeting {
        std::atomic<int> arrived = 0;
        std::thread::id zero;

        static int meet(void* refcon, int thread, int /*i*/, int iterations) {
            auto& meeting = *static_cast<Meeting*>(refcon);
            if (thread == 0) meeting.zero = std::this_thread::get_id();
            ++meeting.arrived;
            while (meeting.arrived < iterations)
                std::this_thread::yield();
            return 0;
        }
    };
    FakeContext context;
    context.realThreads = true;
    Meeting meeting;
    EXPECT_EQ(0, context.multiThread(4, &meeting, &Meeting::meet));
    EXPECT_EQ(std::this_thread::get_id(), meeting.zero);
}

// The code that `action` throws, 0 for none.
template <class Action>
int CodeOf(Action action) {
    try {
        action();
    } catch (int code) {
        return code;
    }
    return 0;
}

TEST(FakeContextTest, ProgressAndAbortChecksFailAtTheGivenCallOnly) {
    FakeContext context;
    context.failAtProgress(2, 517);
    context.failAtCheckAbort(3, 23);
    std::vector<int> progress;
    std::vector<int> aborts;
    for (int call = 0; call < 4; ++call) {
        progress.push_back(CodeOf([&] { context.progress(call, 4, 0.0F, 1.0F); }));
        aborts.push_back(CodeOf([&] { context.checkAbort(); }));
    }
    EXPECT_EQ((std::vector<int>{0, 517, 0, 0}), progress);
    EXPECT_EQ((std::vector<int>{0, 0, 23, 0}), aborts);
    EXPECT_EQ(4, context.abortChecks);
    ASSERT_EQ(4U, context.progressCalls.size());
    EXPECT_EQ((ProgressCall{1, 4, 0.0F, 1.0F}), context.progressCalls[1]);
}

TEST(FakeContextTest, HandlesAreCountedAndKeepTheirBytesWhenTheyMove) {
    FakeContext context;
    char** handle = context.newHandle(4);
    std::memcpy(context.lockHandle(handle), "abc", 4);
    EXPECT_EQ(1, context.lockedHandles());
    context.unlockHandle(handle);
    char** const old = handle;
    context.resizeHandle(100, &handle);
    EXPECT_NE(old, handle);
    EXPECT_STREQ("abc", *handle);
    EXPECT_EQ(100U, context.getHandleSize(handle));
    EXPECT_EQ(1, context.liveHandles());
    char** const locked = context.newLockedHandle(0);
    EXPECT_NE(nullptr, *locked);
    EXPECT_EQ(0U, context.getHandleSize(locked));
    EXPECT_EQ(2, context.liveHandles());
    context.unlockHandle(locked);
    context.disposeHandle(locked);
    context.disposeHandle(handle);
    EXPECT_EQ(0, context.liveHandles());
    EXPECT_EQ(0, context.lockedHandles());
    EXPECT_TRUE(context.handleFaults.empty());
}

TEST(FakeContextTest, MisuseOfHandlesIsNoted) {
    FakeContext context;
    char** handle = context.newLockedHandle(4);
    context.resizeHandle(8, &handle);
    context.unlockHandle(handle);
    context.disposeHandle(handle);
    context.disposeHandle(handle);
    context.lockHandle(nullptr);
    EXPECT_EQ((std::vector<std::string>{"resize: locked", "unlock: not locked", "dispose: not a live handle",
                                        "lock: not a live handle"}),
              context.handleFaults);
}

TEST(FakeContextTest, AllocationFailsAtTheGivenCallAndLeavesHandlesAsTheyWere) {
    FakeContext context;
    context.failAtAllocation(2);
    char** handle = context.newHandle(4);
    EXPECT_EQ(PILib::kOutOfMemory, CodeOf([&] { context.resizeHandle(8, &handle); }));
    EXPECT_EQ(4U, context.getHandleSize(handle));
    EXPECT_EQ(1, context.liveHandles());
}

}  // namespace
