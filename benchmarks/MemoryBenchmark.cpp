// What the machine's memory gives one thread, to hold the other figures of the same run against. The blocks
// are far beyond the caches, as a large frame's tables are; the small ones show only that this works.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "Register.h"

namespace bench {

namespace {

constexpr int kMebibytes[] = {1, 256};
constexpr std::size_t kPageBytes = 4096;

using Block = std::unique_ptr<unsigned char[]>;

Block FreshBlock(std::size_t bytes) {
    return std::make_unique_for_overwrite<unsigned char[]>(bytes);
}

void ReportBandwidth(benchmark::State& state, std::size_t bytesPerIteration) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytesPerIteration));
}

void Write(benchmark::State& state, std::size_t bytes) {
    const Block block = FreshBlock(bytes);
    std::memset(block.get(), 2, bytes);
    for (auto _ : state) {
        std::memset(block.get(), 1, bytes);
        benchmark::ClobberMemory();
    }
    ReportBandwidth(state, bytes);
}

// Counts the bytes read and the bytes written. Both blocks have been written before, as pages that never were
// share one page of zeros.
void Copy(benchmark::State& state, std::size_t bytes) {
    const Block from = FreshBlock(bytes);
    const Block to = FreshBlock(bytes);
    std::memset(from.get(), 1, bytes);
    std::memset(to.get(), 2, bytes);
    for (auto _ : state) {
        std::memcpy(to.get(), from.get(), bytes);
        benchmark::ClobberMemory();
    }
    ReportBandwidth(state, 2 * bytes);
}

// One byte written to every page of a block that the allocator has just taken from the system, as it does for
// every block of this size. Giving the pages back is part of the price.
void FirstTouch(benchmark::State& state, std::size_t bytes) {
    for (auto _ : state) {
        const Block block = FreshBlock(bytes);
        for (std::size_t i = 0; i < bytes; i += kPageBytes)
            block[i] = 1;
        benchmark::DoNotOptimize(block.get());
        benchmark::ClobberMemory();
    }
    ReportBandwidth(state, bytes);
    using benchmark::Counter;
    state.counters["per_page"] = Counter(static_cast<double>(bytes / kPageBytes),
                                         Counter::kIsIterationInvariantRate | Counter::kInvert);
}

void Register(const char* name, void (*run)(benchmark::State&, std::size_t)) {
    for (const int mebibytes : kMebibytes) {
        const std::string path = std::string(name) + "/" + std::to_string(mebibytes) + "MiB";
        const std::size_t bytes = static_cast<std::size_t>(mebibytes) << 20;
        benchmark::RegisterBenchmark(path.c_str(), run, bytes)->Unit(benchmark::kMillisecond);
    }
}

}  // namespace

void RegisterMemory() {
    Register("Write", Write);
    Register("Copy", Copy);
    Register("FirstTouch", FirstTouch);
}

}  // namespace bench
