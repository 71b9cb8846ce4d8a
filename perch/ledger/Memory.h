// Plain blocks that the basic suite hands out. Safe to call from any thread.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>

#include "Ledger.h"
#include "PF_Types.h"

namespace perch {

class MemoryBlocks {
public:
    explicit MemoryBlocks(Ledger& ledger) : ledger(ledger) {}

    // Null when memory is short.
    void* allocate(std::size_t size);
    PF_Err free(void* block);
    PF_Err reallocate(void* block, std::size_t size, void** moved);
    void reportLeaks();

private:
    struct Block {
        std::unique_ptr<std::byte[]> bytes;
        std::size_t size = 0;
    };
    Ledger& ledger;
    std::mutex mutex;
    std::map<void*, Block> blocks;
};

}  // namespace perch
