// What is the same for all frames of a job, and what it makes of a frame's pictures.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Effect.h"
#include "FileWorlds.h"
#include "LayerReading.h"
#include "ParameterSetting.h"
#include "SmartUse.h"
#include "StillLayers.h"
#include "ThreadBudget.h"

namespace perch {

// Values that replace those that parameters have.
using Variant = std::vector<ParameterSetting>;

// The same for all frames of a job.
struct RenderSettings {
    std::string selectedInput;  // of the input's files, a layer or a channel; empty: their first picture
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
    std::optional<std::int64_t> memory;  // bytes for the pictures of all frames at once; absent: any
    ThreadBudget* budget = nullptr;  // of reading, rendering and writing together; the effect has it as well
    bool goesOn = false;             // past a frame that fails
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

// Of a file written. Its samples are of the input's type, unless another is asked for; the nearest that the
// format has.
OutputFormat outputFormat(const RenderSettings& settings, const std::filesystem::path& output,
                          const pictures::Picture& input);

// What is to be said where nobody asked for the type of such a file's samples and the format is the reason
// for it; empty: nothing.
std::string outputNote(const RenderSettings& settings, const std::filesystem::path& output,
                       const pictures::Picture& input);

}  // namespace perch
