// What OpenImageIO calls our formats.
#pragma once

#include "FileFormat.h"

namespace pictures {

constexpr const char* libraryName(FileFormat format) {
    switch (format) {
        case FileFormat::Png:
            return "png";
        case FileFormat::Tiff:
            return "tiff";
        case FileFormat::Jpeg:
            return "jpeg";
        case FileFormat::OpenExr:
            return "openexr";
        case FileFormat::Dpx:
            return "dpx";
        case FileFormat::Targa:
            return "targa";
        case FileFormat::WebP:
            return "webp";
    }
    return "";
}

constexpr char kAlphaIsStraight[] = "oiio:UnassociatedAlpha";

}  // namespace pictures
