// Conversions of 8-bit colours between RGB and the colour spaces that effects ask a host for. Components
// are 16.16: hue in degrees (0 to 360), the others from 0 to 1, I and Q from -1 to 1. Alpha is kept. For any
// thread.
#pragma once

#include "PF_Types.h"

namespace perch {

void toHls(const PF_Pixel& rgb, PF_Fixed (&hls)[3]);
void fromHls(const PF_Fixed (&hls)[3], PF_Pixel& rgb);
void toYiq(const PF_Pixel& rgb, PF_Fixed (&yiq)[3]);
void fromYiq(const PF_Fixed (&yiq)[3], PF_Pixel& rgb);

A_long luminance100(const PF_Pixel& rgb);  // 100 times 0 to 255
A_long hue255(const PF_Pixel& rgb);        // 0 to 255 around the circle
A_long lightness255(const PF_Pixel& rgb);
A_long saturation255(const PF_Pixel& rgb);

}  // namespace perch
