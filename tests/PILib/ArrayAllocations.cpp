#include "ArrayAllocations.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace arrays {

long live = 0;
std::size_t lastSize = 0;
bool refuseNext = false;

}  // namespace arrays

void* operator new[](std::size_t size) {
    constexpr std::size_t kLargest = std::size_t{1} << 30;
    arrays::lastSize = size;
    const bool refused = std::exchange(arrays::refuseNext, false) || size > kLargest;
    void* const block = refused ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    ++arrays::live;
    return block;
}

void operator delete[](void* block) noexcept {
    if (block == nullptr) return;
    --arrays::live;
    std::free(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept {
    operator delete[](block);
}
