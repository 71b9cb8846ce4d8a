// The passes of a frame beside its blur, each over whole buffers on one thread.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "BlendRows.h"
#include "Cases.h"
#include "FocusPipeline.h"
#include "FrameBufferOps.h"
#include "Register.h"
#include "Report.h"
#include "Scenes.h"
#include "ThreadPoolContext.h"
#include "Traffic.h"

namespace bench {

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;

template <class C>
struct Buffers {
    explicit Buffers(Size size)
        : input(size.width, size.height), output(size.width, size.height), map(size.width, size.height) {
        PaintBeauty(input);
        PaintControl(output, Matte::kRamp);
        PaintMatte(map, Matte::kObjects);
    }

    PILib::SimplePixelBuffer<Pixel<C>> input;
    PILib::SimplePixelBuffer<Pixel<C>> output;
    PILib::ChannelBuf<C> map;
    PILib::ThreadPoolContext context{1};
};

// Repeats operation(buffers), which moves `pictures` pictures and `maps` maps to or from memory.
template <class C, class Operation>
void Register(const char* name, Size size, std::size_t pictures, std::size_t maps, Operation operation,
              const std::string& level = {}) {
    const auto run = [=](benchmark::State& state) {
        Buffers<C> buffers(size);
        for (auto _ : state) {
            operation(buffers);
            benchmark::ClobberMemory();
        }
        ReportPixelRate(state, buffers.input);
        ReportTraffic(state, pictures * BytesOf(buffers.input) + maps * BytesOf(buffers.map));
    };
    const std::string path =
        std::string(name) + "/" + kDepthName<C> + "/" + NameOf(size) + (level.empty() ? "" : "/" + level);
    benchmark::RegisterBenchmark(path.c_str(), run)->Unit(benchmark::kMillisecond);
}

template <class C>
void RegisterSize(Size size) {
    using B = Buffers<C>;
    Register<C>("ExtractChannel:red", size, 1, 1,
                [](B& b) { PILib::ExtractChannel(b.context, b.map, b.input, PILib::kChannelRed); });
    Register<C>("ExtractChannel:luma", size, 1, 1,
                [](B& b) { PILib::ExtractChannel(b.context, b.map, b.input, PILib::kChannelLuma); });
    // The map is turned over and back, so that every iteration finds the same spread of values.
    Register<C>("ProcessChannel", size, 0, 2, [](B& b) { ProcessChannel(b.map, 0.0F, 0.0F, true); });
    Register<C>("PaintFocus", size, 2, 1, [](B& b) { PaintFocus(b.output, b.input, b.map); });
    Register<C>("load", size, 2, 0, [](B& b) { b.output.load(b.input, PILib::kAlignTopLeft); });
    Register<C>("blend", size, 3, 0, [](B& b) { b.output.blend(b.context, b.input, 0.3F); });
    for (const PILib::SimdLevel level : SupportedLevels()) {
        constexpr std::int32_t kWeight = 20000;
        Register<C>(
            "BlendRows", size, 3, 0,
            [level](B& b) { PILib::detail::BlendRows<C>(b.output, b.input, kWeight, level); }, NameOf(level));
    }
}

}  // namespace

void RegisterPasses() {
    for (const Size size : kSizes) {
        RegisterSize<Channel8>(size);
        RegisterSize<Channel15>(size);
    }
}

}  // namespace bench
