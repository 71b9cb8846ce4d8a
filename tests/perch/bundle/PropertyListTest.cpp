#include "PropertyList.h"

#include <gtest/gtest.h>

#include "ResourceBytes.h"

namespace perch {
namespace {

using namespace test;

const Property kKind{PiPL_KIND, bigEndian(PiPL_KIND_EFFECT)};

const std::vector<Property> kProperties{
    kKind,
    {PiPL_NAME, pascal("Sparkle")},
    {PiPL_CATEGORY, pascal("Light")},
    {PiPL_MATCH_NAME, pascal("Maker Sparkle")},
    {PiPL_ENTRY_MAC_INTEL, pascal("IntelMain")},
    {PiPL_ENTRY_MAC_ARM, pascal("ArmMain")},
    {PiPL_ENTRY_WINDOWS, std::string("WindowsMain\0", 12)},
    {PiPL_EFFECT_VERSION, bigEndian(PF_VERSION(1, 2, 3, PF_Stage_RELEASE, 4))},
    {PiPL_INFO_FLAGS, bigEndian(0, 2)},
    {PiPL_OUT_FLAGS, bigEndian(0x82000010)},
    {PiPL_OUT_FLAGS2, bigEndian(0x8)},
};

PropertyList read(const std::vector<Property>& properties) {
    return readPropertyList(spanOf(propertyList(properties)));
}

std::string failure(const std::string& bytes) {
    try {
        readPropertyList(spanOf(bytes));
    } catch (const Error& error) {
        return error.what();
    }
    return "nothing was thrown";
}

TEST(PiplTest, EveryPropertyIsRead) {
    const PropertyList list = read(kProperties);
    EXPECT_EQ(list.name, "Sparkle");
    EXPECT_EQ(list.category, "Light");
    EXPECT_EQ(list.matchName, "Maker Sparkle");
    EXPECT_EQ(list.version, PF_VERSION(1, 2, 3, PF_Stage_RELEASE, 4));
    EXPECT_EQ(list.flags, static_cast<PF_OutFlags>(0x82000010));
    EXPECT_EQ(list.flags2, 0x8);
#if defined(__aarch64__)
    EXPECT_EQ(list.entryPoint, "ArmMain");
#else
    EXPECT_EQ(list.entryPoint, "IntelMain");
#endif
}

TEST(PiplTest, WindowsHasTheNumbersOfTheListTurnedRound) {
    const std::string list(
        "\1\0"              // before every list
        "\0\0\0\0\3\0\0\0"  // version, count
        "MIB8dnik\0\0\0\0\4\0\0\0TKFe"
        "MIB8eman\0\0\0\0\x8\0\0\0\7Sparkle"
        "MIB8OLGe\0\0\0\0\4\0\0\0\x10\0\0\x82",
        10 + 20 + 24 + 20);
    const PropertyList read = readPropertyList(spanOf(list), ListForm::kWindows);
    EXPECT_EQ(read.name, "Sparkle");
    EXPECT_EQ(read.flags, static_cast<PF_OutFlags>(0x82000010));
    EXPECT_THROW(readPropertyList(spanOf(list.substr(2)), ListForm::kWindows), Error) << "without 01 00";
    EXPECT_THROW(readPropertyList(spanOf(list), ListForm::kMac), Error) << "for the other systems";
}

TEST(PiplTest, AbsentPropertiesAreEmpty) {
    const PropertyList list = read({kKind});
    EXPECT_EQ(list.name, "");
    EXPECT_EQ(list.entryPoint, "");
    EXPECT_EQ(list.version, 0U);
}

TEST(PiplTest, EntryPointIsTakenFromWindowsWhenThereIsNoOther) {
    EXPECT_EQ(read({kKind, {PiPL_ENTRY_WINDOWS, std::string("Main\0pad", 8)}}).entryPoint, "Main");
}

TEST(PiplTest, FirstOfTwoPropertiesOfOneKeyCounts) {
    EXPECT_EQ(read({kKind, {PiPL_NAME, pascal("One")}, {PiPL_NAME, pascal("Two")}}).name, "One");
}

TEST(PiplTest, PropertiesOfOtherVendorsArePassedOver) {
    EXPECT_EQ(read({kKind, {PiPL_NAME, pascal("Other"), PF_FOUR_CC('X', 'X', 'X', 'X')}}).name, "");
}

TEST(PiplTest, ListCutAtAnyByteIsRefused) {
    const std::string whole = propertyList(kProperties);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_NE(failure(whole.substr(0, length)), "nothing was thrown") << "length " << length;
    }
}

TEST(PiplTest, DamageIsRefusedWithItsReason) {
    struct Case {
        const char* name;
        std::string bytes;
        const char* sentence;
    };
    const std::string kind = propertyList({kKind});
    const Case cases[] = {
        {"unknown version", bigEndian(1) + kind.substr(4), "its property list is of an unknown version"},
        {"count beyond the list", bigEndian(0) + bigEndian(0xFFFFFFFF) + kind.substr(8),
         "a property extends past the end of its property list"},
        {"length beyond the list", kind.substr(0, 20) + bigEndian(0xFFFFFFFF) + kind.substr(24),
         "a property extends past the end of its property list"},
        {"no kind", propertyList({}), "its property list is not that of an effect"},
        {"another kind", propertyList({{PiPL_KIND, "eFMT"}}), "its property list is not that of an effect"},
        {"string longer than its property",
         propertyList({kKind,
                       {PiPL_NAME,
                        "\x05"
                        "abc"}}),
         "a string extends past the end of its property"},
        {"string without a length", propertyList({kKind, {PiPL_NAME, ""}}),
         "a string extends past the end of its property"},
        {"string without an end", propertyList({kKind, {PiPL_ENTRY_WINDOWS, "Main"}}),
         "a string extends past the end of its property"},
        {"number cut short", propertyList({kKind, {PiPL_OUT_FLAGS, bigEndian(0, 2)}}),
         "a number in its property list is cut short"},
    };
    for (const Case& damage : cases)
        EXPECT_EQ(failure(damage.bytes), damage.sentence) << damage.name;
}

}  // namespace
}  // namespace perch
