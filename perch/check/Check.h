// `perch check`: an effect put through the protocol in strict mode, on generated frames of both depths.
#pragma once

#include <filesystem>

namespace perch {

// Prints a verdict per rule to stdout and returns whether all hold. Throws Error when the effect cannot
// be loaded.
bool runCheck(const std::filesystem::path& plugin);

}  // namespace perch
