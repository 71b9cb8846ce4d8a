// The segments of JPEG files before their first scan.
//
//     FF D8
//     FF, kind | length of itself and the data, 2 | data     as often as there are segments; FF may be
//     repeated
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace pictures {

constexpr unsigned kStartOfScan = 0xDA;

struct JpegSegment {
    unsigned kind = 0;
    std::string_view data;
};

// Up to the start of the first scan, which is the last of them unless the file is cut before. They point into
// `bytes`.
std::vector<JpegSegment> jpegSegments(std::span<const unsigned char> bytes);

// How many numbers per pixel the decoder keeps until it has read all scans; 0 where there is one scan alone.
std::int64_t coefficientsKept(std::span<const unsigned char> bytes);

}  // namespace pictures
