// Reads the pictures of layer parameters: one channel where one is named, scene depths as shades of grey.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "FileWorlds.h"
#include "FramePlan.h"
#include "LayerReading.h"
#include "Notes.h"

namespace perch {

class LayerReader {
public:
    // `notes` outlives the reader.
    LayerReader(const LayerReadings& readings, const pictures::ReadOptions& options, Notes& notes)
        : readings(readings), options(options), notes(notes) {
        this->options.isOfDepths = true;
    }

    // Finds the ranges that are left to the first frame, before any picture is read.
    void findRanges(const FramePlan& plan);

    // Those of all layers as they are given on a command line, with a space before each.
    std::string rangesText() const;

    // Throws Error, which names the file, where it cannot be read or where floats beyond 0 to 1 have no
    // range. Any thread. `place` is that of the notes.
    SharedPicture read(PF_ParamIndex index, const std::filesystem::path& path, std::size_t place) const;

    // Warns where the layer's picture has another size than the input.
    void compareSizes(const pictures::Picture& input, const pictures::Picture& layer,
                      const std::filesystem::path& path, std::size_t place) const;

private:
    void warnWhereConstant(const std::filesystem::path& path, const pictures::Picture& picture,
                           const LayerReading& reading, std::size_t place) const;
    void compare(const std::filesystem::path& path, const pictures::Picture& picture,
                 const LayerReading& reading, std::size_t place) const;

    LayerReadings readings;
    pictures::ReadOptions options;
    Notes& notes;
};

// Reads a picture, and notes where its file is damaged or has more parts than the one that is read.
// `selected` is as in readPictureFile, `place` as in Notes.
SharedPicture readNoted(const std::filesystem::path& path, const std::string& selected,
                        const pictures::ReadOptions& options, Notes& notes, std::size_t place);

// What is said of a file that cannot hold all that the input's says of its picture.
std::string unheldNote(const std::filesystem::path& output, std::vector<std::string> unheld);

}  // namespace perch
