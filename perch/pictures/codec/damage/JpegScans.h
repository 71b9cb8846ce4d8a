// What the JPEG decoder thinks of a file's scans. The image library does not ask it: wherever the bits lose
// their sense the decoder goes on with what it makes of them, and warns.
#pragma once

#include <span>

namespace pictures {

// Whether the decoder warns of anything in the file, up to its end marker, or gives it up. Takes as long as
// decoding a picture of an eighth of the size, and memory for the whole of a progressive one.
bool hasDamagedScan(std::span<const unsigned char> jpeg);

}  // namespace pictures
