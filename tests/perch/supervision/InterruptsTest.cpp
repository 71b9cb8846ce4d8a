#include "Interrupts.h"

#include <gtest/gtest.h>

#include <csignal>
#include <vector>

namespace perch::test {
namespace {

constexpr std::int64_t kMilliseconds = 1'000'000;
constexpr std::int32_t kTerminal = 0;
constexpr std::int32_t kShell = 7;
constexpr std::int32_t kOtherShell = 8;

struct Sent {
    int signal;
    std::int32_t sender;
    std::int64_t time;
};

TEST(InterruptsTest, EchoesDoNotCount) {
    const struct {
        const char* what;
        std::vector<Sent> sent;
        int count;
    } cases[] = {
        {"one", {{SIGINT, kTerminal, 0}}, 1},
        {"timeout(1) ends its child and its group",
         {{SIGTERM, kShell, 0}, {SIGTERM, kShell, kMilliseconds}},
         1},
        {"the user presses twice", {{SIGINT, kTerminal, 0}, {SIGINT, kTerminal, kMilliseconds}}, 2},
        {"the user sends it again", {{SIGTERM, kShell, 0}, {SIGTERM, kShell, 300 * kMilliseconds}}, 2},
        {"somebody else does", {{SIGTERM, kShell, 0}, {SIGTERM, kOtherShell, kMilliseconds}}, 2},
        {"another signal follows", {{SIGINT, kShell, 0}, {SIGTERM, kShell, kMilliseconds}}, 2},
        {"an echo does not start its time anew",
         {{SIGTERM, kShell, 0},
          {SIGTERM, kShell, 150 * kMilliseconds},
          {SIGTERM, kShell, 250 * kMilliseconds}},
         2},
    };
    for (const auto& [what, sent, count] : cases) {
        Interrupts interrupts;
        for (const Sent& one : sent)
            interrupts.take(one.signal, one.sender, one.time);
        EXPECT_EQ(interrupts.count(), count) << what;
        EXPECT_EQ(interrupts.last(), sent.back().signal) << what;
    }
}

}  // namespace
}  // namespace perch::test
