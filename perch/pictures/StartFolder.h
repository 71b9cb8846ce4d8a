// The folder that relative names of pictures start from.
#pragma once

#include <filesystem>

namespace pictures {

// From now on it is what is the current folder now, whatever that becomes: an effect may change it while
// other threads read and write. To be called before them.
void keepStartFolder();

// Where a file of that name is.
std::filesystem::path placeOf(const std::filesystem::path& path);

}  // namespace pictures
