// What a file says of its picture, in the image library's terms and its own.
#pragma once

#include <OpenImageIO/paramlist.h>

#include <string>

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

}  // namespace pictures
