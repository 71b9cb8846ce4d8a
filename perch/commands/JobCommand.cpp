#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Error.h"
#include "FrameList.h"
#include "FramePattern.h"
#include "JobTemplate.h"
#include "NearestName.h"
#include "ParallelLine.h"
#include "ParameterCommand.h"
#include "RenderOptions.h"
#include "SlurmScript.h"

namespace perch {
namespace {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

struct Scheduler {
    const char* name;
    std::string (*text)(const RenderTasks& tasks);
};

constexpr std::array kSchedulers{
    Scheduler{"slurm", slurmScript},
    Scheduler{"parallel", parallelLine},
    Scheduler{"openjd", jobTemplate},
};

constexpr char kExample[] = "perch job slurm --tasks 8 -- perch render -i in.####.png -o out.####.png";

Arguments schedulerNames() {
    Arguments names;
    for (const Scheduler& scheduler : kSchedulers)
        names.emplace_back(scheduler.name);
    return names;
}

const Scheduler& schedulerNamed(const std::string& name) {
    for (const Scheduler& scheduler : kSchedulers)
        if (scheduler.name == name) return scheduler;
    const Arguments names = schedulerNames();
    if (name.empty())
        throw UsageError(
            fmt::format("a scheduler is missing: {}; for example {}", fmt::join(names, ", "), kExample));
    throw UsageError(fmt::format("unknown scheduler \"{}\"{}; there are {}", name, suggestion(name, names),
                                 fmt::join(names, ", ")));
}

// Throws UsageError for what every task would refuse, and for what is no task's to say.
RenderTasks tasksOf(const Arguments& command, int count) {
    constexpr std::size_t kFirstOption = 2;  // behind the program and "render"
    if (command.size() < kFirstOption || command[1] != "render")
        throw UsageError(fmt::format("a render command is missing behind --; for example {}", kExample));
    const RenderOptions options = parseRenderOptions({command.begin() + kFirstOption, command.end()});
    if (options.wantsHelp || options.use != PlanUse::Render)
        throw UsageError("--help and --dry-run render nothing; leave them out of the command behind --");
    if (options.job.isFed)
        throw UsageError("nobody feeds the tasks of a job; leave --frames-from out of the command behind --");
    if (options.names.shard) throw UsageError("--shard is what the job adds to each task; leave it out");
    if (!options.job.report.empty())
        reportOfShard(options.job.report, {.number = 1, .count = static_cast<std::size_t>(count)});
    if (options.names.areFiles || !FramePattern::parse(options.names.input))
        throw UsageError(
            "a job is for sequences; give --input a place for the frame number, like in.####.png");
    return {.command = command,
            .count = count,
            .threads = options.given.contains("threads") ? std::optional(options.load.threads) : std::nullopt,
            .saysProgress = options.given.contains("progress"),
            .folder = fs::current_path().string()};
}

}  // namespace

int runJobCommand(const Arguments& arguments) {
    CLI::App app(
        "Prints a render command, given behind --, as a job of several tasks, each with its shard of the "
        "frames.",
        "perch job");
    bool wantsHelp = false;
    std::string scheduler;
    std::string tasks;
    std::string output;
    bool overwrites = false;
    addHelpFlag(app, wantsHelp);
    app.add_option(
           "SCHEDULER", scheduler,
           "slurm: a script for sbatch; parallel: a line of GNU parallel; openjd: an Open Job Description "
           "template")
        ->type_name(fmt::format("{}", fmt::join(schedulerNames(), "|")));
    app.add_option("--tasks", tasks, "how many tasks share the frames")->type_name("N");
    app.add_option("-o,--output", output, "the file to be written; without it, the job is printed")
        ->type_name("FILE");
    app.add_flag("--overwrite", overwrites, "replace the file where it exists");
    const auto separator = std::ranges::find(arguments, "--");
    parseAllArguments(app, {arguments.begin(), separator});
    if (wantsHelp) {
        printResult(app.help());
        return kDone;
    }
    const Scheduler& chosen = schedulerNamed(scheduler);
    if (tasks.empty()) throw UsageError(fmt::format("--tasks is missing; for example {}", kExample));
    const int count = parseNumber("--tasks", tasks, 1, kMostFrames);
    const bool hasCommand = separator != arguments.end();
    const std::string text =
        chosen.text(tasksOf(hasCommand ? Arguments(separator + 1, arguments.end()) : Arguments(), count));
    if (output.empty()) {
        printResult(text);
        return kDone;
    }
    if (fs::exists(output) && !overwrites)
        throw OutputError(fmt::format("\"{}\" exists; choose another name, or give --overwrite", output));
    writeTextFile(output, text);
    return kDone;
}

}  // namespace perch
