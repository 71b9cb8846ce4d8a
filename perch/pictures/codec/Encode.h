// Bytes of files from pictures, through OpenImageIO.
#pragma once

#include <vector>

#include "Codec.h"

namespace pictures {

// As Codec::encode.
std::vector<unsigned char> encode(const Picture& picture, const Encoding& encoding);

}  // namespace pictures
