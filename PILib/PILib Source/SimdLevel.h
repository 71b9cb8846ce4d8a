// Which vector instructions the fast paths use. Every level gives the same bytes for channels within full
// scale; Scalar is the reference.
#pragma once

namespace PILib {

enum class SimdLevel {
    Scalar,    // pixel by pixel: blurs by the virtual read-out
    Baseline,  // what every processor of the target has: SSE2 on x86-64, NEON on arm64
    Avx2,
    Avx512,
};

// The best level that this build holds and this processor runs; found once. For any thread.
SimdLevel BestSimdLevel();

// Whether `level` can run here. A blur that is asked for one that cannot takes Scalar.
bool IsSupported(SimdLevel level);

}  // namespace PILib
