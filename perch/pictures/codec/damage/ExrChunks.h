// Whether an OpenEXR file has all that its windows need. The image library takes memory for tables of all
// chunks and for the whole picture before it finds out.
#pragma once

#include <span>

namespace pictures {

// Whether the file is too short for the tables of its parts' chunks, or they are. Of such a file nothing can
// be read.
bool lacksTables(std::span<const unsigned char> bytes);

// Whether a chunk of pixels of a part, counted from 0, has no place in the file, or one outside of it or
// within another chunk. False where the headers make no sense, which readers find, and of parts that are not
// of one sample for each pixel and channel.
bool lacksChunks(std::span<const unsigned char> bytes, int part);

}  // namespace pictures
