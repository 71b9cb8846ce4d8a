// What the page reads out of a shot's pictures: codes of a pixel, and the shares of a layer that a pick goes
// by.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "DepthRange.h"
#include "Picture.h"
#include "World.h"

namespace perch {

// Red, green, blue and alpha as the file has them: whole codes, or light in floats. Alpha is full where there
// is none.
std::array<double, 4> codesAt(const pictures::Picture& picture, std::int32_t x, std::int32_t y);

// The same of a rendered world, as a file of 8 or 16 bits would have it.
std::array<double, 4> codesAt(const World& world, std::int32_t x, std::int32_t y, bool isFor16Bits);

// From 0 to 1, of a channel by its name as effects' popups have it: "Alpha", "Red", "Green", "Blue",
// "Lightness", "Brightness"; any other is luma.
double shareAt(const pictures::Picture& picture, std::int32_t x, std::int32_t y, const std::string& channel);

// How many pixels have shares around each of 0 to 255 over 255; every pixel of small pictures, and a million
// or so of large ones. What is no number is not counted.
std::vector<std::int64_t> histogramOf(const pictures::Picture& picture, const std::string& channel);

// The scene distance that a share stands for, which the range has made of it.
double distanceOf(double share, const pictures::DepthRange& range);

}  // namespace perch
