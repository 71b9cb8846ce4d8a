// Arrays of many megabytes that are written once and then read all over, as a blur's tables are. Memory of
// that size comes from the system page by page, and handing out the pages can cost more than filling them:
// where the system has large pages, these arrays ask for them.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

namespace PILib::detail {

inline constexpr std::size_t kLargePage = std::size_t{2} << 20;  // bytes; x86-64's and the usual one of arm64

struct LargeArrayDelete {
    std::align_val_t alignment{};

    void operator()(void* block) const noexcept { ::operator delete(block, alignment); }
};

template <class T>
using LargeArray = std::unique_ptr<T[], LargeArrayDelete>;

// Asks for large pages behind whole pages of the block, which starts at one. A wish: nothing fails.
void AdviseLargePages(void* block, std::size_t bytes) noexcept;

// `count` elements of any value. Throws std::bad_alloc.
template <class T>
LargeArray<T> MakeLargeArray(std::size_t count) {
    static_assert(std::is_trivially_destructible_v<T>);
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_alloc();
    const std::size_t bytes = count * sizeof(T);
    const bool isLarge = bytes >= kLargePage;
    const std::align_val_t alignment{isLarge ? kLargePage : alignof(std::max_align_t)};
    LargeArray<T> array(static_cast<T*>(::operator new(bytes, alignment)), LargeArrayDelete{alignment});
    if (isLarge) AdviseLargePages(array.get(), bytes);
    return array;
}

}  // namespace PILib::detail
