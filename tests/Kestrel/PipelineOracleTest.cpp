// Whole frames against the reference pipeline, bit for bit.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <ostream>
#include <random>

#include "FocusPipeline.h"
#include "NaivePipeline.h"
#include "OracleBuffers.h"
#include "RandomImage.h"
#include "SimdLevels.h"
#include "ThreadPoolContext.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::SimplePixelBuffer;

constexpr unsigned kSetsPerDepth = 600;
constexpr std::array kThreads = {1, 2, 3, 5, 17};
constexpr std::array kBlends = {0.0F, 0.5F, 0.9985F, 0.999F, 1.0F};

struct ParameterSet {
    unsigned seed;
    int width;
    int height;
    int threads;
    bool hasControl;
    oracle::Controls controls;
};

std::ostream& operator<<(std::ostream& out, const ParameterSet& p) {
    const oracle::Controls& c = p.controls;
    return out << "seed " << p.seed << ", " << p.width << " x " << p.height << ", " << p.threads
               << " threads, " << (p.hasControl ? "" : "no control, ") << (c.focusView ? "Focus" : "Normal")
               << ", " << (c.fine ? "Fine" : "Coarse") << ", channel " << c.channel << ", focal point "
               << c.focalPoint << ", range " << c.inFocusRange << ", blur " << c.maximumBlur << ", aspect "
               << c.aspect << ", invert " << c.invert << ", blend " << c.blend << ", downsampling "
               << c.downsampleX << " x " << c.downsampleY;
}

// From 0 to `largest`, both included.
float RandomFloat(std::mt19937& random, float largest) {
    return static_cast<float>(oracle::RandomUpTo(random, 10000)) / 10000.0F * largest;
}

float RandomBlend(std::mt19937& random) {
    const auto fixed = static_cast<std::size_t>(oracle::RandomUpTo(random, 2 * kBlends.size() - 1));
    return fixed < kBlends.size() ? kBlends[fixed] : RandomFloat(random, 1.0F);
}

// Radii grow as sizes shrink, so that direct summation stays affordable.
ParameterSet MakeSet(unsigned seed, std::mt19937& random) {
    const bool large = seed % 8 < 2;
    ParameterSet p{};
    p.seed = seed;
    p.width = 1 + oracle::RandomUpTo(random, large ? 63 : 19);
    p.height = 1 + oracle::RandomUpTo(random, large ? 47 : 15);
    p.threads = kThreads[seed % kThreads.size()];
    p.hasControl = oracle::RandomUpTo(random, 19) != 0;
    p.controls.focusView = oracle::RandomUpTo(random, 3) == 0;
    p.controls.fine = oracle::RandomUpTo(random, 1) == 1;
    p.controls.channel = oracle::RandomUpTo(random, 6);
    p.controls.focalPoint = RandomFloat(random, 1.0F);
    p.controls.inFocusRange = RandomFloat(random, oracle::RandomUpTo(random, 1) == 1 ? 0.2F : 1.0F);
    p.controls.maximumBlur = RandomFloat(random, large ? 10.0F : 60.0F);
    p.controls.aspect = RandomFloat(random, 2.0F) - 1.0F;
    p.controls.invert = oracle::RandomUpTo(random, 1) == 1;
    p.controls.blend = RandomBlend(random);
    p.controls.downsampleX = 1.0F / static_cast<float>(1 + oracle::RandomUpTo(random, 3));
    p.controls.downsampleY = 1.0F / static_cast<float>(1 + oracle::RandomUpTo(random, 3));
    if (oracle::RandomUpTo(random, 9) == 0) p.controls.aspect = 0.0F;
    return p;
}

RenderInputs InputsFor(const ParameterSet& p) {
    const oracle::Controls& c = p.controls;
    RenderInputs inputs;
    inputs.viewMode = c.focusView ? 1 : 0;
    inputs.blurType = c.fine ? 1 : 0;
    inputs.channel = c.channel;
    inputs.focalPoint = c.focalPoint;
    inputs.inFocusRange = c.inFocusRange;
    inputs.maxBlur = c.maximumBlur;
    inputs.aspect = c.aspect;
    inputs.invert = c.invert;
    inputs.conform = p.seed % 2 == 0;
    inputs.blend = c.blend;
    return inputs;
}

// Every other control layer has runs of equal values, as a depth matte has.
oracle::Image ControlImage(const ParameterSet& p, std::uint32_t full, std::mt19937& random) {
    oracle::Image image = oracle::RandomImage(random, p.width, p.height, full);
    if (p.seed % 2 == 0) return image;
    const int run = 2 + oracle::RandomUpTo(random, 30);
    for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x < p.width; ++x)
            image.at(x, y) = image.at(x - x % run, y);
    }
    return image;
}

template <class C>
void CompareSet(unsigned seed) {
    std::mt19937 random(seed);
    const ParameterSet p = MakeSet(seed, random);
    const oracle::Image inputImage = oracle::RandomImage(random, p.width, p.height, oracle::kFull<C>);
    const oracle::Image controlImage = ControlImage(p, oracle::kFull<C>, random);
    const oracle::Image expected =
        oracle::RenderedFrame(p.controls, inputImage, p.hasControl ? &controlImage : nullptr);

    const SimplePixelBuffer<Pixel<C>> input(p.width, p.height);
    const SimplePixelBuffer<Pixel<C>> control(p.width, p.height);
    const SimplePixelBuffer<Pixel<C>> output(p.width, p.height);
    oracle::Store<C>(inputImage, input);
    oracle::Store<C>(controlImage, control);
    PILib::ThreadPoolContext context(p.threads);
    for (const PILib::SimdLevel level : SupportedLevels()) {
        output.clear();
        RenderFrame(context, InputsFor(p), {p.controls.downsampleX, p.controls.downsampleY}, output, input,
                    p.hasControl ? &control : nullptr, level);
        for (int y = 0; y < p.height; ++y) {
            for (int x = 0; x < p.width; ++x) {
                ASSERT_EQ(expected.at(x, y), oracle::ColourOf(output.row(y)[x]))
                    << p << ", level " << static_cast<int>(level) << ": x " << x << ", y " << y << ", input "
                    << testing::PrintToString(inputImage.at(x, y)) << ", control "
                    << testing::PrintToString(controlImage.at(x, y));
            }
        }
        ASSERT_EQ(inputImage.values, oracle::Fetched(input).values) << p << ": the input was written";
        ASSERT_EQ(controlImage.values, oracle::Fetched(control).values) << p << ": the control was written";
    }
}

template <class C>
void CompareAllSets() {
    for (unsigned seed = 0; seed < kSetsPerDepth; ++seed) {
        CompareSet<C>(seed);
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST(PipelineOracleTest, FramesEqualTheReferenceAt8Bits) {
    CompareAllSets<Channel8>();
}

TEST(PipelineOracleTest, FramesEqualTheReferenceAt15Bits) {
    CompareAllSets<Channel15>();
}

}  // namespace
