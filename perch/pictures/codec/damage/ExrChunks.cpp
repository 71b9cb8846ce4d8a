#include "ExrChunks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "FileText.h"

namespace pictures {
namespace {

// A file, of one part or, where a flag says so, of several:
//
//     magic 4, version and flags 4
//     a header for each part; of several, with an empty one behind the last:
//         name 0, type 0, length 4, value     as often as there are attributes
//         0
//     a table for each part: the place in the file of each chunk, 8
//     chunks: part 4 where there are several, row 4 or tile and level 16, length 4, and so many bytes
constexpr std::size_t kFirstHeader = 8;
constexpr std::uint32_t kTiledFlag = 0x200;
constexpr std::uint32_t kPartsFlag = 0x1000;
constexpr std::size_t kPlaceSize = 8;

// What a header says of its part's chunks.
struct PartHeader {
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::uint8_t compression = 0;
    bool isTiled = false;
    bool isDeep = false;
    std::int64_t tileWidth = 0;
    std::int64_t tileHeight = 0;
    std::uint64_t chunks = 0;        // where there are several parts
    std::uint64_t chunksBefore = 0;  // of the parts before
};

std::int64_t signedAt(std::string_view bytes, std::size_t place) {
    return static_cast<std::int32_t>(littleEndianAt(bytes, place, 4));
}

void take(std::string_view name, std::string_view value, PartHeader& header) {
    if (name == "dataWindow" && value.size() == 16) {
        header.width = signedAt(value, 8) - signedAt(value, 0) + 1;
        header.height = signedAt(value, 12) - signedAt(value, 4) + 1;
    } else if (name == "compression" && value.size() == 1) {
        header.compression = static_cast<std::uint8_t>(value[0]);
    } else if (name == "tiles" && value.size() == 9) {
        header.tileWidth = littleEndianAt(value, 0, 4);
        header.tileHeight = littleEndianAt(value, 4, 4);
    } else if (name == "type") {
        header.isDeep = value.starts_with("deep");
        header.isTiled = value == "tiledimage";
    } else if (name == "chunkCount" && value.size() == 4) {
        header.chunks = littleEndianAt(value, 0, 4);
    }
}

// What is left of the headers.
class HeaderText {
public:
    explicit HeaderText(std::string_view rest) : rest(rest) {}

    // Up to the next 0, which is left out. Empty at the end of the file too.
    std::string_view name() {
        const std::size_t end = std::min(rest.find('\0'), rest.size());
        const std::string_view taken = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        return taken;
    }

    // With its length before it; as much as there is.
    std::string_view value() {
        if (rest.size() < 4) return rest = {};
        const std::size_t length = littleEndianAt(rest, 0, 4);
        const std::string_view taken = rest.substr(4, length);
        rest.remove_prefix(4 + taken.size());
        return taken;
    }

    std::string_view rest;
};

PartHeader takeHeader(HeaderText& text) {
    PartHeader header;
    for (std::string_view name = text.name(); !name.empty(); name = text.name()) {
        text.name();  // of the type
        take(name, text.value(), header);
    }
    return header;
}

// 0: of a compression that is not known.
std::int64_t rowsPerChunk(std::uint8_t compression) {
    constexpr std::int64_t kRows[] = {1, 1, 1, 16, 32, 16, 32, 32, 32, 256};
    return compression < std::size(kRows) ? kRows[compression] : 0;
}

// For the picture itself, without smaller copies of it, whose places follow in the table; 0: not known.
std::uint64_t chunksNeeded(const PartHeader& header) {
    const std::int64_t across = header.isTiled ? header.tileWidth : header.width;
    const std::int64_t down = header.isTiled ? header.tileHeight : rowsPerChunk(header.compression);
    if (header.isDeep || header.width <= 0 || header.height <= 0 || across <= 0 || down <= 0) return 0;
    const std::int64_t columns = (header.width + across - 1) / across;
    const std::int64_t rows = (header.height + down - 1) / down;
    return static_cast<std::uint64_t>(columns) * static_cast<std::uint64_t>(rows);
}

// The headers of a file, and where its tables lie.
class Chunks {
public:
    explicit Chunks(std::span<const unsigned char> bytes) : file(textOf(bytes)) {
        if (file.size() < kFirstHeader) return;
        const std::uint32_t flags = littleEndianAt(file, 4, 4);
        HeaderText text(file.substr(kFirstHeader));
        hasParts = (flags & kPartsFlag) != 0;
        if (hasParts) {
            while (!text.rest.empty() && text.rest.front() != '\0')
                headers.push_back(takeHeader(text));
            text.name();
        } else {
            headers.push_back(takeHeader(text));
            headers[0].isTiled = (flags & kTiledFlag) != 0;
        }
        tables = file.size() - text.rest.size();
        std::uint64_t chunks = 0;
        for (PartHeader& header : headers) {
            header.chunksBefore = chunks;
            chunks += header.chunks;
        }
    }

    std::size_t parts() const { return headers.size(); }

    std::uint64_t needed(std::size_t part) const { return chunksNeeded(headers[part]); }

    bool hasTable(std::size_t part) const {
        if (hasParts && headers[part].chunks < needed(part)) return false;
        const std::uint64_t most = (file.size() - tables) / kPlaceSize;
        const std::uint64_t before = headers[part].chunksBefore;
        return before <= most && needed(part) <= most - before;
    }

    // Whether all chunks of a part with a table lie in the file, none within another.
    bool areThere(std::size_t part) const {
        const std::size_t table = tables + headers[part].chunksBefore * kPlaceSize;
        const std::size_t tableEnd = table + needed(part) * kPlaceSize;
        std::vector<std::uint64_t> places;
        for (std::size_t at = table; at < tableEnd; at += kPlaceSize)
            places.push_back(placeAt(at));
        std::ranges::sort(places);
        const std::size_t lengthAt = (hasParts ? 4U : 0U) + (headers[part].isTiled ? 16U : 4U);
        std::uint64_t end = tableEnd;  // of the last one
        for (const std::uint64_t place : places) {
            if (place < end || place > file.size() || file.size() - place < lengthAt + 4) return false;
            end = place + lengthAt + 4 + littleEndianAt(file, place + lengthAt, 4);
        }
        return end <= file.size();
    }

private:
    std::uint64_t placeAt(std::size_t at) const {
        return littleEndianAt(file, at, 4) | std::uint64_t{littleEndianAt(file, at + 4, 4)} << 32;
    }

    std::string_view file;
    std::vector<PartHeader> headers;
    bool hasParts = false;
    std::size_t tables = 0;  // the first one's place
};

}  // namespace

bool lacksTables(std::span<const unsigned char> bytes) {
    const Chunks chunks(bytes);
    for (std::size_t part = 0; part < chunks.parts(); ++part)
        if (!chunks.hasTable(part)) return true;
    return false;
}

bool lacksChunks(std::span<const unsigned char> bytes, int part) {
    const Chunks chunks(bytes);
    const auto index = static_cast<std::size_t>(part);
    if (index >= chunks.parts() || chunks.needed(index) == 0) return false;
    return !chunks.hasTable(index) || !chunks.areThere(index);
}

}  // namespace pictures
