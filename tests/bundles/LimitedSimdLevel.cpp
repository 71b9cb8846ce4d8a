// The image library's choice of vector instructions, held at one level: a plug-in takes no such setting from
// its host, and the level that the processor would get must not be the only one that is tried.
#define BestSimdLevel BestLevelOfThisProcessor
#include "SimdLevel.cpp"
#undef BestSimdLevel

namespace PILib {

SimdLevel BestSimdLevel() {
    return SimdLevel::KESTREL_SIMD_LEVEL;
}

}  // namespace PILib
