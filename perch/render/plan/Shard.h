// One task's part of a plan that several share.
#pragma once

#include <cstddef>

namespace perch {

// Every count-th frame, from the number-th on; counted from 1.
struct Shard {
    std::size_t number = 1;
    std::size_t count = 1;
};

}  // namespace perch
