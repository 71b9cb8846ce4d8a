// Single samples of a world at 16.16 positions, where whole coordinates are pixel centres. Outside the world
// is transparent; colours are weighted by alpha. For any thread.
#pragma once

#include "PF_World.h"

namespace perch {

// Linear between the four nearest pixels.
PF_Err sampleLinear(const PF_EffectWorld& world, PF_Fixed x, PF_Fixed y, PF_Pixel& sample);
PF_Err sampleLinear(const PF_EffectWorld& world, PF_Fixed x, PF_Fixed y, PF_Pixel16& sample);

// The mean over the rectangle that reaches `radiusX` and `radiusY` to each side.
PF_Err sampleArea(const PF_EffectWorld& world, PF_Fixed x, PF_Fixed y, PF_Fixed radiusX, PF_Fixed radiusY,
                  PF_Pixel& sample);
PF_Err sampleArea(const PF_EffectWorld& world, PF_Fixed x, PF_Fixed y, PF_Fixed radiusX, PF_Fixed radiusY,
                  PF_Pixel16& sample);

}  // namespace perch
