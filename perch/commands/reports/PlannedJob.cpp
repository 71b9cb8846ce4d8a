#include "PlannedJob.h"

#include <algorithm>

namespace perch {

const ParameterOption& optionOf(const PlannedJob& job, PF_ParamIndex index) {
    return *std::ranges::find(job.options, index,
                              [](const ParameterOption& option) { return option.parameter.index; });
}

std::string layerOption(const PlannedJob& job, PF_ParamIndex index) {
    return "--" + optionOf(job, index).name;
}

}  // namespace perch
