#include "TiffStrips.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "PackedPieces.h"

namespace pictures {
namespace {

// What the file says of one of its pages.
//
//     classic  order and 42, 4 | place, 4               big  order and 43, 4 | 8, 4 | place, 8
//       of a directory of entries, with the place of the next page's directory behind them:
//              count, 2 | entries of 12 | place, 4             count, 8 | entries of 20 | place, 8
//       an entry:
//              tag 2, type 2, count 4, value 4                 tag 2, type 2, count 8, value 8
//
// A value that does not fit lies elsewhere, and its place takes the value's.
class Directory {
public:
    Directory(std::span<const unsigned char> bytes, int page) : bytes(bytes) {
        if (bytes.size() < 16) return;
        isBigEndian = bytes[0] == 'M';
        isBig = number(2, 2) == 43;
        open(isBig ? number(8, 8) : number(4, 4));
        for (; page > 0; --page)
            open(number(firstEntry + entries * entrySize(), placeSize()));
    }

    // The first number of a tag.
    std::uint64_t numberOf(std::uint64_t tag, std::uint64_t otherwise) const {
        const std::vector<std::uint64_t> numbers = numbersOf(tag);
        return numbers.empty() ? otherwise : numbers.front();
    }

    // All numbers of a tag, none where the file has none.
    std::vector<std::uint64_t> numbersOf(std::uint64_t tag) const {
        for (std::uint64_t i = 0; i < entries; ++i) {
            const std::uint64_t entry = firstEntry + i * entrySize();
            if (number(entry, 2) == tag) return numbersAt(entry);
        }
        return {};
    }

private:
    std::size_t entrySize() const { return isBig ? 20 : 12; }
    std::size_t placeSize() const { return isBig ? 8 : 4; }

    void open(std::uint64_t place) {
        const std::size_t countSize = isBig ? 8 : 2;
        firstEntry = place + countSize;
        entries = std::min(number(place, countSize), bytes.size() / entrySize());
    }

    std::vector<std::uint64_t> numbersAt(std::uint64_t entry) const {
        const std::size_t size = sizeOf(number(entry + 2, 2));
        const std::uint64_t count = number(entry + 4, placeSize());
        std::uint64_t place = entry + 4 + placeSize();
        if (size == 0 || count > bytes.size() / size) return {};
        if (count * size > placeSize()) place = number(place, placeSize());
        std::vector<std::uint64_t> numbers;
        for (std::uint64_t i = 0; i < count; ++i)
            numbers.push_back(number(place + i * size, size));
        return numbers;
    }

    // Of the types that places and lengths have.
    static std::size_t sizeOf(std::uint64_t type) {
        if (type == 3) return 2;
        if (type == 4) return 4;
        return type == 16 ? 8 : 0;
    }

    // 0 beyond the end.
    std::uint64_t number(std::uint64_t place, std::size_t size) const {
        if (place > bytes.size() || size > bytes.size() - place) return 0;
        std::uint64_t result = 0;
        for (std::size_t i = 0; i < size; ++i)
            result = result << 8 | bytes[place + (isBigEndian ? i : size - 1 - i)];
        return result;
    }

    std::span<const unsigned char> bytes;
    bool isBigEndian = false;
    bool isBig = false;
    std::uint64_t firstEntry = 0;
    std::uint64_t entries = 0;
};

// Inflates to nowhere; the stream ends with a check sum of what came out.
bool isWholeStream(std::span<const unsigned char> deflated) {
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) return true;
    std::array<unsigned char, 1 << 16> scratch{};
    stream.next_in = const_cast<unsigned char*>(deflated.data());
    stream.avail_in = static_cast<uInt>(deflated.size());
    int state = Z_OK;
    while (state == Z_OK) {
        stream.next_out = scratch.data();
        stream.avail_out = static_cast<uInt>(scratch.size());
        state = inflate(&stream, Z_NO_FLUSH);
    }
    inflateEnd(&stream);
    return state == Z_STREAM_END;
}

// How the pixels of a page lie in its strips or tiles, which come row after row; where each channel is stored
// by itself, all of the first channel's before those of the next.
class Pieces {
public:
    explicit Pieces(const Directory& directory) {
        constexpr std::uint64_t kWidth = 256;
        constexpr std::uint64_t kHeight = 257;
        constexpr std::uint64_t kBits = 258;
        constexpr std::uint64_t kChannels = 277;
        constexpr std::uint64_t kRowsPerStrip = 278;
        constexpr std::uint64_t kPlanes = 284;
        constexpr std::uint64_t kTileWidth = 322;
        constexpr std::uint64_t kTileHeight = 323;
        constexpr std::uint64_t kAnyHeight = 0xFFFFFFFF;
        const std::uint64_t channels = directory.numberOf(kChannels, 1);
        const bool isPlanar = directory.numberOf(kPlanes, 1) == 2;
        isTiled = directory.numberOf(kTileWidth, 0) != 0;
        height = directory.numberOf(kHeight, 0);
        bits = directory.numberOf(kBits, 1) * (isPlanar ? 1 : channels);
        width = isTiled ? directory.numberOf(kTileWidth, 0) : directory.numberOf(kWidth, 0);
        rows = isTiled ? directory.numberOf(kTileHeight, 0)
                       : std::min(directory.numberOf(kRowsPerStrip, kAnyHeight), height);
    }

    PieceLength lengthOf(std::size_t piece) const {
        const std::uint64_t rowBytes = (width * bits + 7) / 8;
        const std::uint64_t padded = rows * rowBytes;
        if (isTiled || rows == 0) return {padded, padded};
        const std::uint64_t strips = height / rows + (height % rows != 0 ? 1 : 0);
        const std::uint64_t top = piece % strips * rows;
        return {std::min(rows, height - top) * rowBytes, padded};
    }

private:
    bool isTiled = false;
    std::uint64_t width = 0;   // of a row of a piece
    std::uint64_t height = 0;  // of the page
    std::uint64_t rows = 0;
    std::uint64_t bits = 0;  // of a pixel
};

enum class Packing { Other, Lzw, PackBits, Deflate };

Packing packingOf(const Directory& directory) {
    constexpr std::uint64_t kCompression = 259;
    switch (directory.numberOf(kCompression, 1)) {
        case 5:
            return Packing::Lzw;
        case 32773:
            return Packing::PackBits;
        case 8:
        case 32946:  // before it was registered
            return Packing::Deflate;
        default:
            return Packing::Other;
    }
}

// With the lowest bit of each byte first.
std::vector<unsigned char> reversed(std::span<const unsigned char> bytes) {
    std::vector<unsigned char> result(bytes.begin(), bytes.end());
    for (unsigned char& byte : result) {
        unsigned turned = 0;
        for (unsigned rest = byte, bit = 0; bit < 8; ++bit, rest >>= 1)
            turned = turned << 1 | (rest & 1);
        byte = static_cast<unsigned char>(turned);
    }
    return result;
}

// What may be wrong with the pieces of one page.
class PieceCheck {
public:
    explicit PieceCheck(const Directory& directory)
        : packing(packingOf(directory)),
          pieces(directory),
          isReversed(directory.numberOf(kFillOrder, 1) == 2),
          hasKnownLengths(directory.numberOf(kColours, 0) != kLumaAndChroma) {}

    bool isWhole(std::span<const unsigned char> piece, std::size_t index) const {
        return isReversed ? isWholeTurned(reversed(piece), index) : isWholeTurned(piece, index);
    }

private:
    // With the highest bit of each byte first.
    bool isWholeTurned(std::span<const unsigned char> piece, std::size_t index) const {
        if (packing == Packing::Other) return true;
        if (packing == Packing::Deflate) return isWholeStream(piece);
        if (!hasKnownLengths) return true;
        const PieceLength length = pieces.lengthOf(index);
        return packing == Packing::Lzw ? isWholeLzw(piece, length) : isWholePackBits(piece, length);
    }

    static constexpr std::uint64_t kFillOrder = 266;
    static constexpr std::uint64_t kColours = 262;
    static constexpr std::uint64_t kLumaAndChroma = 6;  // which may have fewer samples of chroma

    Packing packing;
    Pieces pieces;
    bool isReversed;
    bool hasKnownLengths;
};

}  // namespace

bool hasDamagedStrip(std::span<const unsigned char> bytes, int page) {
    constexpr std::uint64_t kStripPlaces = 273;
    constexpr std::uint64_t kStripSizes = 279;
    constexpr std::uint64_t kTilePlaces = 324;
    constexpr std::uint64_t kTileSizes = 325;
    const Directory directory(bytes, page);
    const PieceCheck check(directory);
    std::vector<std::uint64_t> places = directory.numbersOf(kStripPlaces);
    std::vector<std::uint64_t> sizes = directory.numbersOf(kStripSizes);
    if (places.empty()) {
        places = directory.numbersOf(kTilePlaces);
        sizes = directory.numbersOf(kTileSizes);
    }
    for (std::size_t i = 0; i < std::min(places.size(), sizes.size()); ++i) {
        if (sizes[i] == 0) continue;  // stands for black
        if (places[i] > bytes.size() || sizes[i] > bytes.size() - places[i]) return true;
        if (!check.isWhole(bytes.subspan(places[i], sizes[i]), i)) return true;
    }
    return false;
}

}  // namespace pictures
