// Files as bytes: read whole, and replaced whole or not at all.
#pragma once

#include <filesystem>
#include <span>
#include <vector>

namespace pictures {

using FileBytes = std::vector<unsigned char>;

// Throws PictureError, which names the file and how to mend it.
FileBytes readFile(const std::filesystem::path& path);

// Writes beside the path and renames, so that a file of this name is whole at any moment. Throws
// PictureError.
void replaceFile(const std::filesystem::path& path, std::span<const unsigned char> bytes);

// `path` without its last part; "." where there is no other.
std::filesystem::path folderOf(const std::filesystem::path& path);

[[noreturn]] void refuseToRead(const std::filesystem::path& path, std::string_view reason);
[[noreturn]] void refuseToWrite(const std::filesystem::path& path, std::string_view reason);

}  // namespace pictures
