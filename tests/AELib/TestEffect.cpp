#include "TestEffect.h"

#include <cstring>

#include "Errors.h"
#include "HandleMemory.h"
#include "PluginResource.h"

namespace {

Script* theScript = nullptr;

std::string Number(std::uint32_t value) {
    return resource::BigEndian(value);
}

}  // namespace

Script& TheScript() {
    return *theScript;
}

void Script::ran(const std::string& hook, AELib::AEContext& context) {
    hooks.push_back(hook);
    const auto action = actions.find(hook);
    if (action != actions.end()) action->second(context);
}

namespace AELib {

GlobalManager* NewGlobalManagerInstance() {
    return new TestGlobal;
}

// In place of the platform's: the running test supplies the resource.
char** Get1Resource(std::uint32_t type, int id) {
    if (type != PiPL_RESOURCE_TYPE || id != PiPL_RESOURCE_ID || TheScript().resource.empty()) return nullptr;
    static char** handle = nullptr;
    if (handle != nullptr) DisposeHandle(handle);
    handle = NewHandle(TheScript().resource.size());
    std::memcpy(*handle, TheScript().resource.data(), TheScript().resource.size());
    return handle;
}

int MemError() {
    return TheScript().memoryError;
}

}  // namespace AELib

AELib::SequenceManager* TestGlobal::newSequenceInstance(AELib::AEContext& context) {
    TheScript().ran("newSequenceInstance", context);
    return new TestSequence;
}

void TestSequence::archive(AELib::AEContext& context, PILib::Archiver& archiver) {
    TheScript().ran("archive", context);
    if (TheScript().archive) TheScript().archive(archiver);
}

void TestSequence::dearchive(AELib::AEContext& context, PILib::Archiver& archiver) {
    TheScript().ran("dearchive", context);
    if (TheScript().dearchive) TheScript().dearchive(archiver);
}

AELib::FrameManager* TestSequence::newFrameInstance(AELib::AEContext& context) {
    TheScript().ran("newFrameInstance", context);
    return new TestFrame;
}

void TestFrame::ran(const std::string& hook, AELib::AEContext& call) {
    TheScript().frame = this;
    TheScript().ran(hook, call);
}

std::vector<resource::Property> TestProperties() {
    return {{PiPL_VENDOR, PiPL_KIND, Number(PiPL_KIND_EFFECT)},
            {PiPL_VENDOR, PiPL_NAME, resource::Pascal(kTestName)},
            {PiPL_VENDOR, PiPL_CATEGORY, resource::Pascal("Quillon")},
            {PiPL_VENDOR, PiPL_EFFECT_VERSION, Number(0x01020304)},
            {PiPL_VENDOR, PiPL_OUT_FLAGS, Number(0x02000010)},
            {PiPL_VENDOR, PiPL_OUT_FLAGS2, Number(0x08000400)},
            {PiPL_VENDOR, PiPL_MATCH_NAME, resource::Pascal(kTestMatchName)}};
}

HostedEffectTest::HostedEffectTest() : script((theScript = &script, Script{})) {
    script.resource = resource::PropertyList(TestProperties());
    std::strcpy(AELib::gPluginName, "Unknown");
}

HostedEffectTest::~HostedEffectTest() {
    script.actions.clear();
    script.archive = nullptr;
    host.tearDown();
    delete AELib::gSuites;
    AELib::gSuites = nullptr;
    EXPECT_EQ("", host.faults());
    EXPECT_EQ(0, host.liveSuites());
}

void HostedEffectTest::setUpGlobal() {
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETUP)) << host.message();
}

void HostedEffectTest::setUpSequence() {
    setUpGlobal();
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_SETUP)) << host.message();
    script.hooks.clear();
}

AELib::AEContext HostedEffectTest::makeContext(PF_Cmd command, void* extra) {
    params = host.paramPointers();
    AELib::AEContext context(command, &host.in, &host.out, params.data(), host.output, extra);
    context.globalManager = &manager;
    return context;
}

void HostedEffectTest::useSuites() {
    AELib::gSuites = new AELib::SuiteHandler(&host.basic);
}

void ExpectAssertion(const char* file, int line, const std::function<void()>& operation) {
    EXPECT_EQ(PILib::kAssertionFailed, CodeOf(operation));
    EXPECT_STREQ(file, PILib::AssertFile);
    EXPECT_EQ(line, PILib::AssertLine);
}
