// Whole frames through the plug-in's binary, called by the headless host: what the pipeline's frames cost
// with the framework and the host's callbacks around them. A first frame is not timed here either.

#include <benchmark/benchmark.h>

#include <string>

#include "Cases.h"
#include "PluginRender.h"
#include "Register.h"
#include "Report.h"
#include "SceneCache.h"
#include "ThreadPoolContext.h"
#include "Traffic.h"

namespace bench {

namespace {

using PILib::Channel15;
using PILib::Channel8;

template <class C>
void PluginFrame(benchmark::State& state, const FrameCase& frame, bool fine) {
    const Scene<C>& scene = SceneOf<C>(frame.size, frame.matte);
    const perch::World input = WorldOf(scene.beauty);
    const perch::World control = WorldOf(scene.control);
    PluginRender render(input, control, {fine, frame.radius, frame.threads});
    render.secondsOfFrame();
    for (auto _ : state)
        state.SetIterationTime(render.secondsOfFrame());
    ReportPixelRate(state, scene.beauty);
    PILib::ThreadPoolContext context(1);
    ReportTraffic(state, FrameTraffic(context, scene.beauty, fine, frame.radius));
}

template <class C>
void RegisterDepth() {
    for (const bool fine : {false, true}) {
        for (const FrameCase& frame : AllFrameCases()) {
            const std::string name = std::string("PluginFrame/") + kDepthName<C> + "/" + NameOf(frame, fine);
            benchmark::RegisterBenchmark(
                name.c_str(), [frame, fine](benchmark::State& state) { PluginFrame<C>(state, frame, fine); })
                ->Unit(benchmark::kMillisecond)
                ->UseManualTime();
        }
    }
}

}  // namespace

void RegisterPluginFrames() {
    RegisterDepth<Channel8>();
    RegisterDepth<Channel15>();
}

}  // namespace bench
