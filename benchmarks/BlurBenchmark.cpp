// The two halves of a blur on one thread: its tables built, in memory that has been used before, and all rows
// read out. Beside them the reference renderer's direct sums over a small picture.

#include <benchmark/benchmark.h>

#include <cstdint>

#include "Kestrel.h"
#include "NaiveBlur.h"
#include "Report.h"
#include "SATBlur.h"
#include "SATTentBlur.h"
#include "Scenes.h"
#include "ThreadPoolContext.h"

namespace bench {

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::Pixel;
using PILib::SATBoxBlur;
using PILib::SATTentBlur;
using PILib::SimplePixelBuffer;

struct Size {
    int width;
    int height;
};
constexpr Size kFullHD = {1920, 1080};
constexpr Size kSizes[] = {{1280, 720}, kFullHD, {3840, 2160}};
constexpr int kRadii[] = {5, 50, 200};

// What direct sums can be asked for.
constexpr Size kSmall = {320, 180};
constexpr int kSmallRadius = 5;

template <template <class> class Blur, class C>
void Tables(benchmark::State& state) {
    const SimplePixelBuffer<Pixel<C>> input(Argument(state, 0), Argument(state, 1));
    PaintBeauty(input);
    PILib::ThreadPoolContext context(1);
    const int radius = Argument(state, 2);
    Blur<Pixel<C>> blur(context, input, radius, radius);
    for (auto _ : state) {
        blur.initialize();
        benchmark::ClobberMemory();
    }
    ReportPixelRate(state, input);
}

template <template <class> class Blur, class C>
void Rows(benchmark::State& state) {
    const SimplePixelBuffer<Pixel<C>> input(Argument(state, 0), Argument(state, 1));
    const SimplePixelBuffer<Pixel<C>> output(input.width, input.height);
    const ChannelBuf<C> map(input.width, input.height);
    const auto matte = static_cast<Matte>(state.range(3));
    PaintBeauty(input);
    PaintMatte(map, matte);
    PILib::ThreadPoolContext context(1);
    const int radius = Argument(state, 2);
    Blur<Pixel<C>> blur(context, input, radius, radius);
    blur.initialize();
    const auto largest = static_cast<float>(radius);
    KestrelThreadHandler<Pixel<C>> handler{output, input, map, &blur, largest, largest};
    for (auto _ : state) {
        for (int y = 0; y < output.height; ++y)
            handler.rowOp(context, y);
        benchmark::ClobberMemory();
    }
    state.SetLabel(NameOf(matte));
    ReportPixelRate(state, output);
}

oracle::Image ImageOf(const PILib::PixelBuf<Pixel<Channel8>>& picture) {
    oracle::Image image(picture.width, picture.height, oracle::kFull8);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const Pixel<Channel8> p = picture.row(y)[x];
            image.at(x, y) = {p.alpha, p.red, p.green, p.blue};
        }
    }
    return image;
}

template <oracle::Shape shape>
void NaiveRows(benchmark::State& state) {
    const SimplePixelBuffer<Pixel<Channel8>> input(kSmall.width, kSmall.height);
    const ChannelBuf<Channel8> map(kSmall.width, kSmall.height);
    PaintBeauty(input);
    PaintMatte(map, Matte::kObjects);
    const oracle::Blur blur = oracle::MakeBlur(shape, ImageOf(input), kSmallRadius, kSmallRadius);
    for (auto _ : state) {
        for (int y = 0; y < map.height; ++y) {
            for (int x = 0; x < map.width; ++x) {
                const std::int32_t radius = Channel8::toFixed(map.row(y)[x]) * kSmallRadius;
                benchmark::DoNotOptimize(oracle::ReadFractional(blur, x, y, radius, radius));
            }
        }
    }
    state.SetLabel(NameOf(Matte::kObjects));
    ReportPixelRate(state, input);
}

void SizesAndRadii(benchmark::internal::Benchmark* run) {
    run->ArgNames({"width", "height", "radius"})->Unit(benchmark::kMillisecond);
    for (const Size size : kSizes) {
        for (const int radius : kRadii)
            run->Args({size.width, size.height, radius});
    }
}

// Every size with the matte of objects, and every matte at full HD.
void SizesRadiiAndMattes(benchmark::internal::Benchmark* run) {
    run->ArgNames({"width", "height", "radius", "matte"})->Unit(benchmark::kMillisecond);
    const auto add = [run](Size size, int radius, Matte matte) {
        run->Args({size.width, size.height, radius, static_cast<int>(matte)});
    };
    add(kSmall, kSmallRadius, Matte::kObjects);
    for (const int radius : kRadii) {
        for (const Size size : kSizes)
            add(size, radius, Matte::kObjects);
        add(kFullHD, radius, Matte::kRamp);
        add(kFullHD, radius, Matte::kNoise);
    }
}

BENCHMARK(NaiveRows<oracle::Shape::kBox>)->Unit(benchmark::kMillisecond);
BENCHMARK(NaiveRows<oracle::Shape::kTent>)->Unit(benchmark::kMillisecond);
BENCHMARK(Rows<SATBoxBlur, Channel8>)->Apply(SizesRadiiAndMattes);
BENCHMARK(Rows<SATBoxBlur, Channel15>)->Apply(SizesRadiiAndMattes);
BENCHMARK(Rows<SATTentBlur, Channel8>)->Apply(SizesRadiiAndMattes);
BENCHMARK(Rows<SATTentBlur, Channel15>)->Apply(SizesRadiiAndMattes);
BENCHMARK(Tables<SATBoxBlur, Channel8>)->Apply(SizesAndRadii);
BENCHMARK(Tables<SATBoxBlur, Channel15>)->Apply(SizesAndRadii);
BENCHMARK(Tables<SATTentBlur, Channel8>)->Apply(SizesAndRadii);
BENCHMARK(Tables<SATTentBlur, Channel15>)->Apply(SizesAndRadii);

}  // namespace

}  // namespace bench
