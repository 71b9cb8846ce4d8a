// Picture files in and out of worlds.
//
// PNG, TIFF and JPEG files of 8 or 16 bits per channel are read: grey or RGB, with or without alpha. Without
// alpha a picture is opaque. File codes 0 to 65535 become the 0 to 32768 of deep worlds and back, rounded to
// the nearest, so that every value of a deep world survives a file. Alpha is straight in worlds and in the
// files written; files with premultiplied alpha are divided by it. Profiles, orientation and other metadata
// are neither applied nor carried over.
//
// Failures are Error: one sentence that names the file and how to mend it. Files are read and written from
// any number of threads.
#pragma once

#include <filesystem>
#include <optional>

#include "World.h"

namespace perch {

enum class Depth { Bits8, Bits16 };  // per channel

struct Picture {
    World pixels;
    bool hasAlpha = false;  // of the file; without, every pixel is opaque
};

// `depth` is that of the world; absent: the file's.
Picture readPicture(const std::filesystem::path& path, std::optional<Depth> depth = std::nullopt);

// Throws unless a file of this name can be expected to hold such a picture: its format by the extension must
// have the depth and alpha, and its folder must exist.
void requireWritable(const std::filesystem::path& path, Depth depth, bool withAlpha);

// Of PNG and TIFF files, which lose nothing at any level: from 0, none, to the most. The fast one takes
// much less time than the encoders' own choice, 6, for files somewhat larger; docs/perch.md has the figures.
constexpr int kFastCompression = 2;
constexpr int kMostCompression = 9;

// Writes RGB or RGBA at the world's depth, in the format of the extension. The file appears whole or not at
// all, and only then replaces one of the same name. Any thread.
void writePicture(const std::filesystem::path& path, const World& world, bool withAlpha,
                  int compression = kFastCompression);

// Whether a file without alpha shows the same: no alpha is below white. Codes above white are written as
// white.
bool needsNoAlpha(const World& world);

}  // namespace perch
