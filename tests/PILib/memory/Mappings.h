// What this program's libraries map of the address space: the linker leads their calls of mmap and munmap
// here.
#pragma once

#include <cstddef>

namespace mappings {

// Calls of mmap that gave memory.
extern int made;

// Bytes mapped and not yet unmapped.
extern std::ptrdiff_t bytes;

}  // namespace mappings
