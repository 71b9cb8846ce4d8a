#include "AllocationFailure.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> living = 0;
std::atomic<long> untilFailure = 0;  // 0 and below: none
std::atomic<bool> failed = false;
std::atomic<std::size_t> allocated = 0;
std::array<std::atomic<const void*>, 4> lastBlocks;  // the n-th ever at n modulo 4

// Null for the allocation that must fail. Uses malloc and free, so that the sanitizers still see every block.
void* Allocated(std::size_t size) noexcept {
    if (untilFailure.load() > 0 && untilFailure.fetch_sub(1) == 1) {
        failed = true;
        return nullptr;
    }
    void* const block = std::malloc(size > 0 ? size : 1);
    if (block != nullptr) {
        ++living;
        lastBlocks[allocated.fetch_add(1) % lastBlocks.size()] = block;
    }
    return block;
}

void* AllocatedOrThrow(std::size_t size) {
    void* const block = Allocated(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void Free(void* block) noexcept {
    if (block == nullptr) return;
    --living;
    std::free(block);
}

}  // namespace

namespace allocation {

long Living() {
    return living;
}

std::array<const void*, 4> LastFour() {
    std::array<const void*, 4> blocks{};
    for (std::size_t i = 0; i < blocks.size(); ++i)
        blocks[i] = lastBlocks[(allocated + i) % lastBlocks.size()];
    return blocks;
}

FailureAt::FailureAt(long n) {
    failed = false;
    untilFailure = n;
}

FailureAt::~FailureAt() {
    untilFailure = 0;
}

bool FailureAt::happened() const {
    return failed;
}

}  // namespace allocation

void* operator new(std::size_t size) {
    return AllocatedOrThrow(size);
}
void* operator new[](std::size_t size) {
    return AllocatedOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocated(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Allocated(size);
}
void operator delete(void* block) noexcept {
    Free(block);
}
void operator delete[](void* block) noexcept {
    Free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    Free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    Free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    Free(block);
}
