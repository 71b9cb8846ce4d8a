// A layer that has a file per frame, with numbers that may be some away from those of the input.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "FramePattern.h"
#include "MissingFrame.h"

namespace perch {

class LayerSequence {
public:
    // `name` is what `pattern` was parsed from. The file for a frame has the frame's number and `offset`.
    LayerSequence(const std::string& name, const FramePattern& pattern, std::int32_t offset,
                  MissingLayerFrame missing);

    // Absent: the frame is rendered without the layer. Throws Error where the file is missing and must not
    // be, and where the layer has no files at all.
    std::optional<std::filesystem::path> fileFor(std::int32_t frame);

    // A sentence about the frames that had no file of their own; empty where all had.
    std::string note() const;

private:
    std::filesystem::path heldFor(std::int32_t frame);
    void requireAnyFile();

    const std::string name;
    const FramePattern pattern;
    const std::int32_t offset;
    const MissingLayerFrame missing;
    std::vector<std::int32_t> framesOnDisk;  // read at the first file that is missing
    std::vector<std::int32_t> framesWithout;
    bool isFirstHeld = false;  // where there is none before
};

}  // namespace perch
