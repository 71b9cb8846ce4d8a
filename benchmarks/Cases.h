// The cases that benchmarks are registered for, and the parts of their names. A name is a path of its case:
//   Frame/8-bit/Coarse/1920x1080/radius:50/objects/threads:1/best
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "FrameBuffer.h"
#include "Scenes.h"
#include "SimdLevel.h"

namespace bench {

struct Size {
    int width;
    int height;
};

// A smaller one goes beside these, for runs that only check that every benchmark works.
inline constexpr Size kTinySize = {96, 54};
inline constexpr Size kFullHD = {1920, 1080};
inline constexpr Size kSizes[] = {kTinySize, {1280, 720}, kFullHD, {3840, 2160}, {7680, 4320}};
inline constexpr int kRadii[] = {5, 20, 50, 100, 200};
inline constexpr int kThreadCounts[] = {1, 2};

// One frame to render, at a depth and of a blur type that the benchmark knows.
struct FrameCase {
    Size size;
    int radius;  // largest, pixels
    Matte matte;
    int threads;
};

// Every combination of size, radius, matte and number of threads.
std::vector<FrameCase> AllFrameCases();

// "Coarse/1920x1080/radius:50/objects/threads:1", after the depth.
std::string NameOf(const FrameCase& frame, bool fine);
std::string NameOf(Size size);
const char* NameOf(PILib::SimdLevel level);

// The levels that run here, the reference first.
std::vector<PILib::SimdLevel> SupportedLevels();

template <class C>
inline constexpr const char* kDepthName = std::is_same_v<C, PILib::Channel8> ? "8-bit" : "16-bit";

constexpr const char* TypeName(bool fine) {
    return fine ? "Fine" : "Coarse";
}

}  // namespace bench
