// The options of a command line that say how a job runs and what is told of it.
#pragma once

#include <filesystem>
#include <string>

#include "ExistingFrames.h"
#include "ProgressForm.h"
#include "RenderJob.h"
#include "Shard.h"

namespace CLI {
class App;
}

namespace perch {

// As they were given.
struct JobTexts {
    std::string onError = "stop";
    std::string retries = "0";
    std::string progress = "auto";
    bool isQuiet = false;
    bool isVerbose = false;
    std::string log;
    std::string existing = "overwrite";
    std::string report;
    std::string framesFrom;
};

struct JobOptions {
    ProgressForm progress = ProgressForm::Auto;
    bool isQuiet = false;
    bool isVerbose = false;
    std::filesystem::path log{};  // empty: none
    ExistingUse existing = ExistingUse::Overwrite;
    std::filesystem::path report{};  // empty: none
    bool isFed = false;              // frames are asked for on standard input
};

// Makes `app` take the options into `texts`, which must outlive it.
void addJobOptions(CLI::App& app, JobTexts& texts);

// Both throw UsageError with what was expected. `app` has met the options.
JobOptions parseJobOptions(const JobTexts& texts);
void takeFailureOptions(const CLI::App& app, const JobTexts& texts, RenderSettings& settings);

// The file of the shard's task where --report has this name, in which the shard's number takes the place of a
// frame's. Throws UsageError where the name has none and several tasks would write the one file.
std::filesystem::path reportOfShard(const std::filesystem::path& report, const Shard& shard);

}  // namespace perch
