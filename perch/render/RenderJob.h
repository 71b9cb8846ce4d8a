// What `perch render` does: picture files through one instance of an effect into picture files. While a frame
// renders, the next ones are read and the last ones written, each on a thread of its own.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "Effect.h"
#include "FrameEnd.h"
#include "FramePlan.h"
#include "ParameterCurve.h"
#include "RenderReport.h"
#include "RenderSettings.h"

namespace perch {

// How a caller follows a job. The functions are called on the thread of renderFrames; frameBegins may throw,
// which ends the job, frameProgresses is called from within the effect and must not. frameEnds comes once for
// each frame that was begun, in their order; the frame's file is written then, or never will be. `cancelled`
// may be set from any thread or a signal handler and must outlive the job.
struct RenderWatch {
    const std::atomic<bool>* cancelled = nullptr;
    std::function<void(std::size_t index)> frameBegins;    // of the plan's frames
    std::function<void(double fraction)> frameProgresses;  // 0 to 1
    std::function<void(const FrameEnd& end)> frameEnds;
    // Where it is set, the job asks here which of the plan's frames to render next, by their places, until it
    // answers with none. It is asked when all frames before have ended.
    std::function<std::optional<std::vector<std::size_t>>()> nextFrames;
    // Where it is set, pictures come here instead of to files, frame by frame in each variant.
    std::function<void(const World& picture)> takesPicture;
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
