// Worlds in and out of picture files. File codes 0 to 65535 become the 0 to 32768 of deep worlds and back,
// rounded to the nearest, so that every value of a deep world survives a file. Alpha is straight in worlds
// and in the files written.
//
// Failures are Error: one sentence that names the file and how to mend it. Any thread.
#pragma once

#include <filesystem>
#include <optional>
#include <span>

#include "PictureFile.h"
#include "World.h"

namespace perch {

using pictures::kFastCompression;
using pictures::kMostCompression;

enum class Depth { Bits8, Bits16 };  // per channel

struct FileWorld {
    World pixels;
    bool hasAlpha = false;  // of the file; without, every pixel is opaque
};

// `depth` is that of the world; absent: the file's.
FileWorld readWorld(const std::filesystem::path& path, std::optional<Depth> depth = std::nullopt);

// As pictures::prepareOutputs.
void prepareOutputs(std::span<const std::filesystem::path> paths);

// Throws unless a file of this name can be expected to hold such a picture.
void requireWritable(const std::filesystem::path& path, Depth depth, bool withAlpha);

// Writes RGB or RGBA at the world's depth, in the format of the ending. The file appears whole or not at all,
// and only then replaces one of the same name.
void writeWorld(const std::filesystem::path& path, const World& world, bool withAlpha,
                int compression = kFastCompression);

// Whether a file without alpha shows the same: no alpha is below white. Codes above white are written as
// white.
bool needsNoAlpha(const World& world);

}  // namespace perch
