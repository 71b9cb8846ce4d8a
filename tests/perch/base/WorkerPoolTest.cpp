#include "WorkerPool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <numeric>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace perch::test {
namespace {

class WorkerPoolTest : public testing::TestWithParam<int> {};

TEST_P(WorkerPoolTest, EachIterationRunsOnceForEveryCount) {
    WorkerPool pool(GetParam());
    for (const std::int32_t count : {0, 1, 2, 3, 64, 1000}) {
        std::vector<std::atomic<int>> runs(static_cast<std::size_t>(count));
        pool.run(count, [&](std::int32_t, std::int32_t i) { ++runs[static_cast<std::size_t>(i)]; });
        for (std::int32_t i = 0; i < count; ++i)
            EXPECT_EQ(runs[static_cast<std::size_t>(i)], 1) << "iteration " << i << " of " << count;
    }
}

TEST_P(WorkerPoolTest, ThreadZeroIsTheCaller) {
    WorkerPool pool(GetParam());
    const std::thread::id caller = std::this_thread::get_id();
    std::atomic<int> mismatches{0};
    std::atomic<int> outside{0};
    pool.run(500, [&](std::int32_t thread, std::int32_t) {
        if ((thread == 0) != (std::this_thread::get_id() == caller)) ++mismatches;
        if (thread < 0 || thread >= GetParam()) ++outside;
    });
    EXPECT_EQ(mismatches, 0);
    EXPECT_EQ(outside, 0);
}

TEST_P(WorkerPoolTest, RunWithinARunStaysOnItsThread) {
    WorkerPool pool(GetParam());
    std::atomic<int> inner{0};
    std::atomic<int> strayed{0};
    pool.run(20, [&](std::int32_t, std::int32_t) {
        const std::thread::id outer = std::this_thread::get_id();
        pool.run(5, [&](std::int32_t, std::int32_t) {
            ++inner;
            if (std::this_thread::get_id() != outer) ++strayed;
        });
    });
    EXPECT_EQ(inner, 100);
    EXPECT_EQ(strayed, 0);
}

TEST(WorkerPoolBudgetTest, WorkersTakePartWhereTheBudgetLeavesAShare) {
    ThreadBudget budget(1);
    WorkerPool pool(4, &budget);
    std::set<std::int32_t> threads;
    {
        const ThreadShare caller(&budget);
        pool.run(100, [&](std::int32_t thread, std::int32_t) { threads.insert(thread); });
    }
    EXPECT_EQ(threads, std::set<std::int32_t>{0});
    // One is left over, so that a second thread works: the caller's first iteration waits for one of another
    // thread's.
    std::atomic<int> atWork{0};
    std::atomic<int> most{0};
    std::atomic<bool> hasHelp{false};
    const auto latest = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    pool.run(100, [&](std::int32_t thread, std::int32_t) {
        const int now = ++atWork;
        for (int before = most; before < now && !most.compare_exchange_weak(before, now);) {
        }
        if (thread != 0) hasHelp = true;
        while (thread == 0 && !hasHelp && std::chrono::steady_clock::now() < latest)
            std::this_thread::yield();
        --atWork;
    });
    EXPECT_TRUE(hasHelp);
    EXPECT_LE(most, 2);
}

TEST(ThreadBudgetTest, WhoeverAsksFirstIsFirst) {
    ThreadBudget budget(1);
    std::vector<int> order;
    std::optional<ThreadTurn> given(&budget);
    ThreadTurn first(&budget);
    ThreadTurn second(&budget);
    std::future<void> later = std::async(std::launch::async, [&order, turn = std::move(second)]() mutable {
        const ThreadShare share(std::move(turn));
        order.push_back(2);
    });
    given.reset();  // nobody waits for a turn that is given up
    EXPECT_EQ(later.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    {
        const ThreadShare share(std::move(first));
        order.push_back(1);
    }
    later.get();
    EXPECT_THAT(order, testing::ElementsAre(1, 2));
}

TEST_P(WorkerPoolTest, ExceptionComesBackToTheCallerAndThePoolGoesOn) {
    WorkerPool pool(GetParam());
    const auto throwAtTen = [](std::int32_t, std::int32_t i) {
        if (i == 10) throw std::runtime_error("ten");
    };
    EXPECT_THROW(pool.run(100, throwAtTen), std::runtime_error);
    std::atomic<int> runs{0};
    pool.run(100, [&](std::int32_t, std::int32_t) { ++runs; });
    EXPECT_EQ(runs, 100);
}

TEST_P(WorkerPoolTest, NoIterationBeginsAfterEveryThreadHasThrown) {
    WorkerPool pool(GetParam());
    std::atomic<int> runs{0};
    const auto fail = [&](std::int32_t, std::int32_t) {
        ++runs;
        throw std::runtime_error("all");
    };
    EXPECT_THROW(pool.run(1000, fail), std::runtime_error);
    EXPECT_LE(runs, GetParam());
}

TEST_P(WorkerPoolTest, NoIterationBeginsAfterOneThreadOfManyHasThrown) {
    WorkerPool pool(GetParam());
    std::atomic<int> runs{0};
    constexpr int kCount = 20000;
    const auto failFirst = [&](std::int32_t, std::int32_t i) {
        ++runs;
        if (i == 0) throw std::runtime_error("one");
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    };
    EXPECT_THROW(pool.run(kCount, failFirst), std::runtime_error);
    EXPECT_LT(runs, kCount / 2);
}

TEST_P(WorkerPoolTest, FirstExceptionIsTheOneThatComesBack) {
    WorkerPool pool(GetParam());
    std::atomic<bool> hasThrown{false};
    // The others throw later than the first, and before the run ends.
    const auto fail = [&](std::int32_t, std::int32_t) {
        if (!hasThrown.exchange(true)) throw std::runtime_error("first");
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        throw std::runtime_error("later");
    };
    try {
        pool.run(GetParam(), fail);
        ADD_FAILURE() << "no exception came back";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "first");
    }
}

INSTANTIATE_TEST_SUITE_P(ThreadCounts, WorkerPoolTest, testing::Values(1, 2, 3, 8, 64),
                         [](const auto& test) { return "Threads" + std::to_string(test.param); });

TEST(WorkerPoolSizeTest, ZeroAsksForOneThreadPerProcessor) {
    EXPECT_EQ(WorkerPool(0).threadCount(),
              static_cast<int>(std::max(1U, std::thread::hardware_concurrency())));
}

TEST(WorkerPoolSizeTest, WorkersStayFromRunToRun) {
    WorkerPool pool(4);
    std::mutex mutex;
    std::set<std::thread::id> ids;
    for (int run = 0; run < 50; ++run)
        pool.run(40, [&](std::int32_t, std::int32_t) {
            const std::lock_guard lock(mutex);
            ids.insert(std::this_thread::get_id());
        });
    EXPECT_LE(ids.size(), 4U);
}

}  // namespace
}  // namespace perch::test
