#include "FrameList.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <unordered_set>

#include "Error.h"
#include "FrameNumber.h"

namespace perch {
namespace {

// From `first` to `last`, which may be the lesser: every step-th frame, or those between them.
struct Range {
    std::int64_t first;
    std::int64_t last;
    std::int64_t step;  // above 0
    bool isComplement;

    std::int64_t distance() const { return std::abs(last - first); }
    // How many frames a walk along the range looks at.
    std::int64_t length() const { return (isComplement ? distance() : distance() / step) + 1; }
};

std::optional<Range> parseRange(std::string_view text) {
    const std::optional<std::int32_t> first = takeFrameNumber(text);
    if (!first) return std::nullopt;
    if (text.empty()) return Range{.first = *first, .last = *first, .step = 1, .isComplement = false};
    if (text.front() != '-') return std::nullopt;
    text.remove_prefix(1);
    const std::optional<std::int32_t> last = takeFrameNumber(text);
    if (!last) return std::nullopt;
    if (text.empty()) return Range{.first = *first, .last = *last, .step = 1, .isComplement = false};
    const char kind = text.front();
    if (kind != 'x' && kind != ':' && kind != 'y') return std::nullopt;
    text.remove_prefix(1);
    const std::optional<std::int32_t> step = takeFrameNumber(text);
    // A descending range may have its step with the sign or without.
    if (!step || *step == 0 || (*step < 0 && *first <= *last) || !text.empty()) return std::nullopt;
    return Range{.first = *first, .last = *last, .step = std::abs(*step), .isComplement = kind == 'y'};
}

Range requireRange(std::string_view text, std::string_view origin) {
    if (const std::optional<Range> range = parseRange(text)) return *range;
    throw UsageError(
        fmt::format("{}: \"{}\" is not a frame or a range; write them like 12, 1-24, 1-24x2 "
                    "or 9-1, with commas between several and numbers up to {}",
                    origin, text, kLastFrame));
}

std::vector<std::string_view> itemsOf(std::string_view text) {
    std::vector<std::string_view> items;
    for (std::size_t comma = text.find(','); comma != std::string_view::npos; comma = text.find(',')) {
        items.push_back(text.substr(0, comma));
        text.remove_prefix(comma + 1);
    }
    items.push_back(text);
    return items;
}

// How many of the frames, one at least, go on in steps as long as the first one.
std::size_t evenRunOf(std::span<const std::int32_t> frames) {
    std::size_t count = std::min<std::size_t>(frames.size(), 2);
    while (count < frames.size() && frames[count] - frames[count - 1] == frames[1] - frames[0])
        ++count;
    return count;
}

}  // namespace

std::vector<std::int32_t> parseFrameList(const std::string& text, std::string_view origin) {
    std::vector<std::int32_t> frames;
    std::unordered_set<std::int32_t> known;
    std::int64_t length = 0;
    for (const std::string_view item : itemsOf(text)) {
        const Range range = requireRange(item, origin);
        length += range.length();
        if (length > static_cast<std::int64_t>(kMostFrames)) {
            throw UsageError(fmt::format("{}: \"{}\" has more than {} frames; ask for fewer at once", origin,
                                         text, kMostFrames));
        }
        const std::int64_t stride = range.isComplement ? 1 : range.step;
        for (std::int64_t offset = 0; offset <= range.distance(); offset += stride) {
            if (range.isComplement && offset % range.step == 0) continue;
            const auto frame =
                static_cast<std::int32_t>(range.first + (range.last < range.first ? -offset : offset));
            if (known.insert(frame).second) frames.push_back(frame);
        }
    }
    if (frames.empty())
        throw UsageError(
            fmt::format("{}: \"{}\" leaves out every frame; \"y2\" takes every other", origin, text));
    return frames;
}

std::string frameListText(std::span<const std::int32_t> frames) {
    std::string text;
    while (!frames.empty()) {
        std::size_t count = evenRunOf(frames);
        const std::int32_t step = count > 1 ? std::abs(frames[1] - frames[0]) : 1;
        if (count == 2 && step != 1) count = 1;
        if (!text.empty()) text += ',';
        text += std::to_string(frames[0]);
        if (count > 1) text += fmt::format("-{}", frames[count - 1]);
        if (count > 1 && step != 1) text += fmt::format("x{}", step);
        frames = frames.subspan(count);
    }
    return text;
}

std::string countedFrames(std::span<const std::int32_t> frames) {
    return fmt::format("{} {}, {}", frames.size(), frames.size() == 1 ? "frame" : "frames",
                       frameListText(frames));
}

}  // namespace perch
