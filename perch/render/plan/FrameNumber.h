// Numbers of frames, as users and file names write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace perch {

constexpr std::int32_t kLastFrame = 999'999'999;
constexpr std::int32_t kFirstFrame = -kLastFrame;

// A whole number of digits alone or with '-' in front, from kFirstFrame to kLastFrame; takes it off the front
// of the text.
std::optional<std::int32_t> takeFrameNumber(std::string_view& text);

}  // namespace perch
