// The memory that parent and worker share.
#pragma once

#include "Whereabouts.h"

namespace perch {

class SharedMemory {
public:
    // Of the parent. Throws Error where there is none.
    SharedMemory();
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    // The worker's end of it: true where the descriptor is such memory, which is then this process's
    // whereabouts.
    static bool adopt(int descriptor);

    int descriptor = -1;  // a worker inherits it
    Whereabouts* memory = nullptr;
};

}  // namespace perch
