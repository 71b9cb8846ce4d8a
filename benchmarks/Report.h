// What is counted beside a benchmark's time.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>

#include "FrameBuffer.h"

namespace bench {

// Time per pixel and pixels per second of a benchmark whose iterations each cover the buffer.
inline void ReportPixelRate(benchmark::State& state, const PILib::FrameBuffer& buffer) {
    using benchmark::Counter;
    const double pixels = static_cast<double>(buffer.width) * static_cast<double>(buffer.height);
    constexpr auto kRate = Counter::kIsIterationInvariantRate;
    state.counters["per_pixel"] = Counter(pixels, kRate | Counter::kInvert);
    state.counters["pixels"] = Counter(pixels, kRate);
}

// Bytes that one iteration cannot but move.
inline void ReportTraffic(benchmark::State& state, std::size_t bytes) {
    state.counters["traffic"] = static_cast<double>(bytes);
}

}  // namespace bench
