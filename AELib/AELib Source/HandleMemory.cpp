#include "HandleMemory.h"

#include <map>
#include <memory>
#include <mutex>
#include <new>

namespace AELib {

namespace {

struct Block {
    char* address;  // what the handle points to
    std::unique_ptr<char[]> bytes;
    std::size_t size;
};

struct Blocks {
    std::mutex mutex;
    std::map<char**, std::unique_ptr<Block>> live;
};

Blocks& AllBlocks() {
    static Blocks blocks;
    return blocks;
}

}  // namespace

char** NewHandle(std::size_t size) try {
    auto block = std::make_unique<Block>();
    block->bytes = std::make_unique<char[]>(size);
    block->address = block->bytes.get();
    block->size = size;
    char** const handle = &block->address;
    const std::lock_guard lock(AllBlocks().mutex);
    AllBlocks().live.emplace(handle, std::move(block));
    return handle;
} catch (const std::bad_alloc&) {
    return nullptr;
}

void DisposeHandle(char** handle) {
    const std::lock_guard lock(AllBlocks().mutex);
    AllBlocks().live.erase(handle);
}

std::size_t GetHandleSize(char** handle) {
    const std::lock_guard lock(AllBlocks().mutex);
    const auto found = AllBlocks().live.find(handle);
    return found == AllBlocks().live.end() ? 0 : found->second->size;
}

char* HLock(char** handle) {
    return *handle;
}

void HUnlock(char** /*handle*/) {}

bool IsPlatformHandle(char** handle) {
    const std::lock_guard lock(AllBlocks().mutex);
    return AllBlocks().live.contains(handle);
}

}  // namespace AELib
