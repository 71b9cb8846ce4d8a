// What --dry-run prints: a plan, with what is known before anything is rendered.
#pragma once

#include <string>

#include "PlannedJob.h"

namespace perch {

// Both read the pictures of the first frame, and end with a line break. Throw where one cannot be read.
std::string planAsText(const PlannedJob& job);
std::string planAsJson(const PlannedJob& job);

}  // namespace perch
