// Pictures drawn through a matrix. What PixelOps.h says of worlds, rectangles and threads holds here too.
#pragma once

#include "PF_World.h"

namespace perch {

class WorkerPool;

// How drawn pixels meet those that are there: a copy (PF_Xfer_COPY), mixed by an opacity of 0 to 1. Other
// transfer modes are PF_Err_BAD_CALLBACK_PARAM.
struct Placement {
    PF_TransferMode mode;
    double opacity;
    bool rgbOnly;  // keeps the alpha of the world that is drawn into
};

// Draws `from` through a matrix: (x, y, 1) * matrix maps source to destination where `sourceToDestination`,
// else the other way. Pixel centres are at halves. A scale is filtered exactly: by area where it shrinks,
// linearly where it grows; other matrices linearly, over several samples where they shrink. Outside the
// source is transparent, except that a scale keeps the edge pixels' colour up to the edge. A matrix without
// an inverse is PF_Err_BAD_CALLBACK_PARAM. A world may be drawn onto itself.
PF_Err transformWorld(const PF_EffectWorld& from, const PF_FloatMatrix& matrix, bool sourceToDestination,
                      const Placement& placement, const PF_Rect* toArea, PF_EffectWorld& to,
                      WorkerPool* workers = nullptr);

}  // namespace perch
