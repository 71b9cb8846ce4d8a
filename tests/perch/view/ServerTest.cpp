#include "Server.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "Error.h"
#include "LoopbackClient.h"

namespace perch::test {
namespace {

constexpr char kToken[] = "00112233445566778899aabbccddeeff";

constexpr std::chrono::seconds kLong{60};  // that nothing takes on any machine, unless it hangs

// A server that answers with what it was asked for.
class ServerTest : public testing::Test {
protected:
    explicit ServerTest(std::chrono::milliseconds patience = kLong)
        : server(
              0, kToken,
              [this](const ViewRequest& request) {
                  ++answered;
                  if (const auto wait = hook()) wait();
                  return ViewAnswer{.type = "text/plain",
                                    .headers = {{"X-Serial", request.value("serial")}},
                                    .body = request.method + ' ' + request.path + ' ' + request.body};
              },
              events, patience) {
        server.start();
    }
    ~ServerTest() override { end(); }

    void end() {
        events.end();
        server.stop();
    }

    std::string host() const { return "127.0.0.1:" + std::to_string(server.port()); }
    std::string cookie() const { return "perch-view-" + std::to_string(server.port()) + '=' + kToken; }
    std::string head(const std::string& line) const {
        return line + " HTTP/1.1\r\nHost: " + host() + "\r\nCookie: " + cookie() + "\r\n";
    }
    std::string ask(const std::string& text) const {
        LoopbackClient client(server.port());
        client.send(text);
        return client.receive();
    }

    // What every answer does first.
    void setHook(std::function<void()> function) {
        const std::lock_guard lock(hookMutex);
        answering = std::move(function);
    }
    std::function<void()> hook() {
        const std::lock_guard lock(hookMutex);
        return answering;
    }

    Events events;
    std::atomic<int> answered{0};
    std::mutex hookMutex;
    std::function<void()> answering;
    Server server;
};

class HurriedServerTest : public ServerTest {
protected:
    HurriedServerTest() : ServerTest(std::chrono::milliseconds(200)) {}
};

TEST_F(ServerTest, ThePageIsAnswered) {
    const std::string answer = ask(head("GET /api/state?serial=3") + "\r\n");
    EXPECT_EQ(statusOf(answer), 200) << answer;
    EXPECT_NE(answer.find("X-Serial: 3\r\n"), std::string::npos) << answer;
    EXPECT_TRUE(answer.ends_with("GET /api/state ")) << answer;
    const std::string headAlone = ask(head("HEAD /api/state") + "Connection: close\r\n\r\n");
    EXPECT_EQ(statusOf(headAlone), 200) << headAlone;
    EXPECT_TRUE(headAlone.ends_with("\r\n\r\n")) << headAlone;
    const std::string posted = ask(head("POST /api/state") + "Content-Length: 4\r\n\r\nbody");
    EXPECT_TRUE(posted.ends_with("POST /api/state body")) << posted;
}

TEST_F(ServerTest, EveryAnswerIsGuarded) {
    for (const std::string& answer :
         {ask(head("GET /") + "\r\n"), ask("GET / HTTP/1.1\r\nHost: " + host() + "\r\n\r\n")}) {
        EXPECT_NE(answer.find("Content-Security-Policy: default-src 'none'; script-src 'self'"),
                  std::string::npos)
            << answer;
        for (const char* const header : {"X-Content-Type-Options: nosniff", "Referrer-Policy: no-referrer",
                                         "Cache-Control: no-store", "frame-ancestors 'none'"})
            EXPECT_NE(answer.find(header), std::string::npos) << answer;
        EXPECT_EQ(answer.find("unsafe"), std::string::npos) << answer;
    }
}

TEST_F(ServerTest, TheAddressLeadsToThePageWithACookie) {
    const std::string answer =
        ask("GET /?token=" + std::string(kToken) + " HTTP/1.1\r\nHost: " + host() + "\r\n\r\n");
    EXPECT_EQ(statusOf(answer), 303) << answer;
    EXPECT_NE(answer.find("Location: /\r\n"), std::string::npos) << answer;
    EXPECT_NE(answer.find("Set-Cookie: " + cookie() + "; SameSite=Strict; HttpOnly; Path=/\r\n"),
              std::string::npos)
        << answer;
    EXPECT_EQ(answered, 0);
}

TEST_F(ServerTest, ABrowserThatAnotherPageSendsIsLedInByAPage) {
    const std::string answer = ask("GET /?token=" + std::string(kToken) + " HTTP/1.1\r\nHost: " + host() +
                                   "\r\nSec-Fetch-Site: cross-site\r\n\r\n");
    EXPECT_EQ(statusOf(answer), 200) << answer;
    EXPECT_NE(answer.find("Set-Cookie: " + cookie()), std::string::npos) << answer;
    EXPECT_NE(answer.find("content=\"0; url=/\""), std::string::npos) << answer;
    EXPECT_EQ(answered, 0);
}

TEST_F(ServerTest, OthersGetNothing) {
    const std::string ourHost = "Host: " + host() + "\r\n";
    const std::string ourCookie = "Cookie: " + cookie() + "\r\n";
    for (const std::string& text :
         {"GET /api/state HTTP/1.1\r\n" + ourHost + "\r\n", "GET /?token=0 HTTP/1.1\r\n" + ourHost + "\r\n",
          "GET /api/state?token=" + std::string(kToken) + " HTTP/1.1\r\n" + ourHost + "\r\n",
          "GET /api/state HTTP/1.1\r\n" + ourHost + "Cookie: perch-view=" + kToken + "\r\n\r\n",
          "GET /api/state HTTP/1.1\r\nHost: perch.example\r\n" + ourCookie + "\r\n",
          "GET /api/state HTTP/1.1\r\n" + ourCookie + "\r\n",
          head("POST /api/state") + "Origin: http://perch.example\r\nContent-Length: 2\r\n\r\n{}"}) {
        EXPECT_EQ(statusOf(ask(text)), 403) << text;
    }
    EXPECT_EQ(answered, 0);
}

TEST_F(ServerTest, PathsStayNames) {
    struct Case {
        const char* path;
        const char* name;
    };
    for (const auto& [path, name] :
         {Case{"/../../etc/passwd", "/../../etc/passwd"},
          Case{"/%2e%2e/%2e%2e/etc/passwd", "/../../etc/passwd"}, Case{"//etc/passwd", "//etc/passwd"},
          Case{"/api/../../etc/passwd", "/api/../../etc/passwd"}, Case{"/etc/passwd", "/etc/passwd"},
          Case{"/etc/", "/etc/"}}) {
        const std::string answer = ask(head(std::string("GET ") + path) + "\r\n");
        EXPECT_EQ(statusOf(answer), 200) << answer;
        EXPECT_TRUE(answer.ends_with("\r\n\r\nGET " + std::string(name) + ' ')) << answer;
    }
    EXPECT_EQ(statusOf(ask(head("GET /" + std::string(3000, 'a')) + "\r\n")), 414);
    std::string names;
    for (int i = 0; i < 100; ++i)
        names += std::to_string(i) + "=&";
    EXPECT_EQ(statusOf(ask(head("GET /api/state?" + names) + "\r\n")), 400);
}

TEST_F(ServerTest, HugeBodiesAreNotRead) {
    EXPECT_EQ(statusOf(ask(head("POST /api/state") + "Content-Length: 1048577\r\n\r\n")), 413);
    EXPECT_EQ(statusOf(ask(head("POST /api/state") + "Content-Length: 99999999999\r\n\r\n")), 413);
    EXPECT_EQ(statusOf(ask(head("POST /api/state") + "Transfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n")),
              411);
    EXPECT_EQ(statusOf(ask(head("DELETE /api/render") + "\r\n")), 411);
    EXPECT_EQ(statusOf(ask(head("POST /api/state") + "\r\n")), 411);
    EXPECT_EQ(
        statusOf(ask(head("POST /api/state") + "Content-Encoding: gzip\r\nContent-Length: 2\r\n\r\n{}")),
        415);
    EXPECT_EQ(answered, 0);
    EXPECT_EQ(statusOf(ask(head("DELETE /api/render") + "Content-Length: 2\r\n\r\n{}")), 200);
    const std::string largest(std::size_t{1} << 20, 'x');
    EXPECT_EQ(statusOf(ask(head("POST /api/state") + "Content-Length: 1048576\r\n\r\n" + largest)), 200);
}

TEST_F(ServerTest, ASlowBodyHoldsNobodyElseUp) {
    LoopbackClient slow(server.port());
    slow.send(head("POST /api/state") + "Content-Length: 100\r\n\r\nslow");
    EXPECT_EQ(statusOf(ask(head("GET /api/state") + "\r\n")), 200);
    slow.send(std::string(96, '!'));
    EXPECT_EQ(statusOf(slow.receive()), 200);
}

// Byte by byte, each well before a pause would be noticed.
TEST_F(HurriedServerTest, ARequestThatDoesNotComeToItsEndIsGivenUp) {
    for (const std::string& beginning :
         {head("GET /api/state") + "X-Slow: ", head("POST /api/state") + "Content-Length: 100000\r\n\r\n"}) {
        LoopbackClient slow(server.port());
        slow.send(beginning);
        const auto begin = std::chrono::steady_clock::now();
        while (!slow.hasEnded() && std::chrono::steady_clock::now() - begin < kLong) {
            slow.send("!");
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        EXPECT_LT(std::chrono::steady_clock::now() - begin, kLong) << beginning;
    }
    EXPECT_EQ(answered, 0);
    EXPECT_EQ(statusOf(ask(head("GET /api/state") + "\r\n")), 200);
}

TEST_F(ServerTest, TheEndWaitsForNoRequestThatIsSlow) {
    std::deque<LoopbackClient> clients;
    for (const char* const beginning : {"", "GET /api", "POST /api/state HTTP/1.1\r\nX-Slow: "}) {
        clients.emplace_back(server.port());
        clients.back().send(beginning);
    }
    // Asked after they were, on a connection of its own that stays open.
    clients.emplace_back(server.port());
    clients.back().send(head("GET /api/state") + "\r\n");
    EXPECT_EQ(statusOf(clients.back().receive()), 200);
    const auto begin = std::chrono::steady_clock::now();
    end();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, kLong / 2);
    for (LoopbackClient& client : clients)
        EXPECT_EQ(statusOf(client.receive()) % 200, 0);  // an answer or none
}

TEST_F(ServerTest, TwoHundredConnectionsAreAnsweredAtOnce) {
    constexpr int kMany = 200;
    std::mutex mutex;
    std::condition_variable isFull;
    int present = 0;
    setHook([&] {
        std::unique_lock lock(mutex);
        ++present;
        isFull.notify_all();
        EXPECT_TRUE(isFull.wait_for(lock, kLong, [&] { return present >= kMany; })) << present;
    });
    std::deque<LoopbackClient> clients;
    for (int i = 0; i < kMany; ++i) {
        clients.emplace_back(server.port());
        ASSERT_TRUE(clients.back().isConnected) << i;
        clients.back().send(head("GET /api/state") + "\r\n");
    }
    for (LoopbackClient& client : clients)
        EXPECT_EQ(statusOf(client.receive()), 200);
    EXPECT_EQ(answered, kMany);
    end();
}

TEST_F(ServerTest, EventsComeToThosePagesThatListen) {
    LoopbackClient listener(server.port());
    listener.send(head("GET /api/events") + "\r\n");
    const std::string headOfIt = listener.receive();
    EXPECT_EQ(statusOf(headOfIt), 200) << headOfIt;
    EXPECT_NE(headOfIt.find("text/event-stream"), std::string::npos) << headOfIt;
    // Who has the head is listening.
    events.publish({"message", "{\"text\":\"hello\"}"});
    events.publish({"end", "{}"});
    const std::string received = listener.receiveUntil("event: end\ndata: {}\n\n");
    EXPECT_NE(received.find("event: message\ndata: {\"text\":\"hello\"}\n\n"), std::string::npos) << received;
    EXPECT_NE(received.find("event: end\ndata: {}\n\n"), std::string::npos) << received;
    EXPECT_EQ(statusOf(ask("GET /api/events HTTP/1.1\r\nHost: " + host() + "\r\n\r\n")), 403);
}

TEST_F(ServerTest, AfterTheEndNobodyIsThere) {
    const int port = server.port();
    EXPECT_TRUE(LoopbackClient(port).isConnected);
    end();
    EXPECT_FALSE(LoopbackClient(port).isConnected);
}

TEST_F(ServerTest, APortThatIsTakenIsNamed) {
    try {
        const Server second(server.port(), kToken, {}, events);
        ADD_FAILURE() << "two servers share a port";
    } catch (const Error& error) {
        EXPECT_NE(std::string(error.what()).find(std::to_string(server.port())), std::string::npos);
    }
}

}  // namespace
}  // namespace perch::test
