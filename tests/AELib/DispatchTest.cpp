// Which hook each command reaches, and how what a hook throws arrives at the host.

#include <cstdio>
#include <new>
#include <stdexcept>

#include "Errors.h"
#include "TestEffect.h"

namespace {

using AELib::AEContext;
using AELib::gSuites;

using Hooks = std::vector<std::string>;

class DispatchTest : public HostedEffectTest {};

struct Route {
    PF_Cmd command;
    Hooks hooks;
};

TEST_F(DispatchTest, EveryCommandReachesItsHookAndNoOther) {
    const Route routes[] = {
        {PF_Cmd_ABOUT, {}},
        {PF_Cmd_UNUSED_0, {}},
        {PF_Cmd_PARAMS_SETUP, {"paramsSetup"}},
        {PF_Cmd_DO_DIALOG, {"doDialog"}},
        {PF_Cmd_FRAME_SETUP, {"newFrameInstance", "frame.frameSetup"}},
        {PF_Cmd_RENDER, {"frame.render"}},
        {PF_Cmd_FRAME_SETDOWN, {"frame.frameSetdown"}},
        {PF_Cmd_USER_CHANGED_PARAM, {"userChangedParam"}},
        {PF_Cmd_UPDATE_PARAMS_UI, {"updateParamsUI"}},
        {PF_Cmd_EVENT, {}},
        {PF_Cmd_GET_EXTERNAL_DEPENDENCIES, {"getExternalDependencies"}},
        {PF_Cmd_COMPLETELY_GENERAL, {"completelyGeneral"}},
        {PF_Cmd_QUERY_DYNAMIC_FLAGS, {"queryDynamicFlags"}},
        {PF_Cmd_AUDIO_RENDER, {"audioRender"}},
        {PF_Cmd_AUDIO_SETUP, {"audioSetup"}},
        {PF_Cmd_AUDIO_SETDOWN, {"audioSetdown"}},
        {PF_Cmd_ARBITRARY_CALLBACK, {"arbitraryCallback"}},
        {PF_Cmd_SEQUENCE_FLATTEN, {"archive"}},
        {PF_Cmd_SEQUENCE_RESETUP, {"newSequenceInstance", "dearchive"}},
        {PF_Cmd_SEQUENCE_SETDOWN, {"sequenceSetdown"}},
        {PF_Cmd_SEQUENCE_SETUP, {"newSequenceInstance", "sequenceSetup"}},
    };
    setUpSequence();
    HostWorld picture(3, 2, false);
    host.param(0).u.ld = picture.def;
    host.output = &picture.def;
    for (const Route& route : routes) {
        script.hooks.clear();
        const PF_Handle flat = route.command == PF_Cmd_SEQUENCE_RESETUP ? host.in.sequence_data : nullptr;
        EXPECT_EQ(PF_Err_NONE, host.call(route.command)) << "command " << route.command << host.message();
        EXPECT_EQ(route.hooks, script.hooks) << "command " << route.command;
        if (flat != nullptr) host.utils.host_dispose_handle(flat);
    }
}

TEST_F(DispatchTest, CommandsOutsideTheProtocolReachNoHook) {
    setUpSequence();
    for (const PF_Cmd command : {-1, 2, 23, 24, 25, 28, 31, 1000}) {
        EXPECT_EQ(PF_Err_NONE, host.call(command)) << command;
        EXPECT_EQ("", host.message()) << command;
        EXPECT_TRUE(script.hooks.empty()) << command;
    }
}

TEST_F(DispatchTest, AboutNamesTheMaker) {
    setUpGlobal();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_ABOUT));
    EXPECT_EQ("A Quillon Effect", host.message());
}

struct Failure {
    const char* what;
    void (*raise)();
    PF_Err result;
    std::string message;
};

TEST_F(DispatchTest, WhateverAHookThrowsBecomesCodeAndMessage) {
    const Failure failures[] = {
        {"0", [] { throw 0; }, 0, ""},
        {"cancel", [] { throw 517; }, 517, ""},
        {"assertion", [] { PILib::_Assert(false, 142, "AELib/AELib Source/SequenceManager"); }, 512,
         "Assert Failure - file: AELib/AELib Source/SequenceManager, line: 142 in Test Effect"},
        {"host error", [] { throw 513; }, 513, "Error 513 in Test Effect"},
        {"negative host error", [] { throw -1; }, -1, "Error -1 in Test Effect"},
        {"ThrowIfErr", [] { PILib::ThrowIfErr(77); }, 77, "Error 77 in Test Effect"},
        {"bad_alloc", [] { throw std::bad_alloc(); }, 4, "Error 4 in Test Effect"},
        {"bad_array_new_length", [] { throw std::bad_array_new_length(); }, 4, "Error 4 in Test Effect"},
        {"library error", [] { throw PILib::kEndOfArchive; }, 512, "Error 512 in Test Effect"},
        {"long", [] { throw 512L; }, 512, "Error 512 in Test Effect"},
        {"exception", [] { throw std::runtime_error("no"); }, 512, "Error 512 in Test Effect"},
        {"pointer", [] { throw "text"; }, 512, "Error 512 in Test Effect"},
    };
    setUpSequence();
    for (const Failure& failure : failures) {
        script.actions["doDialog"] = [&](AEContext&) { failure.raise(); };
        EXPECT_EQ(failure.result, host.call(PF_Cmd_DO_DIALOG)) << failure.what;
        EXPECT_EQ(failure.message, host.message()) << failure.what;
    }
}

TEST_F(DispatchTest, AHostsCodeThatEqualsAnAssertionsNamesTheLastPlace) {
    setUpSequence();
    PILib::AssertFile = nullptr;
    PILib::AssertLine = 0;
    script.actions["doDialog"] = [](AEContext&) { PILib::ThrowIfErr(999); };
    EXPECT_EQ(512, host.call(PF_Cmd_DO_DIALOG));
    EXPECT_EQ("Assert Failure - file: , line: 0 in Test Effect", host.message());
    EXPECT_THROW(PILib::_Assert(false, 142, "before"), int);
    EXPECT_EQ(512, host.call(PF_Cmd_DO_DIALOG));
    EXPECT_EQ("Assert Failure - file: before, line: 142 in Test Effect", host.message());
}

// The set-down that follows finds them.
TEST_F(DispatchTest, InstancesStayAfterAFailedGlobalSetup) {
    const int globals = script.liveGlobals;
    script.resource.clear();
    EXPECT_EQ(512, host.call(PF_Cmd_GLOBAL_SETUP));
    EXPECT_NE(nullptr, host.out.global_data);
    EXPECT_EQ(globals + 1, script.liveGlobals);
    host.in.global_data = host.out.global_data;
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETDOWN));
    EXPECT_EQ(globals, script.liveGlobals);
    EXPECT_EQ(0, host.liveHandles());
}

TEST_F(DispatchTest, SilentResultsLeaveTheMessageAsItIs) {
    setUpSequence();
    for (const int code : {0, 517}) {
        script.actions["doDialog"] = [code](AEContext& context) {
            std::snprintf(context.outData->return_msg, sizeof context.outData->return_msg, "mine");
            throw int{code};
        };
        EXPECT_EQ(code, host.call(PF_Cmd_DO_DIALOG));
        EXPECT_EQ("mine", host.message());
    }
}

int HostFormat(A_char* text, const A_char* format, ...) {
    return std::snprintf(text, 256, "host: %s", format);
}

TEST_F(DispatchTest, MessagesAreFormattedByTheHost) {
    setUpSequence();
    host.utils.ansi.sprintf = HostFormat;
    script.actions["doDialog"] = [](AEContext&) { throw 9; };
    EXPECT_EQ(9, host.call(PF_Cmd_DO_DIALOG));
    EXPECT_EQ("host: Error %d in %s", host.message());
}

TEST_F(DispatchTest, LongMessagesAreCutToTheHostsField) {
    script.resource =
        resource::PropertyList({{PiPL_VENDOR, PiPL_NAME, resource::Pascal(std::string(254, 'n'))}});
    setUpSequence();
    script.actions["doDialog"] = [](AEContext&) { throw 9; };
    EXPECT_EQ(9, host.call(PF_Cmd_DO_DIALOG));
    EXPECT_EQ("Error 9 in " + std::string(244, 'n'), host.message());
}

TEST_F(DispatchTest, FailuresBeforeTheNameIsKnownSayUnknown) {
    EXPECT_EQ(512, host.call(PF_Cmd_ABOUT));
    EXPECT_EQ("Assert Failure - file: AELib/AELib Source/Main, line: 75 in Unknown", host.message());
    EXPECT_EQ(512, host.call(PF_Cmd_GLOBAL_SETDOWN));
    EXPECT_EQ("Assert Failure - file: AELib/AELib Source/Main, line: 75 in Unknown", host.message());
}

TEST_F(DispatchTest, GlobalSetupWithoutUtilsAnswersWithoutTheHostsFormatter) {
    host.in.utils = nullptr;
    EXPECT_EQ(512, host.call(PF_Cmd_GLOBAL_SETUP));
    EXPECT_EQ("Assert Failure - file: AELib/AELib Source/Main, line: 87 in Unknown", host.message());
    EXPECT_EQ(nullptr, host.out.global_data);
    host.in.utils = &host.utils;
}

// No set-down follows a set-up that got no handle.
TEST_F(DispatchTest, GlobalSetupWithoutAHandleKeepsNoSuites) {
    host.failures.at(Callback::kNewHandle, 1, 1);
    EXPECT_EQ(4, host.call(PF_Cmd_GLOBAL_SETUP));
    EXPECT_EQ(nullptr, gSuites) << "no memory";
    host.failures.clear();
    host.in.utils = nullptr;
    EXPECT_EQ(512, host.call(PF_Cmd_GLOBAL_SETUP));
    EXPECT_EQ(nullptr, gSuites) << "no utility callbacks";
    host.in.utils = &host.utils;
}

TEST_F(DispatchTest, SequenceCommandsNeedSequenceData) {
    setUpGlobal();
    for (PF_Cmd command = PF_Cmd_SEQUENCE_RESETUP; command <= PF_Cmd_ARBITRARY_CALLBACK; ++command) {
        EXPECT_EQ(512, host.call(command)) << command;
        EXPECT_EQ("Assert Failure - file: AELib/AELib Source/GlobalManager, line: 125 in Test Effect",
                  host.message())
            << command;
    }
    EXPECT_TRUE(script.hooks.empty());
}

TEST_F(DispatchTest, UtilityCallbacksAreThoseOfTheCurrentCall) {
    setUpGlobal();
    EXPECT_EQ(&host.utils, AELib::gPF_Utils);
    PF_UtilCallbacks second = host.utils;
    host.in.utils = &second;
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_ABOUT));
    EXPECT_EQ(&second, AELib::gPF_Utils);
    host.in.utils = &host.utils;
}

TEST_F(DispatchTest, TheNameOutlivesTheSetdown) {
    setUpGlobal();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETDOWN));
    EXPECT_EQ(512, host.call(PF_Cmd_ABOUT));
    EXPECT_EQ("Assert Failure - file: AELib/AELib Source/Main, line: 75 in Test Effect", host.message());
}

TEST_F(DispatchTest, AnEmptyGlobalHandleFails) {
    host.in.global_data = host.newHandle(sizeof(void*));
    EXPECT_EQ(512, host.call(PF_Cmd_ABOUT));
    EXPECT_EQ("Assert Failure - file: AELib/AELib Source/Main, line: 75 in Unknown", host.message());
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETDOWN));
}

TEST_F(DispatchTest, GlobalSetdownOfAnEmptyHandleDisposesItAlone) {
    const int before = script.liveGlobals;
    host.in.global_data = host.newHandle(sizeof(void*));
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETDOWN));
    EXPECT_EQ(nullptr, host.in.global_data);
    EXPECT_EQ(0, host.liveHandles());
    EXPECT_EQ(before, script.liveGlobals);
}

TEST_F(DispatchTest, GlobalInstanceLivesFromSetupToSetdown) {
    const int before = script.liveGlobals;
    setUpGlobal();
    EXPECT_EQ(before + 1, script.liveGlobals);
    EXPECT_EQ(1, host.lockedHandles());
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETDOWN));
    EXPECT_EQ(before, script.liveGlobals);
    EXPECT_EQ(0, host.liveHandles());
    EXPECT_EQ(nullptr, gSuites);
    EXPECT_EQ(0, host.liveSuites());
}

TEST_F(DispatchTest, SuiteCacheComesWithTheFirstBasicSuite) {
    host.in.pica_basicP = nullptr;
    setUpGlobal();
    EXPECT_EQ(nullptr, gSuites);
    host.in.pica_basicP = &host.basic;
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_ABOUT));
    const AELib::SuiteHandler* const cache = gSuites;
    EXPECT_NE(nullptr, cache);
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_ABOUT));
    EXPECT_EQ(cache, gSuites);
}

TEST_F(DispatchTest, FailedHookLeavesItsInstances) {
    setUpSequence();
    script.actions["frame.frameSetup"] = [](AEContext&) { throw 5; };
    EXPECT_EQ(5, host.call(PF_Cmd_FRAME_SETUP));
    EXPECT_EQ(1, script.liveFrames);
    EXPECT_NE(nullptr, host.in.frame_data);
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN));
    EXPECT_EQ(0, script.liveFrames);
}

TEST_F(DispatchTest, ShortMemoryForAnInstanceIsReportedAndLeavesNone) {
    host.failures.at(Callback::kNewHandle, 1, 1);
    EXPECT_EQ(4, host.call(PF_Cmd_GLOBAL_SETUP));
    EXPECT_EQ("Error 4 in Unknown", host.message());
    host.failures.clear();
    setUpGlobal();
    host.failures.at(Callback::kNewHandle, 1, 1);
    EXPECT_EQ(4, host.call(PF_Cmd_SEQUENCE_SETUP));
    EXPECT_EQ(0, script.liveSequences);
    host.failures.clear();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_SETUP));
    host.failures.at(Callback::kNewHandle, 1, 1);
    EXPECT_EQ(4, host.call(PF_Cmd_FRAME_SETUP));
    EXPECT_EQ(0, script.liveFrames);
}

}  // namespace
