// Resource files, well-formed and not.

#include "ResourceFile.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>

#include "ResourceWriter.h"

namespace {

using AELib::FindResource;
using resource::BigEndian;

constexpr std::uint32_t kType = 0x5069504C;  // 'PiPL'
constexpr std::uint32_t kOther = 0x6F746872;
constexpr int kId = 16000;

std::optional<std::string> Find(const std::string& file, std::uint32_t type = kType, int id = kId) {
    // A copy of the exact size, so that a read past the end shows.
    const std::vector<char> bytes(file.begin(), file.end());
    const auto found = FindResource(bytes, type, id);
    if (!found) return std::nullopt;
    return std::string(found->begin(), found->end());
}

void Overwrite(std::string& file, std::size_t offset, const std::string& bytes) {
    file.replace(offset, bytes.size(), bytes);
}

std::size_t MapOffset(const std::string& data) {
    return resource::kDataOffset + 4 + data.size();
}

TEST(ResourceFileTest, ResourcesAreFoundByTypeAndId) {
    const std::string file =
        resource::File({{kOther, 16000, "first"}, {kType, 16000, "second"}, {kType + 1, 3, ""}});
    EXPECT_EQ("first", Find(file, kOther));
    EXPECT_EQ("second", Find(file));
    EXPECT_EQ("", Find(file, kType + 1, 3));
    EXPECT_EQ(std::nullopt, Find(file, kType, 3));
    EXPECT_EQ(std::nullopt, Find(file, kType + 2));
}

TEST(ResourceFileTest, IdsAreSigned) {
    const std::string file = resource::File({{kType, 0xFFFE, "minus two"}});
    EXPECT_EQ("minus two", Find(file, kType, -2));
    EXPECT_EQ(std::nullopt, Find(file, kType, 65534));
}

TEST(ResourceFileTest, FileCutAnywhereHoldsNothing) {
    const std::string file = resource::File({{kOther, 1, "first"}, {kType, 16000, "second"}});
    for (std::size_t size = 0; size < file.size(); ++size)
        EXPECT_EQ(std::nullopt, Find(file.substr(0, size))) << size;
}

TEST(ResourceFileTest, NumbersBeyondTheFileAreRefused) {
    const std::string data = "data";
    const std::string file = resource::File({{kType, 16000, data}});
    const std::size_t map = MapOffset(data);
    struct Field {
        const char* what;
        std::size_t offset;
        int size;
    };
    const Field fields[] = {{"data offset", 0, 4},
                            {"map offset", 4, 4},
                            {"data length", 8, 4},
                            {"map length", 12, 4},
                            {"resource length", 16, 4},
                            {"type list offset", map + 24, 2},
                            {"reference list offset", map + 28 + 2 + 6, 2},
                            {"resource offset", map + 28 + 10 + 5, 3}};
    for (const Field& field : fields) {
        for (const std::uint32_t value : {0xFFFFFFFFU, 0x7FFFFFFFU, 0x80000000U, 0x00FFFFFFU, 0x0000FFFFU}) {
            const std::uint32_t cut = field.size == 4 ? value : value & ((1U << 8 * field.size) - 1);
            if (cut == 0) continue;
            std::string bad = file;
            Overwrite(bad, field.offset, BigEndian(cut, field.size));
            EXPECT_EQ(std::nullopt, Find(bad)) << field.what << " " << cut;
        }
    }
}

TEST(ResourceFileTest, CountsBeyondTheMapAreRefused) {
    const std::string data = "data";
    std::string file = resource::File({{kOther, 1, data}});
    const std::size_t types = MapOffset(data) + 28;
    Overwrite(file, types, BigEndian(0xFFFE, 2));
    EXPECT_EQ(std::nullopt, Find(file));
    file = resource::File({{kType, 1, data}});
    Overwrite(file, types + 6, BigEndian(0xFFFE, 2));
    EXPECT_EQ(std::nullopt, Find(file));
}

TEST(ResourceFileTest, CountOfNoneHoldsNothing) {
    const std::string data = "data";
    std::string file = resource::File({{kType, 16000, data}});
    Overwrite(file, MapOffset(data) + 28, BigEndian(0xFFFF, 2));
    EXPECT_EQ(std::nullopt, Find(file));
}

TEST(ResourceFileTest, ListsThatPointAtThemselvesEnd) {
    const std::string data = "data";
    std::string file = resource::File({{kOther, 16000, data}});
    const std::size_t map = MapOffset(data);
    Overwrite(file, map + 28, BigEndian(0xFFFE, 2));  // the largest number of types
    Overwrite(file, map + 24, BigEndian(0, 2));       // the list of types is the map itself
    EXPECT_EQ(std::nullopt, Find(file));
    file = resource::File({{kType, 1, data}});
    Overwrite(file, map + 28 + 6, BigEndian(0xFFFE, 2));  // the largest number of references
    Overwrite(file, map + 28 + 8, BigEndian(0, 2));       // the list of references is that of the types
    EXPECT_EQ(std::nullopt, Find(file));
    file = resource::File({{kType, 16000, data}});
    Overwrite(file, 4, BigEndian(0));  // the map is the header
    EXPECT_EQ(std::nullopt, Find(file));
}

TEST(ResourceFileTest, RandomDamageIsSurvived) {
    const std::string file = resource::File({{kOther, 1, "first"}, {kType, 16000, "second"}});
    std::mt19937 random(7);
    int found = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string bad = file;
        for (int change = 0; change < 4; ++change)
            bad[random() % bad.size()] = static_cast<char>(random());
        found += Find(bad).has_value() ? 1 : 0;
    }
    EXPECT_GT(found, 0);
    EXPECT_LT(found, 20000);
}

}  // namespace
