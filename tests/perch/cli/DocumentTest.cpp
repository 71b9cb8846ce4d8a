// The commands that the documents show, pasted into a shell in a folder that has nothing but the samples that
// they name.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "Program.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

namespace fs = std::filesystem;

constexpr char kIndent[] = "    ";

// Of a build, as the first commands of a newcomer name it.
constexpr char kBuiltProgram[] = "build/release/bin/perch";

bool isProgram(const std::string& word) {
    return word == "perch" || word == kBuiltProgram || word == "oiiotool";
}

std::vector<std::string> wordsIn(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// The indented lines that call the program, or what prepares its pictures, with those that go on behind a
// backslash.
std::vector<std::string> commandsShownIn(const fs::path& document) {
    std::vector<std::string> commands;
    std::ifstream stream(document);
    for (std::string line; std::getline(stream, line);) {
        const std::vector<std::string> words = wordsIn(line);
        if (!line.starts_with(kIndent) || std::ranges::none_of(words, isProgram)) continue;
        // A debugger waits for its user, and so does a page; the other is the last line of a script for
        // another machine.
        if (words.front() == "gdb" || words.front() == "exec" || line.find("perch view") != std::string::npos)
            continue;
        EXPECT_TRUE(isProgram(words.front())) << document << " shows what is not run: " << line;
        for (std::string next; line.ends_with('\\') && std::getline(stream, next);)
            line += '\n' + next;
        commands.push_back(line);
    }
    return commands;
}

std::vector<fs::path> documents() {
    const fs::path sources = PERCH_SOURCES;
    std::vector<fs::path> found{sources / "README.md"};
    for (const fs::directory_entry& entry : fs::directory_iterator(sources / "docs"))
        if (entry.path().extension() == ".md") found.push_back(entry.path());
    std::ranges::sort(found);
    return found;
}

std::vector<std::uint8_t> samplesOf(const fs::path& path) {
    const auto file = OIIO::ImageInput::open(path);
    if (!file) throw std::runtime_error("cannot open " + path.string());
    const OIIO::ImageSpec& layout = file->spec();
    std::vector<std::uint8_t> samples(layout.image_pixels() * static_cast<std::size_t>(layout.nchannels));
    file->read_image(0, 0, 0, layout.nchannels, OIIO::TypeUInt8, samples.data());
    return samples;
}

class DocumentTest : public testing::Test {
protected:
    // With the program where a build has it, and the samples.
    fs::path newFolder(const std::string& name) const {
        const fs::path folder = parent / name;
        fs::create_directories(folder / fs::path(kBuiltProgram).parent_path().parent_path());
        fs::create_directory_symlink(program.parent_path(), folder / fs::path(kBuiltProgram).parent_path());
        fs::create_directory_symlink(fs::path(PERCH_SOURCES) / "samples", folder / "samples");
        return folder;
    }

    ProgramResult run(const std::string& command, const fs::path& folder) const {
        const std::string path = "PATH=" + program.parent_path().string() + ":" +
                                 std::getenv("PATH");  // NOLINT(concurrency-mt-unsafe)
        return runProgram({"/usr/bin/env", path, "/bin/sh", "-c", command}, folder);
    }

    const TemporaryFolder parent;
    const fs::path program = PERCH_PROGRAM;
};

// What a document's commands make, which need nothing that another's have made.
const std::map<std::string, std::vector<std::string>>& filesOfDocuments() {
    static const std::map<std::string, std::vector<std::string>> files{
        {"README.md", {"out.png", "pull.0001.png", "pull.0024.png", "pull.svg", "pull.png"}},
        {"farm.md", {"out/farm.0001.png", "out/farm.0004.png"}},
        {"guide.md",
         {"out/grown-matte.png", "out/metres.png", "out/near-black.png", "out/lens.png", "out/auto.png"}},
        {"perch.md",
         {"out/still.png", "out/shot.0001.png", "out/shot.0024.png", "out/half.0001.tif", "out/half.0023.tif",
          "out/sheet.png", "out/pulls.png", "out/strip.png"}}};
    return files;
}

TEST_F(DocumentTest, CommandsDoWhatTheyShow) {
    for (const fs::path& document : documents()) {
        const std::vector<std::string> commands = commandsShownIn(document);
        const std::string name = document.filename().string();
        const fs::path folder = newFolder(name);
        const auto files = filesOfDocuments().find(name);
        if (files != filesOfDocuments().end()) {
            EXPECT_GE(commands.size(), 3U) << name;
        }
        for (const std::string& command : commands) {
            const ProgramResult result = run(command, folder);
            EXPECT_EQ(result.status, 0) << name << ": " << command << '\n' << result.err;
        }
        if (files == filesOfDocuments().end()) continue;
        for (const std::string& file : files->second)
            EXPECT_TRUE(fs::exists(folder / file)) << name << ": " << file;
        EXPECT_FALSE(fs::exists(folder / "out" / "half.0002.tif"));
    }
}

TEST_F(DocumentTest, DemoMakesOfDepthsWhatItWouldOfTheMatte) {
    const std::vector<std::string> commands = commandsShownIn(fs::path(PERCH_SOURCES) / "scripts/demo.sh");
    ASSERT_EQ(commands.size(), 1U);
    const std::string& fromDepths = commands.front();
    const std::string depths = "depth.exr --control-range 1.5:16";
    ASSERT_NE(fromDepths.find(depths), std::string::npos) << fromDepths;
    std::string fromMatte = fromDepths;
    fromMatte.replace(fromMatte.find(depths), depths.size(), "depth.png");
    const fs::path folder = newFolder("demo");
    const std::string setUp = "view=Normal; folder=";
    for (const std::string& command : {setUp + "depths; " + fromDepths, setUp + "matte; " + fromMatte}) {
        const ProgramResult result = run(command, folder);
        ASSERT_EQ(result.status, 0) << command << '\n' << result.err;
    }
    const std::vector<std::uint8_t> depthSamples = samplesOf(folder / "depths/still-Normal.png");
    const std::vector<std::uint8_t> matteSamples = samplesOf(folder / "matte/still-Normal.png");
    ASSERT_EQ(depthSamples.size(), matteSamples.size());
    int most = 0;
    for (std::size_t i = 0; i < depthSamples.size(); ++i)
        most = std::max(most, std::abs(depthSamples[i] - matteSamples[i]));
    EXPECT_LE(most, 1);
    std::printf("at most %d codes of 8 bits apart\n", most);
}

}  // namespace
}  // namespace perch::test
