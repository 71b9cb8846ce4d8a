#include "Kestrel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <numeric>
#include <random>
#include <typeinfo>
#include <utility>
#include <vector>

#include "Buffers.h"
#include "ChannelTypes.h"
#include "Disguised.h"
#include "ExpectAssertion.h"
#include "FakeContext.h"
#include "NaivePipeline.h"
#include "OracleBuffers.h"
#include "RandomImage.h"
#include "SATExactTentBlur.h"
#include "SimdLevels.h"
#include "ThreadPoolContext.h"

namespace {

using PILib::Channel15;
using PILib::Channel16;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::Pixel;
using PILib::SimplePixelBuffer;

// Noise to blur, a noisy map in which a third of the pixels is in focus, and an output.
template <class C>
struct Scene {
    Scene(int width, int height, unsigned seed)
        : random(seed),
          inputImage(oracle::RandomImage(random, width, height, oracle::kFull<C>)),
          mapValues(oracle::RandomMap(random, width, height, oracle::kFull<C>)),
          input(width, height),
          map(width, height),
          output(width, height) {
        oracle::Store<C>(inputImage, input);
        oracle::Store<C>(mapValues, map);
        output.clear();
    }

    oracle::Image expected(bool fine, float radiusX, float radiusY) const {
        return oracle::Defocused(output.width, output.height, inputImage, mapValues, fine, radiusX, radiusY);
    }

    std::mt19937 random;
    oracle::Image inputImage;
    oracle::Map mapValues;
    SimplePixelBuffer<Pixel<C>> input;
    ChannelBuf<C> map;
    SimplePixelBuffer<Pixel<C>> output;
};

template <class C>
void FillMap(const ChannelBuf<C>& map, int value) {
    for (int y = 0; y < map.height; ++y) {
        for (auto& element : map.row(y))
            element = static_cast<typename C::Type>(value);
    }
}

template <class C>
class KestrelTypedTest : public testing::Test {
protected:
    FakeContext context;
};

TYPED_TEST_SUITE(KestrelTypedTest, HostChannels, ChannelNames);

TYPED_TEST(KestrelTypedTest, MapOfZerosCopiesTheInputBitForBit) {
    for (const bool fine : {false, true}) {
        Scene<TypeParam> scene(17, 11, 1);
        FillMap(scene.map, 0);
        Kestrel(this->context, scene.output, scene.input, scene.map, fine, 9.0F, 4.0F);
        EXPECT_EQ(scene.inputImage.values, oracle::Fetched(scene.output).values) << "fine " << fine;
    }
}

TYPED_TEST(KestrelTypedTest, InFocusPixelsAreCopiedAmongBlurredOnes) {
    Scene<TypeParam> scene(23, 15, 2);
    Kestrel(this->context, scene.output, scene.input, scene.map, false, 6.0F, 6.0F);
    for (int y = 0; y < 15; ++y) {
        for (int x = 0; x < 23; ++x) {
            if (scene.mapValues.at(x, y) != 0) continue;
            ASSERT_EQ(scene.input.row(y)[x], scene.output.row(y)[x]) << x << ", " << y;
        }
    }
}

TYPED_TEST(KestrelTypedTest, RadiusZeroPremultipliesAndStraightensWhereTheMapIsNotZero) {
    for (const bool fine : {false, true}) {
        Scene<TypeParam> scene(17, 11, 3);
        Kestrel(this->context, scene.output, scene.input, scene.map, fine, 0.0F, 0.0F);
        for (int y = 0; y < 11; ++y) {
            for (int x = 0; x < 17; ++x) {
                const oracle::Colour& in = scene.inputImage.at(x, y);
                const std::uint32_t full = scene.inputImage.full;
                const oracle::Colour expected =
                    scene.mapValues.at(x, y) == 0
                        ? in
                        : oracle::Straightened(oracle::Premultiplied(in, full), full);
                ASSERT_EQ(expected, oracle::ColourOf(scene.output.row(y)[x]))
                    << "fine " << fine << ", " << x << ", " << y;
            }
        }
    }
}

// Radii with fractions, up to and beyond the size of the image; the last ones need a tent's wide cells.
TYPED_TEST(KestrelTypedTest, BothBlursEqualTheReference) {
    for (const bool fine : {false, true}) {
        for (const auto& [radiusX, radiusY] :
             {std::pair{7.3F, 2.0F}, {0.4F, 11.9F}, {25.0F, 25.0F}, {140.0F, 140.0F}}) {
            Scene<TypeParam> scene(13, 19, 4);
            const oracle::Image expected = scene.expected(fine, radiusX, radiusY);
            for (const PILib::SimdLevel level : SupportedLevels()) {
                scene.output.clear();
                Kestrel(this->context, scene.output, scene.input, scene.map, fine, radiusX, radiusY, level);
                EXPECT_EQ(expected.values, oracle::Fetched(scene.output).values)
                    << "fine " << fine << ", radii " << radiusX << ", " << radiusY << ", level "
                    << static_cast<int>(level);
            }
        }
    }
}

TYPED_TEST(KestrelTypedTest, AnyThreadCountGivesTheSameBytes) {
    for (const bool fine : {false, true}) {
        Scene<TypeParam> scene(11, 37, 5);
        const oracle::Image expected = scene.expected(fine, 5.5F, 3.25F);
        for (int threads = 1; threads <= 64; ++threads) {
            PILib::ThreadPoolContext pool(threads);
            scene.output.clear();
            Kestrel(pool, scene.output, scene.input, scene.map, fine, 5.5F, 3.25F);
            ASSERT_EQ(expected.values, oracle::Fetched(scene.output).values)
                << "fine " << fine << ", " << threads << " threads";
        }
    }
}

TYPED_TEST(KestrelTypedTest, AnyOrderOfIterationsGivesTheSameBytes) {
    Scene<TypeParam> scene(11, 37, 6);
    const oracle::Image expected = scene.expected(true, 5.5F, 3.25F);
    for (int iterations = 1; iterations <= 64; ++iterations) {
        FakeContext shuffled;
        shuffled.processors = iterations;
        shuffled.order.resize(static_cast<std::size_t>(iterations));
        std::iota(shuffled.order.begin(), shuffled.order.end(), 0);
        std::shuffle(shuffled.order.begin(), shuffled.order.end(), scene.random);
        scene.output.clear();
        Kestrel(shuffled, scene.output, scene.input, scene.map, true, 5.5F, 3.25F);
        ASSERT_EQ(expected.values, oracle::Fetched(scene.output).values) << iterations << " iterations";
    }
}

// `radius` is that of the rows and, rounded up, that of the tables.
template <class C>
void ExpectBandsLikeRows(const Scene<C>& scene, bool fine, PILib::SimdLevel level, float radius) {
    using P = Pixel<C>;
    FakeContext context;
    const auto tableRadius = static_cast<int>(std::ceil(radius));
    PILib::SATExactTentBlur<P> tent(context, scene.input, tableRadius, tableRadius, level);
    PILib::SATBoxBlur<P> box(context, scene.input, tableRadius, tableRadius, level);
    PILib::SATBlur<P>& blur = fine ? static_cast<PILib::SATBlur<P>&>(tent) : box;
    blur.initialize();
    const SimplePixelBuffer<P> rowByRow(scene.output.width, scene.output.height);
    KestrelThreadHandler<P> bands{scene.output, scene.input, scene.map, &blur, radius, radius};
    KestrelThreadHandler<P> rows{rowByRow, scene.input, scene.map, &blur, radius, radius};
    scene.output.clear();
    bands.bandOp(context, 0, 64);
    bands.bandOp(context, 64, 3);
    for (int row = 0; row < rowByRow.height; ++row)
        rows.rowOp(context, row);
    EXPECT_EQ(oracle::Fetched(rowByRow).values, oracle::Fetched(scene.output).values)
        << "fine " << fine << ", level " << static_cast<int>(level) << ", radius " << radius;
}

// Wider than a strip and higher than a band, neither by a whole number of blocks. Without a radius, or
// without vectors, rows are read out pixel by pixel. A tent of the largest radius has wide cells.
TYPED_TEST(KestrelTypedTest, BandsGiveThePixelsOfSingleRows) {
    const Scene<TypeParam> scene(531, 67, 31);
    for (const bool fine : {false, true}) {
        for (const PILib::SimdLevel level : SupportedLevels()) {
            for (const float radius : {9.5F, 130.0F})
                ExpectBandsLikeRows(scene, fine, level, radius);
        }
        ExpectBandsLikeRows(scene, fine, PILib::BestSimdLevel(), 0.0F);
    }
}

// Chunks of 150, 75, 50 and 22 rows, in strips of columns; narrow cells and wide ones.
TYPED_TEST(KestrelTypedTest, LargeFramesAreTheSameForAnyThreadCountAndOrder) {
    Scene<TypeParam> scene(531, 150, 32);
    FakeContext shuffled;
    shuffled.order = {3, 6, 0, 5, 1, 4, 2};
    shuffled.processors = 7;
    for (const auto& [fine, radius] : {std::pair{false, 9.5F}, {true, 9.5F}, {true, 130.0F}}) {
        const auto rendered = [&, fine = fine, radius = radius](PILib::PIContext& context) {
            scene.output.clear();
            Kestrel(context, scene.output, scene.input, scene.map, fine, radius, radius - 5.5F);
            return oracle::Fetched(scene.output).values;
        };
        PILib::ThreadPoolContext one(1);
        const std::vector<oracle::Colour> expected = rendered(one);
        for (const int threads : {2, 3, 7}) {
            PILib::ThreadPoolContext pool(threads);
            EXPECT_TRUE(expected == rendered(pool))
                << "fine " << fine << ", radius " << radius << ", " << threads << " threads";
        }
        EXPECT_TRUE(expected == rendered(shuffled)) << "fine " << fine << ", radius " << radius;
    }
}

TYPED_TEST(KestrelTypedTest, RowPaddingIsNeitherReadNorWritten) {
    Scene<TypeParam> scene(9, 7, 7);
    for (const int padding : {8, 24}) {
        const PaddedPixelBuffer<Pixel<TypeParam>> input(9, 7, padding);
        const PaddedPixelBuffer<Pixel<TypeParam>> output(9, 7, padding + 8);
        oracle::Store<TypeParam>(scene.inputImage, input);
        for (const bool fine : {false, true}) {
            Kestrel(this->context, output, input, scene.map, fine, 3.0F, 4.0F);
            EXPECT_EQ(scene.expected(fine, 3.0F, 4.0F).values, oracle::Fetched(output).values) << padding;
        }
        EXPECT_TRUE(input.guardsIntact()) << padding;
        EXPECT_TRUE(output.guardsIntact()) << padding;
    }
}

TYPED_TEST(KestrelTypedTest, InputAndMapMayBeLargerThanTheOutput) {
    Scene<TypeParam> scene(16, 12, 8);
    const SimplePixelBuffer<Pixel<TypeParam>> output(10, 5);
    Kestrel(this->context, output, scene.input, scene.map, false, 4.0F, 4.0F);
    EXPECT_EQ(oracle::Defocused(10, 5, scene.inputImage, scene.mapValues, false, 4.0F, 4.0F).values,
              oracle::Fetched(output).values);
}

TYPED_TEST(KestrelTypedTest, InputOrMapSmallerThanTheOutputIsRefused) {
    Scene<TypeParam> scene(8, 8, 9);
    const oracle::Image before = oracle::Fetched(scene.output);
    for (const auto& [width, height] : {std::pair{7, 8}, {8, 7}, {0, 0}}) {
        const SimplePixelBuffer<Pixel<TypeParam>> input(width, height);
        const ChannelBuf<TypeParam> map(width, height);
        for (const bool smallInput : {true, false}) {
            EXPECT_TRUE(FailsAssertion("Kestrel", 1, [&] {
                Kestrel(this->context, scene.output, smallInput ? input : scene.input,
                        smallInput ? scene.map : map, false, 4.0F, 4.0F);
            })) << (smallInput ? "input" : "map");
        }
    }
    EXPECT_EQ(before.values, oracle::Fetched(scene.output).values);
}

TYPED_TEST(KestrelTypedTest, EmptyOutputNeedsNoInput) {
    for (const auto& [width, height] : {std::pair{0, 0}, {5, 0}, {0, 5}}) {
        const SimplePixelBuffer<Pixel<TypeParam>> empty(width, height);
        const ChannelBuf<TypeParam> map(width, height);
        EXPECT_NO_THROW(Kestrel(this->context, empty, empty, map, true, 4.0F, 4.0F))
            << width << " x " << height;
        EXPECT_TRUE(this->context.progressCalls.empty()) << width << " x " << height;
    }
}

TYPED_TEST(KestrelTypedTest, RadiiThatNoTableHoldsAreRefusedBeforeAnythingIsReported) {
    Scene<TypeParam> scene(4, 4, 10);
    oracle::Store<TypeParam>(scene.inputImage, scene.output);
    const auto render = [&](bool fine, float radiusX, float radiusY) {
        Kestrel(this->context, scene.output, scene.input, scene.map, fine, radiusX, radiusY);
    };
    for (const bool fine : {false, true}) {
        for (const auto& [x, y] : {std::pair{-1.0F, 1.0F}, {1.0F, -1.0F}})
            EXPECT_TRUE(FailsAssertion("PILib/PILib Source/SATBlur", 1, [&, x = x, y = y] {
                render(fine, x, y);
            })) << x;
    }
    EXPECT_THROW(render(false, 0.0F, 1.2e9F), std::bad_alloc);
    EXPECT_THROW(render(false, 1.2e9F, 0.0F), std::bad_alloc);
    EXPECT_TRUE(this->context.ranges.empty());
    EXPECT_TRUE(this->context.progressCalls.empty());
    EXPECT_EQ(scene.inputImage.values, oracle::Fetched(scene.output).values);
}

// 6 rows between borders of 3 rows, the tent's of 5.
TYPED_TEST(KestrelTypedTest, CancelWhileTablesAreBuiltStartsNoRows) {
    struct Cancel {
        bool fine;
        int report;
    };
    for (const Cancel& c : {Cancel{false, 3}, Cancel{false, 12}, Cancel{true, 3}, Cancel{true, 16 + 3}}) {
        FakeContext cancelled;
        cancelled.failAtProgress(c.report, PILib::kUserCancelled);
        Scene<TypeParam> scene(5, 6, 17);
        oracle::Store<TypeParam>(scene.inputImage, scene.output);
        FillMap(scene.map, TypeParam::kOne);
        EXPECT_THROW(Kestrel(cancelled, scene.output, scene.input, scene.map, c.fine, 2.0F, 2.0F), int);
        EXPECT_EQ((std::vector<std::pair<float, float>>{{0.0F, 0.25F}}), cancelled.ranges) << c.report;
        EXPECT_EQ(static_cast<std::size_t>(c.report), cancelled.progressCalls.size());
        EXPECT_EQ(0, cancelled.lastIterations) << c.report;
        EXPECT_EQ(scene.inputImage.values, oracle::Fetched(scene.output).values) << c.report;
    }
}

// Counts calls of the operations that ask the host for something.
struct AskedContext : FakeContext {
    mutable int questions = 0;

    bool isDraftMode() const override {
        ++questions;
        return FakeContext::isDraftMode();
    }
    float getPixelAspectRatio() const override {
        ++questions;
        return FakeContext::getPixelAspectRatio();
    }
    char** newHandle(std::size_t size) const override {
        ++questions;
        return FakeContext::newHandle(size);
    }
    int getCurrentTime() const override {
        ++questions;
        return FakeContext::getCurrentTime();
    }
};

TYPED_TEST(KestrelTypedTest, RenderUsesNothingOfTheContextButProgressAndThreads) {
    for (const bool fine : {false, true}) {
        AskedContext asked;
        asked.processors = 4;
        Scene<TypeParam> scene(11, 37, 20);
        Kestrel(asked, scene.output, scene.input, scene.map, fine, 3.0F, 3.0F);
        EXPECT_EQ((std::vector<std::pair<float, float>>{{0.0F, 0.25F}, {0.25F, 1.0F}}), asked.ranges);
        EXPECT_EQ(4, asked.lastIterations);
        EXPECT_EQ(0, asked.abortChecks);
        EXPECT_EQ(0, asked.questions);
        EXPECT_TRUE(asked.handleFaults.empty());
    }
}

TYPED_TEST(KestrelTypedTest, TablesTakeTheFirstQuarterOfTheProgressAndRowsTheRest) {
    Scene<TypeParam> scene(4, 3, 11);
    // Radius 7.3 needs tables for 8: a border of 9 rows on either side.
    Kestrel(this->context, scene.output, scene.input, scene.map, false, 1.0F, 7.3F);
    const std::vector<std::pair<float, float>> ranges{{0.0F, 0.25F}, {0.25F, 1.0F}};
    EXPECT_EQ(ranges, this->context.ranges);
    std::vector<ProgressCall> expected;
    for (int ty = 0; ty < 21; ++ty)
        expected.push_back({ty, 21, 0.0F, 1.0F});
    for (int row = 0; row < 3; ++row)
        expected.push_back({row, 3, 0.0F, 1.0F});
    EXPECT_EQ(expected, this->context.progressCalls);
}

TYPED_TEST(KestrelTypedTest, ProgressOfAFineRenderRunsAheadAndFallsBack) {
    for (const int radius : {1, 140}) {  // narrow cells, and wide ones
        Scene<TypeParam> scene(4, 3, 12);
        PILib::ThreadPoolContext context(1);
        std::vector<float> values;
        context.onProgress([&](float done) { values.push_back(done); });
        const auto largest = static_cast<float>(radius);
        Kestrel(context, scene.output, scene.input, scene.map, true, largest, largest);
        const auto tableRows = static_cast<std::size_t>(3 + 2 * (radius + 3));
        const auto rows = static_cast<float>(tableRows);
        ASSERT_EQ(2 * tableRows + 3, values.size()) << radius;
        EXPECT_FLOAT_EQ(0.0F, values.front()) << radius;
        EXPECT_FLOAT_EQ(0.125F, values[tableRows]) << radius;
        EXPECT_FLOAT_EQ(0.125F + 0.25F * (rows - 1) / rows, values[2 * tableRows - 1]) << radius;
        EXPECT_FLOAT_EQ(0.25F, values[2 * tableRows]) << radius;
        EXPECT_FLOAT_EQ(0.75F, values[2 * tableRows + 2]) << radius;
    }
}

template <class P>
struct RadiusRecorder : PILib::SATBlur<P> {
    using PILib::SATBlur<P>::SATBlur;

    P getBlur(int x, int y, std::int32_t radiusX, std::int32_t radiusY) override {
        requests.push_back({x, y, radiusX, radiusY});
        return P::kGrayColor;
    }
    P getBlurInt(int, int, int, int) override { return P::kGrayColor; }
    void initialize() override {}

    std::vector<std::vector<std::int32_t>> requests;
};

struct RadiusCase {
    int mapValue;
    float radiusX;
    float radiusY;
    std::int32_t fixedX;
    std::int32_t fixedY;
};

template <class C>
void ExpectRadii(const std::vector<RadiusCase>& cases) {
    constexpr std::int32_t kX = 2;
    constexpr std::int32_t kRow = 1;
    for (const RadiusCase& c : cases) {
        FakeContext context;
        Scene<C> scene(4, 3, 13);
        FillMap(scene.map, 0);
        scene.map.row(kRow)[kX] = static_cast<typename C::Type>(c.mapValue);
        RadiusRecorder<Pixel<C>> blur(context, scene.input, 1, 1);
        KestrelThreadHandler<Pixel<C>> handler{scene.output, scene.input, scene.map,
                                               &blur,        c.radiusX,   c.radiusY};
        handler.rowOp(context, kRow);
        EXPECT_EQ((std::vector<std::vector<std::int32_t>>{{kX, kRow, c.fixedX, c.fixedY}}), blur.requests)
            << "map value " << c.mapValue << ", radii " << c.radiusX << ", " << c.radiusY;
        EXPECT_EQ(Pixel<C>::kGrayColor, scene.output.row(kRow)[kX]);
        EXPECT_EQ(scene.input.row(kRow)[kX - 1], scene.output.row(kRow)[kX - 1]);
        EXPECT_EQ(Pixel<C>::kTransparentColor, scene.output.row(kRow - 1)[kX]) << "another row";
    }
}

TYPED_TEST(KestrelTypedTest, BlurredPixelsOfARowAreAskedForFromLeftToRight) {
    using P = Pixel<TypeParam>;
    Scene<TypeParam> scene(4, 3, 21);
    for (const auto& [x, value] : {std::pair{0, 5}, {1, 0}, {2, 255}, {3, 1}})
        scene.map.row(1)[x] = static_cast<typename TypeParam::Type>(value);
    RadiusRecorder<P> blur(this->context, scene.input, 1, 1);
    KestrelThreadHandler<P> handler{scene.output, scene.input, scene.map, &blur, 1.0F, 1.0F};
    handler.rowOp(this->context, 1);
    ASSERT_EQ(3U, blur.requests.size());
    for (const auto& [request, x] : {std::pair{0U, 0}, {1U, 2}, {2U, 3}}) {
        EXPECT_EQ(x, blur.requests[request][0]);
        EXPECT_EQ(1, blur.requests[request][1]);
    }
    EXPECT_EQ(scene.input.row(1)[1], scene.output.row(1)[1]);
}

constexpr std::int32_t kLargestFixed = std::numeric_limits<std::int32_t>::max();

TEST(KestrelTest, MapScalesTheRadiusLinearlyIn16Point16At8Bits) {
    ExpectRadii<Channel8>({{1, 10.0F, 1.0F, 2570, 257},
                           {255, 10.0F, 0.5F, 655360, 32768},
                           {128, 1.0F, 2.0F, 32897, 65794},
                           {255, 7.3F, 0.0F, 478412, 0},  // the float below 7.3 times 65536, truncated
                           {3, 0.1F, 0.01F, 77, 7},
                           {255, 40000.0F, 1e20F, kLargestFixed, kLargestFixed}});
}

TEST(KestrelTest, MapScalesTheRadiusLinearlyIn16Point16At15Bits) {
    ExpectRadii<Channel15>({{1, 1.0F, 10.0F, 2, 20},
                            {32768, 10.0F, 0.5F, 655360, 32768},
                            {16384, 1.0F, 0.25F, 32768, 8192},
                            {32767, 7.3F, 0.1F, 478398, 6553},
                            {32768, 40000.0F, 1e20F, kLargestFixed, kLargestFixed}});
}

TEST(KestrelTest, OutputOfAnotherDepthFailsItsAssertionAndIsLeftAlone) {
    FakeContext context;
    Scene<Channel8> scene(3, 2, 14);
    const SimplePixelBuffer<Pixel<Channel16>> output(3, 2);
    for (int y = 0; y < 2; ++y) {
        for (auto& pixel : output.row(y))
            pixel = {1, 2, 3, 4};
    }
    EXPECT_TRUE(FailsAssertion("Kestrel", 82,
                               [&] { Kestrel(context, output, scene.input, scene.map, false, 1.0F, 1.0F); }));
    for (int y = 0; y < 2; ++y) {
        for (const auto& pixel : output.row(y))
            EXPECT_EQ((Pixel<Channel16>{1, 2, 3, 4}), pixel);
    }
    EXPECT_TRUE(context.progressCalls.empty());
}

TEST(KestrelTest, InputOrMapOfAnotherDepthThanTheOutputIsBadCast) {
    FakeContext context;
    Scene<Channel8> at8(3, 2, 15);
    Scene<Channel15> at15(3, 2, 16);
    const auto before8 = oracle::Fetched(at8.output).values;
    const auto before15 = oracle::Fetched(at15.output).values;
    EXPECT_THROW(Kestrel(context, at8.output, at15.input, at8.map, false, 1.0F, 1.0F), std::bad_cast);
    EXPECT_THROW(Kestrel(context, at8.output, at8.input, at15.map, false, 1.0F, 1.0F), std::bad_cast);
    EXPECT_THROW(Kestrel(context, at15.output, at8.input, at15.map, true, 1.0F, 1.0F), std::bad_cast);
    EXPECT_THROW(Kestrel(context, at15.output, at15.input, at8.map, true, 1.0F, 1.0F), std::bad_cast);
    EXPECT_EQ(before8, oracle::Fetched(at8.output).values);
    EXPECT_EQ(before15, oracle::Fetched(at15.output).values);
}

TEST(KestrelTest, OutputOfAnotherClassThanItsKeyIsBadCast) {
    FakeContext context;
    Scene<Channel8> at8(3, 2, 18);
    Scene<Channel15> at15(3, 2, 19);
    const Disguised<SimplePixelBuffer<Pixel<Channel15>>, PILib::kElementKey<Pixel<Channel8>>> as8(3, 2);
    const Disguised<SimplePixelBuffer<Pixel<Channel8>>, PILib::kElementKey<Pixel<Channel15>>> as15(3, 2);
    EXPECT_THROW(Kestrel(context, as8, at8.input, at8.map, false, 1.0F, 1.0F), std::bad_cast);
    EXPECT_THROW(Kestrel(context, as15, at15.input, at15.map, true, 1.0F, 1.0F), std::bad_cast);
    EXPECT_TRUE(context.progressCalls.empty());
}

TEST(KestrelTest, RowsRenderedBeforeACancelStayRendered) {
    FakeContext context;
    Scene<Channel8> scene(5, 6, 17);
    const oracle::Image expected = scene.expected(false, 2.0F, 2.0F);
    context.failAtProgress(12 + 4, PILib::kUserCancelled);  // 12 table rows, three rendered rows
    EXPECT_THROW(Kestrel(context, scene.output, scene.input, scene.map, false, 2.0F, 2.0F), int);
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 5; ++x) {
            EXPECT_EQ(y < 3 ? expected.at(x, y) : oracle::Colour{}, oracle::ColourOf(scene.output.row(y)[x]))
                << x << ", " << y;
        }
    }
}

}  // namespace
