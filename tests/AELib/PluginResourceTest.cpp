// The running program's own resource file, which lies beside it.

#include "PluginResource.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "HandleMemory.h"
#include "ResourceWriter.h"

namespace {

using AELib::Get1Resource;

namespace fs = std::filesystem;

constexpr std::uint32_t kType = 0x54657374;

class PluginResourceTest : public testing::Test {
protected:
    PluginResourceTest() { fs::remove(path); }
    ~PluginResourceTest() override { fs::remove(path); }
    void write(const std::string& bytes) const { std::ofstream(path, std::ios::binary) << bytes; }

    const fs::path path = fs::read_symlink("/proc/self/exe").replace_extension(".rsrc");
};

TEST_F(PluginResourceTest, IsLoadedOnceFromTheFileBesideTheProgram) {
    const std::uint16_t id = 1;
    EXPECT_EQ(nullptr, Get1Resource(kType, id)) << "no file";
    const std::string file = resource::File({{kType, id, "content"}, {kType + 1, id, "other"}});
    write(file.substr(0, file.size() - 1));
    EXPECT_EQ(nullptr, Get1Resource(kType, id)) << "a truncated file";
    write("");
    EXPECT_EQ(nullptr, Get1Resource(kType, id)) << "an empty file";

    write(file);
    char** const handle = Get1Resource(kType, id);
    ASSERT_NE(nullptr, handle);
    EXPECT_EQ(0, AELib::MemError());
    EXPECT_TRUE(AELib::IsPlatformHandle(handle));
    ASSERT_EQ(7U, AELib::GetHandleSize(handle));
    EXPECT_EQ(0, std::memcmp("content", *handle, 7));
    EXPECT_EQ(nullptr, Get1Resource(kType, 9)) << "another identifier";

    fs::remove(path);
    EXPECT_EQ(handle, Get1Resource(kType, id)) << "kept";
}

TEST_F(PluginResourceTest, EmptyResourceIsAHandleOfNoBytes) {
    write(resource::File({{kType, 2, ""}}));
    char** const handle = Get1Resource(kType, 2);
    ASSERT_NE(nullptr, handle);
    EXPECT_EQ(0U, AELib::GetHandleSize(handle));
}

TEST_F(PluginResourceTest, OversizedFileIsNotRead) {
    write(resource::File({{kType, 3, "content"}}));
    fs::resize_file(path, (16U << 20U) + 1);
    EXPECT_EQ(nullptr, Get1Resource(kType, 3));
    fs::resize_file(path, 16U << 20U);
    EXPECT_NE(nullptr, Get1Resource(kType, 3)) << "the largest";
}

TEST_F(PluginResourceTest, FolderInPlaceOfTheFileIsNotRead) {
    fs::create_directory(path);
    EXPECT_EQ(nullptr, Get1Resource(kType, 4));
}

}  // namespace
