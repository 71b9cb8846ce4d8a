// A plan, with what is known before anything is rendered.
#pragma once

#include <string>

#include "PlannedJob.h"

namespace perch {

// "24 frames, 1-24: in.####.png -> out.####.png (3 exist and are replaced)". Of a job that is fed the frames
// are those that may be asked for.
std::string planLine(const FramePlan& plan, const PictureNames& names, bool isFed);

// What --dry-run prints. Both read the pictures of the first frame, and end with a line break. Throw where one
// cannot be read.
std::string planAsText(const PlannedJob& job);
std::string planAsJson(const PlannedJob& job);

}  // namespace perch
