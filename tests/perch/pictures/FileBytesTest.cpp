#include "FileBytes.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "PictureError.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"

namespace pictures {
namespace {

using perch::test::bytesOf;
using perch::test::TemporaryFolder;

std::span<const unsigned char> asBytes(std::string_view text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

class FileBytesTest : public testing::Test {
protected:
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path))
            found.insert(entry.path().filename().string());
        return found;
    }

    TemporaryFolder folder;
};

TEST_F(FileBytesTest, WritingReplacesAnOlderFileAndLeavesNoOther) {
    replaceFile(folder / "a", asBytes("first, longer"));
    replaceFile(folder / "a", asBytes("second"));
    EXPECT_EQ(bytesOf(folder / "a"), "second");
    EXPECT_EQ(names(), std::set<std::string>{"a"});
}

TEST_F(FileBytesTest, BytesAreReadAsTheyWereWritten) {
    for (const std::string& bytes : {std::string(), std::string("\0a\xFF\n", 4), std::string(100'000, 'x')}) {
        replaceFile(folder / "a", asBytes(bytes));
        const FileBytes read = readFile(folder / "a");
        EXPECT_EQ(std::string(read.begin(), read.end()), bytes);
    }
}

TEST_F(FileBytesTest, FailuresLeaveNoFile) {
    std::filesystem::create_directory(folder / "taken");
    EXPECT_THROW(replaceFile(folder / "taken", asBytes("a folder has this name")), PictureError);
    EXPECT_THROW(replaceFile(folder / "none/a", asBytes("no such folder")), PictureError);
    EXPECT_EQ(names(), std::set<std::string>{"taken"});
}

}  // namespace
}  // namespace pictures
