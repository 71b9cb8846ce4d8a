// The chunks of PNG files, which the image library does not pass on as they are.
//
//     signature, 8 bytes
//     length of data, 4 | name, 4 | data | check sum of name and data, 4     as often as there are chunks
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pictures {

struct PngChunk {
    std::string_view name;
    std::string_view data;
    std::string_view whole;  // from the length to the check sum
};

// Up to the end chunk; fewer where the file is cut or the check sum of a chunk is wrong, so that the last is
// IEND where all is well. They point into `bytes`.
std::vector<PngChunk> pngChunks(std::span<const unsigned char> bytes);

// As they are in the file: what describes the picture's colours, its pixels' size and its origin, except the
// time of its last change, what depends on how samples are stored, and the program it was made by.
std::string describingChunks(std::span<const unsigned char> bytes);

// The same one by one.
std::vector<PngChunk> describingChunksIn(const std::string& chunks);

// The file with those chunks in place of its own of their kinds. A colour profile is left out where the file
// is of grey and the chunks are of a file of colours, or the other way round.
std::vector<unsigned char> describedBy(const std::string& chunks, bool keepsProfile,
                                       std::span<const unsigned char> bytes);

// A whole chunk, with length and check sum.
std::string pngChunk(std::string_view name, std::string_view data);

// Behind the first chunk of the file.
void insertChunk(const std::string& chunk, std::vector<unsigned char>& bytes);

}  // namespace pictures
