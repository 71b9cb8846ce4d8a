// What --dry-run prints: a plan, with what is known before anything is rendered.
#pragma once

#include <string>
#include <vector>

#include "ParameterArguments.h"
#include "ParameterOptions.h"
#include "RenderJob.h"

namespace perch {

// What a report is made from.
struct PlannedJob {
    const FramePlan& plan;
    const RenderSettings& settings;
    const std::vector<ParameterOption>& options;
    const ParameterArguments& parameters;
};

// Both read the pictures of the first frame, and end with a line break. Throw where one cannot be read.
std::string planAsText(const PlannedJob& job);
std::string planAsJson(const PlannedJob& job);

}  // namespace perch
