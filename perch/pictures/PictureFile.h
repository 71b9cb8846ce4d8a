// Picture files: PNG, TIFF, OpenEXR, DPX, TGA, JPEG and, read alone, WebP; grey or RGB, with or without
// alpha; or a layer of an OpenEXR file, or one channel of any file.
//
// Failures are PictureError: one sentence that names the file and how to mend it. Any thread.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "Codec.h"
#include "Picture.h"

namespace pictures {

// Of the width and height: more than any frame has. Keeps a hostile size from taking the machine's memory.
constexpr std::int32_t kLargestExtent = 30000;

// Opens the file once and decodes its bytes from memory. `selected` names a layer or a channel; without it
// the picture is the file's first.
Picture readPicture(const std::filesystem::path& path, const std::string& selected = {},
                    const ReadOptions& options = {});

// A file and what of it is read, as "shot.####.exr:beauty" or "shot.####.exr:Z" names them.
struct SelectedPicture {
    std::string path;
    std::string selected;  // a layer or a channel; empty: the file's first picture
};
SelectedPicture parseSelectedPicture(const std::string& text);

// Throws unless a file of this name can hold such a picture: its format by the ending must have the type and
// alpha.
void requireFormatFor(const std::filesystem::path& path, SampleType type, bool withAlpha);

// Throws unless such a file can be expected to be written: its folder must exist as well.
void requireWritable(const std::filesystem::path& path, SampleType type, bool withAlpha);

// Throws where a job could not write one of its outputs: the ending names no format, the folder or the file
// cannot be written. Makes folders whose parent exists. To be called once, before the job's work; later
// failures are those of a picture or of a disk that is full.
void prepareOutputs(std::span<const std::filesystem::path> paths);

// Throws where that would, as far as it can be told without a change.
void requirePlaces(std::span<const std::filesystem::path> paths);

// Throws where the output is one of the inputs, however the two are spelled and through any links.
void requireNotRead(const std::filesystem::path& output, std::span<const std::filesystem::path> inputs);

// Writes the picture in the format of the ending. The file appears whole or not at all, and only then
// replaces one of the same name. Returns what the picture's own file says of it and the format does not hold.
std::vector<std::string> writePicture(const std::filesystem::path& path, const Picture& picture,
                                      const EncodingOptions& options = {});

}  // namespace pictures
