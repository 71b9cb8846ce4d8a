#include "Handles.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "PF_Values.h"

namespace perch {
namespace {

// Keeps the alignment that malloc gives.
constexpr std::size_t kFenceSize = 32;
constexpr unsigned char kFenceByte = 0xFD;
// A request beyond this is a mistake in the effect, not a picture.
constexpr A_u_longlong kLargestSize = A_u_longlong{1} << 32;

A_char* allocateFenced(A_u_longlong size) {
    if (size > kLargestSize || size > SIZE_MAX - 2 * kFenceSize) return nullptr;
    auto* start = static_cast<A_char*>(std::calloc(1, static_cast<std::size_t>(size) + 2 * kFenceSize));
    if (start == nullptr) return nullptr;
    std::memset(start, kFenceByte, kFenceSize);
    std::memset(start + kFenceSize + size, kFenceByte, kFenceSize);
    return start + kFenceSize;
}

void freeFenced(A_char* data) {
    if (data != nullptr) std::free(data - kFenceSize);
}

bool isFenceWhole(const A_char* fence) {
    return std::all_of(fence, fence + kFenceSize,
                       [](A_char byte) { return static_cast<unsigned char>(byte) == kFenceByte; });
}

}  // namespace

HandleTable::~HandleTable() {
    for (const auto& [handle, block] : blocks)
        freeFenced(block->data);
}

PF_Handle HandleTable::allocate(A_u_longlong size) {
    auto block = std::make_unique<Block>();
    block->data = allocateFenced(size);
    if (block->data == nullptr) return nullptr;
    block->size = size;
    const PF_Handle handle = &block->data;
    const std::lock_guard guard(mutex);
    blocks.emplace(handle, std::move(block));
    return handle;
}

void* HandleTable::lock(PF_Handle handle) {
    const std::lock_guard guard(mutex);
    Block* block = find(handle, "host_lock_handle");
    if (block == nullptr) return nullptr;
    ++block->locks;
    return block->data;
}

void HandleTable::unlock(PF_Handle handle) {
    const std::lock_guard guard(mutex);
    Block* block = find(handle, "host_unlock_handle");
    if (block == nullptr) return;
    if (block->locks == 0) {
        ledger.fault("host_unlock_handle", "the handle is not locked; unlock it as often as it was locked");
        return;
    }
    --block->locks;
}

void HandleTable::dispose(PF_Handle handle, std::string_view callback) {
    const std::lock_guard guard(mutex);
    if (handle == nullptr) {
        ledger.note(callback, "the handle is null");
        return;
    }
    Block* block = find(handle, callback);
    if (block == nullptr) return;
    checkFences(*block, callback);
    freeFenced(block->data);
    block->data = nullptr;
    block->isDisposed = true;
    if (!ledger.isStrict()) blocks.erase(handle);
}

A_u_longlong HandleTable::size(PF_Handle handle) {
    const std::lock_guard guard(mutex);
    const Block* block = find(handle, "host_get_handle_size");
    return block == nullptr ? 0 : block->size;
}

PF_Err HandleTable::resize(A_u_longlong size, PF_Handle handle) {
    const std::lock_guard guard(mutex);
    Block* block = find(handle, "host_resize_handle");
    if (block == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
    A_char* moved = allocateFenced(size);
    if (moved == nullptr) return PF_Err_OUT_OF_MEMORY;
    checkFences(*block, "host_resize_handle");
    std::memcpy(moved, block->data, static_cast<std::size_t>(std::min(size, block->size)));
    freeFenced(block->data);
    block->data = moved;
    block->size = size;
    return PF_Err_NONE;
}

bool HandleTable::isLive(PF_Handle handle) {
    const std::lock_guard guard(mutex);
    const auto entry = blocks.find(handle);
    return entry != blocks.end() && !entry->second->isDisposed;
}

void HandleTable::reportLeaks() {
    const std::lock_guard guard(mutex);
    for (const auto& [handle, block] : blocks) {
        if (block->isDisposed) continue;
        checkFences(*block, "host_new_handle");
        ledger.fault(
            "host_new_handle",
            fmt::format("a handle of {} bytes was never disposed{}", block->size,
                        block->locks > 0 ? fmt::format(" and is locked {} times", block->locks) : ""));
    }
}

HandleTable::Block* HandleTable::find(PF_Handle handle, std::string_view callback) {
    const auto entry = blocks.find(handle);
    if (entry == blocks.end()) {
        ledger.fault(callback,
                     handle == nullptr ? "the handle is null" : "the handle is not one of the host's");
        return nullptr;
    }
    if (entry->second->isDisposed) {
        ledger.fault(callback, "the handle has been disposed before");
        return nullptr;
    }
    return entry->second.get();
}

void HandleTable::checkFences(const Block& block, std::string_view callback) {
    if (!isFenceWhole(block.data - kFenceSize))
        ledger.fault(callback, fmt::format("bytes before a block of {} bytes were written", block.size));
    if (!isFenceWhole(block.data + block.size))
        ledger.fault(callback, fmt::format("bytes after a block of {} bytes were written", block.size));
}

}  // namespace perch
