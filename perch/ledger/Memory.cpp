#include "Memory.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "PF_Values.h"

namespace perch {
namespace {

// A request beyond this is a mistake in the effect.
constexpr std::size_t kLargestSize = std::size_t{1} << 31;

}  // namespace

void* MemoryBlocks::allocate(std::size_t size) {
    if (size > kLargestSize) return nullptr;
    Block block{std::unique_ptr<std::byte[]>(new (std::nothrow) std::byte[std::max<std::size_t>(size, 1)]()),
                size};
    if (block.bytes == nullptr) return nullptr;
    void* address = block.bytes.get();
    const std::lock_guard lock(mutex);
    blocks.emplace(address, std::move(block));
    return address;
}

PF_Err MemoryBlocks::free(void* block) {
    const std::lock_guard lock(mutex);
    if (blocks.erase(block) == 1) return PF_Err_NONE;
    ledger.fault("FreeBlock", "the block is not one of the host's, or has been freed before");
    return PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err MemoryBlocks::reallocate(void* block, std::size_t size, void** moved) {
    std::unique_lock lock(mutex);
    const auto entry = blocks.find(block);
    if (entry == blocks.end()) {
        ledger.fault("ReallocateBlock", "the block is not one of the host's, or has been freed before");
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    lock.unlock();
    void* fresh = allocate(size);
    if (fresh == nullptr) return PF_Err_OUT_OF_MEMORY;
    lock.lock();
    std::memcpy(fresh, block, std::min(size, entry->second.size));
    blocks.erase(entry);
    *moved = fresh;
    return PF_Err_NONE;
}

void MemoryBlocks::reportLeaks() {
    const std::lock_guard lock(mutex);
    for (const auto& [address, block] : blocks)
        ledger.fault("AllocateBlock", fmt::format("a block of {} bytes was never freed", block.size));
}

}  // namespace perch
