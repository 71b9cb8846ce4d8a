// What the rules of a check are tried on: one effect under one set of options, and generated pictures.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Effect.h"
#include "Error.h"
#include "FrameRequest.h"
#include "World.h"

namespace perch {

// A rule that did not hold, in a sentence's words.
class Failure : public EffectFault {
public:
    using EffectFault::EffectFault;
};

// Throws Failure.
void require(bool condition, const std::string& sentence);

struct Size {
    std::int32_t width;
    std::int32_t height;
};

constexpr Size kUsual{64, 48};

// A picture with soft alpha and detail in every channel; `seed` tells pictures apart.
World generatedPicture(Size size, bool deep, std::uint32_t seed);

// Commands are sent on the thread that makes the trial. One at a time, as of Effect.
class Trial {
public:
    // In strict mode, whatever the options say.
    Trial(const std::filesystem::path& plugin, HostOptions options);

    // A request for a generated frame; the pictures live as long as the trial.
    FrameRequest frame(Size size, bool deep, bool withLayers = true);
    // The same in floating point, brighter than white in places.
    FrameRequest floatFrame(Size size);
    World render(const FrameRequest& request);
    // What of it lies within the frame, where the effect makes it larger or smaller.
    World renderWithinFrame(const FrameRequest& request);

    // Ends the effect; what strict mode found is a Failure, except handles where `toleratesHandles`.
    void end(bool toleratesHandles = false);

    // Throws Failure unless the pictures with these checksums are the same, where the effect promises that.
    void requireSame(std::uint64_t picture, std::uint64_t expected, const std::string& sentence) const;

    // Whether deep, for each depth that the effect declares.
    std::vector<bool> depths() const;

    Effect effect;

private:
    const World& keep(World picture);

    std::vector<std::unique_ptr<World>> pictures;
};

}  // namespace perch
