// Runs other programs that make pictures: oiiotool, ImageMagick's convert, ffmpeg, exiftool.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace perch::test {

// A line for the shell, in that folder.
inline void runTool(const std::filesystem::path& folder, const std::string& line) {
    // Not the memory checker's own settings, should it be one of the test's.
    const std::string command = "cd '" + folder.string() +
                                "' && env -u LD_PRELOAD PATH=/usr/bin:/bin sh -c '" + line +
                                "' > tool.log 2>&1";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("failed: " + line);  // NOLINT(cert-env33-c)
}

}  // namespace perch::test
