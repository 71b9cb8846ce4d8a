#include "Cases.h"

namespace bench {

using PILib::SimdLevel;

std::vector<FrameCase> AllFrameCases() {
    std::vector<FrameCase> cases;
    for (const Size size : kSizes) {
        for (const int radius : kRadii) {
            for (const Matte matte : kMattes) {
                for (const int threads : kThreadCounts)
                    cases.push_back({size, radius, matte, threads});
            }
        }
    }
    return cases;
}

std::string NameOf(const FrameCase& frame, bool fine) {
    return std::string(TypeName(fine)) + "/" + NameOf(frame.size) +
           "/radius:" + std::to_string(frame.radius) + "/" + NameOf(frame.matte) +
           "/threads:" + std::to_string(frame.threads);
}

std::string NameOf(Size size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

const char* NameOf(SimdLevel level) {
    switch (level) {
        case SimdLevel::Scalar:
            return "scalar";
        case SimdLevel::Baseline:
            return "baseline";
        case SimdLevel::Avx2:
            return "avx2";
        case SimdLevel::Avx512:
            return "avx512";
    }
    return "";
}

std::vector<SimdLevel> SupportedLevels() {
    std::vector<SimdLevel> levels;
    for (const SimdLevel level :
         {SimdLevel::Scalar, SimdLevel::Baseline, SimdLevel::Avx2, SimdLevel::Avx512}) {
        if (PILib::IsSupported(level)) levels.push_back(level);
    }
    return levels;
}

}  // namespace bench
