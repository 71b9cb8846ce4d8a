// A world drawn through one matrix and put onto another: separable and exact for scales, sampled for all
// else.
#pragma once

#include "Affine.h"
#include "PF_World.h"
#include "Placement.h"

namespace perch {

class WorkerPool;

// What is drawn replaces the pixels of `area`, which lies in `to`, or mixes with them by the placement's
// opacity; its mode and mask are not looked at. Both worlds have pixels, of one depth, and share none.
void drawWorld(const PF_EffectWorld& from, const Affine& toSource, const Placement& placement,
               const PF_Rect& area, WorkerPool* workers, const PF_EffectWorld& to);

}  // namespace perch
