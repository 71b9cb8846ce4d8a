// A picture as JPEG for a screen that shows it for a moment: made as fast as it can be, with nothing of what
// files hold beside samples.
#pragma once

#include <vector>

#include "Picture.h"

namespace pictures {

// Of 8 bits, red, green, blue and alpha, which is left out. Throws PictureError.
std::vector<unsigned char> screenJpeg(const Picture& picture);

}  // namespace pictures
