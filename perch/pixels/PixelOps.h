// What a host does with pictures for an effect: mixing, copying, filling, premultiplying, compositing.
//
// All work on worlds of one depth, 8 bits, 16 bits or floating point, with straight colour. Worlds of
// different depths are PF_Err_BAD_CALLBACK_PARAM and nothing is written. A world has pixels, or no size; into
// or from one without a size nothing is drawn. Rectangles are clipped to their world; null is the whole of
// it. Results do not depend on the machine, on rows' padding or on the workers, which may be null: the
// calling thread alone. Any thread, one writer per world.
#pragma once

#include "PF_World.h"
#include "Placement.h"

namespace perch {

class WorkerPool;

// Mixes two worlds of the size of `to`, which may be either, weighted by alpha: ratio 0 is `a` and 65536 is
// `b`, exactly.
PF_Err blendWorlds(const PF_EffectWorld& a, const PF_EffectWorld& b, PF_Fixed ratio, PF_EffectWorld& to);

// Copies a part onto a part; where their sizes differ the nearest pixel is taken, or a filtered one.
PF_Err copyWorld(const PF_EffectWorld& from, const PF_Rect* fromArea, PF_EffectWorld& to,
                 const PF_Rect* toArea);
PF_Err copyWorldFiltered(const PF_EffectWorld& from, const PF_Rect* fromArea, PF_EffectWorld& to,
                         const PF_Rect* toArea, WorkerPool* workers = nullptr);

// A null colour is transparent black. The colour has the depth of the world.
PF_Err fillWorld(const PF_Pixel* color, const PF_Rect* area, PF_EffectWorld& world);
PF_Err fillWorld(const PF_Pixel16* color, const PF_Rect* area, PF_EffectWorld& world);
PF_Err fillWorld(const PF_PixelFloat* color, const PF_Rect* area, PF_EffectWorld& world);

// Colours times alpha, or divided by it, in place. With a colour: matted against that colour instead of
// black.
PF_Err premultiplyWorld(bool forward, PF_EffectWorld& world);
PF_Err premultiplyWorld(const PF_EffectWorld& from, const PF_Pixel& color, bool forward, PF_EffectWorld& to);
PF_Err premultiplyWorld(const PF_EffectWorld& from, const PF_Pixel16& color, bool forward,
                        PF_EffectWorld& to);
PF_Err premultiplyWorld(const PF_EffectWorld& from, const PF_PixelFloat& color, bool forward,
                        PF_EffectWorld& to);

// Puts a part of `from` with its corner at (x, y) of `to`.
PF_Err compositeWorld(const PF_EffectWorld& from, const PF_Rect* fromArea, const Placement& placement,
                      A_long x, A_long y, PF_EffectWorld& to, WorkerPool* workers = nullptr);

}  // namespace perch
