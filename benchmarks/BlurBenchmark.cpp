// The two halves of a blur on one thread and at every level: its tables built, in memory that has been used
// before, and all rows read out. Beside them the reference renderer's direct sums over a small picture.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "Cases.h"
#include "Kestrel.h"
#include "NaiveBlur.h"
#include "Register.h"
#include "Report.h"
#include "SATBlur.h"
#include "SATExactTentBlur.h"
#include "SceneCache.h"
#include "ThreadPoolContext.h"
#include "ThreadRows.h"
#include "Traffic.h"

namespace bench {

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::Pixel;
using PILib::SATBoxBlur;
using PILib::SATExactTentBlur;
using PILib::SimdLevel;
using PILib::SimplePixelBuffer;

// What direct sums can be asked for.
constexpr int kNaiveRadius = 5;

template <template <class> class Blur, class C>
void Tables(benchmark::State& state, Size size, int radius, SimdLevel level) {
    const Scene<C>& scene = SceneOf<C>(size, Matte::kObjects);
    PILib::ThreadPoolContext context(1);
    Blur<Pixel<C>> blur(context, scene.beauty, radius, radius, level);
    for (auto _ : state) {
        blur.initialize();
        benchmark::ClobberMemory();
    }
    ReportPixelRate(state, scene.beauty);
    ReportTraffic(state, BytesOf(scene.beauty) + TableBytes(blur));
}

template <template <class> class Blur, class C>
void Rows(benchmark::State& state, Size size, int radius, Matte matte, SimdLevel level) {
    const Scene<C>& scene = SceneOf<C>(size, matte);
    const SimplePixelBuffer<Pixel<C>> output(size.width, size.height);
    const ChannelBuf<C> map(size.width, size.height);
    PaintMatte(map, matte);
    PILib::ThreadPoolContext context(1);
    Blur<Pixel<C>> blur(context, scene.beauty, radius, radius, level);
    blur.initialize();
    const auto largest = static_cast<float>(radius);
    KestrelThreadHandler<Pixel<C>> handler{output, scene.beauty, map, &blur, largest, largest};
    for (auto _ : state) {
        PILib::ThreadRows(context, handler, output.height, -1);
        benchmark::ClobberMemory();
    }
    ReportPixelRate(state, output);
    ReportTraffic(state, BytesOf(scene.beauty) + BytesOf(map) + BytesOf(output) + TableBytes(blur));
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
    const SimplePixelBuffer<Pixel<Channel8>> input(kTinySize.width, kTinySize.height);
    const ChannelBuf<Channel8> map(kTinySize.width, kTinySize.height);
    PaintBeauty(input);
    PaintMatte(map, Matte::kObjects);
    const oracle::Blur blur = oracle::MakeBlur(shape, ImageOf(input), kNaiveRadius, kNaiveRadius);
    for (auto _ : state) {
        for (int y = 0; y < map.height; ++y) {
            for (int x = 0; x < map.width; ++x) {
                const std::int32_t radius = Channel8::toFixed(map.row(y)[x]) * kNaiveRadius;
                benchmark::DoNotOptimize(oracle::ReadFractional(blur, x, y, radius, radius));
            }
        }
    }
    ReportPixelRate(state, input);
}

template <class Run>
void Register(const std::string& name, Run run) {
    benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMillisecond);
}

template <template <class> class Blur, class C>
void RegisterBlur(const std::string& blur, Size size, int radius, SimdLevel level) {
    const std::string buffers =
        std::string(kDepthName<C>) + "/" + blur + "/" + NameOf(size) + "/radius:" + std::to_string(radius);
    Register("Tables/" + buffers + "/" + NameOf(level),
             [=](benchmark::State& state) { Tables<Blur, C>(state, size, radius, level); });
    for (const Matte matte : kMattes) {
        Register("Rows/" + buffers + "/" + NameOf(matte) + "/" + NameOf(level),
                 [=](benchmark::State& state) { Rows<Blur, C>(state, size, radius, matte, level); });
    }
}

template <class C>
void RegisterDepth() {
    for (const Size size : kSizes) {
        for (const int radius : kRadii) {
            for (const SimdLevel level : SupportedLevels()) {
                RegisterBlur<SATBoxBlur, C>(TypeName(false), size, radius, level);
                RegisterBlur<SATExactTentBlur, C>(TypeName(true), size, radius, level);
            }
        }
    }
}

}  // namespace

void RegisterBlurs() {
    RegisterDepth<Channel8>();
    RegisterDepth<Channel15>();
    const std::string naive = NameOf(kTinySize) + "/radius:" + std::to_string(kNaiveRadius) + "/objects";
    Register("NaiveRows/8-bit/Coarse/" + naive, NaiveRows<oracle::Shape::kBox>);
    Register("NaiveRows/8-bit/Fine/" + naive, NaiveRows<oracle::Shape::kTent>);
}

}  // namespace bench
