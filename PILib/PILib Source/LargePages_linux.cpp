#include <sys/mman.h>

#include "LargeArray.h"

namespace PILib::detail {

void AdviseLargePages(void* block, std::size_t bytes) noexcept {
    madvise(block, bytes - bytes % kLargePage, MADV_HUGEPAGE);
}

}  // namespace PILib::detail
