// Replaces the allocation functions of the program that links it: allocations are counted, and one of them
// can be made to fail.
#pragma once

#include <array>

namespace allocation {

// Blocks allocated and not freed yet.
long Living();

// The blocks allocated last, over all threads, the oldest first.
std::array<const void*, 4> LastFour();

// While it lives, the `n`-th allocation from its construction on, counted from 1 and over all threads, throws
// std::bad_alloc; all others succeed.
class FailureAt {
public:
    explicit FailureAt(long n);
    ~FailureAt();
    FailureAt(const FailureAt&) = delete;
    FailureAt& operator=(const FailureAt&) = delete;

    // Whether there were that many allocations.
    bool happened() const;
};

}  // namespace allocation
