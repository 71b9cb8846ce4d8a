// Whole frames through the pipeline, as the effect renders them: the map, the tables and the rows. Wall time
// counts; the CPU column is that of all threads. A first frame, which pays for the process's new memory, is
// not timed.

#include <benchmark/benchmark.h>

#include <string>

#include "Cases.h"
#include "FocusPipeline.h"
#include "Register.h"
#include "Report.h"
#include "SceneCache.h"
#include "SimdLevel.h"
#include "ThreadPoolContext.h"
#include "Traffic.h"

namespace bench {

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::SimdLevel;

template <class C>
void Frame(benchmark::State& state, const FrameCase& frame, bool fine, SimdLevel level) {
    const Scene<C>& scene = SceneOf<C>(frame.size, frame.matte);
    const PILib::SimplePixelBuffer<Pixel<C>> output(frame.size.width, frame.size.height);
    RenderInputs inputs;
    inputs.blurType = fine ? 1 : 0;
    inputs.maxBlur = static_cast<float>(frame.radius);
    PILib::ThreadPoolContext context(frame.threads);
    const auto render = [&] {
        RenderFrame(context, inputs, {}, output, scene.beauty, &scene.control, level);
    };
    render();
    for (auto _ : state) {
        render();
        benchmark::ClobberMemory();
    }
    ReportPixelRate(state, output);
    ReportTraffic(state, FrameTraffic(context, scene.beauty, fine, frame.radius));
}

template <class C>
void Register(const FrameCase& frame, bool fine, const char* levelName, SimdLevel level) {
    const std::string name =
        std::string("Frame/") + kDepthName<C> + "/" + NameOf(frame, fine) + "/" + levelName;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) { Frame<C>(state, frame, fine, level); })
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();
}

template <class C>
void RegisterDepth() {
    for (const bool fine : {false, true}) {
        for (const FrameCase& frame : AllFrameCases()) {
            Register<C>(frame, fine, "best", PILib::BestSimdLevel());
            for (const SimdLevel level : SupportedLevels())
                Register<C>(frame, fine, NameOf(level), level);
        }
    }
}

}  // namespace

void RegisterFrames() {
    RegisterDepth<Channel8>();
    RegisterDepth<Channel15>();
}

}  // namespace bench
