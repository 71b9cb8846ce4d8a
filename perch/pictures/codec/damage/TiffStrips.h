// Whether the pieces of a TIFF file are whole. The image library reads a compressed piece up to a wrong bit,
// fills the rest with what it makes of it, and says nothing.
#pragma once

#include <span>

namespace pictures {

// Whether a strip or tile of a page, counted from 0, lies outside the file, is deflated and does not come out
// with its own check sum, or is compressed by LZW or PackBits and does not come out as long as it has to be.
// False where the page's directory makes no sense, which readers find.
bool hasDamagedStrip(std::span<const unsigned char> bytes, int page);

}  // namespace pictures
