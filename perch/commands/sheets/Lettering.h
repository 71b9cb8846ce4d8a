// Letters in pictures, so that labels look the same wherever they are made.
#pragma once

#include <cstdint>
#include <string_view>

#include "World.h"

namespace perch {

// Of one character, the gap behind it and the space under its line included.
constexpr std::int32_t kLetterWidth = 12;
constexpr std::int32_t kLineHeight = 22;

// Writes a line in light grey onto an 8-bit world, its upper left corner at (x, y). What is wider than
// `width` is cut after the last whole character; characters that are not of ASCII's usual ones become
// question marks.
void writeLine(std::string_view text, std::int32_t x, std::int32_t y, std::int32_t width, World& world);

}  // namespace perch
