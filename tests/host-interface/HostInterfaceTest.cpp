// The packed version, the codes of the property list, how many functions the
// tables hold, and that C and C++ mean the same structures.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

#include "InterfaceInC.h"

namespace {

struct VersionCase {
    const char* name;
    unsigned version, subversion, bugfix, stage, build;
    std::uint32_t packed;
};

// Packed values worked out by hand from the bit positions: 26, 19, 15, 11, 9, 0.
constexpr VersionCase kVersionCases[] = {
    {"nothing", 0, 0, 0, PF_Stage_DEVELOP, 0, 0},
    {"1.0 release", 1, 0, 0, PF_Stage_RELEASE, 0, 524288 + 1536},
    {"1.0 release, build 1", 1, 0, 0, PF_Stage_RELEASE, 1, 525825},
    {"3.2.1 beta 7", 3, 2, 1, PF_Stage_BETA, 7, 1572864 + 65536 + 2048 + 1024 + 7},
    {"version 7 fills the low three bits", 7, 0, 0, 0, 0, 0x00380000},
    {"version 8 moves to the high four bits", 8, 0, 0, 0, 0, 0x04000000},
    {"largest of everything", 127, 15, 15, 3, 511, 0x3c000000 + 0x003fffff},
    {"one too large keeps the lower bits", 128, 16, 16, 4, 512, 0},
};

TEST(HostInterfaceTest, VersionPacksEachPartIntoItsOwnBits) {
    for (const VersionCase& c : kVersionCases) {
        EXPECT_EQ(PF_VERSION(c.version, c.subversion, c.bugfix, c.stage, c.build), c.packed) << c.name;
    }
}

TEST(HostInterfaceTest, EveryVersionNumberCanBeReadBackFromItsPackedForm) {
    for (unsigned version = 0; version < 128; ++version) {
        const std::uint32_t packed = PF_VERSION(version, 15, 15, 3, 511);
        EXPECT_EQ((packed >> 26 & 15) * 8 + (packed >> 19 & 7), version);
        EXPECT_EQ(packed & 0x0007ffff, 0x0007ffffu) << version;
    }
}

TEST(HostInterfaceTest, EveryBuildNumberCanBeReadBackFromItsPackedForm) {
    for (unsigned build = 0; build < 512; ++build) {
        EXPECT_EQ(PF_VERSION(1, 0, 0, PF_Stage_RELEASE, build), 525824u + build);
    }
}

TEST(HostInterfaceTest, VersionIsAConstant) {
    static_assert(PF_VERSION(1, 0, 0, PF_Stage_RELEASE, 1) == 525825u);
}

std::uint32_t CodeOf(const char* characters) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(characters[i]);
    return code;
}

struct CodeCase {
    std::uint32_t code;
    const char* characters;
};

constexpr CodeCase kCodeCases[] = {
    {PiPL_RESOURCE_TYPE, "PiPL"},
    {PiPL_VENDOR, "8BIM"},
    {PiPL_KIND, "kind"},
    {PiPL_NAME, "name"},
    {PiPL_CATEGORY, "catg"},
    {PiPL_MATCH_NAME, "eMNA"},
    {PiPL_ENTRY_MAC_INTEL, "mi64"},
    {PiPL_ENTRY_MAC_ARM, "ma64"},
    {PiPL_ENTRY_WINDOWS, "8664"},
    {PiPL_LIST_FORMAT, "ePVR"},
    {PiPL_INTERFACE_VERSION, "eSVR"},
    {PiPL_EFFECT_VERSION, "eVER"},
    {PiPL_INFO_FLAGS, "eINF"},
    {PiPL_OUT_FLAGS, "eGLO"},
    {PiPL_OUT_FLAGS2, "eGL2"},
    {PiPL_RESERVED, "aeFL"},
    {PiPL_KIND_EFFECT, "eFKT"},
};

TEST(HostInterfaceTest, PropertyCodesHaveTheirFirstCharacterInTheHighestByte) {
    for (const CodeCase& c : kCodeCases)
        EXPECT_EQ(c.code, CodeOf(c.characters)) << c.characters;
    EXPECT_EQ(PiPL_RESOURCE_ID, 16000);
    EXPECT_EQ(PiPL_LIST_VERSION, 0);
}

TEST(HostInterfaceTest, TablesHoldAsManyFunctionsAsTheHostHas) {
    constexpr std::size_t slot = sizeof(void*);
    EXPECT_EQ(offsetof(PF_ANSICallbacksBlock, unused_longA) / slot, 19u);
    EXPECT_EQ(sizeof(PF_ColorCallbacks) / slot, 8u);
    EXPECT_EQ(offsetof(PF_InteractCallbacks, reserved_str) / slot, 9u);
    const std::size_t before = offsetof(PF_UtilCallbacks, ansi) / slot;
    const std::size_t after =
        (offsetof(PF_UtilCallbacks, reserved) - offsetof(PF_UtilCallbacks, get_platform_data)) / slot;
    EXPECT_EQ(before, 26u);
    EXPECT_EQ(after, 14u);
    EXPECT_EQ(sizeof(SPBasicSuite) / slot, 7u);
}

TEST(HostInterfaceTest, PixelFormatsOfTheSuitesAreTheHostsCodes) {
    EXPECT_EQ(PF_PixelFormat_8BIT, 1650946657);
    EXPECT_EQ(PF_PixelFormat_16BIT, 909206881);
    EXPECT_EQ(PF_PixelFormat_FLOAT, 842229089);
}

TEST(HostInterfaceTest, InterfaceVersionIsThatOfTodaysHosts) {
    EXPECT_EQ(PF_INTERFACE_MAJOR, 13);
    EXPECT_EQ(PF_INTERFACE_MINOR, 29);
}

// A host in C++ around the effect in C: what it heard through the callbacks.
struct Heard {
    PF_ProgPtr effect = nullptr;
    PF_ParamIndex index = 0;
    PF_ParamDef def{};
    A_long current = 0;
    A_long total = 0;
};
Heard gHeard;

PF_Err AddParam(PF_ProgPtr effect, PF_ParamIndex index, PF_ParamDefPtr def) {
    gHeard.effect = effect;
    gHeard.index = index;
    gHeard.def = *def;
    return PF_Err_NONE;
}

PF_Err Progress(PF_ProgPtr effect, A_long current, A_long total) {
    gHeard.effect = effect;
    gHeard.current = current;
    gHeard.total = total;
    return PF_Interrupt_CANCEL;
}

class EffectInCTest : public testing::Test {
protected:
    void SetUp() override {
        gHeard = {};
        in.inter.add_param = AddParam;
        in.inter.progress = Progress;
        in.effect_ref = reinterpret_cast<PF_ProgPtr>(&in);
    }

    PF_EntryPoint entry = EffectInC;
    PF_InData in{};
    PF_OutData out{};
};

TEST_F(EffectInCTest, BothLanguagesGiveTheStructuresOneSize) {
    EXPECT_EQ(SizeOfInDataInC(), sizeof(PF_InData));
    EXPECT_EQ(SizeOfParamDefInC(), sizeof(PF_ParamDef));
}

TEST_F(EffectInCTest, VersionAndFlagsSetInCAreReadInCpp) {
    ASSERT_EQ(entry(PF_Cmd_GLOBAL_SETUP, &in, &out, nullptr, nullptr, nullptr), PF_Err_NONE);
    EXPECT_EQ(out.my_version, PF_VERSION(3, 2, 1, PF_Stage_BETA, 7));
    EXPECT_EQ(out.out_flags, 0x2000000);
    EXPECT_EQ(out.out_flags2, 0x8000000);
}

TEST_F(EffectInCTest, DefinitionMadeInCArrivesWholeInCpp) {
    ASSERT_EQ(entry(PF_Cmd_PARAMS_SETUP, &in, &out, nullptr, nullptr, nullptr), PF_Err_NONE);
    EXPECT_EQ(gHeard.effect, in.effect_ref);
    EXPECT_EQ(gHeard.index, -1);
    EXPECT_EQ(gHeard.def.uu.id, 17);
    EXPECT_EQ(gHeard.def.param_type, PF_Param_FLOAT_SLIDER);
    EXPECT_EQ(gHeard.def.u.fs_d.valid_max, 250.0F);
    EXPECT_EQ(gHeard.def.u.fs_d.exponent, 2.0F);
}

TEST_F(EffectInCTest, RenderPaintsTheHostsPixelAndPassesACancelUp) {
    PF_Pixel pixel{};
    PF_LayerDef world{};
    world.data = &pixel;
    in.current_time = 5;
    in.total_time = 100;
    EXPECT_EQ(entry(PF_Cmd_RENDER, &in, &out, nullptr, &world, nullptr), PF_Interrupt_CANCEL);
    EXPECT_EQ(pixel.blue, 200);
    EXPECT_EQ(gHeard.current, 5);
    EXPECT_EQ(gHeard.total, 100);
}

}  // namespace
