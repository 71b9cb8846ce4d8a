#include "FramePattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string_view>
#include <system_error>

#include "Error.h"
#include "FrameNumber.h"

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

// A run of one character.
std::optional<Place> runAt(std::string_view name, std::size_t begin, char c) {
    const std::size_t length = std::min(name.find_first_not_of(c, begin), name.size()) - begin;
    if (length == 0) return std::nullopt;
    return Place{begin, length, length};
}

// "[####]".
std::optional<Place> bracketsAt(std::string_view name, std::size_t begin) {
    const std::optional<Place> inside = runAt(name, begin + 1, '#');
    if (!inside || !name.substr(inside->begin + inside->length).starts_with(']')) return std::nullopt;
    return Place{begin, inside->length + 2, inside->digits};
}

// What stands behind "%" or "$F": a number of digits, if any, up to `end`.
std::optional<Place> countAt(std::string_view name, std::size_t begin, std::size_t numberBegin) {
    std::size_t digits = 0;
    const char* const text = name.data();
    const std::from_chars_result number = std::from_chars(text + numberBegin, text + name.size(), digits);
    if (number.ec != std::errc() || digits == 0) return std::nullopt;
    return Place{begin, static_cast<std::size_t>(number.ptr - text) - begin, digits};
}

// "%d" or "%04d".
std::optional<Place> percentAt(std::string_view name, std::size_t begin) {
    if (name.substr(begin).starts_with("%d")) return Place{begin, 2, 1};
    if (!name.substr(begin).starts_with("%0")) return std::nullopt;
    std::optional<Place> place = countAt(name, begin, begin + 2);
    if (!place || !name.substr(begin + place->length).starts_with('d')) return std::nullopt;
    ++place->length;
    return place;
}

// "$F4", or "$F" where no other letter or digit makes it another word.
std::optional<Place> dollarAt(std::string_view name, std::size_t begin) {
    if (!name.substr(begin).starts_with("$F")) return std::nullopt;
    if (const std::optional<Place> place = countAt(name, begin, begin + 2)) return place;
    const char next = begin + 2 < name.size() ? name[begin + 2] : '.';
    const bool isWord = std::isalnum(static_cast<unsigned char>(next)) != 0 || next == '_';
    return isWord ? std::nullopt : std::optional(Place{begin, 2, 1});
}

std::optional<Place> placeAt(std::string_view name, std::size_t begin) {
    switch (name[begin]) {
        case '#':
            return runAt(name, begin, '#');
        case '[':
            return bracketsAt(name, begin);
        case '@':
            return name.substr(begin).starts_with("@@") ? runAt(name, begin, '@') : std::nullopt;
        case '%':
            return percentAt(name, begin);
        case '$':
            return dollarAt(name, begin);
        default:
            return std::nullopt;
    }
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
    const std::optional<std::int32_t> frame = takeFrameNumber(rest);
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

}  // namespace perch
