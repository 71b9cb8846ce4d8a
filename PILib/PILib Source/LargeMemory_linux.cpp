#include <sys/mman.h>

#include <cstdint>

#include "LargeArray.h"

namespace PILib::detail {

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;  // x86-64's, and the usual one of arm64

// Whole large pages; what fits in less stays on the heap.
std::size_t MappedBytes(std::size_t bytes) {
    return (bytes + kLargePage - 1) / kLargePage * kLargePage;
}

bool IsMapped(std::size_t bytes) {
    return bytes > kLargePage / 2;
}

void Unmap(char* begin, const char* end) {
    if (begin != end) munmap(begin, static_cast<std::size_t>(end - begin));
}

}  // namespace

// A mapping of its own, as the heap's pages lose the request for large ones when the heap shrinks.
void* AllocateLarge(std::size_t bytes) {
    if (!IsMapped(bytes)) return ::operator new(bytes);
    if (bytes > SIZE_MAX - 2 * kLargePage) throw std::bad_alloc();
    const std::size_t mapped = MappedBytes(bytes);
    void* const mapping =
        mmap(nullptr, mapped + kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) throw std::bad_alloc();
    // The part that starts at a large page, cut out of it.
    auto* const first = static_cast<char*>(mapping);
    const std::size_t past = reinterpret_cast<std::uintptr_t>(first) % kLargePage;
    char* const block = first + (past == 0 ? 0 : kLargePage - past);
    Unmap(first, block);
    Unmap(block + mapped, first + mapped + kLargePage);
    madvise(block, mapped, MADV_HUGEPAGE);  // a wish: without large pages the memory is as good
    return block;
}

void FreeLarge(void* block, std::size_t bytes) noexcept {
    if (!IsMapped(bytes)) return ::operator delete(block);
    munmap(block, MappedBytes(bytes));
}

}  // namespace PILib::detail
