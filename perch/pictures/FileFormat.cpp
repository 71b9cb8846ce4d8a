#include "FileFormat.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace pictures {
namespace {

using namespace std::string_view_literals;

struct Ending {
    std::string_view text;
    FileFormat format;
};

constexpr Ending kEndings[] = {
    {".png", FileFormat::Png},  {".tif", FileFormat::Tiff},  {".tiff", FileFormat::Tiff},
    {".jpg", FileFormat::Jpeg}, {".jpeg", FileFormat::Jpeg},
};

struct Magic {
    std::string_view bytes;
    FileFormat format;
};

constexpr Magic kMagics[] = {
    {"\x89PNG\r\n\x1A\n"sv, FileFormat::Png},
    {"\xFF\xD8\xFF"sv, FileFormat::Jpeg},
    {"II*\0"sv, FileFormat::Tiff},
    {"MM\0*"sv, FileFormat::Tiff},
    {"II+\0"sv, FileFormat::Tiff},
    {"MM\0+"sv, FileFormat::Tiff},
};

struct ForeignMagic {
    std::string_view bytes;
    std::string_view name;
};

constexpr ForeignMagic kForeignMagics[] = {
    {"GIF8"sv, "a GIF"},
    {"BM"sv, "a BMP"},
    {"8BPS"sv, "a PSD"},
    {"v/1\x01"sv, "an OpenEXR"},
};

std::string_view textOf(std::span<const unsigned char> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace

std::optional<FileFormat> formatOfName(const std::filesystem::path& path) {
    std::string ending = path.extension().string();
    std::ranges::transform(ending, ending.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto* const found = std::ranges::find(kEndings, ending, &Ending::text);
    return found != std::end(kEndings) ? std::optional(found->format) : std::nullopt;
}

std::optional<FileFormat> formatOfBytes(std::span<const unsigned char> bytes) {
    for (const Magic& magic : kMagics) {
        if (textOf(bytes).starts_with(magic.bytes)) return magic.format;
    }
    return std::nullopt;
}

std::string_view foreignFormatOf(std::span<const unsigned char> bytes) {
    for (const ForeignMagic& magic : kForeignMagics) {
        if (textOf(bytes).starts_with(magic.bytes)) return magic.name;
    }
    return {};
}

bool holds(FileFormat format, SampleType type) {
    return format != FileFormat::Jpeg || type == SampleType::Bits8;
}

bool holdsAlpha(FileFormat format) {
    return format != FileFormat::Jpeg;
}

}  // namespace pictures
