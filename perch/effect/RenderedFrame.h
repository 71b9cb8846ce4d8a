// One frame as an effect left it.
#pragma once

#include "PF_Types.h"
#include "World.h"

namespace perch {

struct RenderedFrame {
    World picture;
    PF_Point origin{};  // of the input in the picture, where the effect asked for another size
};

}  // namespace perch
