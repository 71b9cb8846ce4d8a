// The program that writes the bundle's files: what it writes, and how it refuses.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

struct Outcome {
    int exitCode;
    std::string text;  // of both outputs
};

Outcome MakeResources(const std::string& arguments) {
    std::string command = "'" MAKE_RESOURCES "' ";
    command.append(arguments).append(" 2>&1");
    std::FILE* const pipe = popen(command.c_str(), "r");  // NOLINT(cert-env33-c): a path of the build
    std::array<char, 512> line{};
    std::string text;
    while (std::fgets(line.data(), line.size(), pipe) != nullptr)
        text += line.data();
    return {WEXITSTATUS(pclose(pipe)), text};
}

std::string Contents(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string Refusal(const fs::path& path) {
    std::string text = "make-resources: cannot write ";
    return text.append(path.string()).append("\n");
}

class MakeResourcesTest : public testing::Test {
protected:
    MakeResourcesTest() { fs::remove_all(folder); }
    ~MakeResourcesTest() override { fs::remove_all(folder); }
    Outcome run() const { return MakeResources("bundle " + contents.string() + " Kestrel"); }

    const fs::path folder =
        fs::path(testing::TempDir()) / testing::UnitTest::GetInstance()->current_test_info()->name();
    const fs::path contents = folder / "Contents";
};

TEST_F(MakeResourcesTest, WritesTheFilesOfTheBundle) {
    const Outcome made = run();
    EXPECT_EQ(0, made.exitCode);
    EXPECT_EQ("", made.text);
    for (const char* file : {"Info.plist", "PkgInfo", "Resources/Kestrel.rsrc"}) {
        EXPECT_NE("", Contents(contents / file)) << file;
        EXPECT_EQ(Contents(fs::path(PLUGIN_CONTENTS) / file), Contents(contents / file)) << file;
    }
}

TEST_F(MakeResourcesTest, AFileThatCannotBeWrittenIsNamed) {
    for (const char* file : {"Info.plist", "PkgInfo", "Resources/Kestrel.rsrc"}) {
        fs::remove_all(contents);
        fs::create_directories(contents / file);  // a folder in the file's place
        const Outcome refused = run();
        EXPECT_EQ(1, refused.exitCode) << file;
        EXPECT_EQ(Refusal(contents / file), refused.text);
    }
}

TEST_F(MakeResourcesTest, AFullDiskIsNoticed) {
    fs::create_directories(contents);
    fs::create_symlink("/dev/full", contents / "Info.plist");
    const Outcome refused = run();
    EXPECT_EQ(1, refused.exitCode);
    EXPECT_EQ(Refusal(contents / "Info.plist"), refused.text);
}

TEST_F(MakeResourcesTest, AFolderThatCannotBeMadeIsNamed) {
    fs::create_directories(folder);
    std::ofstream(contents) << "a file in the folder's place";
    const Outcome refused = run();
    EXPECT_EQ(1, refused.exitCode);
    EXPECT_NE(std::string::npos, refused.text.find(contents.string())) << refused.text;
}

TEST_F(MakeResourcesTest, WritesWhatTheResourceCompilerOfWindowsTakes) {
    const Outcome made = MakeResources("windows " + folder.string() + " Kestrel");
    EXPECT_EQ(0, made.exitCode);
    EXPECT_EQ("", made.text);
    const std::string little = Contents(folder / "Kestrel.pipl");
    const std::string big = Contents(folder / "Kestrel.be-pipl");
    EXPECT_EQ(std::string("\1\0\0\0\0\0\16\0\0\0MIB8dnik", 18), little.substr(0, 18));
    EXPECT_EQ(std::string("\0\0\0\0\0\0\0\16", 8) + "8BIMkind", big.substr(0, 16));
    const std::string file = Contents(fs::path(PLUGIN_CONTENTS) / "Resources/Kestrel.rsrc");
    EXPECT_NE(std::string::npos, file.find(big)) << "one list for all";
    const std::string script = Contents(folder / "Kestrel.rc");
    for (const char* line : {"16000 PiPL \"Kestrel.pipl\"\n", "16000 BE_PiPL \"Kestrel.be-pipl\"\n",
                             "VALUE \"OriginalFilename\", \"Kestrel.aex\"\n"})
        EXPECT_NE(std::string::npos, script.find(line)) << line;
}

TEST_F(MakeResourcesTest, OtherArgumentsThanAFormAndTwoAreRefused) {
    for (const char* arguments : {"", "bundle", "bundle two", "mac two three", "bundle two three four"}) {
        const Outcome refused = MakeResources(arguments);
        EXPECT_EQ(1, refused.exitCode) << arguments;
        EXPECT_EQ("make-resources: usage: make-resources bundle|windows FOLDER NAME\n", refused.text)
            << arguments;
    }
}

}  // namespace
