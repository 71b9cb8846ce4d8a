#pragma once

#include <cstdint>
#include <limits>

namespace pictures {

struct ReadOptions {
    // What a file may claim before any memory is asked for.
    std::int64_t pixels = std::int64_t{1} << 28;
    std::int64_t bytes = std::numeric_limits<std::int64_t>::max();  // of samples as they are in memory
    bool isOfDepths = false;     // one channel has no number, and not transparency, outside its data window
    bool acceptsDamage = false;  // takes what can be read, as long as there is a size
};

}  // namespace pictures
