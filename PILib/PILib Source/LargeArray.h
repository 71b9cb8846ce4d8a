// Arrays of many megabytes that are written once and then read all over, as a blur's tables are. Such memory
// comes from the system page by page, and handing out small pages can cost more than filling them: where the
// system has large pages, these arrays lie on them.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

namespace PILib::detail {

// Memory for any trivial type, of any value, to be given back with its size. Throws std::bad_alloc. What is
// given back may be kept for the next block of that size.
void* AllocateLarge(std::size_t bytes);
void FreeLarge(void* block, std::size_t bytes) noexcept;

struct LargeArrayDelete {
    std::size_t bytes = 0;

    void operator()(void* block) const noexcept { FreeLarge(block, bytes); }
};

template <class T>
using LargeArray = std::unique_ptr<T[], LargeArrayDelete>;

// `count` elements of any value. Throws std::bad_alloc.
template <class T>
LargeArray<T> MakeLargeArray(std::size_t count) {
    static_assert(std::is_trivially_default_constructible_v<T> && std::is_trivially_destructible_v<T>);
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
    const std::size_t bytes = count * sizeof(T);
    return LargeArray<T>(static_cast<T*>(AllocateLarge(bytes)), LargeArrayDelete{bytes});
}

}  // namespace PILib::detail
