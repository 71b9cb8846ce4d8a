// The levels of vector instructions that tests go through.
#pragma once

#include <vector>

#include "SimdLevel.h"

// Those that this build holds and this processor runs, except the per-pixel read-out.
inline std::vector<PILib::SimdLevel> VectorLevels() {
    std::vector<PILib::SimdLevel> levels;
    for (const PILib::SimdLevel level :
         {PILib::SimdLevel::Baseline, PILib::SimdLevel::Avx2, PILib::SimdLevel::Avx512}) {
        if (PILib::IsSupported(level)) levels.push_back(level);
    }
    return levels;
}

// Those and the per-pixel read-out, which comes first.
inline std::vector<PILib::SimdLevel> SupportedLevels() {
    std::vector<PILib::SimdLevel> levels = VectorLevels();
    levels.insert(levels.begin(), PILib::SimdLevel::Scalar);
    return levels;
}
