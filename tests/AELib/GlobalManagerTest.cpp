// Identity from the property list, parameter numbers, and the lives of sequences.

#include "GlobalManager.h"

#include <cstring>

#include "Errors.h"
#include "TestEffect.h"

namespace {

using AELib::AEContext;
using PILib::Archiver;
using resource::BigEndian;
using resource::Pascal;
using resource::Property;

class GlobalManagerTest : public HostedEffectTest {
protected:
    void readPiPL() {
        AEContext context = makeContext(PF_Cmd_GLOBAL_SETUP);
        manager.readPiPL(context);
    }
    void expectMalformed(const std::string& list, const char* what) {
        script.resource = list;
        SCOPED_TRACE(what);
        ExpectAssertion("AELib/AELib Source/GlobalManager", 269, [&] { readPiPL(); });
    }
};

TEST_F(GlobalManagerTest, SetupHandsTheHostVersionAndFlagsOfThePropertyList) {
    setUpGlobal();
    EXPECT_EQ(0x01020304U, host.out.my_version);
    EXPECT_EQ(0x02000010, host.out.out_flags);
    EXPECT_EQ(0x08000400, host.out.out_flags2);
    EXPECT_EQ(std::vector<std::string>{kTestMatchName}, host.registeredNames);
    EXPECT_STREQ(kTestName, AELib::gPluginName);
}

TEST_F(GlobalManagerTest, InitReturnsWhatTheRegistrationGave) {
    useSuites();
    AEContext context = makeContext(PF_Cmd_GLOBAL_SETUP);
    EXPECT_EQ(0, manager.init(context));
    EXPECT_EQ(RecordingHost::kPluginID, manager.pluginID);
    host.failures.at(Callback::kRegister, 1, 33);
    EXPECT_EQ(33, manager.init(context));
}

TEST_F(GlobalManagerTest, FailedRegistrationIsIgnoredAtSetup) {
    host.failures.at(Callback::kRegister, 1, 33);
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_GLOBAL_SETUP));
}

TEST_F(GlobalManagerTest, SetupWithoutSuitesDoesNotRegister) {
    host.in.pica_basicP = nullptr;
    setUpGlobal();
    EXPECT_TRUE(host.registeredNames.empty());
    EXPECT_EQ(0x01020304U, host.out.my_version);
}

TEST_F(GlobalManagerTest, StringsKeepTheirLengthByteAndEndInZero) {
    manager.pluginName.fill('x');
    readPiPL();
    EXPECT_EQ(static_cast<char>(std::strlen(kTestName)), manager.pluginName[0]);
    EXPECT_STREQ(kTestName, manager.pluginName.data() + 1);
    EXPECT_STREQ(kTestMatchName, manager.matchName.data() + 1);
    EXPECT_STREQ("Quillon", manager.category.data() + 1);
    EXPECT_EQ(0x01020304U, manager.version);
    EXPECT_EQ(0x02000010U, manager.outFlags);
    EXPECT_EQ(0x08000400U, manager.outFlags2);
}

TEST_F(GlobalManagerTest, OtherVendorsAndKeysAreSteppedOver) {
    std::vector<Property> properties = {{PF_FOUR_CC('a', 'b', 'c', 'd'), PiPL_EFFECT_VERSION, BigEndian(9)},
                                        {PiPL_VENDOR, PF_FOUR_CC('o', 'd', 'd', ' '), "12345"},
                                        {PiPL_VENDOR, PiPL_EFFECT_VERSION, BigEndian(7)},
                                        {PF_FOUR_CC('a', 'b', 'c', 'd'), PiPL_NAME, ""}};
    script.resource = resource::PropertyList(properties);
    readPiPL();
    EXPECT_EQ(7U, manager.version);
    EXPECT_STREQ("Unknown", AELib::gPluginName);
}

TEST_F(GlobalManagerTest, MissingPropertyListFails) {
    script.resource.clear();
    ExpectAssertion("AELib/AELib Source/GlobalManager", 261, [&] { readPiPL(); });
    EXPECT_EQ(512, host.call(PF_Cmd_GLOBAL_SETUP));
    EXPECT_EQ("Assert Failure - file: AELib/AELib Source/GlobalManager, line: 261 in Unknown",
              host.message());
}

TEST_F(GlobalManagerTest, ResourceErrorFails) {
    script.memoryError = -108;
    ExpectAssertion("AELib/AELib Source/GlobalManager", 264, [&] { readPiPL(); });
}

TEST_F(GlobalManagerTest, OtherListVersionFails) {
    expectMalformed(resource::PropertyList(TestProperties(), 1), "version 1");
}

TEST_F(GlobalManagerTest, ListCutAnywhereFails) {
    std::vector<Property> properties = TestProperties();
    properties.push_back({PiPL_VENDOR, PiPL_CATEGORY, resource::Pascal("Blurs")});
    std::string list = resource::PropertyList(properties);
    constexpr std::size_t kPadding = 2;  // behind the 6 bytes of the last
    list.resize(list.size() - kPadding);
    script.resource = list;
    readPiPL();  // the last property may lack its padding
    for (std::size_t size = 1; size < list.size(); ++size) {
        expectMalformed(list.substr(0, size), std::to_string(size).c_str());
        if (HasFailure()) return;
    }
}

TEST_F(GlobalManagerTest, MalformedPropertiesFail) {
    const std::string oneProperty = BigEndian(0) + BigEndian(1) + BigEndian(PiPL_VENDOR);
    const std::string nameHeader = oneProperty + BigEndian(PiPL_NAME) + BigEndian(0);
    expectMalformed(nameHeader + BigEndian(0xFFFFFFFF) + "abcd", "length -1");
    expectMalformed(nameHeader + BigEndian(0x80000000) + "abcd", "most negative length");
    expectMalformed(nameHeader + BigEndian(0x7FFFFFFF) + "abcd", "length beyond the list");
    expectMalformed(BigEndian(0) + BigEndian(0xFFFFFFFF), "count beyond the list");
    expectMalformed(resource::PropertyList({{PiPL_VENDOR, PiPL_EFFECT_VERSION, "ab"}}), "half a number");
    for (const std::uint32_t key : {PiPL_NAME, PiPL_MATCH_NAME, PiPL_CATEGORY})
        expectMalformed(resource::PropertyList({{PiPL_VENDOR, key, std::string(256, 'x')}}), "long string");
}

TEST_F(GlobalManagerTest, LongestStringFits) {
    script.resource = resource::PropertyList({{PiPL_VENDOR, PiPL_NAME, std::string(255, 'x')}});
    readPiPL();
    EXPECT_EQ(254U, std::strlen(AELib::gPluginName));
}

TEST_F(GlobalManagerTest, UnknownIdentifierIsTheSourceLayerAndIsRemembered) {
    EXPECT_EQ(0, manager.getParamNumber(99));
    EXPECT_TRUE(manager.paramNumbers.contains(99));
}

TEST_F(GlobalManagerTest, ParamCountFollowsTheGreatestIndex) {
    manager.setParamNumber(7, 3);
    EXPECT_EQ(4, manager.paramCount);
    manager.setParamNumber(8, 1);
    EXPECT_EQ(4, manager.paramCount);
    EXPECT_EQ(3, manager.getParamNumber(7));
    EXPECT_EQ(1, manager.getParamNumber(8));
    manager.setParamNumber(7, 5);
    EXPECT_EQ(5, manager.getParamNumber(7));
    EXPECT_EQ(6, manager.paramCount);
}

TEST_F(GlobalManagerTest, CommandsThatAreNotItsOwnReachNothing) {
    for (const PF_Cmd command : {-1, 1, 2, 3, 23, 24, 1000}) {
        AEContext context = makeContext(command);
        manager.handleCommand(context);
        EXPECT_EQ(nullptr, context.sequenceManager) << command;
        EXPECT_TRUE(script.hooks.empty()) << command;
        EXPECT_EQ("", host.message()) << command;
    }
}

TEST_F(GlobalManagerTest, SequenceLivesFromSetupToSetdown) {
    setUpSequence();
    EXPECT_EQ(1, script.liveSequences);
    EXPECT_EQ(2, host.lockedHandles());
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_SETDOWN));
    EXPECT_EQ(0, script.liveSequences);
    EXPECT_EQ(nullptr, host.in.sequence_data);
    EXPECT_EQ(1, host.liveHandles());
}

TEST_F(GlobalManagerTest, FlatDataAreTheArchivedBytesAndComeBack) {
    setUpSequence();
    script.archive = [](Archiver& a) { a << true << short{-2} << 1.0F; };
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_FLATTEN)) << host.message();
    EXPECT_EQ(0, script.liveSequences);
    const PF_Handle flat = host.in.sequence_data;
    ASSERT_NE(nullptr, flat);
    EXPECT_EQ(2, host.liveHandles());
    EXPECT_EQ(7U, host.utils.host_get_handle_size(flat));
    EXPECT_EQ(0, std::memcmp("\x01\xFF\xFE\x3F\x80\x00\x00", *flat, 7));

    short value = 0;
    script.dearchive = [&](Archiver& a) {
        bool flag = false;
        a >> flag >> value;
    };
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_RESETUP)) << host.message();
    EXPECT_EQ(-2, value);
    EXPECT_EQ(1, script.liveSequences);
    EXPECT_NE(flat, host.in.sequence_data);
    EXPECT_EQ(3, host.liveHandles()) << "the flat handle stays the host's";
    host.utils.host_dispose_handle(flat);
}

TEST_F(GlobalManagerTest, LargeFlatDataGrowTheHandle) {
    setUpSequence();
    script.archive = [](Archiver& a) {
        for (int i = 0; i < 30000; ++i)
            a << i;
    };
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_FLATTEN)) << host.message();
    const PF_Handle flat = host.in.sequence_data;
    EXPECT_EQ(120000U, host.utils.host_get_handle_size(flat));
    int last = 0;
    script.dearchive = [&](Archiver& a) {
        for (int i = 0; i < 30000; ++i)
            a >> last;
    };
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_RESETUP)) << host.message();
    EXPECT_EQ(29999, last);
    host.utils.host_dispose_handle(flat);
}

TEST_F(GlobalManagerTest, FailedArchivingKeepsTheSequenceAndLosesNoHandle) {
    setUpSequence();
    const PF_Handle sequence = host.in.sequence_data;
    script.archive = [](Archiver& a) {
        a << 1;
        throw 44;
    };
    EXPECT_EQ(44, host.call(PF_Cmd_SEQUENCE_FLATTEN));
    EXPECT_EQ(sequence, host.in.sequence_data);
    EXPECT_EQ(1, script.liveSequences);
    EXPECT_EQ(2, host.liveHandles());
}

TEST_F(GlobalManagerTest, FailedResizeAtFlattenIsReported) {
    setUpSequence();
    host.failures.at(Callback::kResizeHandle, 1, 45);
    EXPECT_EQ(45, host.call(PF_Cmd_SEQUENCE_FLATTEN));
    EXPECT_EQ("Error 45 in Test Effect", host.message());
    EXPECT_EQ(nullptr, host.in.sequence_data);
    EXPECT_EQ(1, host.liveHandles()) << "the global handle";
}

TEST_F(GlobalManagerTest, TruncatedFlatDataFailTheLoad) {
    setUpSequence();
    script.archive = [](Archiver& a) { a << short{1}; };
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_FLATTEN));
    const PF_Handle flat = host.in.sequence_data;
    script.dearchive = [](Archiver& a) {
        int value = 0;
        a >> value;
    };
    EXPECT_EQ(512, host.call(PF_Cmd_SEQUENCE_RESETUP));
    EXPECT_EQ("Error 512 in Test Effect", host.message());
    EXPECT_EQ(1, script.liveSequences) << "the new instance stays for its set-down";
    EXPECT_NE(nullptr, host.in.sequence_data);
    EXPECT_NE(flat, host.in.sequence_data);
    host.utils.host_dispose_handle(flat);
}

// A new handle is locked, and again after each growth. Trimming does not unlock it; reading neither locks nor
// unlocks.
TEST_F(GlobalManagerTest, ArchivesKeepTheirHandleLocked) {
    AEContext context = makeContext();
    Archiver writer(context);
    const std::vector<char> bytes(10001);
    writer.writeBuffer(bytes.data(), 10000);
    EXPECT_EQ((std::vector<std::string>{"host_new_handle", "host_lock_handle"}), host.log);
    host.log.clear();
    writer.writeBuffer(bytes.data(), 10001);
    EXPECT_EQ((std::vector<std::string>{"host_unlock_handle", "host_resize_handle", "host_lock_handle"}),
              host.log);
    host.log.clear();
    char** const handle = writer.getHandle();
    EXPECT_EQ((std::vector<std::string>{"host_resize_handle"}), host.log);
    EXPECT_EQ(1, host.lockedHandles());
    host.log.clear();
    Archiver reader(context, handle);
    EXPECT_EQ((std::vector<std::string>{"host_get_handle_size"}), host.log);
    context.unlockHandle(handle);
    context.disposeHandle(handle);
}

TEST_F(GlobalManagerTest, AFullArchiveIsNotTrimmed) {
    AEContext context = makeContext();
    Archiver writer(context);
    const std::vector<char> bytes(10000);
    writer.writeBuffer(bytes.data(), 10000);
    host.log.clear();
    char** const handle = writer.getHandle();
    EXPECT_TRUE(host.log.empty());
    context.unlockHandle(handle);
    context.disposeHandle(handle);
}

}  // namespace
