// What a job's report says before its first frame.
#pragma once

#include <optional>

#include "JobRecord.h"
#include "PlannedJob.h"

namespace perch {

// The frames in the order of their numbers. Those that are up to date are done, by their earlier record where
// there is one.
JobRecord accountOf(const PlannedJob& job, const std::optional<JobRecord>& earlier);

}  // namespace perch
