// The framework under hosts that keep no rule: each command ends with an error of the framework's own.

#include "HostileHost.h"

#include <gtest/gtest.h>

#include <cstring>

#include "HostCallbacks.h"
#include "TestEffect.h"

namespace {

constexpr char kNoGlobal[] = "Assert Failure - file: AELib/AELib Source/Main, line: 75 in Test Effect";
constexpr char kNoSequence[] =
    "Assert Failure - file: AELib/AELib Source/GlobalManager, line: 125 in Test Effect";
constexpr char kNoFrame[] =
    "Assert Failure - file: AELib/AELib Source/SequenceManager, line: 142 in Test Effect";

class HostileHostTest : public HostedEffectTest {
protected:
    HostileHostTest() {
        host.param(0).u.ld = picture.def;
        host.output = &picture.def;
    }
    void expectRefused(PF_Cmd command, const std::string& text) {
        EXPECT_EQ(512, host.call(command)) << command;
        EXPECT_EQ(text, host.message()) << command;
    }
    // Calls the entry point without one of its arguments, and gives the message back.
    std::string callWithout(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef** params,
                            PF_LayerDef* output) {
        host.out.return_msg[0] = '\0';
        EXPECT_EQ(512, PluginMain(command, in, out, params, output, nullptr)) << command;
        return host.message();
    }
    HostWorld picture{4, 3, false};
};

TEST_F(HostileHostTest, FlatBytesAreNoInstance) {
    for (const std::size_t size : {0U, 3U, 8U, 9U, 5000U}) {
        setUpSequence();
        script.archive = [size](PILib::Archiver& a) {
            a.writeBuffer(std::string(size, 'f').data(), int(size));
        };
        ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_FLATTEN)) << host.message();
        const PF_Handle flat = host.in.sequence_data;
        for (PF_Cmd command = PF_Cmd_SEQUENCE_FLATTEN; command <= PF_Cmd_ARBITRARY_CALLBACK; ++command)
            expectRefused(command, kNoSequence);
        EXPECT_EQ(flat, host.in.sequence_data) << "stays the host's";
        EXPECT_EQ(2, host.liveHandles());
        script.hooks.clear();
        EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_RESETUP));
        EXPECT_EQ((std::vector<std::string>{"newSequenceInstance", "dearchive"}), script.hooks);
        host.utils.host_dispose_handle(flat);
        host.tearDown();
        EXPECT_EQ(0, host.liveHandles());
        EXPECT_EQ(0, script.liveSequences);
    }
}

TEST_F(HostileHostTest, ResetupOfALiveInstanceReadsItAsAStreamAndLeavesIt) {
    setUpSequence();
    PF_Handle live = host.in.sequence_data;
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_RESETUP)) << host.message();
    EXPECT_EQ(2, script.liveSequences);
    std::swap(host.in.sequence_data, live);
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_DO_DIALOG)) << host.message();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_SETDOWN)) << host.message();
    EXPECT_EQ(1, script.liveSequences);
    host.in.sequence_data = live;
}

TEST_F(HostileHostTest, ARebuiltSequencesOldHandleIsForTheHostToFree) {
    setUpSequence();
    const PF_Handle live = host.in.sequence_data;
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_RESETUP));
    const PF_Handle rebuilt = host.in.sequence_data;
    host.utils.host_dispose_handle(live);
    host.in.sequence_data = live;
    host.log.clear();
    EXPECT_EQ(512, host.call(PF_Cmd_DO_DIALOG));
    EXPECT_EQ(std::vector<std::string>{"host_get_handle_size"}, host.log);
    EXPECT_EQ("size of a handle that is not alive\n", host.takeFaults());
    host.in.sequence_data = rebuilt;
}

TEST_F(HostileHostTest, HandlesOfSetdownsAreNoInstances) {
    setUpSequence();
    const PF_Handle sequence = host.in.sequence_data;
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP));
    const PF_Handle frame = host.in.frame_data;
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN));
    for (const PF_Cmd command : {A_long{PF_Cmd_RENDER}, A_long{PF_Cmd_FRAME_SETDOWN}}) {
        host.in.frame_data = frame;
        expectRefused(command, kNoFrame);
    }
    host.in.frame_data = nullptr;
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_SETDOWN));
    for (PF_Cmd command = PF_Cmd_SEQUENCE_FLATTEN; command <= PF_Cmd_ARBITRARY_CALLBACK; ++command) {
        host.in.sequence_data = sequence;
        expectRefused(command, kNoSequence);
    }
    const PF_Handle global = host.in.global_data;
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETDOWN));
    for (const PF_Cmd command :
         {A_long{PF_Cmd_GLOBAL_SETDOWN}, A_long{PF_Cmd_ABOUT}, A_long{PF_Cmd_RENDER}}) {
        host.in.global_data = global;
        expectRefused(command, kNoGlobal);
    }
    host.in.global_data = host.in.sequence_data = nullptr;
    EXPECT_NE("", host.takeFaults()) << "sizes of dead handles were asked for";
    EXPECT_EQ(0, host.liveHandles());
}

TEST_F(HostileHostTest, HandlesOfAnotherLevelAreNoInstances) {
    setUpSequence();
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP));
    const PF_Handle global = host.in.global_data;
    const PF_Handle sequence = host.in.sequence_data;
    const PF_Handle frame = host.in.frame_data;
    for (const PF_Handle wrong : {sequence, frame}) {
        host.in.global_data = wrong;
        expectRefused(PF_Cmd_ABOUT, kNoGlobal);
        expectRefused(PF_Cmd_GLOBAL_SETDOWN, kNoGlobal);
    }
    host.in.global_data = global;
    for (const PF_Handle wrong : {global, frame}) {
        host.in.sequence_data = wrong;
        expectRefused(PF_Cmd_SEQUENCE_FLATTEN, kNoSequence);
        expectRefused(PF_Cmd_RENDER, kNoSequence);
        expectRefused(PF_Cmd_SEQUENCE_SETDOWN, kNoSequence);
    }
    host.in.sequence_data = sequence;
    for (const PF_Handle wrong : {global, sequence}) {
        host.in.frame_data = wrong;
        expectRefused(PF_Cmd_RENDER, kNoFrame);
        expectRefused(PF_Cmd_FRAME_SETDOWN, kNoFrame);
    }
    host.in.frame_data = frame;
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN)) << host.message();
}

TEST_F(HostileHostTest, ClearedHandlesAreNoInstances) {
    setUpSequence();
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP));
    const auto cleared = [this](PF_Handle handle, PF_Cmd command, const char* text) {
        void* word = nullptr;
        std::memcpy(&word, *handle, sizeof word);
        std::memset(*handle, 0, sizeof word);
        expectRefused(command, text);
        std::memcpy(*handle, &word, sizeof word);
        char* block = nullptr;
        std::swap(block, *handle);
        expectRefused(command, text);
        std::swap(block, *handle);
    };
    cleared(host.in.global_data, PF_Cmd_ABOUT, kNoGlobal);
    cleared(host.in.sequence_data, PF_Cmd_SEQUENCE_FLATTEN, kNoSequence);
    cleared(host.in.sequence_data, PF_Cmd_DO_DIALOG, kNoSequence);
    cleared(host.in.frame_data, PF_Cmd_RENDER, kNoFrame);
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN)) << host.message();
}

TEST_F(HostileHostTest, AHandleOfTheHostsIsReadAsFarAsItIsLong) {
    setUpSequence();
    const PF_Handle sequence = host.in.sequence_data;
    for (const std::size_t size : {0U, 1U, 7U, 8U, 16U}) {
        host.in.sequence_data = host.newHandle(size);
        std::memcpy(*host.in.sequence_data, *sequence, std::min<std::size_t>(size, sizeof(void*)));
        EXPECT_EQ(size < sizeof(void*) ? 512 : 0, host.call(PF_Cmd_DO_DIALOG)) << size;
    }
    host.in.sequence_data = sequence;
}

// No callback is needed to find an instance.
TEST_F(HostileHostTest, FindingAnInstanceAsksTheHostNothing) {
    setUpSequence();
    host.log.clear();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_DO_DIALOG));
    EXPECT_TRUE(host.log.empty());
}

// They may be those of a host that is gone.
TEST_F(HostileHostTest, HandlesFromBeforeAGlobalSetupAreAskedFor) {
    setUpSequence();
    PF_Handle earlier = host.in.global_data;
    host.in.global_data = nullptr;
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETUP));
    host.log.clear();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_DO_DIALOG));
    EXPECT_EQ(std::vector<std::string>{"host_get_handle_size"}, host.log);
    std::swap(host.in.global_data, earlier);
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETDOWN)) << host.message();
    host.in.global_data = earlier;
}

// A popped frame's handle is left to the host, which may free it.
TEST_F(HostileHostTest, PoppedFrameHandlesAreAskedFor) {
    static PF_Handle made;
    host.in.version = {12, 10};
    setUpSequence();
    host.utils.host_new_handle = [](A_u_longlong size) { return made = HostCallbacks::newHandle(size); };
    ASSERT_EQ(PF_Err_NONE, host.renderFrame()) << host.message();
    host.in.version = {13, 29};
    host.in.frame_data = made;
    host.log.clear();
    expectRefused(PF_Cmd_RENDER, kNoFrame);
    EXPECT_EQ(std::vector<std::string>{"host_get_handle_size"}, host.log);
    host.in.frame_data = nullptr;
}

// So is the handle of a frame that was not set down when its sequence was.
TEST_F(HostileHostTest, FrameHandlesOfAGoneSequenceAreAskedFor) {
    static PF_Handle made;
    host.in.version = {12, 10};
    setUpSequence();
    host.utils.host_new_handle = [](A_u_longlong size) { return made = HostCallbacks::newHandle(size); };
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP)) << host.message();
    const PF_Handle frame = made;
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_SETDOWN)) << host.message();
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_SETUP)) << host.message();
    host.in.version = {13, 29};
    host.in.frame_data = frame;
    host.log.clear();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_RENDER)) << "the frame itself is still alive";
    EXPECT_EQ("host_get_handle_size", host.log.front());
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN)) << host.message();
}

TEST_F(HostileHostTest, BlocksWithoutMemoryAreShortMemory) {
    setUpGlobal();
    static PF_Handle made;
    made = host.newHandle(16);
    *made = nullptr;
    host.utils.host_new_handle = [](A_u_longlong) { return made; };
    EXPECT_EQ(4, host.call(PF_Cmd_SEQUENCE_SETUP));
    EXPECT_FALSE(host.isAlive(made)) << "given back";
    EXPECT_EQ(0, script.liveSequences);
}

TEST_F(HostileHostTest, MissingRecordsAreRefused) {
    setUpSequence();
    params = host.paramPointers();
    for (PF_Cmd command = -1; command <= 31; ++command) {
        EXPECT_EQ("Assert Failure - file: AELib/AELib Source/Main, line: 1 in Test Effect",
                  callWithout(command, nullptr, &host.out, params.data(), &picture.def));
        EXPECT_EQ("", callWithout(command, &host.in, nullptr, params.data(), &picture.def));
        EXPECT_EQ("", callWithout(command, nullptr, nullptr, nullptr, nullptr));
    }
    EXPECT_TRUE(script.hooks.empty());
}

TEST_F(HostileHostTest, FramesNeedASourceAndRendersAnOutput) {
    constexpr char kNoSource[] =
        "Assert Failure - file: AELib/AELib Source/FrameManager, line: 1 in Test Effect";
    constexpr char kNoOutput[] =
        "Assert Failure - file: AELib/AELib Source/FrameManager, line: 2 in Test Effect";
    setUpSequence();
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP));
    params = host.paramPointers();
    PF_ParamDef* none = nullptr;
    EXPECT_EQ(kNoSource, callWithout(PF_Cmd_RENDER, &host.in, &host.out, nullptr, &picture.def));
    EXPECT_EQ(kNoSource, callWithout(PF_Cmd_RENDER, &host.in, &host.out, &none, &picture.def));
    EXPECT_EQ(kNoOutput, callWithout(PF_Cmd_RENDER, &host.in, &host.out, params.data(), nullptr));
    const PF_Handle frame = host.in.frame_data;
    EXPECT_EQ(kNoSource, callWithout(PF_Cmd_FRAME_SETUP, &host.in, &host.out, nullptr, nullptr));
    EXPECT_NE(frame, host.out.frame_data) << "the frame is there for its set-down";
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN)) << host.message();
    host.in.frame_data = host.out.frame_data;
}

TEST_F(HostileHostTest, PicturesOfImpossibleSizesAreRefusedBeforeTheHostIsAsked) {
    struct Size {
        A_long width, height;
    };
    const Size sizes[] = {{-1, 3},
                          {4, -1},
                          {INT32_MIN, 3},
                          {4, INT32_MIN},
                          {-1, -1},
                          {0, INT32_MAX},
                          {INT32_MAX, 0},
                          {4, INT32_MAX},
                          {INT32_MAX, 3},
                          {INT32_MAX, INT32_MAX},
                          {(1 << 20) + 1, 0},
                          {0, (1 << 20) + 1}};
    setUpSequence();
    for (const Size& size : sizes) {
        for (const bool source : {true, false}) {
            PF_LayerDef bent = picture.def;
            bent.width = size.width;
            bent.height = size.height;
            host.param(0).u.ld = source ? bent : picture.def;
            host.output = source ? &picture.def : &bent;
            ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETUP)) << "reads no picture";
            host.log.clear();
            expectRefused(PF_Cmd_RENDER,
                          "Assert Failure - file: AELib/AELib Source/AEPixelBuffer, line: 3 in Test Effect");
            EXPECT_EQ(source ? 1U : 0U, host.log.size()) << size.width << " x " << size.height;
            EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_FRAME_SETDOWN));
        }
    }
    EXPECT_TRUE(picture.guardsAreIntact());
}

TEST_F(HostileHostTest, EmptyPicturesAreLegal) {
    setUpSequence();
    for (const auto& [width, height] : {std::pair{0, 0}, {0, 3}, {4, 0}, {0, 1 << 20}, {1 << 20, 0}}) {
        PF_LayerDef empty = picture.def;
        empty.width = width;
        empty.height = height;
        host.param(0).u.ld = empty;
        EXPECT_EQ(PF_Err_NONE, host.renderFrame()) << host.message();
        std::swap(host.param(0).u.ld, *host.output);
        EXPECT_EQ(PF_Err_NONE, host.renderFrame()) << host.message();
        std::swap(host.param(0).u.ld, *host.output);
    }
}

TEST_F(HostileHostTest, AnyOrderOfCommandsEndsWithTheFrameworksOwnErrors) {
    int refused = 0;
    int rendered = 0;
    script.archive = [](PILib::Archiver& a) { a << 1 << 2LL << 3; };
    script.dearchive = [](PILib::Archiver& a) {
        int value = 0;
        a >> value >> value;
    };
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        Choices choices(seed);
        HostileHost hostile(PluginMain, choices);
        ASSERT_EQ("", hostile.run(60)) << "seed " << seed;
        refused += hostile.refused();
        rendered += hostile.rendered();
    }
    EXPECT_GT(refused, 3000);
    EXPECT_GT(rendered, 300);
}

}  // namespace
