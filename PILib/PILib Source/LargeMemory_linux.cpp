#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

#include "LargeArray.h"

namespace PILib::detail {

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;  // x86-64's, and the usual one of arm64

// Smaller blocks gain nothing from pages of their own.
constexpr std::size_t kSmallestMapping = 2 * kLargePage;

void Unmap(char* begin, const char* end) {
    if (begin != end) munmap(begin, static_cast<std::size_t>(end - begin));
}

}  // namespace

// A mapping of its own, as the heap's pages lose the request for large ones when the heap shrinks.
void* AllocateLarge(std::size_t bytes) {
    if (bytes < kSmallestMapping) return ::operator new(bytes);
    if (bytes > SIZE_MAX - kLargePage) throw std::bad_alloc();
    void* const mapping =
        mmap(nullptr, bytes + kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) throw std::bad_alloc();
    // The part that starts at a large page, cut out of it.
    auto* const first = static_cast<char*>(mapping);
    const std::size_t past = reinterpret_cast<std::uintptr_t>(first) % kLargePage;
    char* const block = first + (past == 0 ? 0 : kLargePage - past);
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    char* const end = block + (bytes + page - 1) / page * page;
    Unmap(first, block);
    Unmap(end, first + bytes + kLargePage);
    madvise(block, bytes, MADV_HUGEPAGE);  // a wish: without large pages the memory is as good
    return block;
}

void FreeLarge(void* block, std::size_t bytes) noexcept {
    if (bytes < kSmallestMapping) return ::operator delete(block);
    munmap(block, bytes);
}

}  // namespace PILib::detail
