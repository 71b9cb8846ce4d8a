// A plan, with what is known before anything is rendered.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "FramePictures.h"
#include "Notes.h"
#include "PlannedJob.h"

namespace perch {

// "24 frames, 1-24: in.####.png -> out.####.png (3 exist and are replaced)". Of a job that is fed the frames
// are those that may be asked for.
std::string planLine(const FramePlan& plan, const PictureNames& names, bool isFed);

// What --dry-run prints, with a line break at its end. `first` is what the first frame would be rendered
// from, absent where there is none; its files are read once more, for what they hold themselves. Throw where
// one cannot be read. `notes` are of the first frame.
std::string planAsText(const PlannedJob& job, const std::optional<FramePictures>& first);
std::string planAsJson(const PlannedJob& job, const std::optional<FramePictures>& first,
                       const std::vector<Note>& notes);

}  // namespace perch
