// The rows of every vector level against the per-pixel read-out, over random pictures and maps.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "FakeContext.h"
#include "SATExactTentBlur.h"
#include "SimdLevels.h"

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

    Scene(Random& random, int width, int height) : Scene(random, width, height, random.upTo(2) * 20) {}

    Scene(Random& random, int width, int height, int longestRun)
        : picture(width, height), map(width, height), radiusX(radius(random)), radiusY(radius(random)) {
        const int alphaKind = random.upTo(3);
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

// The pixel and channel types that a blur is for.
template <class Blur>
using PixelOf = decltype(std::declval<Blur&>().getBlurInt(0, 0, 0, 0));
template <class Blur>
using ChannelOf = typename PixelOf<Blur>::ChannelType;

template <class Blur>
class BlurRowTest : public testing::Test {};
using Blurs = testing::Types<SATBoxBlur<Pixel<Channel8>>, SATBoxBlur<Pixel<Channel15>>,
                             SATExactTentBlur<Pixel<Channel8>>, SATExactTentBlur<Pixel<Channel15>>>;
TYPED_TEST_SUITE(BlurRowTest, Blurs);

TYPED_TEST(BlurRowTest, EveryLevelGivesTheBytesOfThePerPixelReadOut) {
    for (const SimdLevel level : VectorLevels()) {
        for (int seed = 0; seed < 140; ++seed) {
            Random random(static_cast<unsigned>(seed));
            // Every width up to two blocks of the widest level and more, twice.
            const Scene<ChannelOf<TypeParam>> scene(random, 1 + seed % 70, 1 + random.upTo(5));
            ExpectEqualRows<TypeParam>(scene, level, seed);
        }
    }
}

// Tables may hold larger radii than the rows ask for; the sums of the largest boxes do not fit a kernel.
TYPED_TEST(BlurRowTest, RowsOfLargeRadiiEqualThePerPixelReadOut) {
    using C = ChannelOf<TypeParam>;
    using P = Pixel<C>;
    struct Case {
        float rowRadius;
        int tableRadius;
    };
    for (const SimdLevel level : VectorLevels()) {
        for (const Case& c : {Case{200.0F, 200}, Case{249.99F, 250}, Case{250.0F, 250}, Case{250.01F, 251},
                              Case{300.0F, 300}, Case{250.0F, 356}, Case{250.0F, 700}, Case{127.0F, 356},
                              Case{251.0F, 4}, Case{40000.0F, 4}, Case{1e20F, 4}, Case{40000.0F, 100}}) {
            Random random(7);
            Scene<C> scene(random, 40, 2);
            scene.radiusX = scene.radiusY = c.rowRadius;
            const P white(C::kOne, C::kOne, C::kOne, C::kOne);
            for (int y = 0; y < 2; ++y) {
                std::fill(scene.picture.row(y).begin(), scene.picture.row(y).end(), white);
                std::fill(scene.map.row(y).begin() + 20, scene.map.row(y).end(),
                          static_cast<typename C::Type>(C::kOne));
            }
            ExpectEqualRows<TypeParam>(scene, level, 7, c.tableRadius, c.tableRadius);
        }
    }
}

// Vectors reach past the ends of such tables, which the address sanitizer watches.
TYPED_TEST(BlurRowTest, RowsShorterThanAVectorEqualThePerPixelReadOut) {
    for (const SimdLevel level : VectorLevels()) {
        for (int width = 1; width <= 16; ++width) {
            for (const float radius : {0.5F, 1.0F, 2.0F}) {
                Random random(static_cast<unsigned>(width));
                Scene<ChannelOf<TypeParam>> scene(random, width, 1);
                scene.radiusX = scene.radiusY = radius;
                ExpectEqualRows<TypeParam>(scene, level, width);
            }
        }
    }
}

TYPED_TEST(BlurRowTest, EmptyRowWritesNothing) {
    using C = ChannelOf<TypeParam>;
    using P = PixelOf<TypeParam>;
    for (const SimdLevel level : VectorLevels()) {
        Random random(1);
        const Scene<C> scene(random, 2, 1);
        FakeContext context;
        TypeParam blur(context, scene.picture, 2, 2, level);
        blur.initialize();
        const P before(1, 2, 3, 4);
        P output = before;
        blur.getBlurRow(1, 0, scene.map.row(0).begin() + 1, scene.picture.row(0).begin() + 1, &output, 0,
                        2.0F, 2.0F);
        EXPECT_EQ(before, output) << static_cast<int>(level);
    }
}

TYPED_TEST(BlurRowTest, NegativeRadiiEqualThePerPixelReadOut) {
    for (const SimdLevel level : VectorLevels()) {
        for (const float radius : {-0.5F, -3.0F, -100.0F}) {
            Random random(3);
            Scene<ChannelOf<TypeParam>> scene(random, 50, 3);
            scene.radiusX = radius;
            ExpectEqualRows<TypeParam>(scene, level, 3, 20, 20);
        }
    }
}

// Radii that tables of a few pixels clamp, from the first pixel on or from none, along both axes or along
// one.
TYPED_TEST(BlurRowTest, RowsOfSmallRadiiEqualThePerPixelReadOut) {
    using C = ChannelOf<TypeParam>;
    constexpr std::array kRowRadii = {0.0F, 0.25F, 0.75F, 1.0F, 1.5F, 2.0F, 2.75F, 3.0F, 4.0F, 4.5F, 6.0F};
    constexpr std::array kTableRadii = {0, 1, 2, 3, 5, 9};
    for (std::size_t row = 0; row < kRowRadii.size(); ++row) {
        for (int seed = 0; seed < 4 * static_cast<int>(kTableRadii.size()); ++seed) {
            const auto table = static_cast<std::size_t>(seed / 4);
            const bool isSquare = seed % 4 < 2;
            Random random(static_cast<unsigned>(seed));
            Scene<C> scene(random, 40, 2, seed % 2 * 40);
            scene.radiusX = kRowRadii[row];
            scene.radiusY = kRowRadii[(row + (isSquare ? 0 : 4)) % kRowRadii.size()];
            const int largestX = kTableRadii[table];
            const int largestY = kTableRadii[(table + (isSquare ? 0 : 2)) % kTableRadii.size()];
            for (const SimdLevel level : VectorLevels()) {
                ExpectEqualRows<TypeParam>(scene, level, seed, largestX, largestY);
            }
        }
    }
}

// A row of every alpha, for colours at the ends and in the middle and for any.
TYPED_TEST(BlurRowTest, EveryAlphaIsStraightenedAsPerPixel) {
    using C = ChannelOf<TypeParam>;
    using P = Pixel<C>;
    using Type = typename C::Type;
    Random random(3);
    Scene<C> scene(random, C::kOne + 1, 4);
    scene.radiusX = scene.radiusY = 0.0F;
    for (int y = 0; y < 4; ++y) {
        std::fill(scene.map.row(y).begin(), scene.map.row(y).end(), Type{1});
        for (int x = 0; x <= C::kOne; ++x) {
            P& pixel = scene.picture.row(y)[x];
            const int colour[] = {C::kOne, C::kOne - 1, C::kOne / 2 + 1};
            pixel.alpha = static_cast<Type>(x);
            if (y < 3) pixel.red = pixel.green = pixel.blue = static_cast<Type>(colour[y]);
        }
    }
    for (const SimdLevel level : VectorLevels()) {
        ExpectEqualRows<TypeParam>(scene, level, 3, 1, 1);
    }
}

// Whether the four tables that each of two holds are equal.
template <class Tables>
bool AreEqual(const Tables& one, const Tables& other, std::ptrdiff_t cells) {
    const auto equal = [cells](const auto& a, const auto& b) {
        return std::equal(a.get(), a.get() + cells, b.get());
    };
    return equal(one.sumAlpha, other.sumAlpha) && equal(one.sumRed, other.sumRed) &&
           equal(one.sumGreen, other.sumGreen) && equal(one.sumBlue, other.sumBlue);
}

template <class P>
bool HaveEqualTables(const SATBoxBlur<P>& one, const SATBoxBlur<P>& other) {
    return AreEqual(one, other, static_cast<std::ptrdiff_t>(one.tableWidth) * one.tableHeight);
}

template <class P>
bool HaveEqualTables(const SATExactTentBlur<P>& one, const SATExactTentBlur<P>& other) {
    const auto areEqual = [&](const auto& tables) {
        return AreEqual(tables, std::get<std::decay_t<decltype(tables)>>(other.tables),
                        static_cast<std::ptrdiff_t>(one.tableWidth) * one.tableHeight);
    };
    return std::visit(areEqual, one.tables);
}

template <class Blur, class C>
void ExpectEqualTablesAtEveryLevel(const Scene<C>& scene, int radius) {
    FakeContext context;
    Blur reference(context, scene.picture, radius, radius, SimdLevel::Scalar);
    reference.initialize();
    for (const SimdLevel level : VectorLevels()) {
        Blur blur(context, scene.picture, radius, radius, level);
        blur.initialize();
        EXPECT_TRUE(HaveEqualTables(reference, blur)) << static_cast<int>(level);
    }
}

TYPED_TEST(BlurRowTest, EveryLevelBuildsTheSameTables) {
    for (int width = 1; width <= 70; ++width) {
        Random random(static_cast<unsigned>(width));
        const Scene<ChannelOf<TypeParam>> scene(random, width, 3);
        for (const int radius : {random.upTo(20), 130})  // a tent's cells have 32 bits, or 64
            ExpectEqualTablesAtEveryLevel<TypeParam>(scene, radius);
    }
}

// A blur whose one set of tables is read at any level.
template <class Blur>
struct AnyLevelBlur : Blur {
    using Blur::Blur;
    void use(SimdLevel chosen) { this->level = chosen; }
};

// The scene's row `y` at a level.
template <class Blur, class C>
std::vector<Pixel<C>> RowAt(SimdLevel level, AnyLevelBlur<Blur>& blur, const Scene<C>& scene, int y) {
    std::vector<Pixel<C>> output(static_cast<std::size_t>(scene.picture.width));
    blur.use(level);
    blur.getBlurRow(0, y, scene.map.row(y).begin(), scene.picture.row(y).begin(), output.data(),
                    scene.picture.width, scene.radiusX, scene.radiusY);
    return output;
}

// Every box's sum is an exact multiple of its area, where a quotient could fall one short.
template <class Blur, class C>
void ExpectColourKept(Scene<C>& scene, const Pixel<C>& colour) {
    FakeContext context;
    std::fill(scene.picture.row(0).begin(), scene.picture.row(0).end(), colour);
    AnyLevelBlur<Blur> blur(context, scene.picture, static_cast<int>(std::ceil(scene.radiusX)),
                            static_cast<int>(std::ceil(scene.radiusY)));
    blur.initialize();
    for (const SimdLevel level : SupportedLevels()) {
        for (const Pixel<C>& pixel : RowAt(level, blur, scene, 0)) {
            ASSERT_EQ(colour, pixel) << "level " << static_cast<int>(level) << ", radii " << scene.radiusX
                                     << ", " << scene.radiusY;
        }
    }
}

TYPED_TEST(BlurRowTest, UniformOpaqueRowKeepsItsColour) {
    using C = ChannelOf<TypeParam>;
    using P = Pixel<C>;
    constexpr int kUnit = C::kOne == 255 ? 1 : 97;  // from one colour to the next
    struct Size {
        float radius;
        int step;  // in units: fewer colours where tables are large
    };
    for (const Size& size :
         {Size{3, 3}, Size{7, 3}, Size{40, 3}, Size{101, 12}, Size{123, 12}, Size{125, 12}, Size{200, 24}}) {
        for (const float radiusX : {size.radius, size.radius / 3}) {
            Random random(5);
            Scene<C> scene(random, 48, 1, 0);
            scene.radiusX = radiusX;
            scene.radiusY = size.radius;
            for (int x = 0; x < 48; ++x)
                scene.map.row(0)[x] = static_cast<typename C::Type>(1 + (C::kOne - 1) * x / 47);
            for (int k = 0; k <= C::kOne; k += kUnit * size.step) {
                const auto channel = [&](int value) {
                    return static_cast<typename C::Type>(std::min<int>(value, C::kOne));
                };
                const P colour(static_cast<typename C::Type>(C::kOne), channel(k), channel(k + kUnit),
                               channel(k + 2 * kUnit));
                ExpectColourKept<TypeParam>(scene, colour);
            }
        }
    }
}

template <class C>
class BoxRowTest : public testing::Test {};
using Depths = testing::Types<Channel8, Channel15>;
TYPED_TEST_SUITE(BoxRowTest, Depths);

// Box sums of one less than a multiple of the area, where a quotient could come out one too large.
TYPED_TEST(BoxRowTest, OneDarkerPixelIsSeenAsPerPixel) {
    using C = TypeParam;
    using P = Pixel<C>;
    using Type = typename C::Type;
    constexpr int kLargest = 127;  // the widest boxes, read at half of it, lie within the picture
    constexpr int kSize = 2 * kLargest;
    constexpr auto kFull = static_cast<Type>(C::kOne);
    for (const Type k : {kFull, static_cast<Type>(kFull / 2), Type{1}}) {
        Random random(5);
        Scene<C> scene(random, kSize, kSize);
        for (int y = 0; y < kSize; ++y)
            std::fill(scene.picture.row(y).begin(), scene.picture.row(y).end(), P(kFull, k, k, k));
        scene.picture.row(kLargest)[kLargest].red = static_cast<Type>(k - 1);
        std::fill(scene.map.row(kLargest).begin(), scene.map.row(kLargest).end(), kFull);
        FakeContext context;
        AnyLevelBlur<SATBoxBlur<P>> blur(context, scene.picture, kLargest, kLargest);
        blur.initialize();
        for (int radius = 0; radius <= kLargest / 2; ++radius) {
            scene.radiusX = scene.radiusY = static_cast<float>(radius) + 0.25F;
            const auto expected = RowAt(SimdLevel::Scalar, blur, scene, kLargest);
            for (const SimdLevel level : VectorLevels()) {
                ASSERT_EQ(expected, RowAt(level, blur, scene, kLargest))
                    << "level " << static_cast<int>(level) << ", radius " << radius << ", channel " << k;
            }
        }
    }
}

// The same in upright and flat boxes, for colours that a division meant for small areas gets wrong in some.
TEST(BoxRowShapeTest, OneDarkerPixelInABoxThatIsNotSquareIsSeenAsPerPixel) {
    using P = Pixel<Channel8>;
    struct Case {
        int radiusX;
        int radiusY;
        std::uint8_t colour;
    };
    for (const Case& c : {Case{50, 121, 252},
                          {62, 126, 142},
                          {55, 126, 185},
                          {121, 50, 252},
                          {126, 62, 142},
                          {9, 126, 255},
                          {126, 9, 255}}) {
        const int width = 2 * c.radiusX + 1;
        const int height = 2 * c.radiusY + 1;
        Random random(5);
        Scene<Channel8> scene(random, width, height);
        for (int y = 0; y < height; ++y)
            std::fill(scene.picture.row(y).begin(), scene.picture.row(y).end(),
                      P(255, c.colour, c.colour, c.colour));
        scene.picture.row(c.radiusY)[c.radiusX].red = static_cast<std::uint8_t>(c.colour - 1);
        std::fill(scene.map.row(c.radiusY).begin(), scene.map.row(c.radiusY).end(), std::uint8_t{255});
        scene.radiusX = static_cast<float>(c.radiusX);
        scene.radiusY = static_cast<float>(c.radiusY);
        FakeContext context;
        AnyLevelBlur<SATBoxBlur<P>> blur(context, scene.picture, 2 * c.radiusX, 2 * c.radiusY);
        blur.initialize();
        const auto expected = RowAt(SimdLevel::Scalar, blur, scene, c.radiusY);
        for (const SimdLevel level : VectorLevels()) {
            ASSERT_EQ(expected, RowAt(level, blur, scene, c.radiusY))
                << "level " << static_cast<int>(level) << ", radii " << c.radiusX << ", " << c.radiusY;
        }
    }
}

// Columns of two neighbouring colours in turn: the means of tents of even half-widths lie halfway between two
// codes, where the reference rounds now up, now down.
TYPED_TEST(BlurRowTest, MeansHalfwayBetweenTwoCodesAreRoundedAsPerPixel) {
    using C = ChannelOf<TypeParam>;
    using P = Pixel<C>;
    using Type = typename C::Type;
    constexpr int kWidth = 140;
    constexpr int kUnit = C::kOne / 255;
    for (const int longestRun : {0, 40}) {
        for (const int k : {0, 1, 2, 6, 13, 64, 127, 128, 200, 254}) {
            Random random(static_cast<unsigned>(k));
            Scene<C> scene(random, kWidth, 2, longestRun);
            scene.radiusX = scene.radiusY = 61.0F;
            for (int x = 0; x < kWidth; ++x) {
                const auto one = static_cast<Type>(k * kUnit);
                const auto other = static_cast<Type>(one + x % 2);
                const P colour(static_cast<Type>(C::kOne), other, one, other);
                scene.picture.row(0)[x] = scene.picture.row(1)[x] = colour;
            }
            for (const SimdLevel level : VectorLevels())
                ExpectEqualRows<TypeParam>(scene, level, k, 122, 122);
        }
    }
}

// The running sums of this row need more than 31 bits.
TEST(WideRowTest, WhiteRowOfMoreThan65535CellsEqualsThePerPixelReadOut) {
    using C = Channel15;
    constexpr int kWidth = 65600;
    constexpr int kBlurred = 500;
    Random random(8);
    Scene<C> scene(random, kWidth, 1);
    scene.radiusX = scene.radiusY = 3.0F;
    const Pixel<C> white(C::kOne, C::kOne, C::kOne, C::kOne);
    const auto map = scene.map.row(0);
    std::fill(scene.picture.row(0).begin(), scene.picture.row(0).end(), white);
    std::fill(map.begin(), map.end(), std::uint16_t{0});
    std::fill(map.end() - kBlurred, map.end(), std::uint16_t{C::kOne});
    for (const SimdLevel level : VectorLevels()) {
        ExpectEqualRows<SATBoxBlur<Pixel<C>>>(scene, level, 8);
        ExpectEqualRows<SATExactTentBlur<Pixel<C>>>(scene, level, 8);
    }
}

struct OpenBlur : SATBoxBlur<Pixel<Channel8>> {
    using SATBoxBlur::level;
    using SATBoxBlur::SATBoxBlur;
};

// Also on a machine that can run them all: a level of no name is one that it cannot.
TEST(SimdLevelTest, ALevelThatCannotRunIsScalar) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel8>> picture(2, 2);
    for (const SimdLevel level : {SimdLevel::Scalar, SimdLevel::Baseline, SimdLevel::Avx2, SimdLevel::Avx512,
                                  static_cast<SimdLevel>(100)}) {
        const OpenBlur blur(context, picture, 1, 1, level);
        EXPECT_EQ(IsSupported(level) ? level : SimdLevel::Scalar, blur.level) << static_cast<int>(level);
    }
}

TEST(SimdLevelTest, TheBestLevelIsSupported) {
    EXPECT_TRUE(IsSupported(BestSimdLevel()));
    EXPECT_TRUE(IsSupported(SimdLevel::Scalar));
}

#if defined(__x86_64__)
TEST(SimdLevelTest, TheCompilersLibrarySeesTheSameProcessor) {
    EXPECT_EQ(__builtin_cpu_supports("avx2") != 0, IsSupported(SimdLevel::Avx2));
    EXPECT_EQ(__builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
                  __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vl") != 0,
              IsSupported(SimdLevel::Avx512));
}
#endif

}  // namespace
}  // namespace PILib
