// The formats of picture files.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

#include "Picture.h"

namespace pictures {

enum class FileFormat { Png, Tiff, Jpeg, OpenExr, Dpx, Targa, WebP };

// By the ending, in any case of letters.
std::optional<FileFormat> formatOfName(const std::filesystem::path& path);

// By the first bytes, whatever the name says; TGA files by their last, or else by a header that makes sense.
std::optional<FileFormat> formatOfBytes(std::span<const unsigned char> bytes);

// "a GIF" for the first bytes of a well-known format that is not read; empty for others.
std::string_view foreignFormatOf(std::span<const unsigned char> bytes);

// "JPEG"
std::string_view nameOf(FileFormat format);
// "16 bits"
std::string_view nameOf(SampleType type);

bool isWritten(FileFormat format);
bool holds(FileFormat format, SampleType type);
// "8 or 16 bits": all that it holds.
std::string_view typesOf(FileFormat format);
bool holdsAlpha(FileFormat format);
// Whether colours are multiplied by alpha in every file of it.
bool isAssociated(FileFormat format);

// `type`, or the type of the format that keeps the most of it; absent where that would be 8 bits of more.
std::optional<SampleType> nearestType(FileFormat format, SampleType type);

}  // namespace pictures
