// Pictures drawn through a matrix. What PixelOps.h says of worlds, rectangles and threads holds here too.
#pragma once

#include <span>

#include "PF_World.h"
#include "Placement.h"

namespace perch {

class WorkerPool;

// Draws `from` through a matrix: (x, y, 1) * matrix maps source to destination where `sourceToDestination`,
// else the other way. Pixel centres are at halves. A scale is filtered exactly: by area where it shrinks,
// linearly where it grows; other matrices linearly, over several samples where they shrink. Outside the
// source is transparent, except that a scale keeps the edge pixels' colour up to the edge. Several matrices
// give the mean of what each draws. A matrix without an inverse is PF_Err_BAD_CALLBACK_PARAM. A world may be
// drawn onto itself.
PF_Err transformWorld(const PF_EffectWorld& from, std::span<const PF_FloatMatrix> matrices,
                      bool sourceToDestination, const Placement& placement, const PF_Rect* toArea,
                      PF_EffectWorld& to, WorkerPool* workers = nullptr);

inline PF_Err transformWorld(const PF_EffectWorld& from, const PF_FloatMatrix& matrix,
                             bool sourceToDestination, const Placement& placement, const PF_Rect* toArea,
                             PF_EffectWorld& to, WorkerPool* workers = nullptr) {
    return transformWorld(from, std::span(&matrix, 1), sourceToDestination, placement, toArea, to, workers);
}

}  // namespace perch
