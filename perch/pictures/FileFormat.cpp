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
    {".jpg", FileFormat::Jpeg}, {".jpeg", FileFormat::Jpeg}, {".exr", FileFormat::OpenExr},
    {".dpx", FileFormat::Dpx},  {".tga", FileFormat::Targa}, {".webp", FileFormat::WebP},
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
    {"v/1\x01"sv, FileFormat::OpenExr},
    {"SDPX"sv, FileFormat::Dpx},
    {"XPDS"sv, FileFormat::Dpx},
};

struct ForeignMagic {
    std::string_view bytes;
    std::string_view name;
};

constexpr ForeignMagic kForeignMagics[] = {
    {"GIF8"sv, "a GIF"},
    {"BM"sv, "a BMP"},
    {"8BPS"sv, "a PSD"},
};

std::string_view textOf(std::span<const unsigned char> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Older TGA files begin and end with anything. Their header is
//
//     0 length of an identifier   1 with a palette: 0 or 1   2 type   3-7 the palette, all 0 without one
//     8-11 origin   12-13 width   14-15 height   16 bits per pixel   17 alpha's bits and orientation
bool isOldTarga(std::string_view bytes) {
    constexpr std::size_t kHeader = 18;
    constexpr std::string_view kTypes = "\1\2\3\x9\xA\xB";
    constexpr std::string_view kPixelBits = "\x8\xF\x10\x18\x20";
    if (bytes.size() < kHeader) return false;
    const bool hasNoPalette = bytes[1] == 0 && bytes.substr(3, 5) == "\0\0\0\0\0"sv;
    return (hasNoPalette || bytes[1] == 1) && kTypes.find(bytes[2]) != std::string_view::npos &&
           kPixelBits.find(bytes[16]) != std::string_view::npos && bytes.substr(12, 2) != "\0\0"sv &&
           bytes.substr(14, 2) != "\0\0"sv && (static_cast<unsigned char>(bytes[17]) & 0xC0U) == 0;
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
    if (textOf(bytes).starts_with("RIFF") && bytes.size() > 12 && textOf(bytes).substr(8).starts_with("WEBP"))
        return FileFormat::WebP;
    if (textOf(bytes).ends_with("TRUEVISION-XFILE.\0"sv) || isOldTarga(textOf(bytes)))
        return FileFormat::Targa;
    return std::nullopt;
}

std::string_view foreignFormatOf(std::span<const unsigned char> bytes) {
    for (const ForeignMagic& magic : kForeignMagics) {
        if (textOf(bytes).starts_with(magic.bytes)) return magic.name;
    }
    return {};
}

std::string_view nameOf(FileFormat format) {
    switch (format) {
        case FileFormat::Png:
            return "PNG";
        case FileFormat::Tiff:
            return "TIFF";
        case FileFormat::Jpeg:
            return "JPEG";
        case FileFormat::OpenExr:
            return "OpenEXR";
        case FileFormat::Dpx:
            return "DPX";
        case FileFormat::Targa:
            return "TGA";
        case FileFormat::WebP:
            return "WebP";
    }
    return "";
}

std::string_view nameOf(SampleType type) {
    switch (type) {
        case SampleType::Bits8:
            return "8 bits";
        case SampleType::Bits16:
            return "16 bits";
        case SampleType::Half:
            return "half floats";
        case SampleType::Float:
            return "floats";
    }
    return "";
}

bool isWritten(FileFormat format) {
    return format != FileFormat::WebP;
}

bool holds(FileFormat format, SampleType type) {
    switch (format) {
        case FileFormat::Png:
        case FileFormat::Dpx:
            return !isFloat(type);
        case FileFormat::Tiff:
            return type != SampleType::Half;
        case FileFormat::OpenExr:
            return isFloat(type);
        case FileFormat::Jpeg:
        case FileFormat::Targa:
        case FileFormat::WebP:
            return type == SampleType::Bits8;
    }
    return false;
}

std::string_view typesOf(FileFormat format) {
    switch (format) {
        case FileFormat::Png:
        case FileFormat::Dpx:
            return "8 or 16 bits";
        case FileFormat::Tiff:
            return "8 bits, 16 bits or floats";
        case FileFormat::OpenExr:
            return "half floats or floats";
        case FileFormat::Jpeg:
        case FileFormat::Targa:
        case FileFormat::WebP:
            return "8 bits";
    }
    return "";
}

bool holdsAlpha(FileFormat format) {
    return format != FileFormat::Jpeg;
}

bool isAssociated(FileFormat format) {
    return format == FileFormat::OpenExr || format == FileFormat::Dpx;
}

std::optional<SampleType> nearestType(FileFormat format, SampleType type) {
    if (holds(format, type)) return type;
    if (format == FileFormat::OpenExr)
        return type == SampleType::Bits8 ? SampleType::Half : SampleType::Float;
    if (format == FileFormat::Tiff) return SampleType::Float;
    if (holds(format, SampleType::Bits16)) return SampleType::Bits16;
    return std::nullopt;
}

}  // namespace pictures
