#include "OrderedTasks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

namespace perch::test {
namespace {

// Until `condition()` holds, or for so long that no test can take it for one that will.
template <typename F>
void waitUntil(const F& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition() && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
}

TEST(OrderedTasksTest, ResultsComeInTheOrderOfTheStartsWhicheverEndsFirst) {
    OrderedTasks<int> tasks(8);
    for (int i = 0; i < 8; ++i) {
        tasks.start([i] {
            std::this_thread::sleep_for(std::chrono::milliseconds(8 - i));
            return i;
        });
    }
    EXPECT_TRUE(tasks.isFull());
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(tasks.next(), i);
    EXPECT_TRUE(tasks.isEmpty());
}

TEST(OrderedTasksTest, TasksRunBesideEachOtherUpToTheLimit) {
    constexpr int kLimit = 3;
    std::atomic<int> waiting{0};
    std::atomic<int> together{0};
    OrderedTasks<void> tasks(kLimit);
    // Each waits until all run.
    while (!tasks.isFull()) {
        tasks.start([&] {
            ++waiting;
            waitUntil([&] { return waiting == kLimit; });
            if (waiting == kLimit) ++together;
        });
    }
    while (!tasks.isEmpty())
        tasks.next();
    EXPECT_EQ(together, kLimit);
}

TEST(OrderedTasksTest, ExceptionComesInTheTurnOfItsTaskAndTheNextGoOn) {
    OrderedTasks<int> tasks(3);
    tasks.start([] { return 1; });
    tasks.start([]() -> int { throw std::runtime_error("two"); });
    tasks.start([] { return 3; });
    EXPECT_EQ(tasks.next(), 1);
    EXPECT_THROW(tasks.next(), std::runtime_error);
    EXPECT_EQ(tasks.next(), 3);
}

TEST(OrderedTasksTest, NextIsReadyOnceTheOldestHasEnded) {
    std::atomic<bool> mayEnd{false};
    OrderedTasks<void> tasks(2);
    EXPECT_FALSE(tasks.isNextReady());
    tasks.start([&] { waitUntil([&] { return mayEnd.load(); }); });
    tasks.start([] {});
    EXPECT_FALSE(tasks.isNextReady());
    mayEnd = true;
    tasks.next();
    waitUntil([&] { return tasks.isNextReady(); });
    EXPECT_TRUE(tasks.isNextReady());
    tasks.next();
}

TEST(OrderedTasksTest, EndWaitsForTheTasksUnderWayAndDropsTheirExceptions) {
    std::atomic<int> ended{0};
    {
        OrderedTasks<void> tasks(4);
        while (!tasks.isFull()) {
            tasks.start([&] {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                ++ended;
                throw std::runtime_error("nobody asks");
            });
        }
    }
    EXPECT_EQ(ended, 4);
}

TEST(OrderedTasksTest, TasksAndResultsNeedNotBeCopied) {
    OrderedTasks<std::unique_ptr<int>> tasks(1);
    tasks.start([given = std::make_unique<int>(7)]() mutable { return std::move(given); });
    EXPECT_EQ(*tasks.next(), 7);
}

}  // namespace
}  // namespace perch::test
