// File names that stand for one file per frame, and ranges of frames.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace perch {

// Frames are numbered from 0 to this.
constexpr std::int32_t kLastFrame = 999'999'999;

// A name whose last part has a place for the frame's number: "shot/beauty.####.png", or
// "shot/beauty.%04d.png". The number is written with at least as many digits as the place has, zeros in
// front.
class FramePattern {
public:
    // Absent where the name has no such place and stands for one file. Throws UsageError where it has two, or
    // one of more than nine digits.
    static std::optional<FramePattern> parse(const std::string& name);

    std::filesystem::path pathOf(std::int32_t frame) const;
    // The numbers of the files that there are, in ascending order; folders are left out. Where the folder
    // cannot be read, or not to its end, those found before.
    std::vector<std::int32_t> framesOnDisk() const;
    std::size_t digits() const { return digitCount; }

private:
    FramePattern(std::filesystem::path folder, std::string before, std::size_t digits, std::string behind);
    std::optional<std::int32_t> frameOf(const std::string& fileName) const;
    std::string fileNameOf(std::int32_t frame) const;

    std::filesystem::path folder;
    std::string before;
    std::string behind;
    std::size_t digitCount;
};

// Every `step`-th frame from `first` on, up to `last`.
struct FrameRange {
    std::int32_t first = 0;
    std::int32_t last = 0;
    std::int32_t step = 1;

    bool operator==(const FrameRange&) const = default;
};

// "12", "1-24" or "1-24x2". Throws UsageError.
FrameRange parseFrameRange(const std::string& text);

}  // namespace perch
