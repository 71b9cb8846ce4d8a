// A job that has been planned and not yet begun: what reports are made from.
#pragma once

#include <string>
#include <vector>

#include "ParameterArguments.h"
#include "ParameterOptions.h"
#include "RenderJob.h"

namespace perch {

struct PlannedJob {
    const FramePlan& plan;
    const RenderSettings& settings;
    const std::vector<ParameterOption>& options;
    const ParameterArguments& parameters;
};

const ParameterOption& optionOf(const PlannedJob& job, PF_ParamIndex index);

// "--control-layer"
std::string layerOption(const PlannedJob& job, PF_ParamIndex index);

}  // namespace perch
