// What `perch render` does: picture files through an effect into picture files.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Effect.h"
#include "ParameterOptions.h"
#include "Pictures.h"

namespace perch {

// A value that the user gave, in the form of the command line.
struct ParameterAssignment {
    ParameterOption option;
    std::string text;
};

// The same for all frames of a job.
struct RenderSettings {
    std::vector<ParameterAssignment> assignments;  // not of layers
    std::optional<Depth> depth;                    // absent: that of the input
    PF_Quality quality = PF_Quality_HI;
    PF_RationalScale downsample{1, 1};  // the pictures are this much smaller than the layer
};

// The files of one frame.
struct FrameFiles {
    std::int32_t frame = 0;  // number
    std::filesystem::path input;
    std::filesystem::path output;
    std::map<PF_ParamIndex, std::filesystem::path> layers;
};

struct FrameWatch {
    const std::atomic<bool>* cancelled = nullptr;
    std::function<void(double fraction)> progress;
};

// Renders one frame. Throws Error; Cancelled when the flag of `watch` was seen, also between the effect's
// commands. The output is written whole or not at all.
void renderFrame(Effect& effect, Sequence& sequence, const RenderSettings& settings, const FrameFiles& files,
                 const FrameWatch& watch);

}  // namespace perch
