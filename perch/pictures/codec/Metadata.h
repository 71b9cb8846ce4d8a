// What a file says of its picture, in the image library's terms and its own.
#pragma once

#include <OpenImageIO/imageio.h>
#include <OpenImageIO/paramlist.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "FileFormat.h"

namespace pictures {

class Metadata {
public:
    FileFormat format = FileFormat::Png;
    bool isGrey = false;
    // Of an OpenEXR file's display window.
    int originX = 0;
    int originY = 0;
    OIIO::ParamValueList attributes;
    std::string pngChunks;  // of PNG files, those that describe the picture
};

// Whether an attribute says how the samples of its file are stored, which is decided anew for each file.
bool isOfStorage(std::string_view name);

// Whether an attribute tells nothing, as numbers that a file left undefined.
bool isUndefined(const OIIO::ParamValue& value);

std::string firstLine(const std::string& text);

// What the source says and a file that was made from it does not, or says differently, by name. Throws
// PictureError where the file cannot be read.
std::vector<std::string> unheldBy(std::span<const unsigned char> bytes, FileFormat format,
                                  const Metadata& source);

// Pictures a second of a shot; 0 where the file does not tell.
double frameRateOf(const OIIO::ImageSpec& layout);

}  // namespace pictures
