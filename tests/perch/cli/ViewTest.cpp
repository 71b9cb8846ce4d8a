// The built program as a browser meets it: server, session, and an effect that breaks.
#include <gtest/gtest.h>

#include <charconv>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <set>
#include <string>
#include <thread>

#include "LoopbackClient.h"
#include "Misdeeds.h"
#include "Program.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

namespace fs = std::filesystem;

// Asks the server at "http://127.0.0.1:8080/?token=...".
class Page {
public:
    explicit Page(const std::string& address) {
        constexpr std::string_view kStart = "http://127.0.0.1:";
        constexpr std::string_view kToken = "/?token=";
        if (!address.starts_with(kStart)) return;
        std::from_chars(address.data() + kStart.size(), address.data() + address.size(), port);
        token = address.substr(address.find(kToken) + kToken.size());
    }

    std::string ask(const std::string& method, const std::string& path, const std::string& body = {}) const {
        const std::string number = std::to_string(port);
        std::string text = method;
        text.append(" ").append(path).append(" HTTP/1.1\r\nHost: 127.0.0.1:").append(number);
        text.append("\r\nCookie: perch-view-").append(number).append("=").append(token);
        text.append("\r\nContent-Length: ")
            .append(std::to_string(body.size()))
            .append("\r\n\r\n")
            .append(body);
        LoopbackClient client(port);
        client.send(text);
        return client.receive();
    }

    int port = 0;
    std::string token;
};

class ViewTest : public testing::Test {
protected:
    std::vector<std::string> command(const std::string& plugin) const {
        return {PERCH_PROGRAM, "view", "--no-open", "--plugin", plugin, "-i", input.string()};
    }

    const TemporaryFolder parent;
    const fs::path folder = [this] {
        fs::create_directory(parent / "work");
        return parent / "work";
    }();
    const fs::path input = fs::path(PERCH_SOURCES) / "samples/shot/beauty.####.png";
};

TEST_F(ViewTest, ASessionThatBreaksIsFollowedByAnother) {
    const HostileMode mode("abort@RENDER");
    RunningProgram view(command(std::string(PERCH_TEST_PLUGINS) + "/Hostile.so"), folder);
    const Page page(view.waitForLine());
    ASSERT_NE(page.port, 0) << view.finish().err;
    EXPECT_EQ(statusOf(page.ask("POST", "/api/state", R"({"serial": 5, "frame": 7, "parameters": {}})")),
              200);
    for (int i = 0; i < 2; ++i) {
        const std::string picture = page.ask("GET", "/api/picture?serial=5&size=64x64");
        EXPECT_EQ(statusOf(picture), 500) << picture;
        EXPECT_NE(picture.find("frame 7: the effect \\\"Hostile.so\\\" crashed at RENDER"), std::string::npos)
            << picture;
        const std::string state = page.ask("GET", "/api/state");
        EXPECT_EQ(statusOf(state), 200) << state;
        EXPECT_NE(state.find("\"frame\":7"), std::string::npos) << state;
        EXPECT_NE(state.find("\"serial\":5"), std::string::npos) << state;
    }
    view.send(SIGINT);
    EXPECT_EQ(view.finish().status, 128 + SIGINT);
    EXPECT_FALSE(LoopbackClient(page.port).isConnected);
}

// The processes that are at work in a folder.
std::set<std::string> processesIn(const fs::path& folder) {
    const fs::path work = fs::canonical(folder);
    std::set<std::string> processes;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
        std::error_code error;  // of a process that has ended, or of another user's
        if (fs::read_symlink(entry.path() / "cwd", error) == work && !error)
            processes.insert(entry.path().filename());
    }
    return processes;
}

TEST_F(ViewTest, NothingOfItStaysWhenItEnds) {
    const std::string plugin = std::string(PERCH_TEST_PLUGINS) + "/Invert.so";
    for (const int signal : {SIGINT, SIGKILL}) {
        RunningProgram view(command(plugin), folder);
        const Page page(view.waitForLine());
        const std::string picture = page.ask("GET", "/api/picture?serial=0&size=8x8");
        EXPECT_EQ(statusOf(picture), 200) << picture;
        EXPECT_EQ(processesIn(folder).size(), 3U);  // server, session and its worker
        view.send(signal);
        EXPECT_EQ(view.finish().status, 128 + signal);
        const auto latest = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!processesIn(folder).empty() && std::chrono::steady_clock::now() < latest)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        EXPECT_TRUE(processesIn(folder).empty());
    }
}

TEST_F(ViewTest, WhatASessionCannotBeginWithEndsTheProgram) {
    const struct {
        std::vector<std::string> arguments;
        std::string sentence;
    } cases[] = {
        {{"--focal-point", "1"}, "--input is missing; see perch render --help"},
        {{"-i", input.string(), "--frames-from", "-"},
         "--frames-from is for perch render; the page of perch view asks for its frames itself"},
        {{"-i", input.string(), "--dry-run"}, "--dry-run is for perch render; perch view shows pictures"},
    };
    for (const auto& [arguments, sentence] : cases) {
        std::vector<std::string> command{PERCH_PROGRAM, "view", "--no-open"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const ProgramResult result = runProgram(command, folder);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "perch: " + sentence + "\n");
    }
}

}  // namespace
}  // namespace perch::test
