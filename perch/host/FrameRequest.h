// One frame as it is asked of an effect.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>

#include "PF_Entry.h"
#include "PF_Values.h"
#include "ParameterValues.h"
#include "SmartUse.h"
#include "World.h"

namespace perch {

// What one frame is rendered from. Pictures are borrowed and must outlive the Frame. A picture stands for
// all times, and the same holds for the values: a checkout at another time answers with the same.
struct FrameRequest {
    std::int32_t frame = 0;        // number told in errors
    const World* input = nullptr;  // required
    // Per layer parameter. Null: none; absent: what the parameter has by default, none or this layer itself.
    std::map<PF_ParamIndex, const World*> layers;
    ParameterValues values;  // empty: the defaults

    std::int32_t time = 0;  // in units of 1 / timeScale s, as the three below
    std::int32_t timeStep = 1;
    std::int32_t localTimeStep = 1;
    std::int32_t totalTime = 1;
    std::uint32_t timeScale = 24;

    // Of the output; 0: as the input. The effect may ask for another size at FRAME_SETUP.
    std::int32_t outputWidth = 0;
    std::int32_t outputHeight = 0;
    std::int32_t outputOriginX = 0;  // the input's origin in the output, pixels
    std::int32_t outputOriginY = 0;
    std::int32_t outputRowPadding = 0;  // bytes at the end of each output row, a multiple of the pixel size
    // Of the source layer at full resolution; 0: the input's size divided by the downsampling.
    std::int32_t fullWidth = 0;
    std::int32_t fullHeight = 0;
    PF_RationalScale downsampleX{1, 1};
    PF_RationalScale downsampleY{1, 1};
    PF_RationalScale pixelAspectRatio{1, 1};
    PF_Quality quality = PF_Quality_HI;
    SmartUse smart = SmartUse::Auto;  // floating-point pictures are always rendered the smart way

    const std::atomic<bool>* cancelled = nullptr;   // may be set from any thread or a signal handler
    std::function<void(double fraction)> progress;  // on the calling thread, 0 to 1
};

// A FrameRequest's full extent: as given, else the picture's `extent` divided by `scale`, or the largest that
// there is where that is larger.
std::int32_t fullExtent(std::int32_t given, std::int32_t extent, const PF_RationalScale& scale);

}  // namespace perch
