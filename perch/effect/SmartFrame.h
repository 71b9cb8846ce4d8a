// A frame by the two commands of smart rendering. See Effect.h for threads and errors.
#pragma once

#include "FrameRequest.h"
#include "RenderedFrame.h"

namespace perch {

class Host;

// SMART_PRE_RENDER with the whole frame as request, then SMART_RENDER unless the effect promises nothing. The
// request is complete: sizes and values are set. The picture has the size of the request, empty where the
// effect has rendered nothing; what it has rendered beyond is cut off.
RenderedFrame renderSmart(Host& host, const FrameRequest& request, PF_Handle& sequenceData);

}  // namespace perch
