// Bytes of files from pictures, through OpenImageIO.
#pragma once

#include "Codec.h"

namespace pictures {

// As Codec::encode.
EncodedPicture encode(const Picture& picture, const Encoding& encoding);

}  // namespace pictures
