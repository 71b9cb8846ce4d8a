#include "ThreadPoolContext.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Errors.h"
#include "ThreadRows.h"

namespace {

using PILib::ThreadPoolContext;

// One multiThread job that counts how often each iteration ran, and where.
struct Job {
    explicit Job(int iterations) : runs(static_cast<std::size_t>(iterations)) {}

    std::thread::id caller = std::this_thread::get_id();
    std::vector<std::atomic<int>> runs;
    std::atomic<int> wrongThread = 0;      // index 0 off the calling thread, or another on it
    std::atomic<int> wrongIterations = 0;  // told another number of iterations than were asked for
    std::atomic<int> largestThread = 0;

    static int run(void* refcon, int thread, int i, int iterations) {
        Job& job = *static_cast<Job*>(refcon);
        ++job.runs[static_cast<std::size_t>(i)];
        if ((thread == 0) != (std::this_thread::get_id() == job.caller)) ++job.wrongThread;
        if (static_cast<std::size_t>(iterations) != job.runs.size()) ++job.wrongIterations;
        int largest = job.largestThread;
        while (thread > largest && !job.largestThread.compare_exchange_weak(largest, thread)) {
        }
        return 0;
    }
};

TEST(ThreadPoolContextTest, HasAsManyThreadsAsAsked) {
    for (const int threads : {1, 2, 3, 8, 64})
        EXPECT_EQ(threads, ThreadPoolContext(threads).numProcessors());
    EXPECT_GE(ThreadPoolContext().numProcessors(), 1);
    EXPECT_EQ(ThreadPoolContext().numProcessors(), ThreadPoolContext(0).numProcessors());
}

TEST(ThreadPoolContextTest, RunsEveryIterationOnceJobAfterJob) {
    for (const int threads : {1, 2, 5, 16}) {
        const ThreadPoolContext context(threads);
        for (int job = 0; job < 200; ++job) {
            const int iterations = 1 + job % 23;
            Job work(iterations);
            ASSERT_EQ(0, context.multiThread(iterations, &work, &Job::run));
            for (std::size_t i = 0; i < work.runs.size(); ++i)
                ASSERT_EQ(1, work.runs[i]) << threads << " threads, job " << job << ", iteration " << i;
            ASSERT_EQ(0, work.wrongThread) << threads << " threads, job " << job;
            ASSERT_EQ(0, work.wrongIterations) << threads << " threads, job " << job;
            ASSERT_LT(work.largestThread, threads);
        }
    }
}

TEST(ThreadPoolContextTest, CountBelowOneIsOneIterationPerThread) {
    for (const int threads : {1, 2, 7}) {
        const ThreadPoolContext context(threads);
        for (const int count : {-1, 0}) {
            Job work(threads);
            EXPECT_EQ(0, context.multiThread(count, &work, &Job::run));
            for (const auto& runs : work.runs)
                EXPECT_EQ(1, runs) << threads << " threads, count " << count;
        }
    }
}

TEST(ThreadPoolContextTest, LowestFailingIterationGivesTheResult) {
    const auto fail = [](void*, int, int i, int) { return i < 3 ? 0 : 100 + i; };
    for (const int threads : {1, 2, 8}) {
        const ThreadPoolContext context(threads);
        for (int job = 0; job < 50; ++job)
            ASSERT_EQ(103, context.multiThread(16, nullptr, fail)) << threads << " threads";
    }
}

TEST(ThreadPoolContextTest, ExceptionsOfWorkersAreCarriedBackAfterAllIterations) {
    static std::atomic<int> runs;
    const auto fail = [](void*, int, int i, int) -> int {
        ++runs;
        if (i == 9) throw std::runtime_error("iteration 9");
        if (i == 4) throw std::runtime_error("iteration 4");
        return i == 12 ? 12 : 0;
    };
    for (const int threads : {2, 8}) {
        const ThreadPoolContext context(threads);
        for (int job = 0; job < 50; ++job) {
            runs = 0;
            try {
                context.multiThread(16, nullptr, fail);
                ADD_FAILURE() << threads << " threads: no exception";
            } catch (const std::runtime_error& error) {
                ASSERT_STREQ("iteration 4", error.what()) << threads << " threads";
            }
            ASSERT_EQ(16, runs);
        }
        Job next(16);
        EXPECT_EQ(0, context.multiThread(16, &next, &Job::run)) << "a failed job leaves nothing behind";
    }
}

TEST(ThreadPoolContextTest, ProgressMapsStagesIntoTheChosenRange) {
    ThreadPoolContext context(1);
    std::vector<float> values;
    context.onProgress([&](float done) { values.push_back(done); });
    context.progress(0, 4, 0.0F, 1.0F);
    context.progress(3, 4, 0.0F, 1.0F);
    context.setProgress(0.5F, 1.0F);
    context.progress(1, 2, 0.0F, 1.0F);
    context.progress(1, 2, 0.5F, 0.5F);
    context.setProgress(0.0F, 0.25F);
    context.progress(1, 2, 0.5F, 1.0F);
    EXPECT_EQ((std::vector<float>{0.0F, 0.75F, 0.75F, 0.875F, 0.25F}), values);
    context.progress(0, 0, 0.0F, 1.0F);
    EXPECT_EQ(5U, values.size()) << "a stage without steps has no share to report";
}

TEST(ThreadPoolContextTest, CancelEndsTheNextReportOrCheckUntilItIsCleared) {
    ThreadPoolContext context(2);
    EXPECT_NO_THROW(context.checkAbort());
    context.cancel();
    for (int n = 0; n < 2; ++n) {
        try {
            context.progress(0, 1, 0.0F, 1.0F);
            ADD_FAILURE() << "not cancelled";
        } catch (int code) {
            EXPECT_EQ(PILib::kUserCancelled, code);
        }
        EXPECT_THROW(context.checkAbort(), int);
    }
    context.clearCancel();
    EXPECT_NO_THROW(context.progress(0, 1, 0.0F, 1.0F));
    EXPECT_NO_THROW(context.checkAbort());
}

struct EndlessRows {
    std::atomic<bool> started = false;

    void rowOp(PILib::PIContext& /*context*/, int /*row*/) {
        started = true;
        std::this_thread::yield();
    }
};

TEST(ThreadPoolContextTest, CancelFromAnotherThreadEndsARun) {
    ThreadPoolContext context(1);
    EndlessRows handler;
    std::thread user([&] {
        while (!handler.started)
            std::this_thread::yield();
        context.cancel();
    });
    EXPECT_THROW(PILib::ThreadRows(context, handler, 2000000000, -1), int);
    user.join();
}

TEST(ThreadPoolContextTest, ProgressFunctionMayCancelAndMayThrow) {
    ThreadPoolContext context(1);
    context.onProgress([&](float) { context.cancel(); });
    EXPECT_THROW(context.progress(0, 1, 0.0F, 1.0F), int);
    context.clearCancel();
    context.onProgress([](float) { throw 23; });
    try {
        context.progress(0, 1, 0.0F, 1.0F);
        ADD_FAILURE() << "nothing thrown";
    } catch (int code) {
        EXPECT_EQ(23, code);
    }
}

TEST(ThreadPoolContextTest, HandlesKeepTheirBytesWhenResized) {
    const ThreadPoolContext context(1);
    char** handle = context.newHandle(1000);
    EXPECT_EQ(1000U, context.getHandleSize(handle));
    char* const bytes = context.lockHandle(handle);
    EXPECT_EQ(*handle, bytes);
    for (int i = 0; i < 1000; ++i)
        bytes[i] = static_cast<char>(i);
    context.unlockHandle(handle);
    for (const std::size_t size : {std::size_t{100000}, std::size_t{500}, std::size_t{0}, std::size_t{1}}) {
        context.resizeHandle(size, &handle);
        EXPECT_EQ(size, context.getHandleSize(handle));
        const char* const kept = context.lockHandle(handle);
        for (std::size_t i = 0; size >= 500 && i < 500; ++i)
            ASSERT_EQ(static_cast<char>(i), kept[i]) << "size " << size << ", byte " << i;
        context.unlockHandle(handle);
    }
    context.disposeHandle(handle);
    context.disposeHandle(nullptr);
}

TEST(ThreadPoolContextTest, LockedAndEmptyHandlesHaveAnAddress) {
    const ThreadPoolContext context(1);
    char** const locked = context.newLockedHandle(16);
    std::memset(*locked, 1, 16);
    context.unlockHandle(locked);
    char** const empty = context.newHandle(0);
    EXPECT_NE(nullptr, context.lockHandle(empty));
    EXPECT_EQ(0U, context.getHandleSize(empty));
    context.disposeHandle(empty);
    context.disposeHandle(locked);
}

TEST(ThreadPoolContextTest, StandsForAHostWithSquarePixelsAndFullQuality) {
    const ThreadPoolContext context(1);
    EXPECT_FALSE(context.isDraftMode());
    EXPECT_FLOAT_EQ(1.0F, context.getPixelAspectRatio());
    EXPECT_EQ(0, context.getCurrentTime());
}

}  // namespace
