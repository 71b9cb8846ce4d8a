// Reads the pictures of layer parameters: one channel where one is named, scene depths as shades of grey.
#pragma once

#include <filesystem>
#include <string>

#include "FileWorlds.h"
#include "FramePlan.h"
#include "LayerReading.h"
#include "Notes.h"

namespace perch {

class LayerReader {
public:
    // `notes` outlives the reader.
    LayerReader(const LayerReadings& readings, const pictures::ReadLimits& limits, Notes& notes)
        : readings(readings), limits(limits), notes(notes) {}

    // Finds the ranges that are left to the first frame, before any picture is read.
    void findRanges(const FramePlan& plan);

    // Throws Error, which names the file, where it cannot be read or where floats beyond 0 to 1 have no
    // range. Any thread.
    SharedPicture read(PF_ParamIndex index, const std::filesystem::path& path) const;

private:
    void compare(const std::filesystem::path& path, const pictures::Picture& picture,
                 const LayerReading& reading) const;

    LayerReadings readings;
    pictures::ReadLimits limits;
    Notes& notes;
};

// What is said of a file of several parts, of which the first is read.
std::string partsNote(const std::filesystem::path& path, int parts);

}  // namespace perch
