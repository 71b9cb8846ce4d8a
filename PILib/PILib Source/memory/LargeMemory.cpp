#include "LargeArray.h"

namespace PILib::detail {

void* AllocateLarge(std::size_t bytes) {
    return ::operator new(bytes);
}

void FreeLarge(void* block, std::size_t /*bytes*/) noexcept {
    ::operator delete(block);
}

}  // namespace PILib::detail
