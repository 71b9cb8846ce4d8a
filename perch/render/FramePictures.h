#pragma once

#include <cstdint>
#include <memory>

#include "FileWorlds.h"
#include "StillLayers.h"

namespace perch {

// What a frame is rendered from, and the form in which it is written.
struct FramePictures {
    std::shared_ptr<const FileWorld> input;
    LayerWorlds layers{};
    // Of the input where it has been made smaller; else 0.
    std::int32_t fullWidth = 0;
    std::int32_t fullHeight = 0;
    OutputFormat output;
};

// Of memory, until the frame is written: its input, its layers, what renders of them and what is written.
// Layers for all frames count in each.
std::int64_t bytesOf(const FramePictures& pictures);

}  // namespace perch
