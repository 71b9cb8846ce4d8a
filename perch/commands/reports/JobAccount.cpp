#include "JobAccount.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "CurveText.h"
#include "ParameterText.h"

namespace perch {
namespace {

OptionTexts layersOf(const PlannedJob& job, const FrameFiles& files) {
    OptionTexts layers;
    for (const auto* const some : {&files.layers, &job.plan.stillLayers})
        for (const auto& [index, path] : *some)
            layers.emplace_back(layerOption(job, index), path.string());
    for (const auto* const none : {&files.missingLayers, &job.plan.emptyLayers})
        for (const PF_ParamIndex index : *none)
            layers.emplace_back(layerOption(job, index), "none");
    return layers;
}

FrameRecord recordOf(const PlannedJob& job, const FrameFiles& files) {
    FrameRecord record{.frame = files.frame,
                       .input = files.input.string(),
                       .layers = layersOf(job, files),
                       .output = files.output.string(),
                       .fingerprint = files.fingerprint};
    for (const ParameterCurve& curve : job.parameters.curves) {
        const ParameterOption& option = optionOf(job, curve.index);
        record.values.emplace_back("--" + option.name,
                                   valueText(option.parameter, settingAt(curve, files.frame)));
    }
    for (const PF_ParamIndex index : files.missingLayers)
        record.warnings.push_back(fmt::format("{} has no file for this frame", layerOption(job, index)));
    return record;
}

using Records = std::map<std::pair<std::int32_t, std::string>, FrameRecord>;  // by number and output

Records recordsOf(const std::optional<JobRecord>& job) {
    Records records;
    if (!job) return records;
    for (const FrameRecord& frame : job->frames)
        records[{frame.frame, frame.output}] = frame;
    return records;
}

// Of a frame that is up to date. The earlier run may have ended before it could record it.
FrameRecord currentRecord(const FrameRecord& planned, const Records& earlier) {
    const auto found = earlier.find({planned.frame, planned.output});
    const bool isKnown = found != earlier.end() && found->second.fingerprint == planned.fingerprint &&
                         found->second.state == FrameRecord::State::Done;
    FrameRecord record = isKnown ? found->second : planned;
    record.state = FrameRecord::State::Done;
    record.outputState = fileState(record.output);
    return record;
}

}  // namespace

JobRecord accountOf(const PlannedJob& job, const std::optional<JobRecord>& earlier) {
    JobRecord record;
    for (const ParameterCurve& curve : job.parameters.curves) {
        const ParameterOption& option = optionOf(job, curve.index);
        record.parameters.emplace_back("--" + option.name, curveText(option.parameter, curve));
    }
    record.skipped = job.plan.skipped;
    record.notes = sentencesOf(job.plan.notes);
    for (const FrameFiles& files : job.plan.frames)
        record.frames.push_back(recordOf(job, files));
    const Records known = recordsOf(earlier);
    for (const FrameFiles& files : job.plan.current)
        record.frames.push_back(currentRecord(recordOf(job, files), known));
    std::ranges::sort(record.frames, {}, &FrameRecord::frame);
    return record;
}

}  // namespace perch
