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

using Bytes = std::unique_ptr<std::byte[]>;

// Zeroed; null when memory is short.
Bytes newBytes(std::size_t size) {
    if (size > kLargestSize) return nullptr;
    return Bytes(new (std::nothrow) std::byte[std::max<std::size_t>(size, 1)]());
}

}  // namespace

void* MemoryBlocks::allocate(std::size_t size) {
    Bytes bytes = newBytes(size);
    if (bytes == nullptr) return nullptr;
    void* address = bytes.get();
    const std::lock_guard lock(mutex);
    blocks.emplace(address, Block{std::move(bytes), size});
    return address;
}

PF_Err MemoryBlocks::free(void* block) {
    const std::lock_guard lock(mutex);
    if (blocks.erase(block) == 1) return PF_Err_NONE;
    ledger.fault("FreeBlock", "the block is not one of the host's, or has been freed before");
    return PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err MemoryBlocks::reallocate(void* block, std::size_t size, void** moved) {
    const std::lock_guard lock(mutex);
    const auto entry = blocks.find(block);
    if (entry == blocks.end()) {
        ledger.fault("ReallocateBlock", "the block is not one of the host's, or has been freed before");
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    Bytes fresh = newBytes(size);
    if (fresh == nullptr) return PF_Err_OUT_OF_MEMORY;
    void* const address = fresh.get();
    std::memcpy(address, block, std::min(size, entry->second.size));
    blocks.erase(entry);
    blocks.emplace(address, Block{std::move(fresh), size});
    *moved = address;
    return PF_Err_NONE;
}

void MemoryBlocks::reportLeaks() {
    const std::lock_guard lock(mutex);
    for (const auto& [address, block] : blocks)
        ledger.fault("AllocateBlock", fmt::format("a block of {} bytes was never freed", block.size));
}

}  // namespace perch
