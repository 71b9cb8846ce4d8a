// Which files belong to which frame, from the names that the user gave.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "PF_Params.h"

namespace perch {

// As given. A name may be a FramePattern; an input that is one makes a sequence.
struct PictureNames {
    std::string input;
    std::string output;
    std::optional<std::vector<std::int32_t>> frames;  // absent: all that the input's pattern finds
    bool areFiles = false;                            // whatever they look like
};

using LayerNames = std::map<PF_ParamIndex, std::string>;

struct FrameFiles {
    std::int32_t frame = 0;  // number
    std::filesystem::path input;
    std::filesystem::path output;
    std::map<PF_ParamIndex, std::filesystem::path> layers;  // of this frame alone
};

struct FramePlan {
    bool isSequence = false;
    std::vector<FrameFiles> frames;                              // in the order to render; never empty
    std::int32_t lastFrame = 0;                                  // the greatest number
    std::map<PF_ParamIndex, std::filesystem::path> stillLayers;  // the same for every frame
    std::set<PF_ParamIndex> emptyLayers{};                       // that the user has set to none
};

// Throws UsageError where the names do not go together; Error where a frame's file is missing, the first one
// by name, and where a picture would be written over one that is read.
FramePlan planFrames(const PictureNames& names, const LayerNames& layers);

}  // namespace perch
