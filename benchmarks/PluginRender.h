// The plug-in as a host meets it: its binary loaded, one instance set up, and frames rendered by commands.
// One at a time per process, as the host allows no more.
#pragma once

#include <chrono>

#include "Effect.h"
#include "FrameBuffer.h"
#include "Sequence.h"

namespace bench {

// A copy of the picture in the host's memory.
template <class C>
perch::World WorldOf(const PILib::PixelBuf<PILib::Pixel<C>>& picture);

struct PluginSettings {
    bool fine = false;
    int radius = 50;  // "Maximum Blur", pixels
    int threads = 1;
};

class PluginRender {
public:
    // The worlds are borrowed. Throws perch::Error when the plug-in cannot be loaded.
    PluginRender(const perch::World& input, const perch::World& control, const PluginSettings& settings);

    // Renders one frame and returns the seconds that the effect's RENDER command took: with the host's
    // bookkeeping of one command, without its pictures.
    double secondsOfFrame();

private:
    using Clock = std::chrono::steady_clock;

    perch::HostOptions timedOptions(int threads);

    Clock::time_point renderStart;
    perch::Effect effect;
    perch::Sequence sequence;
    perch::FrameRequest request;
};

}  // namespace bench
