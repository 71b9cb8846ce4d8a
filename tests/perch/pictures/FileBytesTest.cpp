#include "FileBytes.h"

#include <gtest/gtest.h>

#include <string>

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

}  // namespace
}  // namespace pictures
