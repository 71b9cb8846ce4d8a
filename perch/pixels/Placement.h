#pragma once

#include "PF_World.h"

namespace perch {

// How drawn pixels meet those that are there. A mode that transferFunction of TransferModes.h has no formula
// for is PF_Err_BAD_CALLBACK_PARAM.
struct Placement {
    PF_TransferMode mode;
    double opacity;  // 0 to 1
    bool rgbOnly;    // keeps the alpha of the world that is drawn into
    // Of the depth of the worlds: where it is opaque the source is drawn, where it is transparent nothing is.
    // It lies over the source, at an offset, and moves with it. Null: none.
    const PF_MaskWorld* mask = nullptr;
};

}  // namespace perch
