#include "JobOptions.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <array>
#include <chrono>
#include <cstdint>
#include <optional>

#include "CommandLine.h"
#include "Error.h"
#include "FramePattern.h"
#include "Words.h"
#include "Worker.h"

namespace perch {
namespace {

constexpr std::array<Word<bool>, 2> kGoesOn{{{"stop", false}, {"continue", true}}};

constexpr std::array<Word<ProgressForm>, 5> kProgress{{{"auto", ProgressForm::Auto},
                                                       {"line", ProgressForm::Lines},
                                                       {"json", ProgressForm::Json},
                                                       {"openjd", ProgressForm::OpenJd},
                                                       {"none", ProgressForm::None}}};

constexpr std::array<Word<ExistingUse>, 3> kExisting{
    {{"overwrite", ExistingUse::Overwrite}, {"skip", ExistingUse::Skip}, {"error", ExistingUse::Error}}};

bool parseFramesFrom(const std::string& text) {
    if (text.empty()) return false;
    if (text == "-") return true;
    throw UsageError(fmt::format("--frames-from takes -, which is the standard input, not \"{}\"", text));
}

}  // namespace

void addJobOptions(CLI::App& app, JobTexts& texts) {
    app.add_option("--on-error", texts.onError,
                   "after a frame that fails: stop, or continue with the others and exit with 7 at the end "
                   "(default stop, with --frames-from continue)")
        ->type_name(listOf(kGoesOn));
    app.add_option("--retries", texts.retries,
                   "try reading, rendering or writing a frame again so often before it fails (default 0)")
        ->type_name("N");
    app.add_option(
           "--progress", texts.progress,
           "auto: a line on a terminal, in a log one every 10 s; line: one for each frame; json: the "
           "same as JSON on standard output; openjd: lines that Open Job Description defines; or none "
           "(default auto)")
        ->type_name(listOf(kProgress));
    app.add_flag("-q,--quiet", texts.isQuiet, "tell of failures alone");
    app.add_flag("-v,--verbose", texts.isVerbose,
                 "tell what renders, and for each frame its files and how long each step took");
    app.add_option("--log", texts.log,
                   "add what is told on standard error to this file as well, each line with its time")
        ->type_name("FILE");
    app.add_option(
           "--existing", texts.existing,
           "files of frames that are there: overwrite them; skip those that are up to date, made by the "
           "same effect from the same pictures and parameters; or error (default overwrite)")
        ->type_name(listOf(kExisting));
    app.add_option("--report", texts.report,
                   "keep what becomes of each frame in this file, as JSON, which is whole at any time; in a "
                   "name like report.##.json --shard puts its number")
        ->type_name("FILE");
    app.add_option(
           kFramesFromOption, texts.framesFrom,
           "-: read on standard input which of the frames to render, line by line, and answer each with "
           "a line of JSON, while the effect stays loaded")
        ->type_name("-");
}

JobOptions parseJobOptions(const JobTexts& texts) {
    const bool isFed = parseFramesFrom(texts.framesFrom);
    const ProgressForm progress = meaningOf("--progress", texts.progress, kProgress);
    if (isFed && progress != ProgressForm::Auto && progress != ProgressForm::Json)
        throw UsageError("--frames-from answers by JSON; leave --progress out, or give --progress json");
    if (texts.isQuiet && texts.isVerbose)
        throw UsageError("--quiet tells less and --verbose more; leave one");
    return {.progress = isFed ? ProgressForm::Json : progress,
            .isQuiet = texts.isQuiet,
            .isVerbose = texts.isVerbose,
            .log = texts.log,
            .existing = meaningOf("--existing", texts.existing, kExisting),
            .report = texts.report,
            .isFed = isFed};
}

void takeFailureOptions(const CLI::App& app, const JobTexts& texts, RenderSettings& settings) {
    constexpr int kMostRetries = 100;
    constexpr std::chrono::milliseconds kPause{500};  // a server may need it
    settings.goesOn = meaningOf("--on-error", texts.onError, kGoesOn);
    // Whoever asks for frames one by one is told of failures one by one.
    if (parseFramesFrom(texts.framesFrom) && app.count("--on-error") == 0) settings.goesOn = true;
    settings.retries = parseNumber("--retries", texts.retries, 0, kMostRetries);
    settings.pause = kPause;
}

std::filesystem::path reportOfShard(const std::filesystem::path& report, const Shard& shard) {
    if (const std::optional<FramePattern> pattern = FramePattern::parse(report.string()))
        return pattern->pathOf(static_cast<std::int32_t>(shard.number));
    if (shard.count == 1) return report;
    throw UsageError(fmt::format(
        "all tasks would write the one report \"{}\"; give its name a place for the task's number, "
        "like report.##.json",
        report.string()));
}

}  // namespace perch
