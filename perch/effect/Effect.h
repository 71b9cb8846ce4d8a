// An effect under this host: loads it, declares its parameters, drives its commands in a host's order.
//
//     Effect effect("Kestrel.plugin", HostOptions{});       // GLOBAL_SETUP, PARAMS_SETUP
//     Sequence sequence(effect);                            // SEQUENCE_SETUP
//     FrameRequest request;
//     request.input = &picture;
//     request.values = effect.defaultValues(picture.width(), picture.height());
//     RenderedFrame result = sequence.render(request);      // FRAME_SETUP, RENDER, FRAME_SETDOWN
//     std::vector<std::byte> saved = sequence.flatten();    // SEQUENCE_FLATTEN, SEQUENCE_RESETUP
//
// Every object sends its tear-down when it is destroyed, after errors as well, and destructors never throw.
// Commands are sent on the calling thread, which must be the one that made the Effect. One Effect at a time
// per process: most callbacks carry nothing that would tell two hosts apart.
// A command that fails throws EffectError, or Cancelled when the user's cancel was the reason.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "CommandResult.h"
#include "EffectDescription.h"
#include "Finding.h"
#include "HostOptions.h"
#include "ParameterValues.h"

namespace perch {

class Host;

class Effect {
public:
    // Throws Error when the file cannot be loaded or is of a kind that this host declines.
    Effect(const std::filesystem::path& plugin, HostOptions options);
    // An effect of this process; `description` needs nothing but what the caller wants to read back.
    Effect(PF_EntryPoint entryPoint, EffectDescription description, HostOptions options);
    ~Effect();  // GLOBAL_SETDOWN
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;

    const EffectDescription& description() const;
    // The values of a fresh instance for pictures of that size, by whose pixels points are placed.
    ParameterValues defaultValues(std::int32_t width, std::int32_t height) const;
    bool supportsDeepColor() const;
    bool supportsSmartRender() const;
    bool supportsFloatColor() const;  // on the smart way alone

    // Has the effect print the defaults of parameters whose values only it understands, for description().
    void printDefaults();

    std::string about();
    // Any command, outside of a frame, with the current data; for hostile orders. Never throws for errors.
    CommandResult send(PF_Cmd command, void* extra = nullptr);

    // GLOBAL_SETDOWN now, so that findings are complete; the effect takes no commands afterwards. Throws
    // EffectBroke where the effect let an exception out in a command whose failure nobody was told of.
    void close();
    // What strict mode has found so far, in order. Readable after close().
    const std::vector<Finding>& findings() const;

private:
    friend class Sequence;
    friend class Frame;
    std::unique_ptr<Host> host;
};

}  // namespace perch
