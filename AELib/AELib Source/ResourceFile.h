// A resource of a data-fork resource file: header, data area, and a map of types and references, all
// big-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace AELib {

// The bytes of the resource within `file`, or nothing where the file does not hold it or is malformed.
// Untrusted input: every offset is checked, and a map is walked once, so that loops end.
std::optional<std::span<const char>> FindResource(std::span<const char> file, std::uint32_t type, int id);

}  // namespace AELib
