// A drawn picture put onto the pixels that are there, by the formulas of TransferModes.h.
#pragma once

#include "PF_World.h"
#include "Placement.h"
#include "World.h"

namespace perch {

class WorkerPool;

// Whether the mask can lie over pictures of the depth of `to`; none (null) can.
bool isUsableMask(const PF_MaskWorld* mask, const PF_EffectWorld& to);

// How much of each pixel of the source shows, as the alpha of a world of the source's size and depth.
World coverageOf(const PF_MaskWorld& mask, const PF_EffectWorld& source);

// Puts a picture onto an area of its size. What shows of it is `coverage`, of that size too, or all where
// that is null; the mask of the placement is not looked at. All worlds have one depth.
void transferPixels(const World& drawn, const World* coverage, const Placement& placement,
                    const PF_Rect& area, WorkerPool* workers, const PF_EffectWorld& to);

}  // namespace perch
