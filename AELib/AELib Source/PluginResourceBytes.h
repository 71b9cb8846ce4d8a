// What differs between platforms in reading the plug-in's own resources; one source file each.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace AELib {

// The bytes of a resource of the running plug-in, numbers in them big-endian, or nothing where it has no such
// resource.
std::optional<std::vector<char>> ReadPluginResource(std::uint32_t type, int id);

}  // namespace AELib
