#include "PictureEnd.h"

#include <string_view>
#include <vector>

#include "FileText.h"
#include "JpegSegments.h"
#include "PngChunks.h"

namespace pictures {
namespace {

// The end marker follows the start of the first scan. Thumbnails, which end with the same marker, lie in
// segments before.
bool hasJpegEnd(std::span<const unsigned char> bytes) {
    const std::vector<JpegSegment> segments = jpegSegments(bytes);
    if (segments.empty() || segments.back().kind != kStartOfScan) return false;
    const std::string_view text = textOf(bytes);
    const auto scan = static_cast<std::size_t>(segments.back().data.data() - text.data());
    return text.find("\xFF\xD9", scan) != std::string_view::npos;
}

}  // namespace

bool reachesItsEnd(std::span<const unsigned char> bytes, FileFormat format) {
    if (format == FileFormat::Png) {
        const std::vector<PngChunk> chunks = pngChunks(bytes);
        return !chunks.empty() && chunks.back().name == "IEND";
    }
    if (format == FileFormat::Jpeg) return hasJpegEnd(bytes);
    return true;
}

bool isEmptyPng(std::span<const unsigned char> bytes, FileFormat format) {
    constexpr std::size_t kWidth = 16;
    constexpr std::size_t kHeight = 20;
    if (format != FileFormat::Png || bytes.size() < kHeight + 4) return false;
    return bigEndianAt(textOf(bytes), kWidth, 4) == 0 || bigEndianAt(textOf(bytes), kHeight, 4) == 0;
}

}  // namespace pictures
