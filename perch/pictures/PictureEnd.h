// Whether a picture file has an end. Decoders fill what a cut file lacks and say nothing, or say it on
// stderr.
#pragma once

#include <filesystem>
#include <string_view>

namespace perch {

// `format` is "png" or "jpeg": such a file is read whole, and has no end where it cannot be read. Files of
// other formats are taken to be whole.
bool reachesItsEnd(const std::filesystem::path& path, std::string_view format);

}  // namespace perch
