#include "SaveFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "Error.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

namespace fs = std::filesystem;

std::string textIn(const fs::path& file) {
    std::stringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

TEST(SaveFolderTest, APresetIsWrittenAndReplaced) {
    const TemporaryFolder folder;
    const SaveFolder saves(folder.path.string());
    saves.save("look 1.json", "{}\n");
    saves.save("look 1.json", "{\"a\": 1}\n");
    EXPECT_EQ(textIn(folder / "look 1.json"), "{\"a\": 1}\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), {}), 1);
}

TEST(SaveFolderTest, NamesThatLeadElsewhereAreRefused) {
    const TemporaryFolder parent;
    fs::create_directory(parent / "saves");
    const SaveFolder saves((parent / "saves").string());
    for (const char* const name :
         {"", ".json", "look", "look.txt", "../look.json", "a/look.json", "/tmp/look.json", "..\\look.json",
          "look\n.json", ".look.json", "look.json/", "%2e%2e%2flook.json"})
        EXPECT_THROW(saves.save(name, "{}"), UsageError) << name;
    EXPECT_THROW(saves.save(std::string("a\0b.json", 8), "{}"), UsageError);
    EXPECT_TRUE(fs::is_empty(parent / "saves"));
    EXPECT_FALSE(fs::exists(parent / "look.json"));
}

TEST(SaveFolderTest, LinksAndFoldersAreLeftAlone) {
    const TemporaryFolder parent;
    const fs::path folder = parent / "saves";
    fs::create_directory(folder);
    std::ofstream(parent / "secret.json") << "kept";
    fs::create_symlink(parent / "secret.json", folder / "link.json");
    fs::create_symlink(parent / "nothing.json", folder / "dangling.json");
    fs::create_directory(folder / "folder.json");
    const SaveFolder saves(folder.string());
    for (const char* const name : {"link.json", "dangling.json", "folder.json"})
        EXPECT_THROW(saves.save(name, "{}"), UsageError) << name;
    EXPECT_EQ(textIn(parent / "secret.json"), "kept");
    EXPECT_FALSE(fs::exists(parent / "nothing.json"));
}

TEST(SaveFolderTest, AFolderThatIsNotThereIsRefused) {
    const TemporaryFolder parent;
    EXPECT_THROW(SaveFolder((parent / "none").string()), Error);
}

}  // namespace
}  // namespace perch::test
