// Frames of a sequence, with and without frame data of the host.

#include "SequenceManager.h"

#include "TestEffect.h"

namespace {

using AELib::AEContext;

class SequenceManagerTest : public HostedEffectTest {
protected:
    SequenceManagerTest() {
        host.param(0).u.ld = picture.def;
        host.output = &picture.def;
    }
    HostWorld picture{4, 3, false};
};

TEST_F(SequenceManagerTest, EventsReachNoHook) {
    setUpSequence();
    for (A_long event = 0; event <= 11; ++event) {
        EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_EVENT, &event));
        EXPECT_TRUE(script.hooks.empty()) << "event " << event;
    }
}

TEST_F(SequenceManagerTest, HandleEventSwitchesOnTheStoredCommand) {
    const char* const hooks[] = {"handleNewContext",   "handleActivate", "handleClick",
                                 "handleDrag",         "handleDraw",     "handleDeactivate",
                                 "handleCloseContext", "handleIdle",     "",
                                 "handleAdjustCursor", "handleKeydown",  ""};
    TestSequence sequence;
    for (int event = 0; event < static_cast<int>(std::size(hooks)); ++event) {
        script.hooks.clear();
        AEContext context = makeContext(event);
        sequence.handleEvent(context);
        const std::string ran = script.hooks.empty() ? "" : script.hooks.front();
        EXPECT_EQ(hooks[event], ran) << event;
    }
}

TEST_F(SequenceManagerTest, CommandsThatAreNotItsOwnReachNoHook) {
    TestSequence sequence;
    for (const PF_Cmd command : {-1, 0, 1, 2, 3, 4, 6, 7, 23, 24, 25, 28, 31, 1000}) {
        AEContext context = makeContext(command);
        sequence.handleCommand(context);
        EXPECT_TRUE(script.hooks.empty()) << command;
    }
}

TEST_F(SequenceManagerTest, FrameLivesInFrameDataFromSetupToSetdown) {
    setUpSequence();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP));
    EXPECT_NE(nullptr, host.in.frame_data);
    EXPECT_EQ(1, script.liveFrames);
    EXPECT_EQ(3, host.lockedHandles());
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_RENDER));
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN));
    EXPECT_EQ(nullptr, host.in.frame_data);
    EXPECT_EQ(nullptr, host.out.frame_data);
    EXPECT_EQ(0, script.liveFrames);
    EXPECT_EQ(2, host.liveHandles());
}

struct StackHost {
    const char* what;
    PF_SpecVersion version;
    bool hasSuites;
};

constexpr StackHost kStackHosts[] = {
    {"12.10", {12, 10}, true}, {"11.99", {11, 99}, true}, {"without suites", {13, 29}, false}};

TEST_F(SequenceManagerTest, NestedFramesStackUpWhereTheHostKeepsNoFrameData) {
    for (const StackHost& kind : kStackHosts) {
        SCOPED_TRACE(kind.what);
        host.in.version = kind.version;
        host.in.pica_basicP = kind.hasSuites ? &host.basic : nullptr;
        setUpSequence();
        std::vector<AELib::FrameManager*> frames;
        for (int depth = 0; depth < 3; ++depth) {
            ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP));
            frames.push_back(script.frame);
        }
        EXPECT_EQ(nullptr, host.in.frame_data);
        EXPECT_EQ(3, script.liveFrames);
        for (; !frames.empty(); frames.pop_back()) {
            EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_RENDER));
            EXPECT_EQ(frames.back(), script.frame);
            EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN));
            EXPECT_EQ(frames.back(), script.frame);
        }
        EXPECT_EQ(0, script.liveFrames);
        host.tearDown();
    }
}

TEST_F(SequenceManagerTest, PoppedFrameHandlesAreLeft) {
    host.in.version = {12, 10};
    setUpSequence();
    const int before = host.liveHandles();
    for (int frame = 1; frame <= 3; ++frame) {
        EXPECT_EQ(PF_Err_NONE, host.renderFrame());
        EXPECT_EQ(before + frame, host.liveHandles());
        EXPECT_EQ(0, script.liveFrames);
    }
}

TEST_F(SequenceManagerTest, FrameDataOfAStackHostAreDisposedAndTheirFieldsLeft) {
    host.in.version = {12, 10};
    setUpSequence();
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP));
    const PF_Handle data = host.newHandle(sizeof(void*));
    host.in.frame_data = data;
    const int before = host.liveHandles();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN));
    EXPECT_EQ(before - 1, host.liveHandles());
    EXPECT_EQ(data, host.in.frame_data);
    EXPECT_EQ(data, host.out.frame_data);
    host.in.frame_data = nullptr;
}

TEST_F(SequenceManagerTest, RenderWithoutAFrameFails) {
    for (const PF_SpecVersion version : {PF_SpecVersion{13, 29}, PF_SpecVersion{12, 10}}) {
        host.in.version = version;
        setUpSequence();
        for (const PF_Cmd command : {A_long{PF_Cmd_RENDER}, A_long{PF_Cmd_FRAME_SETDOWN}}) {
            EXPECT_EQ(512, host.call(command)) << version.major;
            EXPECT_EQ("Assert Failure - file: AELib/AELib Source/SequenceManager, line: 142 in Test Effect",
                      host.message());
        }
        host.tearDown();
    }
}

TEST_F(SequenceManagerTest, ContextOfAFrameKnowsItsManagers) {
    setUpSequence();
    AEContext seen;
    script.actions["frame.frameSetup"] = [&](AEContext& context) { seen = context; };
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP));
    EXPECT_NE(nullptr, dynamic_cast<TestGlobal*>(seen.globalManager));
    EXPECT_NE(nullptr, dynamic_cast<TestSequence*>(seen.sequenceManager));
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN));
}

TEST_F(SequenceManagerTest, FailedHooksKeepTheirInstances) {
    setUpGlobal();
    script.actions["sequenceSetup"] = [](AEContext&) { throw 21; };
    EXPECT_EQ(21, host.call(PF_Cmd_SEQUENCE_SETUP));
    EXPECT_NE(nullptr, host.in.sequence_data);
    EXPECT_EQ(1, script.liveSequences);
    script.actions["sequenceSetdown"] = [](AEContext&) { throw 22; };
    EXPECT_EQ(22, host.call(PF_Cmd_SEQUENCE_SETDOWN));
    EXPECT_EQ(1, script.liveSequences);
    script.actions.clear();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_SETDOWN));
    EXPECT_EQ(0, script.liveSequences);
}

TEST_F(SequenceManagerTest, FailedRenderKeepsTheFrameForItsSetdown) {
    setUpSequence();
    HostWorld source(2, 2, false), output(2, 2, false);
    host.param(0).u.ld = source.def;
    host.output = &output.def;
    script.actions["frame.render"] = [](AEContext&) { throw 23; };
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP));
    EXPECT_EQ(23, host.call(PF_Cmd_RENDER));
    EXPECT_EQ(1, script.liveFrames);
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN));
    EXPECT_EQ(0, script.liveFrames);
}

TEST_F(SequenceManagerTest, FailedSetdownKeepsTheFrame) {
    setUpSequence();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP));
    script.actions["frame.frameSetdown"] = [](AEContext&) { throw 6; };
    EXPECT_EQ(6, host.call(PF_Cmd_FRAME_SETDOWN));
    EXPECT_EQ(1, script.liveFrames);
    script.actions.clear();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN));
    EXPECT_EQ(0, script.liveFrames);
}

}  // namespace
