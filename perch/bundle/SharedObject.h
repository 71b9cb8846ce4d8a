// Whether a shared object can be loaded at all, from its header alone.
#pragma once

#include <filesystem>

namespace perch {

// Throws Error where the file is not one, is cut short, or is made for another machine.
void requireLoadable(const std::filesystem::path& path);

}  // namespace perch
