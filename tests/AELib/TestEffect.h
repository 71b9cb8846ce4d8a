// An effect for the framework's tests: every hook records its name and runs the test's action for it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "FrameManager.h"
#include "GlobalManager.h"
#include "Main.h"
#include "RecordingHost.h"
#include "ResourceWriter.h"
#include "SequenceManager.h"
#include "SuiteHandler.h"

struct Script {
    std::vector<std::string> hooks;  // that ran, in order
    std::map<std::string, std::function<void(AELib::AEContext&)>> actions;
    std::function<void(PILib::Archiver&)> archive;
    std::function<void(PILib::Archiver&)> dearchive;
    std::string resource;                  // what Get1Resource finds; empty finds nothing
    int memoryError = 0;                   // what MemError says
    AELib::FrameManager* frame = nullptr;  // whose hook ran last
    int liveGlobals = 0;
    int liveSequences = 0;
    int liveFrames = 0;

    void ran(const std::string& hook, AELib::AEContext& context);
};

// The script of the running test.
Script& TheScript();

class TestGlobal : public AELib::GlobalManager {
public:
    TestGlobal() { ++TheScript().liveGlobals; }
    ~TestGlobal() override { --TheScript().liveGlobals; }
    void paramsSetup(AELib::AEContext& context) override { TheScript().ran("paramsSetup", context); }
    AELib::SequenceManager* newSequenceInstance(AELib::AEContext& context) override;
};

class TestSequence : public AELib::SequenceManager {
public:
    TestSequence() { ++TheScript().liveSequences; }
    ~TestSequence() override { --TheScript().liveSequences; }
    void archive(AELib::AEContext& context, PILib::Archiver& archiver) override;
    void dearchive(AELib::AEContext& context, PILib::Archiver& archiver) override;
    AELib::FrameManager* newFrameInstance(AELib::AEContext& context) override;

#define NOTED_HOOK(hook)                            \
    void hook(AELib::AEContext& context) override { \
        TheScript().ran(#hook, context);            \
    }
    NOTED_HOOK(sequenceSetup)
    NOTED_HOOK(sequenceSetdown)
    NOTED_HOOK(doDialog)
    NOTED_HOOK(userChangedParam)
    NOTED_HOOK(updateParamsUI)
    NOTED_HOOK(getExternalDependencies)
    NOTED_HOOK(audioRender)
    NOTED_HOOK(audioSetup)
    NOTED_HOOK(audioSetdown)
    NOTED_HOOK(arbitraryCallback)
    NOTED_HOOK(completelyGeneral)
    NOTED_HOOK(queryDynamicFlags)
    NOTED_HOOK(handleDraw)
    NOTED_HOOK(handleClick)
    NOTED_HOOK(handleDrag)
    NOTED_HOOK(handleNewContext)
    NOTED_HOOK(handleActivate)
    NOTED_HOOK(handleDeactivate)
    NOTED_HOOK(handleCloseContext)
    NOTED_HOOK(handleIdle)
    NOTED_HOOK(handleKeydown)
    NOTED_HOOK(handleAdjustCursor)
#undef NOTED_HOOK
};

class TestFrame : public AELib::FrameManager {
public:
    TestFrame() { ++TheScript().liveFrames; }
    ~TestFrame() override { --TheScript().liveFrames; }
    void frameSetup(AELib::AEContext& call) override { ran("frame.frameSetup", call); }
    void render(AELib::AEContext& call) override { ran("frame.render", call); }
    void frameSetdown(AELib::AEContext& call) override { ran("frame.frameSetdown", call); }

private:
    void ran(const std::string& hook, AELib::AEContext& call);
};

// The property list of the test effect.
std::vector<resource::Property> TestProperties();
inline constexpr char kTestName[] = "Test Effect";
inline constexpr char kTestMatchName[] = "Quillon Test Effect";

// The test effect in a recording host. Tears down what a test leaves behind.
class HostedEffectTest : public testing::Test {
protected:
    HostedEffectTest();
    ~HostedEffectTest() override;

    void setUpGlobal();
    void setUpSequence();
    // A context of the host's records with a global manager of its own.
    AELib::AEContext makeContext(PF_Cmd command = PF_Cmd_RENDER, void* extra = nullptr);
    void useSuites();

    Script script;
    RecordingHost host{PluginMain};
    TestGlobal manager;
    std::vector<PF_ParamDef*> params;
};

// The result of an operation that throws a host code: 0 for none.
template <class Operation>
int CodeOf(Operation operation) {
    try {
        operation();
        return 0;
    } catch (int code) {
        return code;
    }
}

// Expects a failed assertion at the given place.
void ExpectAssertion(const char* file, int line, const std::function<void()>& operation);
