// The files in which a system looks for the effect's description.
#pragma once

#include <filesystem>
#include <string>

// Info.plist, PkgInfo and Resources/NAME.rsrc in the Contents folder of a bundle.
void WriteBundleResources(const std::filesystem::path& contents, const std::string& name);

// NAME.rc and what it takes in: both forms of the property list, and the version that Explorer shows.
void WriteWindowsResources(const std::filesystem::path& folder, const std::string& name);

// Throws std::runtime_error.
void WriteFile(const std::filesystem::path& path, const std::string& bytes);
