// What the program asks of array new, which is where buffers take their memory. The program's own operator
// new[] keeps these; it refuses blocks above 1 GiB, so that a size out of reach fails alike on every machine.
#pragma once

#include <cstddef>

namespace arrays {

// Blocks not yet freed.
extern long live;

// Bytes of the last block asked for.
extern std::size_t lastSize;

// The next block asked for is refused with std::bad_alloc.
extern bool refuseNext;

}  // namespace arrays
