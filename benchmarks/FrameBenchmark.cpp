// Whole frames through the pipeline, as the effect renders them.
#include <benchmark/benchmark.h>

#include "FocusPipeline.h"
#include "Scenes.h"
#include "ThreadPoolContext.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;

template <class C>
void Frame(benchmark::State& state) {
    const auto height = static_cast<int>(state.range(0));
    const int width = height * 16 / 9;
    const PILib::SimplePixelBuffer<Pixel<C>> picture(width, height);
    const PILib::SimplePixelBuffer<Pixel<C>> control(width, height);
    const PILib::SimplePixelBuffer<Pixel<C>> output(width, height);
    bench::PaintBeauty<C>(picture);
    bench::PaintControl<C>(control, bench::Matte::Objects);
    RenderInputs inputs;
    inputs.blurType = static_cast<int>(state.range(1));
    inputs.maxBlur = 50;
    PILib::ThreadPoolContext context(static_cast<int>(state.range(2)));
    for (auto _ : state)
        RenderFrame(context, inputs, {}, output, picture, &control);
    const double pixels = static_cast<double>(width) * height;
    state.counters["Mpixel/s"] =
        benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["ns/pixel"] = benchmark::Counter(
        pixels / 1e9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.SetLabel(inputs.blurType == 0 ? "Coarse" : "Fine");
}

void EachFrame(benchmark::internal::Benchmark* run) {
    for (const int height : {720, 1080, 2160}) {
        for (const int fine : {0, 1}) {
            for (const int threads : {1, 2})
                run->Args({height, fine, threads});
        }
    }
    run->ArgNames({"height", "fine", "threads"})->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK(Frame<Channel8>)->Apply(EachFrame);
BENCHMARK(Frame<Channel15>)->Apply(EachFrame);

}  // namespace
