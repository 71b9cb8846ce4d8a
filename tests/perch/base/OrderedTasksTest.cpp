#include "OrderedTasks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

namespace perch::test {
namespace {

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
    OrderedTasks<void> tasks(kLimit);
    // Each ends only when all run.
    while (!tasks.isFull()) {
        tasks.start([&] {
            ++waiting;
            while (waiting < kLimit)
                std::this_thread::yield();
        });
    }
    while (!tasks.isEmpty())
        tasks.next();
    EXPECT_EQ(waiting, kLimit);
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
    tasks.start([&] {
        while (!mayEnd)
            std::this_thread::yield();
    });
    tasks.start([] {});
    EXPECT_FALSE(tasks.isNextReady());
    mayEnd = true;
    tasks.next();
    while (!tasks.isNextReady())
        std::this_thread::yield();
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
