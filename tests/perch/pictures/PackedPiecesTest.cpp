#include "PackedPieces.h"

#include <gtest/gtest.h>

#include <vector>

namespace pictures {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned kClear = 256;
constexpr unsigned kEnd = 257;
constexpr unsigned kFirst = 258;  // that a code may stand for more than a byte

// Codes of 9 bits, the highest first.
Bytes packed(const std::vector<unsigned>& codes) {
    Bytes bytes;
    std::uint32_t buffer = 0;
    int held = 0;
    const auto flush = [&](int least) {
        for (; held >= least; held -= 8)
            bytes.push_back(static_cast<unsigned char>(buffer >> (held - 8)));
    };
    for (const unsigned code : codes) {
        buffer = buffer << 9 | code;
        held += 9;
        flush(8);
    }
    if (held > 0) {
        buffer <<= 8 - held;
        held = 8;
        flush(8);
    }
    return bytes;
}

struct LzwCase {
    const char* name;
    std::vector<unsigned> codes;
    PieceLength length;
    bool isWhole;
};

TEST(PackedPiecesTest, LzwComesOutWithAsManyBytesAsThePieceHas) {
    const LzwCase cases[] = {
        {"four bytes", {kClear, 1, 2, kFirst, kEnd}, {4, 4}, true},
        {"no clear before them", {1, 2, kFirst, kEnd}, {4, 4}, true},
        {"a clear between them", {kClear, 1, 2, kClear, 3, 4, kEnd}, {4, 4}, true},
        {"one too few", {kClear, 1, 2, kFirst, kEnd}, {5, 5}, false},
        {"one too many", {kClear, 1, 2, kFirst, kEnd}, {3, 3}, false},
        {"a code too many", {kClear, 1, 2, kFirst, 3, kEnd}, {4, 4}, false},
        {"none", {}, {4, 4}, false},
        {"end at once", {kEnd}, {4, 4}, false},
        {"no end code", {kClear, 1, 2, kFirst}, {4, 4}, true},
        {"no end code and too few", {kClear, 1, 2}, {4, 4}, false},
        {"zeros in place of the end code", {kClear, 1, 2, kFirst, 0, 0, 0}, {4, 4}, true},
        {"anything behind the end code", {kClear, 1, 2, kFirst, kEnd, 400, 7}, {4, 4}, true},
        {"the last code's string and its first byte", {kClear, 1, kFirst, kEnd}, {3, 3}, true},
        {"a code that stands for nothing yet", {kClear, 1, 2, kFirst + 2, kEnd}, {5, 5}, false},
        {"such a code first", {kClear, kFirst, 1, kEnd}, {3, 3}, false},
        {"a last piece filled up", {kClear, 1, 2, kFirst, kEnd}, {3, 4}, true},
        {"a last piece filled up, no end code", {kClear, 1, 2, kFirst}, {3, 4}, true},
        {"a last piece not filled up", {kClear, 1, 2, 3, kEnd}, {3, 4}, true},
    };
    for (const LzwCase& lzw : cases)
        EXPECT_EQ(isWholeLzw(packed(lzw.codes), lzw.length), lzw.isWhole) << lzw.name;
}

TEST(PackedPiecesTest, LzwOfBeforeTiff6IsTakenToBeWhole) {
    EXPECT_TRUE(isWholeLzw(Bytes{0, 1, 2, 3}, {100, 100}));
}

struct PackBitsCase {
    const char* name;
    Bytes bytes;
    PieceLength length;
    bool isWhole;
};

TEST(PackedPiecesTest, PackBitsComeOutWithAsManyBytesAsThePieceHas) {
    const PackBitsCase cases[] = {
        {"two bytes and a run of three", {1, 7, 8, 254, 9}, {5, 5}, true},
        {"one too few", {1, 7, 8, 254, 9}, {6, 6}, false},
        {"one too many", {1, 7, 8, 254, 9}, {4, 4}, false},
        {"a byte that means nothing", {128, 1, 7, 8, 128, 254, 9, 128}, {5, 5}, true},
        {"cut in the literals", {1, 7}, {2, 2}, false},
        {"cut in a run", {1, 7, 8, 254}, {5, 5}, false},
        {"none", {}, {1, 1}, false},
        {"filled up to a word", {1, 7, 8, 4}, {2, 2}, true},
        {"filled up with zeros", {1, 7, 8, 0, 0, 0, 0, 0, 0}, {2, 2}, true},
        {"more behind it", {1, 7, 8, 254, 9, 254, 9}, {2, 2}, false},
        {"a last piece filled up", {1, 7, 8, 250, 9, 250, 9}, {2, 16}, true},
        {"the longest run", {129, 9}, {128, 128}, true},
    };
    for (const PackBitsCase& packBits : cases)
        EXPECT_EQ(isWholePackBits(packBits.bytes, packBits.length), packBits.isWhole) << packBits.name;
}

}  // namespace
}  // namespace pictures
