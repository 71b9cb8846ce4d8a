// Renders looks through one instance of the effect. On the thread that loaded it.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "Effect.h"
#include "FramePlan.h"
#include "Look.h"
#include "PictureStore.h"
#include "RenderJob.h"
#include "Sequence.h"
#include "Shot.h"

namespace perch {

// Room for a picture; absent extents are the full size.
struct PictureSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

struct Development {
    World picture;
    std::shared_ptr<const FileWorld> input;
    bool isFull = true;
    std::chrono::nanoseconds decodeTime{0};
    std::chrono::nanoseconds renderTime{0};
};

class Darkroom {
public:
    // Keeps references.
    Darkroom(const Shot& shot, PictureStore& store);

    // What `perch render` would make of the look, or, where there is less room, what it would make by
    // --downsample and --resize. Throws Error; Cancelled where the flag was seen. After an error the next
    // picture is rendered by a new instance.
    Development render(const Look& look, const std::optional<PictureSize>& room,
                       const std::atomic<bool>& cancelled, const std::function<void(double)>& progress);
    // The same without the effect: its input, or one of its layers.
    Development original(const Look& look, const std::optional<PictureSize>& room);
    Development layer(const Look& look, PF_ParamIndex index, const std::optional<PictureSize>& room);

private:
    PF_RationalScale scaleFor(const pictures::Picture& input, const std::optional<PictureSize>& room) const;
    PF_RationalScale fileScale(const PF_RationalScale& preview) const;
    Development develop(const Look& look, const std::optional<PictureSize>& room,
                        const std::function<World(const FrameFiles&, const FrameWorlds&,
                                                  const PF_RationalScale& preview)>& body);

    Effect& effect;
    const RenderSettings& settings;
    const FramePlan& plan;
    PictureStore& store;
    std::unique_ptr<Sequence> sequence;
};

// The product in its lowest terms.
PF_RationalScale product(const PF_RationalScale& a, const PF_RationalScale& b);

}  // namespace perch
