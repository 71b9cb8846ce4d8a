// A data-fork resource file: a header, the data of the resources, and a map that finds them by type and id.
// The bytes come from anywhere: whatever they hold, reading them ends with a result or an Error.
#pragma once

#include <cstdint>
#include <optional>

#include "Bytes.h"

namespace perch {

// The data of the resource, a part of `file`; nothing when the map does not list it.
// Throws Error when the file is damaged.
std::optional<ByteSpan> findResource(ByteSpan file, std::uint32_t type, std::int16_t id);

}  // namespace perch
