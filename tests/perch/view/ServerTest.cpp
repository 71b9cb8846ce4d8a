#include "Server.h"

#include <gtest/gtest.h>

#include <atomic>
#include <deque>

#include "Error.h"
#include "LoopbackClient.h"

namespace perch::test {
namespace {

constexpr char kToken[] = "00112233445566778899aabbccddeeff";

// A server that answers with what it was asked for.
class ServerTest : public testing::Test {
protected:
    ServerTest()
        : server(
              0, kToken,
              [this](const ViewRequest& request) {
                  ++answered;
                  return ViewAnswer{.type = "text/plain",
                                    .headers = {{"X-Serial", request.value("serial")}},
                                    .body = request.method + ' ' + request.path + ' ' + request.body};
              },
              events) {
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

    Events events;
    std::atomic<int> answered{0};
    Server server;
};

TEST_F(ServerTest, ThePageIsAnswered) {
    const std::string answer = ask(head("GET /api/state?serial=3") + "\r\n");
    EXPECT_EQ(statusOf(answer), 200) << answer;
    EXPECT_NE(answer.find("X-Serial: 3\r\n"), std::string::npos) << answer;
    EXPECT_TRUE(answer.ends_with("GET /api/state ")) << answer;
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
    for (const char* const path : {"/../../etc/passwd", "/%2e%2e/%2e%2e/etc/passwd", "//etc/passwd",
                                   "/api/../../etc/passwd", "/page.js/../../../etc/passwd"}) {
        const std::string answer = ask(head(std::string("GET ") + path) + "\r\n");
        // The test's own words: what was asked for reached no file.
        EXPECT_EQ(answer.find("root:"), std::string::npos) << answer;
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

TEST_F(ServerTest, TwoHundredConnectionsAtOnceAreAnswered) {
    std::deque<LoopbackClient> clients;
    for (int i = 0; i < 200; ++i) {
        clients.emplace_back(server.port());
        ASSERT_TRUE(clients.back().isConnected) << i;
    }
    for (LoopbackClient& client : clients)
        client.send(head("GET /api/state") + "\r\n");
    for (LoopbackClient& client : clients)
        EXPECT_EQ(statusOf(client.receive()), 200);
    EXPECT_EQ(answered, 200);
}

TEST_F(ServerTest, EventsComeToThosePagesThatListen) {
    LoopbackClient listener(server.port());
    listener.send(head("GET /api/events") + "\r\n");
    const std::string headOfIt = listener.receive();
    EXPECT_EQ(statusOf(headOfIt), 200) << headOfIt;
    EXPECT_NE(headOfIt.find("text/event-stream"), std::string::npos) << headOfIt;
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
