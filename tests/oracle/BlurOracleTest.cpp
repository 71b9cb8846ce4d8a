// All blurs at both depths against direct summation, bit for bit.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <random>
#include <string>
#include <type_traits>

#include "NaiveBlur.h"
#include "OracleBuffers.h"
#include "RandomImage.h"
#include "SATBlur.h"
#include "SATExactTentBlur.h"
#include "SATTentBlur.h"
#include "ThreadPoolContext.h"

namespace {

using oracle::Shape;
using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;

constexpr unsigned kCasesPerVariant = 600;
constexpr int kLargestWidth = 64;
constexpr int kLargestHeight = 48;
constexpr int kLargestRadius = 40;

// Fractional radii are held at half of what the blur was built for.
constexpr int kLargestBuiltRadius = 2 * kLargestRadius;

// Pixels that direct summation may visit in one case: enough for every pixel at small radii.
constexpr int kTapsPerCase = 120000;
constexpr int kReadOutsPerCase = 300;

struct Case {
    unsigned seed;
    int width;
    int height;
    int radiusX;  // largest whole radii that the blur is built for
    int radiusY;
};

struct Request {
    int x;
    int y;
    std::int32_t radiusX;  // 16.16
    std::int32_t radiusY;
};

std::ostream& operator<<(std::ostream& out, const Case& c) {
    return out << "seed " << c.seed << ", " << c.width << " x " << c.height << ", largest radii " << c.radiusX
               << ", " << c.radiusY;
}

std::ostream& operator<<(std::ostream& out, const Request& r) {
    return out << "x " << r.x << ", y " << r.y << ", radii " << r.radiusX << "/65536, " << r.radiusY
               << "/65536";
}

// The smallest and largest shapes come first.
Case MakeCase(unsigned seed, std::mt19937& random) {
    Case c{seed, 1 + oracle::RandomUpTo(random, kLargestWidth - 1),
           1 + oracle::RandomUpTo(random, kLargestHeight - 1),
           oracle::RandomUpTo(random, kLargestBuiltRadius), oracle::RandomUpTo(random, kLargestBuiltRadius)};
    if (seed < 8) {
        c.width = (seed & 1) != 0 ? kLargestWidth : 1;
        c.height = (seed & 2) != 0 ? kLargestHeight : 1;
        c.radiusX = c.radiusY = (seed & 4) != 0 ? kLargestBuiltRadius : 0;
    }
    return c;
}

// Radii that may be a little above what the blur was built for, a third of them whole.
std::int32_t RandomRadius(std::mt19937& random, int built) {
    const int whole = oracle::RandomUpTo(random, std::min(built + 2, kLargestRadius));
    return whole * 65536 + (oracle::RandomUpTo(random, 2) == 0 ? 0 : oracle::RandomUpTo(random, 65535));
}

Request MakeRequest(int n, const Case& c, std::mt19937& random) {
    const bool corner = n < 4;
    return {corner ? (n & 1) * (c.width - 1) : oracle::RandomUpTo(random, c.width - 1),
            corner ? (n >> 1) * (c.height - 1) : oracle::RandomUpTo(random, c.height - 1),
            RandomRadius(random, c.radiusX), RandomRadius(random, c.radiusY)};
}

template <class Blur, class C>
void CompareCase(Shape shape, unsigned seed) {
    std::mt19937 random(seed);
    const Case c = MakeCase(seed, random);
    const oracle::Image image = oracle::RandomImage(random, c.width, c.height, oracle::kFull<C>);
    const PILib::SimplePixelBuffer<Pixel<C>> source(c.width, c.height);
    oracle::Store<C>(image, source);
    PILib::ThreadPoolContext context(1);
    Blur blur(context, source, c.radiusX, c.radiusY);
    blur.initialize();
    const oracle::Blur expected = oracle::MakeBlur(shape, image, c.radiusX, c.radiusY);

    int taps = 0;
    for (int n = 0; n < kReadOutsPerCase && taps < kTapsPerCase; ++n) {
        const Request r = MakeRequest(n, c, random);
        const int wholeX = r.radiusX >> 16;
        const int wholeY = r.radiusY >> 16;
        ASSERT_EQ(oracle::ReadWhole(expected, r.x, r.y, wholeX, wholeY),
                  oracle::ColourOf(blur.getBlurInt(r.x, r.y, wholeX, wholeY)))
            << "getBlurInt, " << c << ": " << r;
        ASSERT_EQ(oracle::ReadFractional(expected, r.x, r.y, r.radiusX, r.radiusY),
                  oracle::ColourOf(blur.getBlur(r.x, r.y, r.radiusX, r.radiusY)))
            << "getBlur, " << c << ": " << r;
        taps += 2 * (2 * wholeX + 3) * (2 * wholeY + 3);
    }
}

template <template <class> class BlurOf, class C>
struct Variant {
    using Channel = C;
    using Blur = BlurOf<Pixel<C>>;
    static constexpr bool kIsBox = std::is_same_v<Blur, PILib::SATBoxBlur<Pixel<C>>>;
    static constexpr bool kIsExact = std::is_same_v<Blur, PILib::SATExactTentBlur<Pixel<C>>>;
    static constexpr Shape kShape = kIsBox ? Shape::kBox : Shape::kTent;
};

struct VariantNames {
    template <class V>
    static std::string GetName(int /*index*/) {
        const std::string depth = V::Channel::kOne == 255 ? "At8Bits" : "At15Bits";
        return (V::kIsBox ? "Box" : V::kIsExact ? "ExactTent" : "Tent") + depth;
    }
};

template <class V>
class BlurOracleTest : public testing::Test {};
using Variants =
    testing::Types<Variant<PILib::SATBoxBlur, Channel8>, Variant<PILib::SATBoxBlur, Channel15>,
                   Variant<PILib::SATTentBlur, Channel8>, Variant<PILib::SATTentBlur, Channel15>,
                   Variant<PILib::SATExactTentBlur, Channel8>, Variant<PILib::SATExactTentBlur, Channel15>>;
TYPED_TEST_SUITE(BlurOracleTest, Variants, VariantNames);

TYPED_TEST(BlurOracleTest, EqualsDirectSummation) {
    for (unsigned seed = 0; seed < kCasesPerVariant; ++seed) {
        CompareCase<typename TypeParam::Blur, typename TypeParam::Channel>(TypeParam::kShape, seed);
        if (testing::Test::HasFatalFailure()) return;
    }
}

}  // namespace
