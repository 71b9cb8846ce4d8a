// Whether the bytes of a picture file reach its end. Decoders fill what a cut file lacks and say
// nothing.
#pragma once

#include <span>

#include "FileFormat.h"

namespace pictures {

// Every chunk of a PNG must have its check sum too. Files of formats other than PNG and JPEG are taken to be
// whole.
bool reachesItsEnd(std::span<const unsigned char> bytes, FileFormat format);

// Whether a PNG says that it is 0 pixels wide or high.
bool isEmptyPng(std::span<const unsigned char> bytes, FileFormat format);

}  // namespace pictures
