// Lists of frames as users write them:
//
//     12          1-24          9-1               -5--1
//     1,3,5-9     1-100x2       1-100:2, the same
//     1-5y2       2,4: what 1-5x2 leaves out
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace perch {

// In one list, so that a slip of the keyboard does not take the machine's memory.
constexpr std::size_t kMostFrames = 1'000'000;

// The frames in the order they are asked for, each once; never empty. Throws UsageError, which begins with
// where the text is from.
std::vector<std::int32_t> parseFrameList(const std::string& text, std::string_view origin = "--frames");

// A short text of such frames, which may be none.
std::string frameListText(std::span<const std::int32_t> frames);

// "1 frame, 4" or "3 frames, 4,7-8".
std::string countedFrames(std::span<const std::int32_t> frames);

}  // namespace perch
