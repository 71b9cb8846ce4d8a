// Sequences through the built program: which files it leaves, when it ends early, and what a terminal shows.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <optional>
#include <thread>

#include "CommandCase.h"
#include "CommandLine.h"
#include "Misdeeds.h"
#include "PictureFiles.h"

namespace perch::test {
namespace {

const char kSequence[] =
    "perch render --plugin {plugins}/Timeline.so -i shot.####.png -o out.####.png --compression 6 "
    "--no-provenance --frames 1-3,5";

std::vector<std::string> outputsIn(const CommandLine& commandLine) {
    std::vector<std::string> outputs;
    for (const std::string& name : commandLine.files())
        if (name.starts_with("out.") || name.starts_with(".")) outputs.push_back(name);
    return outputs;
}

// The program has written a frame, or has ended.
void waitForFile(const std::filesystem::path& path) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!std::filesystem::exists(path) && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

TEST(SequenceTest, EveryFrameOfTheInputIsWrittenUnderItsNumber) {
    const CommandLine commandLine;
    for (const std::string threads : {"1", "2", "8"}) {
        const ProgramResult result = commandLine.run(kSequence + (" --threads " + threads));
        ASSERT_EQ(result.status, 0) << threads << ": " << result.err;
        for (const std::string number : {"0001", "0002", "0003", "0005"}) {
            EXPECT_EQ(bytesOf(commandLine.folder / ("out." + number + ".png")),
                      bytesOf(commandLine.folder / ("shot." + number + ".png")))
                << number << " with " << threads << " threads";
        }
        EXPECT_FALSE(commandLine.has("out.0004.png"));
    }
}

struct EarlyEnd {
    const char* name;
    const char* command;
    int status;
    std::string message;
    std::vector<std::string> outputs;
};

const EarlyEnd kEarlyEnds[] = {
    {"DamagedInput",
     "perch render --plugin {plugins}/Timeline.so -i torn.####.png -o out.####.png",
     3,
     "frame 2: cannot read \"torn.0002.png\": it is not a picture, or a damaged one; name a PNG, TIFF, "
     "OpenEXR, DPX, TGA, JPEG or WebP file",
     {"out.0001.png"}},
    {"FailingEffect",
     "perch render --plugin {plugins}/Timeline.so -i shot.####.png -o out.####.png --fail-at 3 --frames 1-3",
     6,
     "frame 3: plug-in returned 4 at RENDER: \"no picture at 3\"",
     {"out.0001.png", "out.0002.png"}},
    {"UnwritableOutput",
     "perch render --plugin {plugins}/Timeline.so -i shot.####.png -o none/here/out.####.png --frames 1-3",
     4,
     "cannot write \"none/here/out.0001.png\": there is no folder \"none/here\" and it cannot be made (No "
     "such file or directory); create it first",
     {}},
};

class EarlyEndTest : public testing::TestWithParam<EarlyEnd> {};

TEST_P(EarlyEndTest, NamesTheFrameAndKeepsThoseBefore) {
    const CommandLine commandLine;
    const ProgramResult result = commandLine.run(GetParam().command);
    EXPECT_EQ(result.status, GetParam().status);
    EXPECT_NE(result.err.find("perch: " + GetParam().message + "\n"), std::string::npos) << result.err;
    EXPECT_EQ(outputsIn(commandLine), GetParam().outputs);
}

INSTANTIATE_TEST_SUITE_P(Sequence, EarlyEndTest, testing::ValuesIn(kEarlyEnds),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(SequenceTest, SignalsKeepTheFinishedFramesAndLeaveNoOther) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const CommandLine commandLine;
        RunningProgram program(commandLine.commandOf(std::string(kSequence) + " --wait-at 3"),
                               commandLine.folder);
        for (const char* const name : {"out.0001.png", "out.0002.png"})
            waitForFile(commandLine.folder / name);
        program.send(signal);
        const ProgramResult result = program.finish();
        EXPECT_EQ(result.status, 128 + signal);
        EXPECT_TRUE(withoutTimes(result.err)
                        .ends_with("perch: interrupted; 2 of 4 frames were written\n"
                                   "perch: 2 frames done, 2 not rendered in {time}: out.####.png\n"))
            << result.err;
        EXPECT_EQ(outputsIn(commandLine), (std::vector<std::string>{"out.0001.png", "out.0002.png"}));
        EXPECT_EQ(bytesOf(commandLine.folder / "out.0002.png"),
                  bytesOf(commandLine.folder / "shot.0002.png"));
    }
}

TEST(SequenceTest, LogOfAQuietJobHasItsStory) {
    const CommandLine commandLine;
    const ProgramResult result = commandLine.run(std::string(kSequence) + " -q --log made/job.log");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    const std::string log = bytesOf(commandLine.folder / "made/job.log");
    EXPECT_NE(log.find("Z frame 5: RENDER: \"time 5 "), std::string::npos) << log;
    EXPECT_NE(log.find("Z 4 frames done in "), std::string::npos) << log;
}

// The first waits in the middle of its last frame until the second has come to its end.
TEST(SequenceTest, TwoRunsOfOneJobAtOnceBothEndRightly) {
    const CommandLine commandLine;
    const char kJob[] =
        "perch render --plugin {plugins}/Hostile.so -i shot.####.png -o out.####.png --frames 1-3,5 "
        "--threads 1 --no-provenance --report report.json";
    ASSERT_EQ(commandLine.run(kJob).status, 0);
    const std::string whole = bytesOf(commandLine.folder / "out.0005.png");
    const std::vector<std::string> outputs = outputsIn(commandLine);
    for (const std::string& name : outputs)
        std::filesystem::remove(commandLine.folder / name);

    const std::filesystem::path sameFolder = commandLine.folder.parent_path() / "again";
    std::filesystem::create_directory_symlink(commandLine.folder, sameFolder);
    const std::filesystem::path mark = commandLine.folder.parent_path() / "mark";
    std::optional<HostileMode> mode(std::in_place, "wait@frame5", mark);
    RunningProgram first(commandLine.commandOf(kJob), commandLine.folder);
    mode.reset();
    waitForFile(mark);
    const ProgramResult second = runProgram(commandLine.commandOf(kJob), sameFolder);
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_EQ(outputsIn(commandLine), outputs);
    writeBytes(mark, "go on");
    const ProgramResult end = first.finish();
    EXPECT_EQ(end.status, 0) << end.err;
    EXPECT_EQ(outputsIn(commandLine), outputs) << "and no temporary file";
    for (const std::string& name : outputs)
        EXPECT_EQ(bytesOf(commandLine.folder / name), whole) << name;
    EXPECT_NE(bytesOf(commandLine.folder / "report.json").find("\n \"state\": \"done\""), std::string::npos);
}

// The sheet takes long to write, and the signal comes when that begins.
TEST(SequenceTest, WritingASheetCanBeInterrupted) {
    const CommandLine commandLine;
    const std::vector<std::string> files = commandLine.files();
    const std::filesystem::path mark = commandLine.folder.parent_path() / "mark";
    std::optional<HostileMode> mode(std::in_place, "wait@GLOBAL_SETDOWN", mark);
    RunningProgram program(
        commandLine.commandOf("perch sheet --plugin {plugins}/Hostile.so -i shot.####.png -o sheet.png "
                              "--frames 1-2 --width 4096 --compression 9"),
        commandLine.folder);
    mode.reset();
    waitForFile(mark);
    writeBytes(mark, "go on");
    program.send(SIGTERM);
    const ProgramResult result = program.finish();
    EXPECT_EQ(result.status, 143);
    EXPECT_EQ(result.err, "perch: interrupted; nothing was written\n");
    EXPECT_EQ(commandLine.files(), files);
}

TEST(SequenceTest, TerminalShowsTheFramesInOrderAndIsLeftClear) {
    const CommandLine commandLine;
    RunningProgram program(commandLine.commandOf(kSequence), commandLine.folder, Messages::Terminal);
    const ProgramResult result = program.finish();
    ASSERT_EQ(result.status, 0) << result.err;
    std::size_t place = 0;
    for (const std::string line :
         {"\rframe 1 of 4:   0%", "\rframe 1 of 4:  12%", "\rframe 2 of 4:  25%", "\rframe 2 of 4:  37%",
          "\rframe 3 of 4:  50%", "\rframe 4 of 4:  75%", "\rframe 4 of 4:  87%", "\r\x1B[K"}) {
        const std::size_t found = result.err.find(line, place);
        ASSERT_NE(found, std::string::npos) << line << " is not in order in " << result.err;
        place = found + line.size();
    }
}

TEST(SequenceTest, TimingIsOneLineForEachPart) {
    const CommandLine commandLine;
    const ProgramResult result = commandLine.run(std::string(kSequence) + " --timing --frames 1-2");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "");
    std::size_t place = 0;
    for (const std::string part : {"\ndecode ", "\nrender ", "\nencode ", "\nprocessor ", "\nwall "}) {
        const std::size_t found = result.err.find(part, place);
        ASSERT_NE(found, std::string::npos) << part << " is not in order in " << result.err;
        place = found;
    }
}

}  // namespace
}  // namespace perch::test
