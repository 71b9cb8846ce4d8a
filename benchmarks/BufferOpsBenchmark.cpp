// The passes of a frame beside its blur, each over a whole full-HD buffer on one thread.

#include <benchmark/benchmark.h>

#include "FocusPipeline.h"
#include "FrameBufferOps.h"
#include "Report.h"
#include "Scenes.h"
#include "ThreadPoolContext.h"

namespace bench {

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;

template <class C>
struct Buffers {
    PILib::SimplePixelBuffer<Pixel<C>> input{1920, 1080};
    PILib::SimplePixelBuffer<Pixel<C>> output{1920, 1080};
    PILib::ChannelBuf<C> map{1920, 1080};
    PILib::ThreadPoolContext context{1};

    Buffers() {
        PaintBeauty(input);
        PaintControl(output, Matte::kRamp);
        PaintMatte(map, Matte::kObjects);
    }
};

template <class Operation>
void Repeat(benchmark::State& state, const PILib::FrameBuffer& buffer, Operation operation) {
    for (auto _ : state) {
        operation();
        benchmark::ClobberMemory();
    }
    ReportPixelRate(state, buffer);
}

template <class C, PILib::ChannelID channel>
void Extract(benchmark::State& state) {
    Buffers<C> b;
    Repeat(state, b.map, [&b] { PILib::ExtractChannel(b.context, b.map, b.input, channel); });
}

// The map is turned over and back, so that every iteration finds the same spread of values.
template <class C>
void Process(benchmark::State& state) {
    const Buffers<C> b;
    Repeat(state, b.map, [&b] { ProcessChannel(b.map, 0.0F, 0.0F, true); });
}

template <class C>
void FocusView(benchmark::State& state) {
    const Buffers<C> b;
    Repeat(state, b.output, [&b] { PaintFocus(b.output, b.input, b.map); });
}

template <class C>
void Load(benchmark::State& state) {
    const Buffers<C> b;
    Repeat(state, b.output, [&b] { b.output.load(b.input, PILib::kAlignTopLeft); });
}

template <class C>
void Blend(benchmark::State& state) {
    Buffers<C> b;
    Repeat(state, b.output, [&b] { b.output.blend(b.context, b.input, 0.3F); });
}

BENCHMARK(Extract<Channel8, PILib::kChannelRed>)->Unit(benchmark::kMillisecond);
BENCHMARK(Extract<Channel8, PILib::kChannelLuma>)->Unit(benchmark::kMillisecond);
BENCHMARK(Extract<Channel15, PILib::kChannelRed>)->Unit(benchmark::kMillisecond);
BENCHMARK(Extract<Channel15, PILib::kChannelLuma>)->Unit(benchmark::kMillisecond);
BENCHMARK(Process<Channel8>)->Unit(benchmark::kMillisecond);
BENCHMARK(Process<Channel15>)->Unit(benchmark::kMillisecond);
BENCHMARK(FocusView<Channel8>)->Unit(benchmark::kMillisecond);
BENCHMARK(FocusView<Channel15>)->Unit(benchmark::kMillisecond);
BENCHMARK(Load<Channel8>)->Unit(benchmark::kMillisecond);
BENCHMARK(Load<Channel15>)->Unit(benchmark::kMillisecond);
BENCHMARK(Blend<Channel8>)->Unit(benchmark::kMillisecond);
BENCHMARK(Blend<Channel15>)->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace bench
