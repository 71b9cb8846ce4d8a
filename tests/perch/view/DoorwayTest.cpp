#include "Doorway.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "TemporaryFolder.h"

namespace perch::test {
namespace {

namespace fs = std::filesystem;

TEST(DoorwayTest, OnlyItsOwnerReadsTheAddress) {
    const TemporaryFolder folder;
    setenv("XDG_RUNTIME_DIR", folder.path.c_str(), 1);
    const std::string address = "http://127.0.0.1:8123/?token=0011";
    fs::path file;
    {
        const Doorway doorway(address);
        file = doorway.file();
        EXPECT_EQ(file.parent_path(), folder.path);
        EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        EXPECT_EQ(file.string().find("0011"), std::string::npos);
        std::stringstream text;
        text << std::ifstream(file).rdbuf();
        EXPECT_NE(text.str().find("content=\"0; url=" + address + "\""), std::string::npos) << text.str();
    }
    EXPECT_FALSE(fs::exists(file));
    unsetenv("XDG_RUNTIME_DIR");
}

}  // namespace
}  // namespace perch::test
