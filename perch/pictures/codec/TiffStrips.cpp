#include "TiffStrips.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

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

}  // namespace

bool hasDamagedStrip(std::span<const unsigned char> bytes, int page) {
    constexpr std::uint64_t kCompression = 259;
    constexpr std::uint64_t kStripPlaces = 273;
    constexpr std::uint64_t kStripSizes = 279;
    constexpr std::uint64_t kTilePlaces = 324;
    constexpr std::uint64_t kTileSizes = 325;
    constexpr std::uint64_t kDeflate = 8;
    constexpr std::uint64_t kOldDeflate = 32946;
    const Directory directory(bytes, page);
    const std::vector<std::uint64_t> compression = directory.numbersOf(kCompression);
    const bool isDeflated =
        compression.size() == 1 && (compression[0] == kDeflate || compression[0] == kOldDeflate);
    std::vector<std::uint64_t> places = directory.numbersOf(kStripPlaces);
    std::vector<std::uint64_t> sizes = directory.numbersOf(kStripSizes);
    if (places.empty()) {
        places = directory.numbersOf(kTilePlaces);
        sizes = directory.numbersOf(kTileSizes);
    }
    for (std::size_t i = 0; i < std::min(places.size(), sizes.size()); ++i) {
        if (sizes[i] == 0) continue;  // stands for black
        if (places[i] > bytes.size() || sizes[i] > bytes.size() - places[i]) return true;
        if (isDeflated && !isWholeStream(bytes.subspan(places[i], sizes[i]))) return true;
    }
    return false;
}

}  // namespace pictures
