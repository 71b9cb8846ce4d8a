#include "FileBytes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include "PictureError.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"

namespace pictures {
namespace {

using perch::test::TemporaryFolder;
using perch::test::writeBytes;

TEST(FileBytesTest, BytesAreReadAsTheyAreWritten) {
    const TemporaryFolder folder;
    for (const std::string& bytes : {std::string(), std::string("\0a\xFF\n", 4), std::string(100'000, 'x')}) {
        writeBytes(folder / "a", bytes);
        const FileBytes read = readFile(folder / "a");
        EXPECT_EQ(std::string(read.begin(), read.end()), bytes);
    }
}

TEST(FileBytesTest, WhatIsNoFileIsNamed) {
    const TemporaryFolder folder;
    const std::pair<std::filesystem::path, const char*> cases[] = {
        {folder / "none.png", "there is no such file; check the name"},
        {folder.path, "it is a folder; name a file"},
        {"/dev/null", "it is not a file; name a picture file"}};
    for (const auto& [path, reason] : cases) {
        try {
            readFile(path);
            ADD_FAILURE() << path << " was read";
        } catch (const PictureError& error) {
            EXPECT_EQ(error.what(), "cannot read \"" + path.string() + "\": " + reason);
        }
    }
}

}  // namespace
}  // namespace pictures
