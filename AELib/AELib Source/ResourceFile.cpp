#include "ResourceFile.h"

namespace AELib {

namespace {

using Bytes = std::span<const char>;

// Offsets within the map and within its lists.
constexpr std::size_t kTypeListOffset = 24;
constexpr std::size_t kTypeEntrySize = 8;
constexpr std::size_t kReferenceSize = 12;

std::optional<Bytes> Part(Bytes bytes, std::size_t offset, std::size_t size) {
    if (offset > bytes.size() || size > bytes.size() - offset) return std::nullopt;
    return bytes.subspan(offset, size);
}

std::optional<std::uint32_t> Number(Bytes bytes, std::size_t offset, std::size_t size) {
    const auto digits = Part(bytes, offset, size);
    if (!digits) return std::nullopt;
    std::uint32_t value = 0;
    for (const char byte : *digits)
        value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

// Counts are stored minus one in 16 bits: 65535 means none.
std::optional<std::size_t> Count(Bytes bytes, std::size_t offset) {
    const auto stored = Number(bytes, offset, 2);
    if (!stored) return std::nullopt;
    return (*stored + 1) & 0xFFFFU;
}

std::optional<Bytes> FromOffset(Bytes bytes, std::size_t offset) {
    if (offset > bytes.size()) return std::nullopt;
    return bytes.subspan(offset);
}

// The offset into the data area of a reference with `id` in a reference list.
std::optional<std::uint32_t> FindReference(Bytes references, std::size_t count, int id) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto stored = Number(references, i * kReferenceSize, 2);
        if (!stored) return std::nullopt;
        if (static_cast<std::int16_t>(*stored) == id) return Number(references, i * kReferenceSize + 5, 3);
    }
    return std::nullopt;
}

std::optional<std::uint32_t> FindInMap(Bytes map, std::uint32_t type, int id) {
    const auto listOffset = Number(map, kTypeListOffset, 2);
    if (!listOffset) return std::nullopt;
    const auto types = FromOffset(map, *listOffset);
    if (!types) return std::nullopt;
    const auto count = Count(*types, 0);
    if (!count) return std::nullopt;
    for (std::size_t i = 0; i < *count; ++i) {
        const std::size_t entry = 2 + i * kTypeEntrySize;
        const auto stored = Number(*types, entry, 4);
        const auto references = Count(*types, entry + 4);
        const auto offset = Number(*types, entry + 6, 2);
        if (!stored || !references || !offset) return std::nullopt;
        if (*stored != type) continue;
        const auto list = FromOffset(*types, *offset);
        return list ? FindReference(*list, *references, id) : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace

std::optional<Bytes> FindResource(Bytes file, std::uint32_t type, int id) {
    const auto dataOffset = Number(file, 0, 4);
    const auto mapOffset = Number(file, 4, 4);
    const auto dataLength = Number(file, 8, 4);
    const auto mapLength = Number(file, 12, 4);
    if (!mapLength) return std::nullopt;
    const auto data = Part(file, *dataOffset, *dataLength);
    const auto map = Part(file, *mapOffset, *mapLength);
    if (!data || !map) return std::nullopt;
    const auto offset = FindInMap(*map, type, id);
    if (!offset) return std::nullopt;
    const auto length = Number(*data, *offset, 4);
    if (!length) return std::nullopt;
    return Part(*data, std::size_t{*offset} + 4, *length);
}

}  // namespace AELib
