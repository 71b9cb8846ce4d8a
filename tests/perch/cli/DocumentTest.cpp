// The commands that the documentation shows, run on the footage that it names.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "CommandCase.h"
#include "Program.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

namespace fs = std::filesystem;

// The indented lines that call the program.
std::vector<std::string> commandsShownIn(const fs::path& document) {
    constexpr char kIndent[] = "    ";
    std::vector<std::string> commands;
    std::ifstream stream(document);
    for (std::string line; std::getline(stream, line);)
        if (line.starts_with(std::string(kIndent) + "perch ")) commands.push_back(line.substr(4));
    return commands;
}

TEST(DocumentTest, CommandsDoWhatTheyShow) {
    const TemporaryFolder parent;
    const fs::path folder = parent / "work";
    fs::create_directories(folder / "out");
    fs::create_directory_symlink(fs::path(PERCH_SOURCES) / "samples", folder / "samples");
    std::vector<std::string> commands;
    for (const char* const document : {"perch.md", "guide.md", "farm.md"}) {
        const std::vector<std::string> shown = commandsShownIn(fs::path(PERCH_SOURCES) / "docs" / document);
        EXPECT_GE(shown.size(), 4U) << document;
        commands.insert(commands.end(), shown.begin(), shown.end());
    }
    for (const std::string& command : commands) {
        std::vector<std::string> words = wordsOf(command);
        words.front() = PERCH_PROGRAM;
        const ProgramResult result = runProgram(words, folder);
        EXPECT_EQ(result.status, 0) << command << '\n' << result.err;
    }
    for (const char* const name :
         {"still.png", "shot.0001.png", "shot.0024.png", "half.0001.tif", "half.0023.tif", "farm.0001.png",
          "farm.0004.png", "metres.png", "near-black.png", "lens.png", "auto.png"})
        EXPECT_TRUE(fs::exists(folder / "out" / name)) << name;
    EXPECT_FALSE(fs::exists(folder / "out" / "half.0002.tif"));
}

}  // namespace
}  // namespace perch::test
