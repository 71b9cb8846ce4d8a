#include "Child.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "Descriptor.h"

namespace perch::test {
namespace {

constexpr char kShell[] = "/bin/sh";

std::vector<std::string> linesOf(const std::string& script) {
    DescriptorPair output = newPipe();
    Child child(kShell, {"sh", "-c", script}, {{output.childs.get(), STDOUT_FILENO}});
    close(output.childs.release());
    std::vector<std::string> lines;
    takeLines(output.ours.get(), child, [&](const std::string& line) { lines.push_back(line); });
    EXPECT_EQ(child.wait(), 0) << script;
    return lines;
}

TEST(ChildTest, AChildHasNoDescriptorsButThoseThatArePassed) {
    constexpr int kOurs = 77;
    ASSERT_EQ(dup2(STDIN_FILENO, kOurs), kOurs);  // as a connection that was taken is
    const std::string isOpen = "if [ -e /proc/self/fd/77 ]; then echo open; else echo closed; fi";
    EXPECT_EQ(linesOf(isOpen), std::vector<std::string>{"closed"});
    close(kOurs);
}

TEST(ChildTest, LinesComeWholeAndTheLastOneWithoutItsEnd) {
    EXPECT_EQ(linesOf("printf 'one\\n\\nthr'; printf 'ee'"), (std::vector<std::string>{"one", "", "three"}));
    EXPECT_EQ(linesOf("head -c 100000 /dev/zero | tr '\\0' x").size(), 2U);  // is cut
}

TEST(ChildTest, WhatAChildLeavesBehindIsNotWaitedFor) {
    const std::vector<std::string> lines = linesOf("sleep 1000 & echo $!");
    ASSERT_EQ(lines.size(), 1U);
    kill(std::stoi(lines.front()), SIGKILL);
}

TEST(ChildTest, AChildThatObeysNoSignalIsKilled) {
    DescriptorPair output = newPipe();
    Child child(kShell, {"sh", "-c", "trap '' INT HUP; echo ready; kill -STOP $$"},
                {{output.childs.get(), STDOUT_FILENO}});
    char letter = 0;
    ASSERT_EQ(read(output.ours.get(), &letter, 1), 1);
    EXPECT_FALSE(child.hasEnded());
    child.end({0, SIGINT, SIGHUP}, std::chrono::milliseconds(20));
    const int status = child.wait();
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
    EXPECT_TRUE(child.hasEnded());
    EXPECT_FALSE(child.signal(0));
}

TEST(ChildTest, AChildThatObeysIsNotKilled) {
    Child child(kShell, {"sh", "-c", "kill -STOP $$"}, {});
    child.signal(SIGTERM);
    child.end({SIGCONT}, std::chrono::minutes(1));
    EXPECT_EQ(WTERMSIG(child.wait()), SIGTERM);
}

TEST(ChildTest, AnInterruptThatWeIgnoreReachesTheChild) {
    auto* const before = std::signal(SIGINT, SIG_IGN);
    Child child(kShell, {"sh", "-c", "kill -STOP $$"}, {});
    std::signal(SIGINT, before);
    child.signal(SIGINT);
    child.end({SIGCONT}, std::chrono::minutes(1));
    EXPECT_EQ(WTERMSIG(child.wait()), SIGINT);
}

}  // namespace
}  // namespace perch::test
