// Files as bytes, and the sentences for those that cannot be read or written.
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

namespace pictures {

using FileBytes = std::vector<unsigned char>;

// Throws PictureError, which names the file and how to mend it.
FileBytes readFile(const std::filesystem::path& path);

// `path` without its last part; "." where there is no other.
std::filesystem::path folderOf(const std::filesystem::path& path);

[[noreturn]] void refuseToRead(const std::filesystem::path& path, std::string_view reason);
[[noreturn]] void refuseToWrite(const std::filesystem::path& path, std::string_view reason);

}  // namespace pictures
