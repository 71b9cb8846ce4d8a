// The machine's memory, to hold the other figures against: a copy, and the first touch of fresh pages.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstring>
#include <memory>

namespace {

constexpr std::size_t kSize = std::size_t{256} << 20U;

void Copy(benchmark::State& state) {
    const auto from = std::make_unique<char[]>(kSize);
    const auto to = std::make_unique<char[]>(kSize);
    for (auto _ : state) {
        std::memcpy(to.get(), from.get(), kSize);
        benchmark::DoNotOptimize(to.get());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(2 * kSize) * state.iterations());  // read and written
}

void FirstTouch(benchmark::State& state) {
    for (auto _ : state) {
        const auto fresh = std::make_unique_for_overwrite<char[]>(kSize);
        std::memset(fresh.get(), 1, kSize);
        benchmark::DoNotOptimize(fresh.get());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(kSize) * state.iterations());
}

BENCHMARK(Copy)->Unit(benchmark::kMillisecond);
BENCHMARK(FirstTouch)->Unit(benchmark::kMillisecond);

}  // namespace
