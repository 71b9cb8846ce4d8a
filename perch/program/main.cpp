// perch: runs effects without the application they were made for.
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <exception>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Error.h"
#include "ExitCodes.h"
#include "JobDisplay.h"
#include "NearestName.h"
#include "ReportFile.h"
#include "Supervisor.h"
#include "ViewOptions.h"
#include "Whereabouts.h"
#include "Worker.h"

namespace {

struct Command {
    const char* name;
    int (*run)(const std::vector<std::string>& arguments);
    const char* summary;
};

constexpr std::array kCommands{
    Command{"render", perch::runRenderCommand, "apply an effect to a picture or a sequence"},
    Command{"sheet", perch::runSheetCommand, "draw frames, or values of a parameter, side by side"},
    Command{"view", perch::runViewCommand, "show an effect at work in the browser, live"},
    Command{"curve", perch::runCurveCommand, "print the values of every frame, before anything is rendered"},
    Command{"preset", perch::runPresetCommand, "write the values of an effect's parameters to a file"},
    Command{"job", perch::runJobCommand, "print a render command as a job for several machines"},
    Command{"merge-report", perch::runMergeReportCommand, "join the reports of a job's tasks to one"},
    Command{"describe", perch::runDescribeCommand, "print what an effect says of itself"},
    Command{"check", perch::runCheckCommand, "try an effect against the rules of the interface"},
};

std::string helpText() {
    std::string text =
        "Runs effects without the application they were made for.\n"
        "Usage: perch COMMAND [OPTIONS]\n\nCommands:\n";
    for (const Command& command : kCommands)
        text += fmt::format("  {:<14}{}\n", command.name, command.summary);
    return text + "\nExit codes:\n" + perch::exitCodesText() +
           "\nperch COMMAND --help lists the options of a command; perch --version prints the version.\n";
}

using Arguments = std::vector<std::string>;

int runCommand(const std::string& name, const Arguments& arguments) {
    const auto command =
        std::ranges::find(kCommands, name, [](const Command& known) { return std::string(known.name); });
    if (command != kCommands.end()) return command->run(arguments);
    std::vector<std::string> names;
    for (const Command& known : kCommands)
        names.emplace_back(known.name);
    const std::string known = fmt::format("{}", fmt::join(names, ", "));
    names.insert(names.end(), {"--help", "--version"});
    throw perch::UsageError(fmt::format("unknown command \"{}\"{}; the commands are {}", name,
                                        perch::suggestion(name, names), known));
}

int run(const Arguments& arguments) {
    if (arguments.empty()) throw perch::UsageError("a command is missing; see perch --help");
    const std::string& first = arguments.front();
    if (first == "--help" || first == "-h") {
        perch::printResult(helpText());
        return perch::kDone;
    }
    if (first == "--version") {
        perch::printResult(fmt::format("perch {}\n", PERCH_VERSION));
        return perch::kDone;
    }
    return runCommand(first, {arguments.begin() + 1, arguments.end()});
}

// What the program ends with, and why where that has not been told.
struct Ending {
    int status = perch::kDone;
    std::string sentence;
    std::string lastLine{};  // of a job
    bool isQuiet = false;    // that line is for the log alone
};

Ending failedHere(int status, const std::string& sentence) {
    return {status, sentence, perch::whereabouts().lastLine.get(), perch::whereabouts().isQuiet};
}

Ending runHere(const Arguments& arguments) {
    try {
        return {run(arguments), {}};
    } catch (const perch::Error& error) {
        return failedHere(error.status(), error.what());
    } catch (const std::exception& error) {
        return failedHere(perch::kFailed, perch::sentenceOf(error));
    }
}

// A server of pages loads no effect; what stands behind it, and its help, do.
bool viewLoadsAnEffect(const Arguments& arguments) {
    const auto isOne = [](const std::string& argument) {
        return argument.starts_with(perch::kSessionOption) || argument == "--help" || argument == "-h";
    };
    return arguments[0] == "view" && std::ranges::any_of(arguments, isOne);
}

// The commands that load an effect themselves; check starts a child for each of its rules.
bool isSupervised(const Arguments& arguments) {
    if (arguments.empty()) return false;
    constexpr std::array<std::string_view, 5> kLoading{"render", "sheet", "curve", "preset", "describe"};
    const bool loadsAnEffect = std::ranges::count(kLoading, arguments[0]) > 0 || viewLoadsAnEffect(arguments);
    return loadsAnEffect && std::ranges::find(arguments, perch::kInProcessOption) == arguments.end();
}

// What the worker could not do any more.
void closeReportOf(const perch::Outcome& outcome) {
    if (outcome.report.empty() || outcome.status == perch::kDone) return;
    try {
        const bool isInterrupted = outcome.status > perch::kSignalled;
        perch::closeReport(outcome.report, isInterrupted ? "interrupted" : "failed", outcome.sentence,
                           outcome.frame);
    } catch (const std::exception& error) {
        perch::say(error.what());
    }
}

// A log that cannot be kept is told of, and changes nothing of how the job has ended.
void keepLogOf(const perch::Outcome& outcome) {
    if (outcome.log.empty()) return;
    try {
        perch::keepLog(outcome.log);
    } catch (const std::exception& error) {
        perch::say(error.what());
    }
}

// Whoever has asked for frames is told of those that the effect took with it.
void answerFor(const perch::Outcome& outcome) {
    try {
        std::istringstream frames(outcome.unanswered);
        for (std::string frame; std::getline(frames, frame, ',');)
            perch::printResult(perch::failureAsJson(std::stoi(frame), outcome.sentence));
        if (!outcome.totals.empty()) perch::printResult(outcome.totals);
    } catch (const std::exception&) {
        return;  // standard error has it
    }
}

Ending runSupervised(const Arguments& arguments) {
    try {
        perch::Outcome outcome = perch::superviseWorker(arguments);
        // The worker may have left its line of progress.
        if (isatty(STDERR_FILENO) == 1 && !outcome.sentence.empty()) perch::sayAsItIs("\r\x1B[K");
        keepLogOf(outcome);
        for (const std::string& finding : outcome.findings)
            perch::say("strict: " + finding);
        closeReportOf(outcome);
        answerFor(outcome);
        return {outcome.status, std::move(outcome.sentence), std::move(outcome.lastLine), outcome.isQuiet};
    } catch (const std::exception& error) {
        return {perch::kFailed, error.what()};
    }
}

// Of Open Job Description.
bool tellsScheduler(const Arguments& arguments) {
    if (arguments.empty() || arguments[0] != "render") return false;
    bool tells = false;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string_view word = arguments[i];
        if (word.starts_with("--progress=")) tells = word == "--progress=openjd";
        if (word == "--progress" && i + 1 < arguments.size()) tells = arguments[i + 1] == "openjd";
    }
    return tells;
}

void tellScheduler(const std::string& failure) {
    try {
        perch::printResult(perch::openJdFailure(failure));
    } catch (const perch::Error&) {
        return;  // standard error has it
    }
}

}  // namespace

int main(int argc, char** argv) {
    // A write to a pipe that nobody reads is an error with an exit code.
    std::signal(SIGPIPE, SIG_IGN);
    perch::occupyStandardDescriptors();
    Arguments arguments(argv + std::min(argc, 1), argv + argc);
    if (!arguments.empty() && perch::becomeWorker(arguments.front())) {
        arguments.erase(arguments.begin());
        const Ending ending = runHere(arguments);
        perch::finishWork(ending.status, ending.sentence);
    }
    const Ending ending = isSupervised(arguments) ? runSupervised(arguments) : runHere(arguments);
    if (!ending.sentence.empty()) {
        perch::say(ending.sentence);
        if (tellsScheduler(arguments)) tellScheduler(ending.sentence);
    }
    if (!ending.lastLine.empty()) (ending.isQuiet ? perch::sayInLog : perch::say)(ending.lastLine);
    return ending.status;
}
