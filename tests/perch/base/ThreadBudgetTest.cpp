#include "ThreadBudget.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <optional>
#include <thread>
#include <vector>

namespace perch::test {
namespace {

constexpr std::chrono::seconds kUntilAThreadRuns{20};

// How many of eight threads had a share of the budget at once.
int mostAtWork(ThreadBudget& budget) {
    std::atomic<int> atWork{0};
    std::vector<std::future<int>> threads;
    for (int i = 0; i < 8; ++i) {
        threads.push_back(std::async(std::launch::async, [&] {
            const ThreadShare share(&budget);
            const int now = ++atWork;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            --atWork;
            return now;
        }));
    }
    int most = 0;
    for (std::future<int>& thread : threads)
        most = std::max(most, thread.get());
    return most;
}

TEST(ThreadBudgetTest, NoMoreWorkAtOnceThanAreGiven) {
    for (const int threads : {1, 3}) {
        ThreadBudget budget(threads);
        EXPECT_LE(mostAtWork(budget), threads);
    }
}

TEST(ThreadBudgetTest, AShareThatIsGivenBackIsTheNextOnes) {
    ThreadBudget budget(1);
    std::optional<ThreadShare> first(std::in_place, &budget);
    const auto next = std::async(std::launch::async, [&] { const ThreadShare share(&budget); });
    first->giveBack();
    EXPECT_EQ(next.wait_for(kUntilAThreadRuns), std::future_status::ready);
    first.reset();
}

TEST(ThreadBudgetTest, AShareIsGivenBackOnce) {
    ThreadBudget budget(1);
    {
        ThreadShare share(&budget);
        share.giveBack();
        share.giveBack();
    }
    EXPECT_EQ(mostAtWork(budget), 1);
}

}  // namespace
}  // namespace perch::test
