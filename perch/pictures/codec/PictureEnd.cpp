#include "PictureEnd.h"

#include <cstdint>
#include <string_view>
#include <vector>

#include "PngChunks.h"

namespace pictures {
namespace {

// The big-endian number in the next `size` bytes, which must be there.
std::uint32_t numberAt(std::string_view bytes, std::size_t offset, std::size_t size) {
    std::uint32_t number = 0;
    for (const char byte : bytes.substr(offset, size))
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

// Segment after segment up to the first scan; the end marker follows it. Thumbnails, which end with the same
// marker, lie in segments before.
bool hasJpegEnd(std::string_view bytes) {
    constexpr std::uint32_t kStartOfScan = 0xFFDA;
    constexpr std::uint32_t kFill = 0xFFFF;
    std::size_t segment = 2;
    while (segment + 4 <= bytes.size()) {
        const std::uint32_t marker = numberAt(bytes, segment, 2);
        if (marker == kStartOfScan) return bytes.find("\xFF\xD9", segment) != std::string_view::npos;
        segment += marker == kFill ? 1 : 2 + numberAt(bytes, segment + 2, 2);
    }
    return false;
}

}  // namespace

bool reachesItsEnd(std::span<const unsigned char> bytes, FileFormat format) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (format == FileFormat::Png) {
        const std::vector<PngChunk> chunks = pngChunks(bytes);
        return !chunks.empty() && chunks.back().name == "IEND";
    }
    if (format == FileFormat::Jpeg) return hasJpegEnd(text);
    return true;
}

bool isEmptyPng(std::span<const unsigned char> bytes, FileFormat format) {
    constexpr std::size_t kWidth = 16;
    constexpr std::size_t kHeight = 20;
    if (format != FileFormat::Png || bytes.size() < kHeight + 4) return false;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return numberAt(text, kWidth, 4) == 0 || numberAt(text, kHeight, 4) == 0;
}

}  // namespace pictures
