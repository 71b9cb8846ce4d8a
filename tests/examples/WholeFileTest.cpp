#include "WholeFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "TestFiles.h"

namespace {

std::span<const unsigned char> AsBytes(const std::string& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

TEST(WholeFileTest, EveryBeginningOfAPngIsFoundCutShort) {
    const ScratchFolder folder;
    WriteRaw(folder.file("noise.png"), Noise<std::uint8_t>(9, 7, 4, 1));
    const std::string whole = ReadWhole(folder.file("noise.png"));
    EXPECT_FALSE(IsCutShort(whole));
    for (std::size_t size = 4; size < whole.size(); ++size) {
        EXPECT_TRUE(IsCutShort(whole.substr(0, size))) << size << " of " << whole.size() << " bytes";
    }
}

TEST(WholeFileTest, EveryBeginningOfAJpegIsFoundCutShort) {
    const ScratchFolder folder;
    WriteRaw(folder.file("noise.jpg"), Noise<std::uint8_t>(9, 7, 3, 1));
    const std::string whole = ReadWhole(folder.file("noise.jpg"));
    EXPECT_FALSE(IsCutShort(whole));
    EXPECT_FALSE(IsCutShort(whole + "bytes after the end"));
    for (std::size_t size = 2; size < whole.size(); ++size) {
        EXPECT_TRUE(IsCutShort(whole.substr(0, size))) << size << " of " << whole.size() << " bytes";
    }
}

TEST(WholeFileTest, TheEndOfAThumbnailIsNotTheEndOfItsJpeg) {
    const ScratchFolder folder;
    WriteRaw(folder.file("noise.jpg"), Noise<std::uint8_t>(9, 7, 3, 1));
    const std::string thumbnail("\xFF\xE1\x00\x06\xFF\xD8\xFF\xD9", 8);
    const std::string fillByte = "\xFF";
    const std::string bytes = ReadWhole(folder.file("noise.jpg")).insert(2, thumbnail + fillByte);
    EXPECT_FALSE(IsCutShort(bytes));
    EXPECT_TRUE(IsCutShort(bytes.substr(0, bytes.size() - 2)));
}

TEST(WholeFileTest, OtherBytesAreNotJudged) {
    for (const std::string bytes : {"", "II*", "GIF89a", "\x89"})
        EXPECT_FALSE(IsCutShort(bytes)) << bytes;
}

TEST(WholeFileTest, WritingReplacesAnOlderFileAndLeavesNoOther) {
    const ScratchFolder folder;
    WriteWhole(folder.file("a"), AsBytes("first, longer"));
    WriteWhole(folder.file("a"), AsBytes("second"));
    EXPECT_EQ(ReadWhole(folder.file("a")), "second");
    EXPECT_EQ(folder.names(), std::set<std::string>{"a"});
}

TEST(WholeFileTest, FailuresLeaveNoFile) {
    const ScratchFolder folder;
    std::filesystem::create_directory(folder.file("taken"));
    EXPECT_THROW(WriteWhole(folder.file("taken"), AsBytes("a folder has this name")), std::runtime_error);
    EXPECT_THROW(WriteWhole(folder.file("none/a"), AsBytes("no such folder")), std::runtime_error);
    EXPECT_EQ(folder.names(), std::set<std::string>{"taken"});
}

}  // namespace
