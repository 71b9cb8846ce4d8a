// The rows of every vector level against the per-pixel read-out, over random pictures and maps.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "FakeContext.h"
#include "SATTentBlur.h"

namespace PILib {
namespace {

class Random {
public:
    explicit Random(unsigned seed) : generator(seed) {}
    int upTo(int last) { return std::uniform_int_distribution<int>(0, last)(generator); }

private:
    std::mt19937 generator;
};

// Alphas of several kinds, opaque, any, all or nothing, and next to nothing; maps in runs of several lengths.
template <class C>
struct Scene {
    SimplePixelBuffer<Pixel<C>> picture;
    ChannelBuf<C> map;
    float radiusX;
    float radiusY;

    Scene(Random& random, int width, int height)
        : picture(width, height), map(width, height), radiusX(radius(random)), radiusY(radius(random)) {
        const int alphaKind = random.upTo(3);
        const int longestRun = random.upTo(2) * 20;
        const auto channel = [&] { return static_cast<typename C::Type>(random.upTo(C::kOne)); };
        for (int y = 0; y < height; ++y) {
            typename C::Type value = 0;
            int run = 0;
            for (int x = 0; x < width; ++x) {
                picture.row(y)[x] = Pixel<C>(alpha(random, alphaKind), channel(), channel(), channel());
                if (run-- == 0) {
                    run = random.upTo(longestRun);
                    value = random.upTo(4) == 0 ? C::kZeroValue : channel();
                }
                map.row(y)[x] = value;
            }
        }
    }

    static float radius(Random& random) { return static_cast<float>(random.upTo(20000)) / 100.0F; }
    static typename C::Type alpha(Random& random, int kind) {
        switch (kind) {
            case 0:
                return static_cast<typename C::Type>(C::kOne);
            case 1:
                return static_cast<typename C::Type>(random.upTo(C::kOne));
            case 2:
                return static_cast<typename C::Type>(random.upTo(1) * C::kOne);
            default:
                return static_cast<typename C::Type>(random.upTo(3));
        }
    }
};

template <class Blur, class C>
void ExpectEqualRows(const Scene<C>& scene, SimdLevel level, int seed, int largestX, int largestY) {
    using P = Pixel<C>;
    FakeContext context;
    Blur reference(context, scene.picture, largestX, largestY, SimdLevel::Scalar);
    Blur fast(context, scene.picture, largestX, largestY, level);
    reference.initialize();
    fast.initialize();
    const SimplePixelBuffer<P> expected(scene.picture.width, 1);
    const SimplePixelBuffer<P> actual(scene.picture.width, 1);
    for (int y = 0; y < scene.picture.height; ++y) {
        const auto read = [&](Blur& blur, const SimplePixelBuffer<P>& output) {
            blur.getBlurRow(0, y, scene.map.row(y).begin(), scene.picture.row(y).begin(),
                            output.row(0).begin(), scene.picture.width, scene.radiusX, scene.radiusY);
        };
        read(reference, expected);
        read(fast, actual);
        for (int x = 0; x < scene.picture.width; ++x) {
            ASSERT_EQ(expected.row(0)[x], actual.row(0)[x])
                << "seed " << seed << " level " << static_cast<int>(level) << " at " << x << ", " << y
                << " map " << scene.map.row(y)[x] << " radii " << scene.radiusX << ", " << scene.radiusY;
        }
    }
}

// With the tables that a render builds.
template <class Blur, class C>
void ExpectEqualRows(const Scene<C>& scene, SimdLevel level, int seed) {
    ExpectEqualRows<Blur>(scene, level, seed, static_cast<int>(std::ceil(scene.radiusX)),
                          static_cast<int>(std::ceil(scene.radiusY)));
}

// A level that cannot run here gives the rows of Scalar.
constexpr SimdLevel kLevels[] = {SimdLevel::Baseline, SimdLevel::Avx2, SimdLevel::Avx512};

template <class C>
class BlurRowTest : public testing::Test {};
using Depths = testing::Types<Channel8, Channel15>;
TYPED_TEST_SUITE(BlurRowTest, Depths);

TYPED_TEST(BlurRowTest, EveryLevelGivesTheBytesOfThePerPixelReadOut) {
    using P = Pixel<TypeParam>;
    for (const SimdLevel level : kLevels) {
        for (int seed = 0; seed < 140; ++seed) {
            Random random(static_cast<unsigned>(seed));
            // Every width up to two blocks of the widest level and more, twice.
            const Scene<TypeParam> scene(random, 1 + seed % 70, 1 + random.upTo(5));
            ExpectEqualRows<SATBoxBlur<P>>(scene, level, seed);
            ExpectEqualRows<SATTentBlur<P>>(scene, level, seed);
        }
    }
}

// Tables may hold larger radii than the rows ask for; the sums of the largest boxes do not fit a kernel.
TYPED_TEST(BlurRowTest, RowsOfLargeRadiiEqualThePerPixelReadOut) {
    using C = TypeParam;
    using P = Pixel<C>;
    struct Case {
        float rowRadius;
        int tableRadius;
    };
    for (const SimdLevel level : kLevels) {
        for (const Case& c : {Case{200.0F, 200}, Case{249.99F, 250}, Case{250.0F, 250}, Case{250.01F, 251},
                              Case{300.0F, 300}, Case{250.0F, 356}, Case{250.0F, 700}, Case{127.0F, 356}}) {
            Random random(7);
            Scene<C> scene(random, 40, 2);
            scene.radiusX = scene.radiusY = c.rowRadius;
            const P white(C::kOne, C::kOne, C::kOne, C::kOne);
            for (int y = 0; y < 2; ++y) {
                std::fill(scene.picture.row(y).begin(), scene.picture.row(y).end(), white);
                std::fill(scene.map.row(y).begin() + 20, scene.map.row(y).end(),
                          static_cast<typename C::Type>(C::kOne));
            }
            ExpectEqualRows<SATBoxBlur<P>>(scene, level, 7, c.tableRadius, c.tableRadius);
            ExpectEqualRows<SATTentBlur<P>>(scene, level, 7, c.tableRadius, c.tableRadius);
        }
    }
}

TYPED_TEST(BlurRowTest, NegativeRadiiEqualThePerPixelReadOut) {
    using P = Pixel<TypeParam>;
    for (const SimdLevel level : kLevels) {
        for (const float radius : {-0.5F, -3.0F, -100.0F}) {
            Random random(3);
            Scene<TypeParam> scene(random, 50, 3);
            scene.radiusX = radius;
            ExpectEqualRows<SATBoxBlur<P>>(scene, level, 3, 20, 20);
            ExpectEqualRows<SATTentBlur<P>>(scene, level, 3, 20, 20);
        }
    }
}

TEST(SimdLevelTest, TheBestLevelIsSupported) {
    EXPECT_TRUE(IsSupported(BestSimdLevel()));
    EXPECT_TRUE(IsSupported(SimdLevel::Scalar));
}

}  // namespace
}  // namespace PILib
