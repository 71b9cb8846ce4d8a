// Pictures from bytes, through OpenImageIO.
#pragma once

#include <span>
#include <string>

#include "FileFormat.h"
#include "Picture.h"
#include "ReadOptions.h"

namespace pictures {

// As Codec::decode.
Picture decode(std::span<const unsigned char> bytes, FileFormat format, const std::string& selected,
               const ReadOptions& options);

}  // namespace pictures
