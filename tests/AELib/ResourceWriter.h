// Writes property lists and resource files, byte by byte.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace resource {

inline std::string BigEndian(std::uint32_t value, int size = 4) {
    std::string bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(value >> shift));
    return bytes;
}

inline std::string Pascal(std::string_view text) {
    return static_cast<char>(text.size()) + std::string(text);
}

struct Property {
    std::uint32_t vendor;
    std::uint32_t key;
    std::string data;
};

inline std::string PropertyList(const std::vector<Property>& properties, std::uint32_t version = 0) {
    std::string list = BigEndian(version) + BigEndian(static_cast<std::uint32_t>(properties.size()));
    for (const Property& p : properties) {
        const auto length = static_cast<std::uint32_t>(p.data.size());
        list += BigEndian(p.vendor) + BigEndian(p.key) + BigEndian(0) + BigEndian(length) + p.data;
        list.append((4 - p.data.size() % 4) % 4, '\0');
    }
    return list;
}

struct Resource {
    std::uint32_t type;
    std::uint16_t id;
    std::string data;
};

// Offsets of interest in the file that File() makes of `count` resources of as many types.
inline constexpr std::size_t kDataOffset = 16;
inline constexpr std::size_t kMapHeaderSize = 28;

// A resource file: header, data area, and a map with one type and one reference per resource.
inline std::string File(const std::vector<Resource>& resources) {
    std::string data;
    std::string types = BigEndian(static_cast<std::uint32_t>(resources.size()) - 1, 2);
    std::string references;
    const std::size_t typesSize = 2 + 8 * resources.size();
    for (const Resource& r : resources) {
        const auto referencesOffset = static_cast<std::uint32_t>(typesSize + references.size());
        types += BigEndian(r.type) + BigEndian(0, 2) + BigEndian(referencesOffset, 2);
        references += BigEndian(r.id, 2) + BigEndian(0xFFFF, 2) + BigEndian(0, 1) +
                      BigEndian(static_cast<std::uint32_t>(data.size()), 3) + BigEndian(0);
        data += BigEndian(static_cast<std::uint32_t>(r.data.size())) + r.data;
    }
    const std::string lists = types + references;
    const std::string header = BigEndian(kDataOffset) +
                               BigEndian(static_cast<std::uint32_t>(kDataOffset + data.size())) +
                               BigEndian(static_cast<std::uint32_t>(data.size())) +
                               BigEndian(static_cast<std::uint32_t>(kMapHeaderSize + lists.size()));
    return header + data + header + std::string(8, '\0') + BigEndian(kMapHeaderSize, 2) +
           BigEndian(static_cast<std::uint32_t>(kMapHeaderSize + lists.size()), 2) + lists;
}

}  // namespace resource
