// Frames whose files are there before a job begins.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "Fingerprint.h"
#include "FramePlan.h"
#include "ReadOptions.h"

namespace perch {

enum class ExistingUse {
    Overwrite,
    Skip,  // those that are up to date
    Error,
};

// What a report tells of a frame that was done: from what its file was made, and what the file was then.
struct FrameTrace {
    std::string fingerprint;
    FileState output;
};
using FrameTraces = std::map<std::pair<std::int32_t, std::string>, FrameTrace>;  // by number and output

// Moves the frames that are up to date from the plan's frames to its current ones: those whose file is whole
// and has the frame's fingerprint, or is the one that a trace with that fingerprint tells of. `tasks` files
// are read at once.
void takeCurrentFrames(FramePlan& plan, const FrameTraces& traces, const pictures::ReadOptions& reading,
                       std::size_t tasks);

// Throws Error where a file of a frame is there.
void refuseExistingFrames(const FramePlan& plan);

}  // namespace perch
