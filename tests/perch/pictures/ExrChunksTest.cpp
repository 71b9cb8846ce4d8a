#include "ExrChunks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "FileBytes.h"
#include "TemporaryFolder.h"
#include "ToolRun.h"

namespace pictures {
namespace {

using perch::test::runTool;
using perch::test::TemporaryFolder;

constexpr std::size_t kPlaceSize = 8;

// Of 64 x 48 pixels, without compression: a chunk for each row, or for each tile.
constexpr char kMakeAll[] =
    "oiiotool --pattern noise 64x48 3 -d half --compression none -o rows.exr --compression zip -o zip.exr "
    "--compression dwab -o dwab.exr --tile 16 16 --compression none -o tiles.exr && "
    "oiiotool rows.exr rows.exr --siappend --compression none -o parts.exr && "
    "oiiotool tiles.exr -otex copies.exr && "
    "oiiotool rows.exr --fullsize 100x100-3-3 --origin -7+5 -o windows.exr";

std::uint64_t numberAt(const FileBytes& bytes, std::size_t place) {
    std::uint64_t number = 0;
    for (std::size_t i = kPlaceSize; i-- > 0;)
        number = number << 8 | bytes[place + i];
    return number;
}

void setNumber(FileBytes& bytes, std::size_t place, std::uint64_t number) {
    for (std::size_t i = 0; i < kPlaceSize; ++i)
        bytes[place + i] = static_cast<unsigned char>(number >> (8 * i));
}

// Where the table of places begins: the first place is that of the byte behind it.
std::size_t tableIn(const FileBytes& bytes, std::size_t chunks) {
    for (std::size_t place = 0; place + chunks * kPlaceSize < bytes.size(); ++place)
        if (numberAt(bytes, place) == place + chunks * kPlaceSize) return place;
    return 0;
}

TEST(ExrChunksTest, WholeFilesLackNone) {
    const TemporaryFolder folder;
    runTool(folder.path, kMakeAll);
    for (const char* const name :
         {"rows.exr", "zip.exr", "dwab.exr", "tiles.exr", "parts.exr", "copies.exr", "windows.exr"}) {
        const FileBytes bytes = readFile(folder / name);
        EXPECT_FALSE(lacksTables(bytes)) << name;
        EXPECT_FALSE(lacksChunks(bytes, 0)) << name;
        EXPECT_FALSE(lacksChunks(bytes, 1)) << name;
    }
}

TEST(ExrChunksTest, PlacesMustLieInTheFileApartFromEachOther) {
    const TemporaryFolder folder;
    runTool(folder.path, kMakeAll);
    constexpr std::size_t kRows = 48;
    const FileBytes whole = readFile(folder / "rows.exr");
    const std::size_t table = tableIn(whole, kRows);
    ASSERT_NE(table, 0U);
    const std::size_t third = table + 2 * kPlaceSize;
    const struct {
        const char* name;
        std::uint64_t place;
    } cases[] = {
        {"none", 0},
        {"that of another chunk", numberAt(whole, table)},
        {"within another chunk", numberAt(whole, table) + 9},
        {"within the table", table},
        {"the last bytes", whole.size() - 4},
        {"beyond the end", whole.size()},
        {"far beyond the end", std::uint64_t{1} << 63},
    };
    for (const auto& [name, place] : cases) {
        FileBytes bytes = whole;
        setNumber(bytes, third, place);
        EXPECT_TRUE(lacksChunks(bytes, 0)) << name;
    }
    FileBytes inAnotherOrder = whole;
    setNumber(inAnotherOrder, third, numberAt(whole, table));
    setNumber(inAnotherOrder, table, numberAt(whole, third));
    EXPECT_FALSE(lacksChunks(inAnotherOrder, 0)) << "written from the last row to the first";
}

TEST(ExrChunksTest, EveryCutBehindTheTableIsFound) {
    const TemporaryFolder folder;
    runTool(folder.path, kMakeAll);
    for (const auto& [name, chunks] : {std::pair("rows.exr", 48U), {"tiles.exr", 12U}, {"zip.exr", 3U}}) {
        const FileBytes whole = readFile(folder / name);
        const std::size_t table = tableIn(whole, chunks);
        ASSERT_NE(table, 0U) << name;
        for (std::size_t end = table; end < whole.size(); end += 7)
            EXPECT_TRUE(lacksChunks(std::span(whole).first(end), 0)) << name << " to " << end;
        EXPECT_TRUE(lacksTables(std::span(whole).first(table + (chunks - 1) * kPlaceSize))) << name;
    }
}

// A file of a few megabytes can have so many.
TEST(ExrChunksTest, HeadersOfManyPartsTakeNoMoreThanTheyAre) {
    constexpr char kMagicAndParts[] = {0x76, 0x2F, 0x31, 0x01, 2, 0x10, 0, 0};
    constexpr char kHeader[] = {'n', 0, 't', 0, 0, 0, 0, 0, 0};  // of one attribute
    FileBytes bytes(std::begin(kMagicAndParts), std::end(kMagicAndParts));
    for (int part = 0; part < 500'000; ++part)
        bytes.insert(bytes.end(), std::begin(kHeader), std::end(kHeader));
    EXPECT_FALSE(lacksTables(bytes));
}

// Whatever is read of them: no error is one of memory.
TEST(ExrChunksTest, HeadersThatAreCutAreLeftToReaders) {
    const TemporaryFolder folder;
    runTool(folder.path, kMakeAll);
    for (const char* const name : {"rows.exr", "parts.exr"}) {
        const FileBytes whole = readFile(folder / name);
        for (std::size_t end = 0; end < 400; ++end) {
            const FileBytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(end));
            lacksChunks(cut, 0);
            lacksChunks(cut, 1);
            lacksTables(cut);
        }
    }
}

}  // namespace
}  // namespace pictures
