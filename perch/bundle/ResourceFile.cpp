#include "ResourceFile.h"

namespace perch {
namespace {

constexpr std::uint64_t kHeaderSize = 16;
constexpr std::uint64_t kMapHeaderSize = 28;  // up to the offset of the name list
constexpr std::uint64_t kTypeListOffsetAt = 24;
constexpr std::uint64_t kTypeEntrySize = 8;
constexpr std::uint64_t kReferenceSize = 12;

constexpr char kBadHeader[] = "its header is cut short";
constexpr char kBadArea[] = "its header names bytes beyond the end of the file";
constexpr char kBadOverlap[] = "its data and its map overlap, or overlap the header";
constexpr char kBadMap[] = "its resource map is cut short";
constexpr char kBadTypes[] = "its list of types extends past the end of the resource map";
constexpr char kBadReferences[] = "its list of references extends past the end of the resource map";
constexpr char kBadResource[] = "a resource extends past the end of the data area";

struct Areas {
    ByteSpan data;
    ByteSpan map;
};

Areas findAreas(ByteSpan file) {
    const auto headerField = [&](std::uint64_t offset) -> std::uint64_t {
        return numberAt(file, offset, 4, kBadHeader);
    };
    const std::uint64_t dataOffset = headerField(0);
    const std::uint64_t mapOffset = headerField(4);
    const std::uint64_t dataLength = headerField(8);
    const std::uint64_t mapLength = headerField(12);
    const Areas areas{bytesAt(file, dataOffset, dataLength, kBadArea),
                      bytesAt(file, mapOffset, mapLength, kBadArea)};
    const bool areApart = dataOffset + dataLength <= mapOffset || mapOffset + mapLength <= dataOffset;
    if (dataOffset < kHeaderSize || mapOffset < kHeaderSize || !areApart) throw LoadError(kBadOverlap);
    if (mapLength < kMapHeaderSize) throw LoadError(kBadMap);
    return areas;
}

// Counts are kept less one, so that 65535 stands for none.
std::uint64_t countAt(ByteSpan bytes, std::uint64_t offset, const char* sentence) {
    return (numberAt(bytes, offset, 2, sentence) + 1U) & 0xFFFFU;
}

// The reference entries of a type; empty without such a type. Only the first entry of a type counts, so that
// the work is linear in the file's size even when lists lie over each other.
ByteSpan findReferences(ByteSpan map, std::uint32_t type) {
    const std::uint64_t typeListOffset = numberAt(map, kTypeListOffsetAt, 2, kBadMap);
    if (typeListOffset < kMapHeaderSize) throw LoadError(kBadTypes);
    const ByteSpan typeList = bytesAt(map, typeListOffset, map.size() - typeListOffset, kBadTypes);
    const std::uint64_t typeCount = countAt(typeList, 0, kBadTypes);
    const ByteSpan entries = bytesAt(typeList, 2, typeCount * kTypeEntrySize, kBadTypes);
    for (std::uint64_t i = 0; i < typeCount; ++i) {
        const ByteSpan entry = entries.subspan(i * kTypeEntrySize, kTypeEntrySize);
        if (numberAt(entry, 0, 4, kBadTypes) != type) continue;
        const std::uint64_t offset = numberAt(entry, 6, 2, kBadTypes);
        if (offset < 2 + entries.size()) throw LoadError(kBadReferences);
        return bytesAt(typeList, offset, countAt(entry, 4, kBadTypes) * kReferenceSize, kBadReferences);
    }
    return {};
}

}  // namespace

std::optional<ByteSpan> findResource(ByteSpan file, std::uint32_t type, std::int16_t id) {
    const Areas areas = findAreas(file);
    const ByteSpan references = findReferences(areas.map, type);
    for (std::uint64_t at = 0; at < references.size(); at += kReferenceSize) {
        if (numberAt(references, at, 2, kBadReferences) != static_cast<std::uint16_t>(id)) continue;
        const std::uint64_t offset = numberAt(references, at + 5, 3, kBadReferences);
        const std::uint64_t length = numberAt(areas.data, offset, 4, kBadResource);
        return bytesAt(areas.data, offset + 4, length, kBadResource);
    }
    return std::nullopt;
}

}  // namespace perch
