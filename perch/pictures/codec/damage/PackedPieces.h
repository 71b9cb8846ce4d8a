// How many bytes a strip or tile of a TIFF file comes out with, without making them: LZW and PackBits have no
// check sum, and a wrong bit shows where a piece does not come out as long as it has to be.
#pragma once

#include <cstdint>
#include <span>

namespace pictures {

// Lengths that a piece may come out with; `padded` is that of the pieces before it where the last is shorter,
// as some programs fill it up.
struct PieceLength {
    bool allows(std::uint64_t made) const { return made == exact || made == padded; }

    std::uint64_t exact = 0;
    std::uint64_t padded = 0;
};

// Whether the codes come out with just that many bytes before the end code. The code may be missing, and
// anything may follow it. Files of before TIFF 6.0, with the bits the other way round, are taken to be whole.
bool isWholeLzw(std::span<const unsigned char> piece, const PieceLength& length);

// The same of runs and literal bytes. A few bytes may follow, or many zeros.
bool isWholePackBits(std::span<const unsigned char> piece, const PieceLength& length);

}  // namespace pictures
