// Big-endian numbers in bytes that nobody has checked yet. Every access is checked: outside the bytes it
// throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "Error.h"

namespace perch {

using ByteSpan = std::span<const std::byte>;

// `length` bytes from `offset`; throws Error with `sentence` when the bytes end before.
inline ByteSpan bytesAt(ByteSpan bytes, std::uint64_t offset, std::uint64_t length, const char* sentence) {
    if (offset > bytes.size() || length > bytes.size() - offset) throw Error(sentence);
    return bytes.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(length));
}

// The number that the next `size` bytes hold, 1 to 4.
inline std::uint32_t numberAt(ByteSpan bytes, std::uint64_t offset, std::uint64_t size,
                              const char* sentence) {
    std::uint32_t number = 0;
    for (const std::byte byte : bytesAt(bytes, offset, size, sentence)) {
        number = number << 8 | std::to_integer<std::uint32_t>(byte);
    }
    return number;
}

}  // namespace perch
