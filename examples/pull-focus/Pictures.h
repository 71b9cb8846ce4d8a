// Picture files in and out of the library's buffers.
//
// A file's 8 bits per channel become Channel8, its 16 bits Channel15: codes 0 to 65535 are mapped to 0 to
// 32768 and back, rounded to the nearest, so that every Channel15 value survives a file. Floats of 0 to 1
// become Channel15 as they are stored. Alpha is straight in buffers, and in all files but OpenEXR and DPX.
//
// Failures are pictures::PictureError, whose what() is one sentence that names the file and how to mend it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DepthRange.h"
#include "FrameBuffer.h"
#include "PictureFile.h"

struct Picture {
    std::unique_ptr<PILib::PixelBuffer> pixels;  // of Pixel<Channel8> or Pixel<Channel15>
    bool hasAlpha = false;                       // without, the file has none and every pixel is opaque
};

// Whether files of the picture have 16 bits per channel, not 8.
bool IsWide(const Picture& picture);

Picture ReadPicture(const std::string& path);

struct ControlFile {
    pictures::SelectedPicture file;
    std::optional<pictures::DepthRange> range{};  // of scene depths; absent: it has values of 0 to 1
};

// The same, converted to the depth of `like` and resampled to its size where they differ: bilinear, pixel
// centres aligned on the frame's edges, colours weighted by alpha.
Picture ReadControl(const ControlFile& control, const Picture& like);

// A picture of the same depth, size and alpha; its pixels are not set.
Picture NewPictureLike(const Picture& picture);

// Throws where the output is one of the inputs, through any links, or cannot be written. Before any work.
void PrepareOutput(const std::string& path, const std::vector<std::string>& inputs);

// Throws unless a file of this name can be expected to hold the picture.
void RequireWritable(const std::string& path, const Picture& picture);

// Writes the format of the ending, RGB or RGBA at the picture's depth, or the nearest that the format has.
// The file appears whole or not at all, and only then replaces one of the same name.
void WritePicture(const std::string& path, const Picture& picture);
