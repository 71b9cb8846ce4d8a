#include "ResourceFile.h"

#include <gtest/gtest.h>

#include "ResourceBytes.h"

namespace perch {
namespace {

using namespace test;

constexpr std::uint32_t kText = PF_FOUR_CC('T', 'E', 'X', 'T');
constexpr std::uint32_t kIcon = PF_FOUR_CC('I', 'C', 'N', '#');

const std::string kFile =
    resourceFile({{kText, 128, "hello"}, {kIcon, -3, "icon"}, {PiPL_RESOURCE_TYPE, 16000, ""}});

// Offsets of fields in kFile.
constexpr std::size_t kMap = kDataOffset + (4 + 5) + (4 + 4) + 4;
constexpr std::size_t kTypeList = kMap + kTypeListOffset;
constexpr std::size_t kFirstType = kTypeList + 2;
constexpr std::size_t kFirstReference = kTypeList + 2 + 3 * 8;

std::string with(std::size_t offset, const std::string& bytes) {
    std::string file = kFile;
    file.replace(offset, bytes.size(), bytes);
    return file;
}

TEST(ResourceFileTest, ResourceIsFoundByTypeAndId) {
    EXPECT_EQ(textOf(findResource(spanOf(kFile), kText, 128).value()), "hello");
    EXPECT_EQ(textOf(findResource(spanOf(kFile), kIcon, -3).value()), "icon");
    EXPECT_EQ(textOf(findResource(spanOf(kFile), PiPL_RESOURCE_TYPE, 16000).value()), "");
}

TEST(ResourceFileTest, UnlistedResourceIsNotFound) {
    EXPECT_FALSE(findResource(spanOf(kFile), kText, 129));
    EXPECT_FALSE(findResource(spanOf(kFile), PF_FOUR_CC('M', 'E', 'N', 'U'), 128));
}

TEST(ResourceFileTest, FileCutAtAnyByteIsRefused) {
    for (std::size_t length = 0; length < kFile.size(); ++length) {
        const std::string cut = kFile.substr(0, length);
        EXPECT_THROW(findResource(spanOf(cut), kText, 128), Error) << "length " << length;
    }
}

TEST(ResourceFileTest, MapWithoutTypesHasNoResources) {
    const std::string file = with(kTypeList, bigEndian(0xFFFF, 2));
    EXPECT_FALSE(findResource(spanOf(file), kText, 128));
}

struct DamageCase {
    const char* name;
    std::size_t offset;
    std::string bytes;
    const char* sentence;
};

void PrintTo(const DamageCase& damage, std::ostream* out) {
    *out << damage.name;
}

class ResourceFileDamageTest : public testing::TestWithParam<DamageCase> {};

TEST_P(ResourceFileDamageTest, IsRefusedWithItsReason) {
    const DamageCase& damage = GetParam();
    const std::string file = with(damage.offset, damage.bytes);
    try {
        findResource(spanOf(file), kText, 128);
        FAIL() << "nothing was thrown";
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), damage.sentence);
    }
}

const char kBeyond[] = "its header names bytes beyond the end of the file";
const char kOverlap[] = "its data and its map overlap, or overlap the header";

INSTANTIATE_TEST_SUITE_P(
    Damage, ResourceFileDamageTest,
    testing::Values(DamageCase{"DataOffsetBeyondTheFile", 0, bigEndian(0xFFFFFFFF), kBeyond},
                    DamageCase{"MapOffsetBeyondTheFile", 4, bigEndian(0xFFFFFFFF), kBeyond},
                    DamageCase{"DataLengthThatWrapsAround", 8, bigEndian(0xFFFFFFFF), kBeyond},
                    DamageCase{"MapLengthThatWrapsAround", 12, bigEndian(0xFFFFFFF0), kBeyond},
                    DamageCase{"DataOverTheHeader", 0, bigEndian(0), kOverlap},
                    DamageCase{"MapOverTheHeader", 4, bigEndian(0), kOverlap},
                    DamageCase{"MapInTheData", 4, bigEndian(kDataOffset), kOverlap},
                    DamageCase{"MapOfNoBytes", 12, bigEndian(0), "its resource map is cut short"},
                    DamageCase{"TypeListOnTheMapHeader", kMap + 24, bigEndian(0, 2),
                               "its list of types extends past the end of the resource map"},
                    DamageCase{"TypeListBeyondTheMap", kMap + 24, bigEndian(0xFFFF, 2),
                               "its list of types extends past the end of the resource map"},
                    DamageCase{"MoreTypesThanTheMapHolds", kTypeList, bigEndian(0x1000, 2),
                               "its list of types extends past the end of the resource map"},
                    DamageCase{"MoreReferencesThanTheMapHolds", kFirstType + 4, bigEndian(0xFFFE, 2),
                               "its list of references extends past the end of the resource map"},
                    DamageCase{"ReferencesBeyondTheMap", kFirstType + 6, bigEndian(0xFFFF, 2),
                               "its list of references extends past the end of the resource map"},
                    DamageCase{"ReferencesOverTheLastType", kFirstType + 6, bigEndian(3 * 8, 2),
                               "its list of references extends past the end of the resource map"},
                    DamageCase{"ReferencesThatLoopBackToTheTypes", kFirstType + 6, bigEndian(0, 2),
                               "its list of references extends past the end of the resource map"},
                    DamageCase{"ResourceBeyondTheData", kFirstReference + 5, bigEndian(0xFFFFFF, 3),
                               "a resource extends past the end of the data area"},
                    DamageCase{"ResourceLongerThanTheData", kDataOffset, bigEndian(0xFFFFFFFF),
                               "a resource extends past the end of the data area"}),
    [](const auto& damage) { return std::string(damage.param.name); });

}  // namespace
}  // namespace perch
