// What a frame is rendered from, out of its files.
#pragma once

#include <cstddef>
#include <vector>

#include "Effect.h"
#include "FramePictures.h"
#include "FramePlan.h"
#include "LayerReader.h"
#include "ParameterCurve.h"
#include "RenderReport.h"
#include "RenderSettings.h"
#include "StillLayers.h"

namespace perch {

// Keeps references to all that it is made of.
class FrameReader {
public:
    FrameReader(const Effect& effect, const RenderSettings& settings,
                const std::vector<ParameterCurve>& parameters, const FramePlan& plan, bool writesFiles,
                RenderReport& report)
        : effect(effect),
          settings(settings),
          parameters(parameters),
          plan(plan),
          writesFiles(writesFiles),
          report(report) {}

    // Before any frame: finds what the first one decides for all.
    void prepare() { layerReader.findRanges(plan); }

    // Throws Error, which names the frame where the plan is a sequence: where a file of it cannot be read,
    // its pictures do not go together, or its output could not hold what is rendered from them. Any thread.
    FramePictures read(std::size_t index);

private:
    FramePictures picturesOf(std::size_t index);
    void noteSteps(std::size_t index);
    pictures::Transfer transferFor(const pictures::Picture& input);

    const Effect& effect;
    const RenderSettings& settings;
    const std::vector<ParameterCurve>& parameters;
    const FramePlan& plan;
    const bool writesFiles;
    RenderReport& report;
    const PF_RationalScale scale =  // that pictures are resized by
        settings.resizes ? settings.downsample : PF_RationalScale{1, 1};
    LayerReader layerReader{settings.layers, settings.reading, report.notes};
    StillLayers stillLayers{plan.stillLayers, layerReader, scale};
};

}  // namespace perch
