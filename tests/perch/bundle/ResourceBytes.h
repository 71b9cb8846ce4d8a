// Writes property lists and resource files, for tests that read them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Bytes.h"
#include "PiPL.h"

namespace perch::test {

inline std::string bigEndian(std::uint32_t value, int size = 4) {
    std::string bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xFFU);
    return bytes;
}

inline std::string pascal(std::string_view text) {
    return static_cast<char>(text.size()) + std::string(text);
}

struct Property {
    std::uint32_t key = 0;
    std::string data;
    std::uint32_t vendor = PiPL_VENDOR;
};

inline std::string propertyList(const std::vector<Property>& properties) {
    std::string bytes =
        bigEndian(PiPL_LIST_VERSION) + bigEndian(static_cast<std::uint32_t>(properties.size()));
    for (const auto& [key, data, vendor] : properties) {
        bytes += bigEndian(vendor) + bigEndian(key) + bigEndian(0);
        bytes += bigEndian(static_cast<std::uint32_t>(data.size())) + data;
        bytes.append((4 - data.size() % 4) % 4, '\0');
    }
    return bytes;
}

struct Resource {
    std::uint32_t type = 0;
    int id = 0;
    std::string data;
};

constexpr std::uint32_t kDataOffset = 256;
constexpr std::uint32_t kTypeListOffset = 28;  // in the map

// Each resource has a type entry of its own, so types must differ.
inline std::string resourceFile(const std::vector<Resource>& resources) {
    const auto count = static_cast<std::uint32_t>(resources.size());
    std::string data;
    std::string types = bigEndian(count - 1, 2);
    std::string references;
    for (const auto& [type, id, bytes] : resources) {
        const auto listOffset = static_cast<std::uint32_t>(2 + count * 8 + references.size());
        types += bigEndian(type) + bigEndian(0, 2) + bigEndian(listOffset, 2);
        references += bigEndian(static_cast<std::uint32_t>(id) & 0xFFFFU, 2) + bigEndian(0xFFFF, 2) +
                      bigEndian(0, 1) + bigEndian(static_cast<std::uint32_t>(data.size()), 3) + bigEndian(0);
        data += bigEndian(static_cast<std::uint32_t>(bytes.size())) + bytes;
    }
    const auto mapLength = static_cast<std::uint32_t>(kTypeListOffset + types.size() + references.size());
    const auto dataLength = static_cast<std::uint32_t>(data.size());
    const std::string header = bigEndian(kDataOffset) + bigEndian(kDataOffset + dataLength) +
                               bigEndian(dataLength) + bigEndian(mapLength);
    const std::string map = header + bigEndian(0) + bigEndian(0, 2) + bigEndian(0, 2) +
                            bigEndian(kTypeListOffset, 2) + bigEndian(mapLength, 2) + types + references;
    std::string file = header;
    file.resize(kDataOffset, '\0');
    return file + data + map;
}

inline ByteSpan spanOf(const std::string& bytes) {
    return {reinterpret_cast<const std::byte*>(bytes.data()), bytes.size()};
}

inline std::string textOf(ByteSpan bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace perch::test
