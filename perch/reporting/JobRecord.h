// What is kept of a job: what it was to do, and what has become of each frame.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ExistingFrames.h"
#include "Fingerprint.h"
#include "FrameEnd.h"
#include "Shard.h"

namespace perch {

using OptionTexts = std::vector<std::pair<std::string, std::string>>;  // by option

struct FrameRecord {
    enum class State { Waiting, Done, Failed };
    struct Times {
        double decode = 0;
        double render = 0;
        double encode = 0;
    };

    std::int32_t frame = 0;
    State state = State::Waiting;
    std::string input{};
    OptionTexts layers{};  // files
    std::string output{};
    OptionTexts values{};  // of the parameters that were given
    std::string fingerprint{};
    std::optional<FileState> outputState{};  // once the frame is done
    int retries = 0;
    std::optional<Times> seconds{};  // unknown where the frame was up to date without an earlier record
    std::vector<std::string> warnings{};
    std::vector<std::string> messages{};  // of the effect
    std::string error{};                  // why it failed
};

struct JobRecord {
    std::string version{};  // of the program
    std::vector<std::string> arguments{};
    std::optional<Shard> shard{};  // absent: all frames
    std::string effect{};          // name
    std::string effectBuild{};     // see fileFingerprint
    OptionTexts parameters{};      // values and keys that were given
    std::string state = "running";
    std::string error{};                  // why the job failed
    std::string begin{};                  // "2026-11-22T05:16:00Z"
    double seconds = 0;                   // since then
    std::vector<std::int32_t> skipped{};  // frames without a file
    std::vector<std::string> notes{};
    std::vector<FrameRecord> frames{};
};

// As JSON, of the form that docs/report.schema.json states.
std::string recordText(const JobRecord& record);

// Absent where there is no such file. Throws InputError where it is not a report.
std::optional<JobRecord> readRecord(const std::filesystem::path& report);
// The same of a file that a report is to replace. Throws UsageError where it is not a report.
std::optional<JobRecord> recordToReplace(const std::filesystem::path& report);

// Of the frames that are done.
FrameTraces tracesOf(const JobRecord& record);

}  // namespace perch
