// Every file of cases/ run against the built program. With --rewrite the files take what the program
// answered.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include "CommandCase.h"
#include "CommandLine.h"
#include "PictureFiles.h"

namespace perch::test {
namespace {

namespace fs = std::filesystem;

bool isRewriting = false;

class CommandLineTest : public testing::TestWithParam<fs::path> {};

TEST_P(CommandLineTest, AnswersAsItsFileSays) {
    std::vector<CommandCase> cases = readCases(GetParam());
    ASSERT_FALSE(cases.empty());
    const CommandLine commandLine;
    for (CommandCase& expected : cases) {
        const ProgramResult result = commandLine.run(expected.command, expected.in);
        if (isRewriting) {
            expected = {expected.command, expected.in, result.status, result.out, result.err};
            continue;
        }
        EXPECT_EQ(result.status, expected.status) << expected.command;
        EXPECT_EQ(result.out, expected.out) << expected.command;
        EXPECT_EQ(result.err, expected.err) << expected.command;
    }
    if (isRewriting) writeCases(GetParam(), cases);
}

std::vector<fs::path> caseFiles() {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(PERCH_CASES))
        files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

INSTANTIATE_TEST_SUITE_P(Case, CommandLineTest, testing::ValuesIn(caseFiles()),
                         [](const auto& file) { return file.param.stem().string(); });

const char kRender[] = "perch render --plugin {plugins}/Report.so -i rgba8.png -o out.png";

// At the compression that the pictures were written with, so that their bytes can be compared.
TEST(RenderCommandTest, PictureThatTheEffectCopiesComesBackUnchanged) {
    const CommandLine commandLine;
    for (const std::string name : {"rgba8.png", "rgb8.png", "rgba16.png"}) {
        const ProgramResult result = commandLine.run(
            "perch render --plugin {plugins}/Report.so --compression 6 --no-provenance -o out.png -i " +
            name);
        ASSERT_EQ(result.status, 0) << name << ": " << result.err;
        EXPECT_EQ(bytesOf(commandLine.folder / "out.png"), bytesOf(commandLine.folder / name)) << name;
    }
}

TEST(RenderCommandTest, SameCommandGivesTheSameBytesOnAnyNumberOfThreads) {
    const CommandLine commandLine;
    std::string first;
    for (const std::string threads : {"0", "1", "7", "64"}) {
        ASSERT_EQ(commandLine.run(kRender + (" --threads " + threads)).status, 0) << threads;
        const std::string bytes = bytesOf(commandLine.folder / "out.png");
        if (first.empty()) first = bytes;
        EXPECT_EQ(bytes, first) << threads;
    }
}

TEST(RenderCommandTest, FailedRenderLeavesTheOutputAndTheFolderAsTheyWere) {
    const CommandLine commandLine;
    writeBytes(commandLine.folder / "out.png", "before");
    const std::vector<std::string> files = commandLine.files();
    EXPECT_EQ(commandLine.run(std::string(kRender) + " --fail-with 512").status, 6);
    EXPECT_EQ(bytesOf(commandLine.folder / "out.png"), "before");
    EXPECT_EQ(commandLine.files(), files);
}

// What an effect keeps to its very end shows only after its last command.
TEST(RenderCommandTest, StrictModeNamesWhatIsLeftAfterTheLastCommand) {
    const CommandLine commandLine;
    const ProgramResult result = commandLine.run(
        "perch render --plugin {plugins}/Careless.so -i rgba8.png -o out.png --depth 8 --strict");
    EXPECT_EQ(result.status, 6);
    EXPECT_NE(
        result.err.find("perch: strict: GLOBAL_SETDOWN, host_new_handle: a handle of 16 bytes was never "
                        "disposed\n"),
        std::string::npos)
        << result.err;
}

TEST(RenderCommandTest, InterruptReachesTheEffectAndLeavesNoFile) {
    const CommandLine commandLine;
    const std::vector<std::string> files = commandLine.files();
    RunningProgram program(commandLine.commandOf(std::string(kRender) + " --wait-for-cancel"),
                           commandLine.folder);
    ASSERT_TRUE(program.waitUntilItCatches(SIGINT)) << program.finish().err;
    program.send(SIGINT);
    const ProgramResult result = program.finish();
    EXPECT_EQ(result.status, 130);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "perch: interrupted; nothing was written\n");
    EXPECT_EQ(commandLine.files(), files);
}

}  // namespace
}  // namespace perch::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    perch::test::isRewriting = argc > 1 && std::string(argv[1]) == "--rewrite";
    return RUN_ALL_TESTS();
}
