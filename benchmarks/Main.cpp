// Registers and runs every benchmark; takes the options of Google Benchmark.

#include <benchmark/benchmark.h>

#include "Register.h"

int main(int argc, char** argv) {
    bench::RegisterMemory();
    bench::RegisterFrames();
    bench::RegisterPluginFrames();
    bench::RegisterBlurs();
    bench::RegisterPasses();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
