#include "LargeArray.h"

namespace PILib::detail {

void AdviseLargePages(void* /*block*/, std::size_t /*bytes*/) noexcept {}

}  // namespace PILib::detail
