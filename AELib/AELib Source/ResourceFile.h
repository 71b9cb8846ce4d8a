// A resource of a data-fork resource file: header, data area, and a map of types and references, all
// big-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace AELib {

// The bytes of the resource within `file`, or nothing where the file does not hold it or is malformed.
// The input is not trusted: every offset is checked, and the map is walked once, so the search always ends.
std::optional<std::span<const char>> FindResource(std::span<const char> file, std::uint32_t type, int id);

}  // namespace AELib
