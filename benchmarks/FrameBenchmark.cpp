// Whole frames through the pipeline, as the effect renders them: the map, the tables in freshly allocated
// memory, and the rows. Wall time counts; the CPU column is that of all threads.

#include <benchmark/benchmark.h>

#include <utility>

#include "FocusPipeline.h"
#include "Report.h"
#include "Scenes.h"
#include "ThreadPoolContext.h"

namespace bench {

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::SimplePixelBuffer;

template <class C>
void Frame(benchmark::State& state) {
    const SimplePixelBuffer<Pixel<C>> input(Argument(state, 0), Argument(state, 1));
    const SimplePixelBuffer<Pixel<C>> control(input.width, input.height);
    const SimplePixelBuffer<Pixel<C>> output(input.width, input.height);
    const auto matte = static_cast<Matte>(state.range(4));
    PaintBeauty(input);
    PaintControl(control, matte);
    RenderInputs inputs;
    inputs.blurType = Argument(state, 2);
    inputs.maxBlur = 50.0F;
    PILib::ThreadPoolContext context(Argument(state, 3));
    for (auto _ : state)
        RenderFrame(context, inputs, {}, output, input, &control);
    state.SetLabel(NameOf(matte));
    ReportPixelRate(state, output);
}

void Frames(benchmark::internal::Benchmark* run) {
    run->ArgNames({"width", "height", "fine", "threads", "matte"})
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();
    for (const auto& [width, height] : {std::pair{1280, 720}, std::pair{3840, 2160}}) {
        for (const int fine : {0, 1}) {
            for (const int threads : {1, 2}) {
                for (const Matte matte : kMattes)
                    run->Args({width, height, fine, threads, static_cast<int>(matte)});
            }
        }
    }
}

BENCHMARK(Frame<Channel8>)->Apply(Frames);
BENCHMARK(Frame<Channel15>)->Apply(Frames);

}  // namespace

}  // namespace bench
