#include "SessionProcess.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <fstream>

#include "Descriptor.h"
#include "TemporaryFolder.h"
#include "Wire.h"

namespace perch::test {
namespace {

constexpr std::chrono::minutes kLong{1};
constexpr std::chrono::milliseconds kShort{20};

const ViewRequest kState{.id = 0, .method = "GET", .path = "/api/state", .query = {}, .body = {}};
const ViewRequest kChange{.id = 0, .method = "POST", .path = "/api/state", .query = {}, .body = "{\"a\":1}"};

// What goes over a wire.
template <typename Message>
std::string bytesOf(const Message& message) {
    DescriptorPair sockets = newSocketPair();
    Wire(sockets.childs.release()).send(message);
    std::string bytes;
    char buffer[4096];
    while (const ssize_t size = recv(sockets.ours.get(), buffer, sizeof buffer, 0))
        bytes.append(buffer, static_cast<std::size_t>(size));
    return bytes;
}

// Scripts in the place of sessions: the socket to the server is their descriptor 3.
class SessionProcessTest : public testing::Test {
protected:
    SessionProcessTest() { write("ready", bytesOf(ViewEvent{"ready", "{}"})); }

    void write(const std::string& name, const std::string& text) const {
        std::ofstream(folder / name, std::ios::binary) << text;
    }

    std::vector<std::string> script(const std::string& commands) const {
        write("session", "cd '" + folder.path.string() + "'\n" + commands);
        return {"/bin/sh", folder / "session"};
    }

    const TemporaryFolder folder;
    Events events;
};

// Takes one request of that many bytes from the server.
std::string take(std::size_t bytes) {
    return "head -c " + std::to_string(bytes) + " <&3 >/dev/null\n";
}

TEST_F(SessionProcessTest, ASessionThatNeverBeginsIsEnded) {
    SessionProcess session({}, events, script("trap '' HUP\nkill -STOP $$\n"), kShort);
    session.start();
    EXPECT_FALSE(session.waitForStart(kShort).has_value());
    session.end();
    EXPECT_EQ(session.waitForStart(kLong), 1);
    EXPECT_EQ(session.ask(kState).status, 500);
}

TEST_F(SessionProcessTest, TheStatusOfASessionThatCannotBeginIsTheProgrammes) {
    SessionProcess session({"-i", "in.png"}, events,
                           script("[ \"$*\" = 'view --session=3 -i in.png' ] && exit 5\n"));
    session.start();
    EXPECT_EQ(session.waitForStart(kLong), 5);
}

TEST_F(SessionProcessTest, ASessionThatTalksNonsenseIsEnded) {
    SessionProcess session({}, events, script("cat ready >&3\nyes >&3 2>/dev/null\nkill -STOP $$\n"), kShort);
    session.start();
    EXPECT_EQ(session.waitForStart(kLong), 0);
    EXPECT_EQ(session.ask(kState).status, 500);
}

TEST_F(SessionProcessTest, AChangeThatASessionTookAlongIsAskedOfTheNext) {
    const std::size_t size =
        bytesOf(
            ViewRequest{
                .id = 1, .method = kChange.method, .path = kChange.path, .query = {}, .body = kChange.body})
            .size();
    write("answer", bytesOf(ViewAnswer{.id = 2, .body = "{\"a\":1}"}));
    write("state", bytesOf(ViewAnswer{.id = 3, .body = "{\"a\":2}"}));
    SessionProcess session(
        {}, events,
        script("if mkdir first 2>/dev/null; then cat ready >&3; " + take(size) +
               "echo 'perch: the first is gone' >&2; exit 1; fi\ncat ready >&3\n" + take(size) +
               "cat answer >&3\n" + take(1) + "cat state >&3\ncat <&3 >/dev/null\n"));
    session.start();
    ASSERT_EQ(session.waitForStart(kLong), 0);
    const ViewAnswer answer = session.ask(kChange);
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body, "{\"a\":1}");
    EXPECT_EQ(session.ask(kState).body, "{\"a\":2}");
}

TEST_F(SessionProcessTest, WhatASessionHasSaidLastIsWhyThereIsNoAnswer) {
    SessionProcess session({}, events,
                           script("cat ready >&3\n" + take(1) + "echo 'perch: it crashed' >&2\n"));
    session.start();
    ASSERT_EQ(session.waitForStart(kLong), 0);
    const ViewAnswer answer = session.ask(kState);
    EXPECT_EQ(answer.status, 500);
    EXPECT_NE(answer.body.find("it crashed"), std::string::npos) << answer.body;
}

TEST_F(SessionProcessTest, ANewSessionIsToldOfTheNewestStateFirst) {
    const std::string newest = "{\"serial\":9}";
    write("answer", bytesOf(ViewAnswer{.id = 1, .body = newest}));
    const std::string change = bytesOf(ViewRequest{
        .id = 1, .method = kChange.method, .path = kChange.path, .query = {}, .body = kChange.body});
    const std::string opening =
        bytesOf(ViewRequest{.id = 0, .method = "POST", .path = "/api/state", .query = {}, .body = newest});
    write("opening", opening);
    write("equal", bytesOf(ViewAnswer{.id = 3, .body = "equal"}));
    SessionProcess session(
        {}, events,
        script("if mkdir first 2>/dev/null; then cat ready >&3; " + take(change.size()) + "cat answer >&3; " +
               take(1) + "exit 1; fi\ncat ready >&3\nhead -c " + std::to_string(opening.size()) +
               " <&3 >told\ncmp told opening && cat equal >&3\ncat <&3 >/dev/null\n"));
    session.start();
    ASSERT_EQ(session.waitForStart(kLong), 0);
    EXPECT_EQ(session.ask(kChange).body, newest);
    EXPECT_EQ(session.ask(kState).status, 500);
    EXPECT_EQ(session.ask(kState).body, "equal");
}

}  // namespace
}  // namespace perch::test
