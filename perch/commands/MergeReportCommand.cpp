#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Error.h"
#include "FrameList.h"
#include "MergedReport.h"
#include "ParameterCommand.h"

namespace perch {
namespace {

NamedRecord readTask(const std::string& name) {
    std::optional<JobRecord> record = readRecord(name);
    if (!record)
        throw InputError(fmt::format("cannot read \"{}\": there is no such file; check its name", name));
    return {.name = name, .record = std::move(*record)};
}

// The whole would be lost as soon as the tasks' reports are joined again.
void requireReplaceable(const std::string& output, const std::vector<std::string>& tasks) {
    recordToReplace(output);
    for (const std::string& task : tasks)
        requireOtherFile(output, task);
}

}  // namespace

int runMergeReportCommand(const std::vector<std::string>& arguments) {
    CLI::App app("Joins the reports of a job's tasks, which perch render --report has written, to one.",
                 "perch merge-report");
    bool wantsHelp = false;
    std::string output;
    std::vector<std::string> names;
    addHelpFlag(app, wantsHelp);
    app.add_option("-o,--output", output, "the file for the whole; without it, standard output")
        ->type_name("FILE");
    for (const std::string& name : parseArguments(app, arguments)) {
        if (name.starts_with('-')) refuseExtras({name}, longOptionNames(app));
        names.push_back(name);
    }
    if (wantsHelp) {
        printResult(app.help());
        return kDone;
    }
    if (names.empty()) throw UsageError("a report is missing; for example perch merge-report a.json b.json");
    std::vector<NamedRecord> tasks;
    for (const std::string& name : names)
        tasks.push_back(readTask(name));
    if (!output.empty()) requireReplaceable(output, names);
    const JobRecord whole = mergedRecord(tasks);
    const std::string text = recordText(whole);
    if (output.empty()) {
        printResult(text);
    } else {
        writeTextFile(output, text);
    }
    if (whole.state == kIncomplete) throw InputError(whole.error);
    return kDone;
}

}  // namespace perch
