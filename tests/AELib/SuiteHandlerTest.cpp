#include "SuiteHandler.h"

#include "TestEffect.h"

namespace {

using AELib::SuiteHandler;

class SuiteHandlerTest : public HostedEffectTest {};

struct Suite {
    const char* name;
    int version;
    const void* (*get)(SuiteHandler&);
};

constexpr Suite kSuites[] = {
    {"PF Iterate8 Suite", 1, [](SuiteHandler& h) -> const void* { return h.iterate8(); }},
    {"PF Param Utils Suite", 1, [](SuiteHandler& h) -> const void* { return h.paramUtils(); }},
    {"AEGP Utility Suite", 7, [](SuiteHandler& h) -> const void* { return h.utility(); }},
    {"AEGP PF Interface Suite", 1, [](SuiteHandler& h) -> const void* { return h.pfInterface(); }},
    {"AEGP Stream Suite", 4, [](SuiteHandler& h) -> const void* { return h.stream(); }},
    {"AEGP Dynamic Stream Suite", 1, [](SuiteHandler& h) -> const void* { return h.dynamicStream(); }},
    {"AEGP Effect Suite", 1, [](SuiteHandler& h) -> const void* { return h.effect(); }},
};

template <class Operation>
long MissingSuiteCode(Operation operation) {
    try {
        operation();
        return 0;
    } catch (long code) {
        return code;
    }
}

TEST_F(SuiteHandlerTest, EachSuiteIsAcquiredOnceOnFirstUse) {
    SuiteHandler handler(&host.basic);
    EXPECT_TRUE(host.suiteLog.empty());
    for (const Suite& suite : kSuites) {
        host.suiteLog.clear();
        const void* const table = suite.get(handler);
        EXPECT_NE(nullptr, table) << suite.name;
        EXPECT_EQ(table, suite.get(handler)) << suite.name;
        EXPECT_EQ(std::vector<std::string>{"acquire " + std::string(suite.name) + " " +
                                           std::to_string(suite.version)},
                  host.suiteLog);
    }
}

TEST_F(SuiteHandlerTest, ParamUtilsIsReleasedAsPathData) {
    {
        SuiteHandler handler(&host.basic);
        for (const Suite& suite : kSuites)
            suite.get(handler);
        host.suiteLog.clear();
    }
    EXPECT_EQ((std::vector<std::string>{"release PF Iterate8 Suite 1", "release PF Path Data Suite 1",
                                        "release AEGP Utility Suite 7", "release AEGP PF Interface Suite 1",
                                        "release AEGP Stream Suite 4", "release AEGP Dynamic Stream Suite 1",
                                        "release AEGP Effect Suite 1"}),
              host.suiteLog);
}

TEST_F(SuiteHandlerTest, OnlyAcquiredSuitesAreReleasedAndOnlyOnce) {
    SuiteHandler handler(&host.basic);
    handler.utility();
    handler.ReleaseAllSuites();
    handler.ReleaseAllSuites();
    EXPECT_EQ((std::vector<std::string>{"acquire AEGP Utility Suite 7", "release AEGP Utility Suite 7"}),
              host.suiteLog);
}

TEST_F(SuiteHandlerTest, MissingSuiteIsAnErrorAndAskedForAgain) {
    for (const Suite& suite : kSuites) {
        SuiteHandler handler(&host.basic);
        host.missingSuites = {suite.name};
        EXPECT_EQ(512, MissingSuiteCode([&] { suite.get(handler); })) << suite.name;
        host.missingSuites.clear();
        EXPECT_NE(nullptr, suite.get(handler)) << suite.name;
    }
}

TEST_F(SuiteHandlerTest, ASuiteLoadedDirectlyIsItsCallersToKeepAndRelease) {
    {
        SuiteHandler handler(&host.basic);
        const void* const first = handler.LoadSuite("AEGP Stream Suite", 4);
        EXPECT_NE(nullptr, first);
        EXPECT_EQ(first, handler.LoadSuite("AEGP Stream Suite", 4));
        handler.ReleaseSuite("AEGP Stream Suite", 4);
        handler.ReleaseSuite("AEGP Stream Suite", 4);
    }
    EXPECT_EQ((std::vector<std::string>{"acquire AEGP Stream Suite 4", "acquire AEGP Stream Suite 4",
                                        "release AEGP Stream Suite 4", "release AEGP Stream Suite 4"}),
              host.suiteLog);
}

TEST_F(SuiteHandlerTest, ErrorFromAcquiringIsAMissingSuite) {
    SuiteHandler handler(&host.basic);
    host.failures.at(Callback::kAcquireSuite, 1, 3);
    EXPECT_EQ(512, MissingSuiteCode([&] { handler.LoadSuite("PF Iterate8 Suite", 1); }));
}

TEST_F(SuiteHandlerTest, NullTableIsAMissingSuite) {
    SPBasicSuite basic = host.basic;
    basic.AcquireSuite = [](const char*, A_long, const void** suite) -> SPErr {
        *suite = nullptr;
        return 0;
    };
    SuiteHandler handler(&basic);
    EXPECT_EQ(512, MissingSuiteCode([&] { handler.iterate8(); }));
    EXPECT_EQ(nullptr, handler.iterate8OrNull());
}

TEST_F(SuiteHandlerTest, NullBasicSuiteIsAMissingSuite) {
    EXPECT_EQ(512, MissingSuiteCode([] { SuiteHandler handler(nullptr); }));
}

TEST_F(SuiteHandlerTest, BasicSuiteWithoutItsFunctionsIsAMissingSuite) {
    SPBasicSuite basic = host.basic;
    basic.AcquireSuite = nullptr;
    EXPECT_EQ(512, MissingSuiteCode([&] { SuiteHandler handler(&basic); }));
    basic = host.basic;
    basic.ReleaseSuite = nullptr;
    EXPECT_EQ(512, MissingSuiteCode([&] { SuiteHandler handler(&basic); }));
}

TEST_F(SuiteHandlerTest, IterateMayBeAbsent) {
    host.missingSuites = {"PF Iterate8 Suite"};
    SuiteHandler handler(&host.basic);
    EXPECT_EQ(nullptr, handler.iterate8OrNull());
}

TEST_F(SuiteHandlerTest, MissingUtilitySuiteFailsGlobalSetup) {
    host.missingSuites = {"AEGP Utility Suite"};
    EXPECT_EQ(512, host.call(PF_Cmd_GLOBAL_SETUP));
    EXPECT_EQ("Error 512 in Test Effect", host.message());
}

TEST(SuiteHandlerLayoutTest, IsTheBasicSuiteAndOneSlotPerSuiteAndVersion) {
    EXPECT_EQ(89 * sizeof(void*), sizeof(AELib::AEGP_SuiteHandler));
}

}  // namespace
