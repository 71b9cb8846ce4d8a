// What the machine's memory gives one thread, to hold the other figures of the same run against. The blocks
// are far beyond the caches, as a frame's tables are.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace {

constexpr std::size_t kBytes = std::size_t{256} << 20;
constexpr std::size_t kPageBytes = 4096;

using Block = std::unique_ptr<unsigned char[]>;

Block FreshBlock() {
    return std::make_unique_for_overwrite<unsigned char[]>(kBytes);
}

void ReportBandwidth(benchmark::State& state, std::size_t bytesPerIteration) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytesPerIteration));
}

void Write(benchmark::State& state) {
    const Block block = FreshBlock();
    for (auto _ : state) {
        std::memset(block.get(), 1, kBytes);
        benchmark::ClobberMemory();
    }
    ReportBandwidth(state, kBytes);
}

// Counts the bytes read and the bytes written. Both blocks have been written before, as pages that never were
// share one page of zeros.
void Copy(benchmark::State& state) {
    const Block from = FreshBlock();
    const Block to = FreshBlock();
    std::memset(from.get(), 1, kBytes);
    std::memset(to.get(), 2, kBytes);
    for (auto _ : state) {
        std::memcpy(to.get(), from.get(), kBytes);
        benchmark::ClobberMemory();
    }
    ReportBandwidth(state, 2 * kBytes);
}

// One byte written to every page of a block that the allocator has just taken from the system, as it does for
// every block of this size. Giving the pages back is part of the price.
void FirstTouch(benchmark::State& state) {
    for (auto _ : state) {
        const Block block = FreshBlock();
        for (std::size_t i = 0; i < kBytes; i += kPageBytes)
            block[i] = 1;
        benchmark::DoNotOptimize(block.get());
        benchmark::ClobberMemory();
    }
    ReportBandwidth(state, kBytes);
    using benchmark::Counter;
    state.counters["per_page"] =
        Counter(kBytes / kPageBytes, Counter::kIsIterationInvariantRate | Counter::kInvert);
}

BENCHMARK(Write)->Unit(benchmark::kMillisecond);
BENCHMARK(Copy)->Unit(benchmark::kMillisecond);
BENCHMARK(FirstTouch)->Unit(benchmark::kMillisecond);

}  // namespace
