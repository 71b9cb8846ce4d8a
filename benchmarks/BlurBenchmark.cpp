// The two halves of a blur on one thread: tables built, rows read out.
#include <benchmark/benchmark.h>

#include <memory>

#include "Kestrel.h"
#include "SATTentBlur.h"
#include "Scenes.h"
#include "ThreadPoolContext.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

void ReportPixels(benchmark::State& state) {
    const double pixels = static_cast<double>(kWidth) * kHeight;
    state.counters["Mpixel/s"] =
        benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

template <class Blur, class C>
void Tables(benchmark::State& state) {
    const auto radius = static_cast<int>(state.range(0));
    const PILib::SimplePixelBuffer<Pixel<C>> picture(kWidth, kHeight);
    bench::PaintBeauty<C>(picture);
    PILib::ThreadPoolContext context(1);
    for (auto _ : state) {
        Blur blur(context, picture, radius, radius);
        blur.initialize();
        benchmark::DoNotOptimize(blur.sumRed.get());
    }
    ReportPixels(state);
}

template <class Blur, class C>
void Rows(benchmark::State& state) {
    const auto radius = static_cast<int>(state.range(0));
    const auto matte = static_cast<bench::Matte>(state.range(1));
    const PILib::SimplePixelBuffer<Pixel<C>> picture(kWidth, kHeight);
    const PILib::SimplePixelBuffer<Pixel<C>> output(kWidth, kHeight);
    const PILib::ChannelBuf<C> map(kWidth, kHeight);
    bench::PaintBeauty<C>(picture);
    bench::PaintMatte<C>(map, matte);
    PILib::ThreadPoolContext context(1);
    Blur blur(context, picture, radius, radius);
    blur.initialize();
    const auto largest = static_cast<float>(radius);
    KestrelThreadHandler<Pixel<C>> handler{output, picture, map, &blur, largest, largest};
    for (auto _ : state) {
        for (int y = 0; y < kHeight; ++y)
            handler.rowOp(context, y);
    }
    ReportPixels(state);
    state.SetLabel(bench::NameOf(matte));
}

using Box8 = PILib::SATBoxBlur<Pixel<Channel8>>;
using Box15 = PILib::SATBoxBlur<Pixel<Channel15>>;
using Tent8 = PILib::SATTentBlur<Pixel<Channel8>>;
using Tent15 = PILib::SATTentBlur<Pixel<Channel15>>;

void EachRadius(benchmark::internal::Benchmark* run) {
    for (const int radius : {5, 50, 200})
        run->Arg(radius);
    run->ArgName("radius")->Unit(benchmark::kMillisecond);
}

void EachRadiusAndMatte(benchmark::internal::Benchmark* run) {
    for (const int radius : {5, 50, 200}) {
        for (const int matte : {0, 1, 2})
            run->Args({radius, matte});
    }
    run->ArgNames({"radius", "matte"})->Unit(benchmark::kMillisecond);
}

BENCHMARK(Tables<Box8, Channel8>)->Apply(EachRadius);
BENCHMARK(Tables<Box15, Channel15>)->Apply(EachRadius);
BENCHMARK(Tables<Tent8, Channel8>)->Apply(EachRadius);
BENCHMARK(Tables<Tent15, Channel15>)->Apply(EachRadius);
BENCHMARK(Rows<Box8, Channel8>)->Apply(EachRadiusAndMatte);
BENCHMARK(Rows<Box15, Channel15>)->Apply(EachRadiusAndMatte);
BENCHMARK(Rows<Tent8, Channel8>)->Apply(EachRadiusAndMatte);
BENCHMARK(Rows<Tent15, Channel15>)->Apply(EachRadiusAndMatte);

}  // namespace
