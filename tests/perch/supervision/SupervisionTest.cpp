// The parent that waits for the worker: signals from outside, and outputs that cannot be written.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <thread>
#include <utility>

#include "CommandLine.h"
#include "Misdeeds.h"
#include "PictureFiles.h"

namespace perch::test {
namespace {

const char kRender[] = "perch render --plugin {plugins}/Hostile.so -i rgb8.png -o out.png";

// Until it is cancelled.
const char kWaiting[] = "perch render --plugin {plugins}/Report.so -i rgba8.png -o out.png --wait-for-cancel";

// Where the effect marks its deed.
std::filesystem::path markBeside(const CommandLine& commandLine) {
    return commandLine.folder.parent_path() / "mark";
}

// An effect that never comes back; it waits for nothing any more.
struct HangingProgram {
    explicit HangingProgram(const char* deed = "hang@RENDER", const char* command = kRender) {
        const std::filesystem::path mark = markBeside(commandLine);
        const HostileMode mode(deed, mark);
        program.emplace(commandLine.commandOf(command), commandLine.folder);
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (bytesOf(mark).empty() && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }

    const CommandLine commandLine;
    const std::vector<std::string> files = commandLine.files();
    std::optional<RunningProgram> program;
};

TEST(SupervisionTest, SecondSignalEndsAnEffectThatDoesNotListen) {
    for (const int signal : {SIGINT, SIGTERM}) {
        HangingProgram hanging;
        hanging.program->sendUntilItEnds(signal);
        const ProgramResult result = hanging.program->finish();
        EXPECT_EQ(result.status, 128 + signal);
        EXPECT_NE(result.err.find("was interrupted twice and ended at RENDER"), std::string::npos)
            << result.err;
        EXPECT_EQ(hanging.commandLine.files(), hanging.files);
    }
}

// The verdicts before it stand, and what stands there can be read.
TEST(SupervisionTest, InterruptedCheckClosesItsArray) {
    HangingProgram hanging("hang@RENDER", "perch check --json {plugins}/Hostile.so");
    hanging.program->send(SIGTERM);
    const ProgramResult result = hanging.program->finish();
    EXPECT_EQ(result.status, 143);
    EXPECT_TRUE(result.out.starts_with("[\n{") && result.out.ends_with("\n]\n")) << result.out;
    EXPECT_EQ(result.err, "perch: ended by SIGTERM; 2 rules were tried\n");
}

// The effect has the interrupt end the program as if nobody listened.
TEST(SupervisionTest, InterruptDoesNotDenyFinishedFrames) {
    HangingProgram hanging("be-interruptible-and-hang@frame5",
                           "perch render --plugin {plugins}/Hostile.so -i shot.####.png -o out.####.png "
                           "--frames 1-3,5 --threads 1");
    hanging.program->send(SIGINT);
    const ProgramResult result = hanging.program->finish();
    EXPECT_EQ(result.status, 130);
    EXPECT_NE(result.err.find("\nperch: interrupted; finished frames stay\nperch: "), std::string::npos)
        << result.err;
    EXPECT_NE(result.err.find(" not rendered in "), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find(" failed ("), std::string::npos) << "the user has ended it: " << result.err;
    EXPECT_TRUE(hanging.commandLine.has("out.0001.png"));
}

TEST(SupervisionTest, HangUpEndsTheWorkerAsWell) {
    HangingProgram hanging;
    hanging.program->send(SIGHUP);
    const ProgramResult result = hanging.program->finish();
    EXPECT_EQ(result.status, 128 + SIGHUP);
    EXPECT_EQ(result.err, "perch: ended by SIGHUP\n");
    EXPECT_EQ(hanging.commandLine.files(), hanging.files);
}

// As under nohup.
TEST(SupervisionTest, SignalsThatTheStarterIgnoresStayIgnored) {
    const CommandLine commandLine;
    std::vector<std::string> command{"/bin/sh", "-c", "trap '' HUP; exec \"$0\" \"$@\""};
    for (const std::string& word : commandLine.commandOf(kWaiting))
        command.push_back(word);
    RunningProgram program(command, commandLine.folder);
    ASSERT_TRUE(program.waitUntilItCatches(SIGINT)) << program.finish().err;
    program.send(SIGHUP);
    program.send(SIGINT);
    EXPECT_EQ(program.finish().status, 130);
}

TEST(SupervisionTest, TimeThatTheProgramIsStoppedDoesNotCount) {
    HangingProgram hanging("hang@RENDER",
                           "perch render --plugin {plugins}/Hostile.so -i rgb8.png -o out.png "
                           "--timeout-frame 3");
    hanging.program->send(SIGTSTP);
    std::this_thread::sleep_for(std::chrono::milliseconds(3200));
    hanging.program->send(SIGCONT);
    // Long enough for the program to look at its clock.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    hanging.program->send(SIGHUP);
    EXPECT_EQ(hanging.program->finish().status, 128 + SIGHUP);
}

// One that has left the worker's group and session, and whose parent has ended.
TEST(SupervisionTest, ProcessesThatTheEffectHasStartedEndWithIt) {
    for (const auto& [deed, status] :
         {std::pair{"daemon@RENDER", 0}, std::pair{"daemon-and-abort@RENDER", 8}}) {
        const CommandLine commandLine;
        const std::filesystem::path mark = markBeside(commandLine);
        const HostileMode mode(deed, mark);
        EXPECT_EQ(commandLine.run(kRender).status, status);
        const int daemon = std::atoi(bytesOf(mark).c_str());
        ASSERT_GT(daemon, 0) << deed;
        EXPECT_NE(kill(daemon, 0), 0) << deed;
    }
}

TEST(SupervisionTest, PictureThatWasBeingWrittenIsRemoved) {
    const CommandLine commandLine;
    const std::vector<std::string> files = commandLine.files();
    const HostileMode mode("end-while-writing@FRAME_SETDOWN");
    const ProgramResult result = commandLine.run(kRender);
    EXPECT_EQ(result.status, 8);
    EXPECT_NE(result.err.find("crashed after FRAME_SETDOWN (SIGXFSZ"), std::string::npos) << result.err;
    EXPECT_EQ(commandLine.files(), files);
}

TEST(SupervisionTest, TimeLimitEndsEveryCommandThatLoadsAnEffect) {
    const CommandLine commandLine;
    const HostileMode mode("hang@PARAMS_SETUP");
    for (const char* const command :
         {"perch describe {plugins}/Hostile.so --timeout 0.2",
          "perch curve --plugin {plugins}/Hostile.so --frames 1-2 --timeout 0.2",
          "perch preset --plugin {plugins}/Hostile.so --timeout 0.2",
          "perch render --plugin {plugins}/Hostile.so --help --timeout-frame 0.2"}) {
        const ProgramResult result = commandLine.run(command);
        EXPECT_EQ(result.status, 8) << command;
        EXPECT_NE(result.err.find("did not come back at PARAMS_SETUP (ended after 0.2 s"), std::string::npos)
            << result.err;
    }
}

// It changes the folder while other frames are read and written.
TEST(SupervisionTest, FilesAreWhereTheCommandLineSaysWhateverTheFolderIs) {
    const CommandLine commandLine;
    const HostileMode mode("wander@RENDER");
    const ProgramResult result = commandLine.run(
        "perch render --plugin {plugins}/Hostile.so -i shot.####.png -o out.####.png --frames 1-3,5 "
        "--threads 2");
    EXPECT_EQ(result.status, 0) << result.err;
    for (const char* const name : {"out.0001.png", "out.0002.png", "out.0003.png", "out.0005.png"})
        EXPECT_TRUE(commandLine.has(name)) << name;
}

TEST(SupervisionTest, ReportAndLogSayWhatBecameOfAWorkerThatCouldNotEndIt) {
    const CommandLine commandLine;
    const HostileMode mode("abort@RENDER");
    EXPECT_EQ(commandLine.run(std::string(kRender) + " --report report.json --log job.log").status, 8);
    const std::string report = bytesOf(commandLine.folder / "report.json");
    const std::size_t job = report.find("\n \"state\": \"failed\"");
    EXPECT_NE(job, std::string::npos) << report;
    EXPECT_NE(report.find("\"state\": \"failed\"", job + 10), std::string::npos) << "its frame: " << report;
    EXPECT_NE(report.find("crashed at RENDER (SIGABRT"), std::string::npos) << report;
    const std::string log = bytesOf(commandLine.folder / "job.log");
    EXPECT_NE(log.find("crashed at RENDER (SIGABRT"), std::string::npos) << log;
}

const char kFed[] =
    "perch render --plugin {plugins}/Hostile.so -i shot.####.png -o out.####.png --frames 1-3 --frames-from "
    "-";

TEST(SupervisionTest, StandardInputReachesTheWorkerAndNotTheEffect) {
    const CommandLine commandLine;
    const HostileMode mode("read-input@RENDER");
    const ProgramResult result = commandLine.run(kFed, "2\n1\n");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(commandLine.has("out.0001.png"));
    EXPECT_TRUE(commandLine.has("out.0002.png"));
    EXPECT_FALSE(commandLine.has("out.0003.png"));
}

TEST(SupervisionTest, EffectThatCrashesEndsAWorkerThatIsFed) {
    const CommandLine commandLine;
    const HostileMode mode("abort@RENDER");
    const ProgramResult result = commandLine.run(std::string(kFed) + " -q --log made/job.log", "2\n1\n");
    EXPECT_EQ(result.status, 8);
    EXPECT_TRUE(result.err.starts_with("perch: frame 2: the effect")) << result.err;
    EXPECT_EQ(result.err.find("frames done"), std::string::npos) << result.err;
    const std::string log = bytesOf(commandLine.folder / "made/job.log");
    EXPECT_NE(log.find(" frame 2: the effect"), std::string::npos) << log;
    EXPECT_NE(log.find(" 0 frames done, 2 failed ("), std::string::npos) << log;
    const std::string why =
        "\"state\":\"failed\",\"message\":\"frame 2: the effect \\\"Hostile.so\\\" crashed";
    std::istringstream answers(result.out);
    for (const std::string& start :
         {"{\"frame\":2," + why, "{\"frame\":1," + why, std::string("{\"done\":0,\"upToDate\":0")}) {
        std::string answer;
        std::getline(answers, answer);
        EXPECT_TRUE(answer.starts_with(start)) << answer;
    }
}

TEST(SupervisionTest, WorkerCannotBeStartedByHand) {
    const CommandLine commandLine;
    const ProgramResult result = commandLine.run("perch --worker=2 describe {plugins}/Hostile.so");
    EXPECT_EQ(result.status, 2) << result.err;
}

// The count of parameters is at fault at PARAMS_SETUP, and the worker cannot tell it at the end.
TEST(SupervisionTest, FindingsBeforeACrashAreTold) {
    const CommandLine commandLine;
    const HostileMode mode("left-and-abort@GLOBAL_SETDOWN");
    const ProgramResult result = commandLine.run(std::string(kRender) + " --strict");
    EXPECT_EQ(result.status, 8);
    EXPECT_NE(
        result.err.find(
            "perch: strict: GLOBAL_SETDOWN, host_dispose_handle: the handle has been disposed before\n"),
        std::string::npos)
        << result.err;
}

TEST(SupervisionTest, InProcessTheEffectRunsWithoutAParent) {
    const CommandLine commandLine;
    const HostileMode mode("exit7@RENDER");
    EXPECT_EQ(commandLine.run(std::string(kRender) + " --in-process").status, 7);
}

struct Unwritable {
    const char* name;
    const char* command;
    int status;
};

class UnwritableOutputTest : public testing::TestWithParam<Unwritable> {};

// The outputs are those of a shell that runs the command.
TEST_P(UnwritableOutputTest, ChangesNoFailureIntoASuccessNorAnotherWayRound) {
    const CommandLine commandLine;
    std::string command = GetParam().command;
    command.replace(0, 5, PERCH_PROGRAM);
    const ProgramResult result = runProgram(
        {"/bin/sh", "-c", commandLine.commandOf("perch \"" + command + "\"").at(1)}, commandLine.folder);
    EXPECT_EQ(result.status, GetParam().status) << result.err;
}

INSTANTIATE_TEST_SUITE_P(
    Outputs, UnwritableOutputTest,
    testing::Values(
        Unwritable{"WrongUse", "perch bogus 2>/dev/full", 2},
        Unwritable{"Help", "perch --help >/dev/full", 4},
        Unwritable{"Version", "perch --version >/dev/full", 4},
        Unwritable{"ClosedVersion", "perch --version >&-", 4},
        Unwritable{"Describe", "perch describe {plugins}/Report.so >/dev/full", 4},
        Unwritable{"DescribeJson", "perch describe --json {plugins}/Report.so >/dev/full", 4},
        Unwritable{"Check", "perch check {plugins}/Report.so >/dev/full", 4},
        Unwritable{"CommandHelp", "perch render --plugin {plugins}/Report.so --help >/dev/full", 4},
        Unwritable{"Messages", "perch render --plugin {plugins}/Report.so -i rgb8.png -o out.png 2>/dev/full",
                   0},
        Unwritable{"ClosedMessages", "perch render --plugin {plugins}/Report.so -i rgb8.png -o out.png 2>&-",
                   0},
        Unwritable{"Failure", "perch render --plugin {plugins}/Report.so -i none.png -o out.png 2>/dev/full",
                   3}),
    [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace perch::test
