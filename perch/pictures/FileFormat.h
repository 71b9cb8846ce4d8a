// The formats of picture files that are read and written.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

#include "Picture.h"

namespace pictures {

enum class FileFormat { Png, Tiff, Jpeg };

// By the ending, in any case of letters.
std::optional<FileFormat> formatOfName(const std::filesystem::path& path);

// By the first bytes, whatever the name says.
std::optional<FileFormat> formatOfBytes(std::span<const unsigned char> bytes);

// "a GIF" for the first bytes of a well-known format that is not read; empty for others.
std::string_view foreignFormatOf(std::span<const unsigned char> bytes);

bool holds(FileFormat format, SampleType type);
bool holdsAlpha(FileFormat format);

}  // namespace pictures
