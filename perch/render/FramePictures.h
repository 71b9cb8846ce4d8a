#pragma once

#include <cstddef>
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

// Of memory: the world, and the samples of its file.
std::int64_t bytesOf(const FileWorld& picture);

// Of memory, until the frame is written: its input, its layers, what renders of them and what is written.
// Layers for all frames count in each.
std::int64_t bytesOf(const FramePictures& pictures);

// How many frames of so many bytes there is room for in `memory`; one at least, which requireMemory refuses
// by InputError where there is none.
std::size_t framesWithin(std::int64_t memory, const FramePictures& pictures);
void requireMemory(std::int64_t memory, const FramePictures& pictures);

}  // namespace perch
