// What a frame's file was made from, in one short word: where it is the same as before, so would be the file.
//
//   Software: perch 1.0.0 [0123456789abcdef], Kestrel: --focal-point 40
//                          '-- of a frame, in the file itself
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "FramePlan.h"
#include "ParameterCurve.h"
#include "RenderJob.h"

namespace perch {

// What the files of a job are made from.
struct FrameSources {
    const FramePlan& plan;
    const RenderSettings& settings;
    const std::vector<ParameterCurve>& parameters;
    bool mayChangeValues = false;  // the effect, by those at the first frame, for all frames
    std::string maker;             // the program, the build of the effect, and what it is told of its host
};

// Of the parameters at the frame, the names, sizes and times of the files it is read from, the settings that
// change pixels or bytes, and the maker.
std::string frameFingerprint(const FrameSources& sources, const FrameFiles& frame);

// Of a file's bytes. Throws Error where it cannot be read.
std::string fileFingerprint(const std::filesystem::path& path);

// What changes whenever a file is written anew.
struct FileState {
    std::uintmax_t bytes = 0;
    std::string time;  // of the last change, in seconds: "1795325000.000000042"

    bool operator==(const FileState&) const = default;
};

// Absent where there is no such file.
std::optional<FileState> fileState(const std::filesystem::path& path);

// What a file says that it was made by, with the frame's fingerprint behind the program's name. Formats that
// keep the start of the text alone keep the fingerprint too.
std::string withFingerprint(const std::string& software, const std::string& fingerprint);
// "" where the text has none.
std::string fingerprintIn(const std::string& software);

}  // namespace perch
