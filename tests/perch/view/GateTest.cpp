#include "Gate.h"

#include <gtest/gtest.h>

#include <set>

namespace perch::test {
namespace {

constexpr char kToken[] = "00112233445566778899aabbccddeeff";
constexpr int kPort = 8123;

// As the page itself asks.
Caller visitor() {
    Caller caller;
    caller.path = "/api/state";
    caller.cookies = "theme=dark; perch-view-8123=00112233445566778899aabbccddeeff";
    caller.host = "127.0.0.1:8123";
    return caller;
}

int judged(const Caller& caller) {
    return Gate(kToken, kPort).judge(caller).status;
}

TEST(GateTest, ThePageMayAsk) {
    EXPECT_EQ(judged(visitor()), 200);
    Caller caller = visitor();
    caller.host = "localhost:8123";
    caller.origin = "http://localhost:8123";
    caller.mayHaveBody = true;
    caller.bodySize = "1048576";
    caller.fetchSite = "same-origin";
    EXPECT_EQ(judged(caller), 200);
}

TEST(GateTest, TheTokenBecomesACookieOnce) {
    Caller caller = visitor();
    caller.path = "/";
    caller.cookies.clear();
    caller.token = kToken;
    EXPECT_EQ(judged(caller), 303);
    const Gate gate(kToken, kPort);
    EXPECT_EQ(gate.address(), "http://127.0.0.1:8123/?token=00112233445566778899aabbccddeeff");
    EXPECT_EQ(gate.cookie(),
              "perch-view-8123=00112233445566778899aabbccddeeff; SameSite=Strict; HttpOnly; Path=/");
}

struct Intruder {
    const char* name;
    void (*disguise)(Caller& caller);
    int status;
};

const Intruder kIntruders[] = {
    {"NoCookie", [](Caller& caller) { caller.cookies.clear(); }, 403},
    {"WrongCookie",
     [](Caller& caller) { caller.cookies = "perch-view-8123=00112233445566778899aabbccddeefe"; }, 403},
    {"HalfACookie", [](Caller& caller) { caller.cookies = "perch-view-8123=0011223344556677"; }, 403},
    {"EmptyCookie", [](Caller& caller) { caller.cookies = "perch-view-8123="; }, 403},
    {"CookieOfAnotherPort",
     [](Caller& caller) { caller.cookies = "perch-view-8124=00112233445566778899aabbccddeeff"; }, 403},
    {"CookieWithinAnother",
     [](Caller& caller) { caller.cookies = "xperch-view-8123=00112233445566778899aabbccddeeff"; }, 403},
    {"WrongToken",
     [](Caller& caller) {
         caller.path = "/";
         caller.token = "00112233445566778899aabbccddeefe";
     },
     403},
    {"EmptyToken",
     [](Caller& caller) {
         caller.path = "/";
         caller.token = "";
     },
     403},
    {"TokenInsteadOfACookieElsewhere",
     [](Caller& caller) {
         caller.cookies.clear();
         caller.token = kToken;
     },
     403},
    {"NoHost", [](Caller& caller) { caller.host.clear(); }, 403},
    {"ForeignHost", [](Caller& caller) { caller.host = "perch.example:8123"; }, 403},
    {"HostWithoutPort", [](Caller& caller) { caller.host = "127.0.0.1"; }, 403},
    {"HostOfAnotherPort", [](Caller& caller) { caller.host = "127.0.0.1:8124"; }, 403},
    {"ForeignHostWithToken",
     [](Caller& caller) {
         caller.path = "/";
         caller.token = kToken;
         caller.host = "perch.example:8123";
     },
     403},
    {"ForeignOrigin", [](Caller& caller) { caller.origin = "http://perch.example"; }, 403},
    {"NullOrigin", [](Caller& caller) { caller.origin = "null"; }, 403},
    {"OriginOfAnotherPort", [](Caller& caller) { caller.origin = "http://127.0.0.1:8124"; }, 403},
    {"OriginOfTheOtherName", [](Caller& caller) { caller.origin = "http://localhost:8123"; }, 403},
    {"HugeBody", [](Caller& caller) { caller.bodySize = "1048577"; }, 413},
    {"BodyBeyondAllNumbers", [](Caller& caller) { caller.bodySize = "99999999999999999999999"; }, 413},
    {"BodyOfNoNumber", [](Caller& caller) { caller.bodySize = "many"; }, 413},
    {"BodyOfUnknownSize", [](Caller& caller) { caller.hasTransferCoding = true; }, 411},
    {"BodyWithoutASize", [](Caller& caller) { caller.mayHaveBody = true; }, 411},
    {"CompressedBody", [](Caller& caller) { caller.hasContentCoding = true; }, 415},
    {"PageOfAnotherPort", [](Caller& caller) { caller.fetchSite = "same-site"; }, 403},
    {"PageFromElsewhere", [](Caller& caller) { caller.fetchSite = "cross-site"; }, 403},
};

class IntruderTest : public testing::TestWithParam<Intruder> {};

TEST_P(IntruderTest, IsKeptOut) {
    Caller caller = visitor();
    GetParam().disguise(caller);
    const Gate::Verdict verdict = Gate(kToken, kPort).judge(caller);
    EXPECT_EQ(verdict.status, GetParam().status);
    EXPECT_FALSE(verdict.sentence.empty());
}

INSTANTIATE_TEST_SUITE_P(, IntruderTest, testing::ValuesIn(kIntruders),
                         [](const auto& intruder) { return intruder.param.name; });

TEST(GateTest, TokensAreLongAndNeverTheSame) {
    std::set<std::string> tokens;
    for (int i = 0; i < 100; ++i)
        tokens.insert(newToken());
    EXPECT_EQ(tokens.size(), 100U);
    EXPECT_EQ(tokens.begin()->size(), 32U);
}

}  // namespace
}  // namespace perch::test
