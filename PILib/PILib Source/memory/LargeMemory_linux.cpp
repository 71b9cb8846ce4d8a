#include <sys/mman.h>

#include <array>
#include <cstdint>
#include <mutex>
#include <utility>

#include "LargeArray.h"

namespace PILib::detail {

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;  // x86-64's, and the usual one of arm64

std::size_t MappedBytes(std::size_t bytes) {
    return (bytes + kLargePage - 1) / kLargePage * kLargePage;
}

// Blocks of less than half a large page would waste most of one: they stay on the heap.
bool IsMapped(std::size_t bytes) {
    return bytes > kLargePage / 2;
}

void Unmap(char* begin, const char* end) {
    if (begin != end) munmap(begin, static_cast<std::size_t>(end - begin));
}

// A mapping of its own, as the heap's pages lose the request for large ones when the
// heap shrinks.
void* Map(std::size_t mapped) {
    void* const mapping =
        mmap(nullptr, mapped + kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) throw std::bad_alloc();
    // The part that starts at a large page, cut out of it.
    auto* const first = static_cast<char*>(mapping);
    const std::size_t past = reinterpret_cast<std::uintptr_t>(first) % kLargePage;
    char* const block = first + (past == 0 ? 0 : kLargePage - past);
    Unmap(first, block);
    Unmap(block + mapped, first + mapped + kLargePage);
    madvise(block, mapped, MADV_HUGEPAGE);  // a request that the system may refuse: small pages do too
    return block;
}

// Blocks that were given back last, for the next frame's tables of the same size: new pages would have to be
// cleared by the system first. The system may take these pages whenever it is short of memory. For any
// thread; renders that change between two sizes never find one.
class SpareBlocks {
public:
    SpareBlocks() = default;
    SpareBlocks(const SpareBlocks&) = delete;
    SpareBlocks& operator=(const SpareBlocks&) = delete;
    ~SpareBlocks() { clear(); }

    // A block of exactly this size; or null, and then the others are unmapped, as sizes have changed.
    void* take(std::size_t mapped) {
        const std::lock_guard lock(mutex);
        for (Block& block : blocks) {
            if (block.mapped == mapped) return std::exchange(block, Block{}).memory;
        }
        clear();
        return nullptr;
    }

    void put(void* memory, std::size_t mapped) noexcept {
        Block block = {memory, mapped};
        if (madvise(memory, mapped, MADV_FREE) == 0) {
            const std::lock_guard lock(mutex);
            std::swap(block, blocks[next]);
            next = (next + 1) % blocks.size();
        }
        if (block.memory != nullptr) munmap(block.memory, block.mapped);
    }

private:
    struct Block {
        void* memory = nullptr;
        std::size_t mapped = 0;
    };

    void clear() {
        for (Block& block : blocks) {
            if (block.memory != nullptr) munmap(block.memory, block.mapped);
            block = {};
        }
    }

    std::mutex mutex;
    std::array<Block, 4> blocks;  // one render's tables
    std::size_t next = 0;
};

SpareBlocks& Spare() {
    static SpareBlocks spare;
    return spare;
}

}  // namespace

void* AllocateLarge(std::size_t bytes) {
    if (!IsMapped(bytes)) return ::operator new(bytes);
    if (bytes > SIZE_MAX - 2 * kLargePage) throw std::bad_alloc();
    const std::size_t mapped = MappedBytes(bytes);
    void* const spare = Spare().take(mapped);
    return spare != nullptr ? spare : Map(mapped);
}

void FreeLarge(void* block, std::size_t bytes) noexcept {
    if (!IsMapped(bytes)) return ::operator delete(block);
    Spare().put(block, MappedBytes(bytes));
}

}  // namespace PILib::detail
