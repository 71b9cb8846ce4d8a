#include "RenderRun.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace perch::test {
namespace {

using Json = nlohmann::json;

constexpr char kShell[] = "/bin/sh";
constexpr std::chrono::minutes kLong{1};

// The events of a script in the place of a render, to its end.
std::vector<Json> eventsOf(const std::string& script, const std::vector<std::string>& words = {}) {
    Events events;
    Events::Listener listener(events);
    RenderRun run(events, kShell);
    std::vector<std::string> all{"sh", "-c", script};
    all.insert(all.end(), words.begin(), words.end());
    EXPECT_TRUE(run.start(all));
    std::vector<Json> received;
    while (received.empty() || received.back()["state"] == "running") {
        const auto event = listener.next(kLong);
        if (!event) break;
        received.push_back(Json::parse(event->data));
    }
    return received;
}

TEST(RenderRunTest, ProgressIsToldAsItIsAndAllElseAsText) {
    const std::string deep(50'000, '[');
    const std::vector<Json> events = eventsOf(R"(echo '{"frame": 1}'; echo '{oops'; echo '{"a":)" + deep +
                                              R"('; echo 'last words'; exit 3)");
    ASSERT_EQ(events.size(), 5U);
    EXPECT_EQ(events[0], Json::parse(R"({"state": "running", "text": "", "progress": {"frame": 1}})"));
    EXPECT_EQ(events[1], Json::parse(R"({"state": "running", "text": "{oops"})"));
    EXPECT_EQ(events[2]["text"], "{\"a\":" + deep);
    EXPECT_EQ(events[3]["text"], "last words");
    EXPECT_EQ(events[4], Json::parse(R"({"state": "failed", "text": "last words"})"));
}

TEST(RenderRunTest, ARenderThatIsDoneTellsWhatItHasWritten) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"-o", "out.png"}, {"--output", "out.png"}, {"--output=out.png"}}) {
        const std::vector<Json> events = eventsOf("exit 0", words);
        ASSERT_EQ(events.size(), 1U);
        EXPECT_EQ(events[0], Json::parse(R"({"state": "done", "text": "\"out.png\" is written"})"));
    }
}

TEST(RenderRunTest, OneRenderAtATimeAndItsCancelIsAnInterrupt) {
    Events events;
    Events::Listener listener(events);
    RenderRun run(events, kShell);
    EXPECT_FALSE(run.cancel());
    const std::vector<std::string> words{"sh", "-c",
                                         "trap 'exit 130' INT; echo ready; while :; do sleep 0.01; done"};
    ASSERT_TRUE(run.start(words));
    EXPECT_FALSE(run.start(words));
    ASSERT_TRUE(listener.next(kLong));  // ready
    EXPECT_TRUE(run.cancel());
    const auto last = listener.next(kLong);
    ASSERT_TRUE(last);
    EXPECT_EQ(Json::parse(last->data)["state"], "cancelled");
}

TEST(RenderRunTest, TheEndWaitsForNoRenderThatObeysNoSignal) {
    Events events;
    Events::Listener listener(events);
    {
        RenderRun run(events, kShell, std::chrono::milliseconds(20));
        ASSERT_TRUE(run.start({"sh", "-c", "trap '' INT HUP; echo ready; kill -STOP $$"}));
        ASSERT_TRUE(listener.next(kLong));
    }
    const auto last = listener.next(kLong);
    ASSERT_TRUE(last);
    EXPECT_EQ(Json::parse(last->data)["state"], "failed");
}

}  // namespace
}  // namespace perch::test
