// The steps of a frame beside the blur, at 1920 x 1080.
#include <benchmark/benchmark.h>

#include "FocusPipeline.h"
#include "FrameBufferOps.h"
#include "Scenes.h"
#include "ThreadPoolContext.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;

template <class C>
struct Buffers {
    PILib::SimplePixelBuffer<Pixel<C>> picture{1920, 1080};
    PILib::SimplePixelBuffer<Pixel<C>> output{1920, 1080};
    PILib::ChannelBuf<C> map{1920, 1080};
    PILib::ThreadPoolContext context{1};

    Buffers() {
        bench::PaintBeauty<C>(picture);
        bench::PaintBeauty<C>(output);
        bench::PaintMatte<C>(map, bench::Matte::Objects);
    }
};

template <class C>
void Extract(benchmark::State& state) {
    Buffers<C> b;
    for (auto _ : state)
        PILib::ExtractChannel(b.context, b.map, b.picture, PILib::kChannelLuma);
}

template <class C>
void Condition(benchmark::State& state) {
    const Buffers<C> b;
    for (auto _ : state)
        ProcessChannel(b.map, 0.5F, 0.1F, true);
}

template <class C>
void FocusView(benchmark::State& state) {
    const Buffers<C> b;
    for (auto _ : state)
        PaintFocus(b.output, b.picture, b.map);
}

template <class C>
void Load(benchmark::State& state) {
    const Buffers<C> b;
    for (auto _ : state)
        b.output.load(b.picture, PILib::kAlignTopLeft);
}

template <class C>
void Blend(benchmark::State& state) {
    Buffers<C> b;
    for (auto _ : state)
        b.output.blend(b.context, b.picture, 0.5F);
}

BENCHMARK(Extract<Channel8>)->Unit(benchmark::kMillisecond);
BENCHMARK(Extract<Channel15>)->Unit(benchmark::kMillisecond);
BENCHMARK(Condition<Channel8>)->Unit(benchmark::kMillisecond);
BENCHMARK(Condition<Channel15>)->Unit(benchmark::kMillisecond);
BENCHMARK(FocusView<Channel8>)->Unit(benchmark::kMillisecond);
BENCHMARK(FocusView<Channel15>)->Unit(benchmark::kMillisecond);
BENCHMARK(Load<Channel8>)->Unit(benchmark::kMillisecond);
BENCHMARK(Load<Channel15>)->Unit(benchmark::kMillisecond);
BENCHMARK(Blend<Channel8>)->Unit(benchmark::kMillisecond);
BENCHMARK(Blend<Channel15>)->Unit(benchmark::kMillisecond);

}  // namespace
