#include "JpegSegments.h"

#include <algorithm>

#include "FileText.h"

namespace pictures {
namespace {

// Of the kinds from C0 to CF three are tables.
bool isFrame(const JpegSegment& segment) {
    constexpr unsigned kTables[] = {0xC4, 0xC8, 0xCC};
    return (segment.kind & 0xF0U) == 0xC0 && std::ranges::find(kTables, segment.kind) == std::end(kTables);
}

// Its samples come scan by scan, each more exact than the one before.
bool isProgressive(const JpegSegment& frame) {
    return (frame.kind & 3U) == 2;
}

// 0 beyond the end.
unsigned byteAt(std::string_view data, std::size_t place) {
    return place < data.size() ? static_cast<unsigned char>(data[place]) : 0;
}

}  // namespace

std::vector<JpegSegment> jpegSegments(std::span<const unsigned char> bytes) {
    constexpr std::uint32_t kFill = 0xFFFF;
    constexpr std::uint32_t kShortest = 2;
    std::vector<JpegSegment> segments;
    const std::string_view text = textOf(bytes);
    std::size_t place = 2;
    while (place + 4 <= text.size()) {
        const std::uint32_t marker = bigEndianAt(text, place, 2);
        if (marker == kFill) {
            ++place;
            continue;
        }
        const std::size_t length = std::max(kShortest, bigEndianAt(text, place + 2, 2));
        segments.push_back({marker & 0xFFU, text.substr(place + 4, length - kShortest)});
        if (segments.back().kind == kStartOfScan) break;
        place += 2 + length;
    }
    return segments;
}

std::int64_t coefficientsKept(std::span<const unsigned char> bytes) {
    constexpr std::size_t kComponentsOfFrame = 5;
    constexpr std::size_t kComponentsOfScan = 0;
    const std::vector<JpegSegment> segments = jpegSegments(bytes);
    const auto frame = std::ranges::find_if(segments, isFrame);
    if (frame == segments.end()) return 0;
    const unsigned components = byteAt(frame->data, kComponentsOfFrame);
    const bool isOneScan = byteAt(segments.back().data, kComponentsOfScan) == components;
    return isOneScan && !isProgressive(*frame) ? 0 : components;
}

}  // namespace pictures
