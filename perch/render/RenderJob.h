// What `perch render` does: picture files through one instance of an effect into picture files. While a frame
// renders, the next ones are read and the last ones written, each on a thread of its own.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "Effect.h"
#include "FileWorlds.h"
#include "FrameEnd.h"
#include "FramePlan.h"
#include "LayerReading.h"
#include "Notes.h"
#include "ParameterCurve.h"
#include "SmartUse.h"
#include "StillLayers.h"

namespace perch {

// Values that replace those that parameters have.
using Variant = std::vector<ParameterSetting>;

// The same for all frames of a job.
struct RenderSettings {
    LayerReadings layers;
    std::optional<Depth> depth;                      // absent: the deepest of the frame's pictures
    std::optional<pictures::SampleType> outputType;  // absent: that of the input, or of a depth that is given
    std::optional<pictures::Transfer> transfer;      // absent: of floats srgb, else linear
    PF_Quality quality = PF_Quality_HI;
    SmartUse smart = SmartUse::Auto;
    PF_RationalScale downsample{1, 1};  // the pictures are this much smaller than the layer
    bool resizes = false;               // makes the pictures as much smaller, for they are not yet
    pictures::EncodingOptions encoding;
    bool isDithered = false;  // files of 8 bits from more
    pictures::ReadOptions reading;
    // So many frames at most are read ahead, and so many wait to be written; beside the one that renders,
    // they are all that is in memory.
    std::size_t framesAhead = 1;
    bool goesOn = false;  // past a frame that fails
    // So often reading, rendering or writing a frame is tried again; files, which may be on a server, after a
    // pause.
    int retries = 0;
    std::chrono::milliseconds pause{0};
    // Where the watch takes the pictures: each frame is rendered once with each of these.
    std::vector<Variant> variants;
};

// What the settings make of a frame's pictures: the depth of the effect's work, the deepest picture's unless
// one is given, so that a matte of 16 bits stays one beside a beauty of 8; and the curve between light and
// codes.
Depth workDepth(const RenderSettings& settings, const Effect& effect, const pictures::Picture& input,
                const std::vector<LayerPictures>& layers);
pictures::Transfer workTransfer(const RenderSettings& settings, const pictures::Picture& input);

// How a caller follows a job. The functions are called on the thread of renderFrames; frameBegins may throw,
// which ends the job, frameProgresses is called from within the effect and must not. frameEnds comes once for
// each frame that was begun, in their order; the frame's file is written then, or never will be. `cancelled`
// may be set from any thread or a signal handler and must outlive the job.
struct RenderWatch {
    const std::atomic<bool>* cancelled = nullptr;
    std::function<void(std::size_t index)> frameBegins;    // of the plan's frames
    std::function<void(double fraction)> frameProgresses;  // 0 to 1
    std::function<void(const FrameEnd& end)> frameEnds;
    // Where it is set, pictures come here instead of to files, frame by frame in each variant.
    std::function<void(const World& picture)> takesPicture;
};

// What has been done, complete also when the job ends by an exception.
struct RenderReport {
    using Time = std::atomic<std::chrono::nanoseconds::rep>;

    std::atomic<std::size_t> framesWritten{0};
    std::atomic<std::int64_t> pixelsRead{0};
    std::atomic<std::int64_t> pixelsClipped{0};  // of the input, with light that the codes do not reach
    Notes notes;
    Time decodeTime{0};  // processor time
    Time renderTime{0};  // elapsed
    Time encodeTime{0};  // processor time
};

// Renders the frames in order. Throws Error for the first failure, which ends the job, and names the frame
// where the plan is a sequence; where the job goes on, frameEnds tells of the failures of frames instead.
// Throws Cancelled when the flag of `watch` was seen, also between the effect's commands and while a
// file is written, which then is not there. Each output is written whole or not at all; frames before the
// failure stay.
void renderFrames(Effect& effect, const RenderSettings& settings,
                  const std::vector<ParameterCurve>& parameters, const FramePlan& plan,
                  const RenderWatch& watch, RenderReport& report);

}  // namespace perch
