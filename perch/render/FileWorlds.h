// Worlds in and out of picture files. File codes 0 to 65535 become the 0 to 32768 of deep worlds and back,
// rounded to the nearest, so that every value of a deep world survives a file. Alpha is straight in worlds.
//
// Failures are Error: one sentence that names the file and how to mend it. Any thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "CodeRows.h"
#include "PictureFile.h"
#include "Transfer.h"
#include "World.h"

namespace perch {

using pictures::kFastCompression;
using pictures::kMostCompression;

enum class Depth { Bits8, Bits16 };  // per channel, of worlds

// A picture as its file has it, and for an effect.
struct FileWorld {
    World pixels;
    std::shared_ptr<const pictures::Picture> source;
    pictures::Transfer transfer = pictures::Transfer::Linear;
    pictures::Clipped clippedPixels{};
};

using SharedPicture = std::shared_ptr<const pictures::Picture>;

SharedPicture readPictureFile(const std::filesystem::path& path, const std::string& selected = {},
                              const pictures::ReadOptions& options = {});

// That keeps the most of the picture.
Depth depthOf(const pictures::Picture& picture);

FileWorld worldOf(const SharedPicture& picture, Depth depth,
                  pictures::Transfer transfer = pictures::Transfer::Linear);

// A picture made smaller by the scale, or as it is for 1/1. Nothing at its edge is cut off: where an extent
// is not whole, the picture is stretched to the next pixel.
FileWorld resized(FileWorld picture, const PF_RationalScale& scale);

// `depth` is that of the world; absent: the file's.
FileWorld readWorld(const std::filesystem::path& path, std::optional<Depth> depth = std::nullopt);

// As those of pictures.
void prepareOutputs(std::span<const std::filesystem::path> paths);
void requirePlaces(std::span<const std::filesystem::path> paths);

struct OutputFormat {
    pictures::SampleType type = pictures::SampleType::Bits8;
    pictures::EncodingOptions encoding;
    bool isDithered = false;  // 8 bits from more
};

// Throws unless a file of this name can hold such a picture.
void requireOutput(const std::filesystem::path& path, pictures::SampleType type, bool withAlpha);

// Writes the world in the format of the ending, with alpha where the source has it or the world is not
// opaque. Pixels that are those of the source are taken from its samples, bit by bit, where the file has
// their type; the transfer is undone unless light in floats was encoded for codes of a file. The file appears
// whole or not at all. Returns what the source's file says of its picture and the format does not hold.
std::vector<std::string> writeWorld(const std::filesystem::path& path, const World& world,
                                    const FileWorld& source, const OutputFormat& format);

// The same for a world that comes from no file.
void writeWorld(const std::filesystem::path& path, const World& world, bool withAlpha,
                const pictures::EncodingOptions& encoding = {});

// What a file of RGBA of that type would hold of the world.
pictures::Picture pictureOf(const World& world, const FileWorld& source, pictures::SampleType type);

// Whether a file without alpha shows the same: no alpha is below white. Codes above white are written as
// white.
bool needsNoAlpha(const World& world);

}  // namespace perch
