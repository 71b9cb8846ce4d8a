// What a file claims of its picture is believed within limits, before memory is asked for.
#pragma once

#include <OpenImageIO/imageio.h>

#include <cstdint>
#include <span>

#include "FileFormat.h"
#include "ReadOptions.h"

namespace pictures {

constexpr char kDamaged[] = "it is damaged or cut short; save or copy it again";
constexpr char kEmpty[] = "it has no pixels; save it again";

// What becomes of the file in memory.
struct ClaimedPicture {
    int width = 0;
    int height = 0;
    std::int64_t pixelBytes = 0;
    bool isReadByLibrary = true;
};

// Throws PictureError where reading takes more than is allowed, or the size is more than the file's length
// can stand for.
void requireBelievable(const OIIO::ImageSpec& layout, FileFormat format, const ClaimedPicture& picture,
                       std::span<const unsigned char> bytes, const ReadOptions& options);

// How many rows are to be read at a time: some, as the library holds them a second time while it converts
// them. But all of planes with strips longer than that: planes lie one behind the other, and no reading
// begins again in the middle of a strip.
int rowsAtOnce(const OIIO::ImageSpec& layout);

}  // namespace pictures
