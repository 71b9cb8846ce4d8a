// What the benchmarks have in common: their arguments and counters.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>

#include "FrameBuffer.h"

namespace bench {

// An argument that the benchmark was registered with.
inline int Argument(const benchmark::State& state, std::size_t position) {
    return static_cast<int>(state.range(position));
}

// Time per pixel and pixels per second of a benchmark whose iterations each cover the buffer.
inline void ReportPixelRate(benchmark::State& state, const PILib::FrameBuffer& buffer) {
    using benchmark::Counter;
    const double pixels = static_cast<double>(buffer.width) * static_cast<double>(buffer.height);
    constexpr auto kRate = Counter::kIsIterationInvariantRate;
    state.counters["per_pixel"] = Counter(pixels, kRate | Counter::kInvert);
    state.counters["pixels"] = Counter(pixels, kRate);
}

}  // namespace bench
