#include "SaveFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include "Error.h"
#include "FileSizeLimit.h"
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

TEST(SaveFolderTest, SavesOfOneNameAtOnceLeaveOneOfThem) {
    const TemporaryFolder folder;
    const SaveFolder saves(folder.path.string());
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'})
        threads.emplace_back([&saves, letter] {
            for (int i = 0; i < 50; ++i)
                EXPECT_NO_THROW(saves.save("look.json", std::string(10'000, letter)));
        });
    for (std::thread& thread : threads)
        thread.join();
    const std::string text = textIn(folder / "look.json");
    EXPECT_EQ(text, std::string(10'000, text.front()));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), {}), 1);
}

TEST(SaveFolderTest, WhatDoesNotFitIsToldAndLeavesNothing) {
    const TemporaryFolder folder;
    const SaveFolder saves(folder.path.string());
    saves.save("look.json", "{}\n");
    std::string sentence;
    {
        const FileSizeLimit limit(10);
        try {
            saves.save("look.json", "longer than ten bytes");
        } catch (const Error& error) {
            sentence = error.what();
        }
    }
    EXPECT_EQ(sentence, "cannot write \"look.json\": File too large");
    EXPECT_EQ(textIn(folder / "look.json"), "{}\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), {}), 1);
}

TEST(SaveFolderTest, AFolderThatIsNotThereIsRefused) {
    const TemporaryFolder parent;
    EXPECT_THROW(SaveFolder((parent / "none").string()), Error);
}

}  // namespace
}  // namespace perch::test
