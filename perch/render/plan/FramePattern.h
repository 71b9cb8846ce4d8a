// File names that stand for one file per frame.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace perch {

// A name whose last part has a place for the frame's number, in one of these spellings:
//
//     a.####.png   a.[####].png   a.@@@@.png   a.%04d.png   a.$F4.png   frame 7 is a.0007.png, -7 a.-007.png
//     a.#.png      a.[#].png                   a.%d.png     a.$F.png    frame 7 is a.7.png
//
// Longer numbers take the digits that they need. One '@' alone is no place, for names like "logo@2x.png".
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

}  // namespace perch
