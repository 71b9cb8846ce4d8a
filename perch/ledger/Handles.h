// The relocatable memory blocks that an effect asks for. A handle points at the block's address, which is
// valid locked or not. Unknown and disposed handles are refused, never followed.
// A block moves at every resize and lies between guard bytes. Strict mode keeps disposed handles apart, to
// tell a second disposal from an unknown handle. Safe to call from any thread.
#pragma once

#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>

#include "Ledger.h"
#include "PF_Types.h"

namespace perch {

class HandleTable {
public:
    explicit HandleTable(Ledger& ledger) : ledger(ledger) {}
    ~HandleTable();
    HandleTable(const HandleTable&) = delete;
    HandleTable& operator=(const HandleTable&) = delete;

    // Zeroed; null when memory is short.
    PF_Handle allocate(A_u_longlong size);
    void* lock(PF_Handle handle);
    void unlock(PF_Handle handle);
    void dispose(PF_Handle handle, std::string_view callback = "host_dispose_handle");
    A_u_longlong size(PF_Handle handle);
    PF_Err resize(A_u_longlong size, PF_Handle handle);

    bool isLive(PF_Handle handle);
    // Reports what has not been disposed, and checks the fences of all.
    void reportLeaks();

private:
    struct Block {
        A_char* data = nullptr;  // first: the handle points here
        A_u_longlong size = 0;
        int locks = 0;
        bool isDisposed = false;
    };

    Block* find(PF_Handle handle, std::string_view callback);
    void checkFences(const Block& block, std::string_view callback);

    Ledger& ledger;
    std::mutex mutex;
    std::unordered_map<PF_Handle, std::unique_ptr<Block>> blocks;
};

}  // namespace perch
