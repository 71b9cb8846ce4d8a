#include "FramePattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

#include "Error.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostDigits = 9;  // of kLastFrame

// Where the number stands in a file name, and how many digits it has there.
struct Place {
    std::size_t begin;
    std::size_t length;
    std::size_t digits;
};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// The place that begins here: a run of '#', "%d" or "%04d".
std::optional<Place> placeAt(std::string_view name, std::size_t begin) {
    const std::string_view rest = name.substr(begin);
    if (rest.starts_with('#')) {
        const std::size_t length = std::min(rest.find_first_not_of('#'), rest.size());
        return Place{begin, length, length};
    }
    if (rest.starts_with("%d")) return Place{begin, 2, 1};
    if (!rest.starts_with("%0")) return std::nullopt;
    std::size_t digits = 0;
    const std::from_chars_result number = std::from_chars(rest.data() + 2, rest.data() + rest.size(), digits);
    const auto end = static_cast<std::size_t>(number.ptr - rest.data());
    if (number.ec != std::errc() || digits == 0 || end >= rest.size() || rest[end] != 'd')
        return std::nullopt;
    return Place{begin, end + 1, digits};
}

std::vector<Place> placesIn(std::string_view name) {
    std::vector<Place> places;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const std::optional<Place> place = placeAt(name, i);
        if (!place) continue;
        places.push_back(*place);
        i += place->length - 1;
    }
    return places;
}

// A whole number of digits alone, up to kLastFrame; takes it off the front of the text.
std::optional<std::int32_t> takeNumber(std::string_view& text) {
    std::int32_t number = 0;
    if (text.empty() || !isDigit(text.front())) return std::nullopt;
    const std::from_chars_result parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || number > kLastFrame) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(parsed.ptr - text.data()));
    return number;
}

// The number behind a sign, where the text goes on with it; `otherwise` where the text has ended.
std::optional<std::int32_t> takeNumberBehind(char sign, std::string_view& text, std::int32_t otherwise) {
    if (text.empty()) return otherwise;
    if (text.front() != sign) return std::nullopt;
    text.remove_prefix(1);
    return takeNumber(text);
}

}  // namespace

FramePattern::FramePattern(fs::path folder, std::string before, std::size_t digits, std::string behind)
    : folder(std::move(folder)), before(std::move(before)), behind(std::move(behind)), digitCount(digits) {}

std::optional<FramePattern> FramePattern::parse(const std::string& name) {
    const fs::path path = name;
    const std::string fileName = path.filename();
    const std::vector<Place> places = placesIn(fileName);
    if (places.empty()) return std::nullopt;
    if (places.size() > 1)
        throw UsageError(fmt::format("\"{}\" has two places for the frame number; leave one", name));
    const Place& place = places.front();
    if (place.digits > kMostDigits) {
        throw UsageError(fmt::format("\"{}\" has {} digits for the frame number; the most is {}", name,
                                     place.digits, kMostDigits));
    }
    return FramePattern(path.parent_path(), fileName.substr(0, place.begin), place.digits,
                        fileName.substr(place.begin + place.length));
}

std::string FramePattern::fileNameOf(std::int32_t frame) const {
    return fmt::format("{}{:0{}}{}", before, frame, digitCount, behind);
}

fs::path FramePattern::pathOf(std::int32_t frame) const {
    return folder / fileNameOf(frame);
}

// Only names as this pattern writes them: "7" is not frame 7 of "####", nor is "00007".
std::optional<std::int32_t> FramePattern::frameOf(const std::string& fileName) const {
    if (!fileName.starts_with(before)) return std::nullopt;
    std::string_view rest = std::string_view(fileName).substr(before.size());
    const std::optional<std::int32_t> frame = takeNumber(rest);
    return frame && fileName == fileNameOf(*frame) ? frame : std::nullopt;
}

std::vector<std::int32_t> FramePattern::framesOnDisk() const {
    std::vector<std::int32_t> frames;
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? fs::path(".") : folder, error);
    while (!error && entry != fs::directory_iterator()) {
        std::error_code unknown;
        const std::optional<std::int32_t> frame = frameOf(entry->path().filename());
        if (frame && !entry->is_directory(unknown)) frames.push_back(*frame);
        entry.increment(error);
    }
    std::ranges::sort(frames);
    return frames;
}

FrameRange parseFrameRange(const std::string& text) {
    std::string_view rest = text;
    const std::optional<std::int32_t> first = takeNumber(rest);
    const std::optional<std::int32_t> last = first ? takeNumberBehind('-', rest, *first) : std::nullopt;
    const std::optional<std::int32_t> step = last ? takeNumberBehind('x', rest, 1) : std::nullopt;
    if (!step || *step == 0 || *last < *first || !rest.empty()) {
        throw UsageError(fmt::format(
            "--frames takes FIRST-LAST or FIRST-LASTxSTEP, like 1-24 or 1-24x2, with numbers from "
            "0 to {}, not \"{}\"",
            kLastFrame, text));
    }
    return {*first, *last, *step};
}

}  // namespace perch
