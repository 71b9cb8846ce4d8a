#include "PixelOps.h"
#include "Transform.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "PF_Values.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

PF_FloatMatrix scaleBy(double x, double y) {
    return {{{x, 0, 0}, {0, y, 0}, {0, 0, 1}}};
}

constexpr Placement kCopy{PF_Xfer_COPY, 1.0, false};

template <class P>
class PixelOpsTest : public testing::Test {};
using Depths = testing::Types<PF_Pixel, PF_Pixel16>;
TYPED_TEST_SUITE(PixelOpsTest, Depths);

TYPED_TEST(PixelOpsTest, BlendIsExactAtItsEnds) {
    World a = noise<TypeParam>(9, 4, 1);
    World b = noise<TypeParam>(9, 4, 2);
    World out = noise<TypeParam>(9, 4, 3);
    ASSERT_EQ(blendWorlds(a.record(), b.record(), 0, out.record()), PF_Err_NONE);
    EXPECT_EQ(out.checksum(), a.checksum());
    ASSERT_EQ(blendWorlds(a.record(), b.record(), 65536, out.record()), PF_Err_NONE);
    EXPECT_EQ(out.checksum(), b.checksum());
    EXPECT_EQ(out.damage(), "");
}

TYPED_TEST(PixelOpsTest, BlendWeighsColoursByAlpha) {
    using P = TypeParam;
    constexpr std::uint32_t kOne = kWhite<P>;
    World a = filled(1, 1, grey<P>(kOne, 100));
    World b = filled(1, 1, grey<P>(0, 7));
    World out = filled(1, 1, grey<P>(0, 0));
    ASSERT_EQ(blendWorlds(a.record(), b.record(), 32768, out.record()), PF_Err_NONE);
    EXPECT_EQ(at<P>(out, 0, 0).alpha, (kOne + 1) / 2);
    EXPECT_EQ(at<P>(out, 0, 0).red, 100);
}

// A transparent last column takes rows off the path of opaque ones.
TYPED_TEST(PixelOpsTest, OpaqueRowsAreBlendedAsAllOthers) {
    using P = TypeParam;
    World a = opaqueNoise<P>(40, 6, 1);
    World b = opaqueNoise<P>(40, 6, 2);
    World softA = a;
    for (std::int32_t y = 0; y < 6; ++y)
        at<P>(softA, 39, y).alpha = 0;
    for (const PF_Fixed ratio : {1, 100, 19661, 32768, 65535}) {
        World opaque = filled(40, 6, grey<P>(0, 0));
        World soft = opaque;
        ASSERT_EQ(blendWorlds(a.record(), b.record(), ratio, opaque.record()), PF_Err_NONE);
        ASSERT_EQ(blendWorlds(softA.record(), b.record(), ratio, soft.record()), PF_Err_NONE);
        for (std::int32_t y = 0; y < 6; ++y) {
            for (std::int32_t x = 0; x < 39; ++x)
                ASSERT_TRUE(same(at<P>(opaque, x, y), at<P>(soft, x, y)))
                    << ratio << " at " << x << ", " << y;
        }
    }
}

TYPED_TEST(PixelOpsTest, BlendMayWriteOverASource) {
    World a = noise<TypeParam>(9, 4, 1);
    World b = noise<TypeParam>(9, 4, 2);
    World out = noise<TypeParam>(9, 4, 3);
    ASSERT_EQ(blendWorlds(a.record(), b.record(), 20000, out.record()), PF_Err_NONE);
    ASSERT_EQ(blendWorlds(a.record(), b.record(), 20000, a.record()), PF_Err_NONE);
    EXPECT_EQ(a.checksum(), out.checksum());
}

TYPED_TEST(PixelOpsTest, WorldsOfOtherSizeOrDepthAreRefused) {
    World a = noise<TypeParam>(9, 4, 1);
    World small = noise<TypeParam>(8, 4, 2);
    World other(9, 4, !kDeep<TypeParam>);
    const std::uint64_t before = a.checksum();
    EXPECT_EQ(blendWorlds(a.record(), small.record(), 1000, a.record()), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(blendWorlds(a.record(), other.record(), 1000, a.record()), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(copyWorld(other.record(), nullptr, a.record(), nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(transformWorld(other.record(), scaleBy(1, 1), true, kCopy, nullptr, a.record()),
              PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(a.checksum(), before);
}

TYPED_TEST(PixelOpsTest, CopyClipsBothRectanglesTogether) {
    using P = TypeParam;
    World from = noise<P>(6, 5, 1);
    World to = filled(4, 4, grey<P>(1, 2));
    const PF_Rect source{-1, -2, 3, 2};
    const PF_Rect target{2, 0, 6, 4};
    ASSERT_EQ(copyWorld(from.record(), &source, to.record(), &target), PF_Err_NONE);
    for (std::int32_t y = 0; y < 4; ++y) {
        for (std::int32_t x = 0; x < 4; ++x) {
            const bool isCopied = x == 3 && y >= 2;
            const P expected = isCopied ? at<P>(from, x - 3, y - 2) : grey<P>(1, 2);
            EXPECT_TRUE(same(at<P>(to, x, y), expected)) << x << ", " << y;
        }
    }
}

TYPED_TEST(PixelOpsTest, PartOfAWorldMayBeMovedOverItself) {
    using P = TypeParam;
    const PF_Rect before{1, 1, 4, 5};
    for (const auto& [right, down] : {std::pair{1, 2}, {-1, 1}, {1, -1}, {-1, 0}, {1, 0}}) {
        World world = noise<P>(6, 8, 1);
        World expected = world;
        for (A_long y = before.top; y < before.bottom; ++y) {
            for (A_long x = before.left; x < before.right; ++x)
                at<P>(expected, x + right, y + down) = at<P>(world, x, y);
        }
        const PF_Rect after{before.left + right, before.top + down, before.right + right,
                            before.bottom + down};
        ASSERT_EQ(copyWorld(world.record(), &before, world.record(), &after), PF_Err_NONE);
        EXPECT_EQ(world.checksum(), expected.checksum()) << right << ", " << down;
    }
}

// The pixel whose centre lies nearest, so that each half of a picture that shrinks gives its share.
TYPED_TEST(PixelOpsTest, StretchedCopyTakesTheNearestPixel) {
    using P = TypeParam;
    struct {
        A_long width;
        std::vector<std::uint32_t> picked;
    } const cases[] = {{2, {1, 3}}, {3, {0, 2, 3}}, {8, {0, 0, 1, 1, 2, 2, 3, 3}}, {1, {2}}};
    World from = filled(4, 1, grey<P>(kWhite<P>, 0));
    for (std::int32_t x = 0; x < 4; ++x)
        at<P>(from, x, 0).red = static_cast<ChannelOf<P>>(x);
    for (const auto& [width, picked] : cases) {
        World to(width, 1, kDeep<P>);
        ASSERT_EQ(copyWorld(from.record(), nullptr, to.record(), nullptr), PF_Err_NONE);
        for (A_long x = 0; x < width; ++x)
            EXPECT_EQ(at<P>(to, x, 0).red, picked[static_cast<std::size_t>(x)]) << x << " of " << width;
    }
}

TYPED_TEST(PixelOpsTest, FillStaysInItsRectangle) {
    using P = TypeParam;
    World world = filled(5, 4, grey<P>(9, 9));
    const P color = grey<P>(3, 4);
    const PF_Rect area{3, -7, 99, 2};
    ASSERT_EQ(fillWorld(&color, &area, world.record()), PF_Err_NONE);
    for (std::int32_t y = 0; y < 4; ++y) {
        for (std::int32_t x = 0; x < 5; ++x) {
            EXPECT_TRUE(same(at<P>(world, x, y), x >= 3 && y < 2 ? color : grey<P>(9, 9))) << x << ", " << y;
        }
    }
}

constexpr A_long kLowest = std::numeric_limits<A_long>::min();
constexpr A_long kHighest = std::numeric_limits<A_long>::max();

// Areas at the ends of the numbers, and the part of a world of 5 x 4 pixels that they hold.
struct FarArea {
    PF_Rect area;
    PF_Rect inside;
};

constexpr FarArea kFarAreas[] = {
    {{kLowest, kLowest, kHighest, kHighest}, {0, 0, 5, 4}},
    {{kLowest, 1, 3, kHighest}, {0, 1, 3, 4}},
    {{2, kLowest, kHighest, 2}, {2, 0, 5, 2}},
    {{kHighest, kHighest, kLowest, kLowest}, {0, 0, 0, 0}},
    {{kLowest, kLowest, kLowest, kLowest}, {0, 0, 0, 0}},
    {{kHighest, kHighest, kHighest, kHighest}, {0, 0, 0, 0}},
    {{kLowest, kLowest, 0, 0}, {0, 0, 0, 0}},
};

bool isInside(const PF_Rect& area, std::int32_t x, std::int32_t y) {
    return x >= area.left && x < area.right && y >= area.top && y < area.bottom;
}

std::string textOf(const PF_Rect& area) {
    std::ostringstream text;
    text << "area " << area.left << ' ' << area.top << ' ' << area.right << ' ' << area.bottom;
    return text.str();
}

TYPED_TEST(PixelOpsTest, FarAreasAreFilledWhereTheyLieInTheWorld) {
    using P = TypeParam;
    const P color = grey<P>(3, 4);
    for (const auto& [area, inside] : kFarAreas) {
        SCOPED_TRACE(textOf(area));
        World world = filled(5, 4, grey<P>(9, 9));
        ASSERT_EQ(fillWorld(&color, &area, world.record()), PF_Err_NONE);
        for (std::int32_t y = 0; y < 4; ++y) {
            for (std::int32_t x = 0; x < 5; ++x)
                EXPECT_EQ(at<P>(world, x, y).red, isInside(inside, x, y) ? 4 : 9) << x << ", " << y;
        }
    }
}

TYPED_TEST(PixelOpsTest, FarAreasOfBothWorldsAreCopiedWhereTheyLieInBoth) {
    using P = TypeParam;
    World from = noise<P>(5, 4, 1);
    for (const auto& [area, inside] : kFarAreas) {
        SCOPED_TRACE(textOf(area));
        World to = filled(5, 4, P{});
        ASSERT_EQ(copyWorld(from.record(), &area, to.record(), &area), PF_Err_NONE);
        for (std::int32_t y = 0; y < 4; ++y) {
            for (std::int32_t x = 0; x < 5; ++x) {
                const P expected = isInside(inside, x, y) ? at<P>(from, x, y) : P{};
                EXPECT_TRUE(same(at<P>(to, x, y), expected)) << x << ", " << y;
            }
        }
    }
}

TYPED_TEST(PixelOpsTest, CopiesBetweenAreasAtOppositeEndsOfTheNumbersTouchNothing) {
    using P = TypeParam;
    World from = noise<P>(5, 4, 1);
    World to = noise<P>(5, 4, 2);
    const std::uint64_t before = to.checksum();
    const PF_Rect low{kLowest, kLowest, kLowest + 5, kLowest + 4};
    const PF_Rect high{kHighest - 5, kHighest - 4, kHighest, kHighest};
    for (const auto& [source, target] : {std::pair{low, high}, {high, low}})
        EXPECT_EQ(copyWorld(from.record(), &source, to.record(), &target), PF_Err_NONE) << textOf(source);
    EXPECT_EQ(to.checksum(), before);
    EXPECT_EQ(to.damage(), "");
}

// Of other extents than the source's, so that the pixels are picked or filtered.
TYPED_TEST(PixelOpsTest, FarAreasAreStretchedToWhereTheyLieInTheWorld) {
    using P = TypeParam;
    World from = filled(3, 2, grey<P>(kWhite<P>, 4));
    for (const bool isFiltered : {false, true}) {
        for (const auto& [area, inside] : kFarAreas) {
            SCOPED_TRACE(textOf(area));
            World to = filled(5, 4, grey<P>(9, 9));
            const PF_Err code = isFiltered ? copyWorldFiltered(from.record(), nullptr, to.record(), &area)
                                           : copyWorld(from.record(), nullptr, to.record(), &area);
            ASSERT_EQ(code, PF_Err_NONE);
            for (std::int32_t y = 0; y < 4; ++y) {
                for (std::int32_t x = 0; x < 5; ++x)
                    EXPECT_EQ(at<P>(to, x, y).red, isInside(inside, x, y) ? 4 : 9) << x << ", " << y;
            }
        }
    }
}

TYPED_TEST(PixelOpsTest, RatiosAtTheEndsOfTheNumbersAreThoseOfTheBlend) {
    World a = noise<TypeParam>(9, 4, 1);
    World b = noise<TypeParam>(9, 4, 2);
    World out(9, 4, kDeep<TypeParam>);
    ASSERT_EQ(blendWorlds(a.record(), b.record(), kLowest, out.record()), PF_Err_NONE);
    EXPECT_EQ(out.checksum(), a.checksum());
    ASSERT_EQ(blendWorlds(a.record(), b.record(), kHighest, out.record()), PF_Err_NONE);
    EXPECT_EQ(out.checksum(), b.checksum());
}

TYPED_TEST(PixelOpsTest, CompositeAtTheEndsOfTheNumbersTouchesNothing) {
    using P = TypeParam;
    World from = filled(4, 4, grey<P>(kWhite<P>, 11));
    World to = noise<P>(5, 5, 2);
    const std::uint64_t before = to.checksum();
    for (const auto& [x, y] : {std::pair{kLowest, 0}, {kHighest, 0}, {0, kLowest}, {kHighest, kHighest}}) {
        ASSERT_EQ(compositeWorld(from.record(), nullptr, kCopy, x, y, to.record()), PF_Err_NONE)
            << x << ", " << y;
        EXPECT_EQ(to.checksum(), before) << x << ", " << y;
    }
}

TYPED_TEST(PixelOpsTest, OpaquePixelsSurvivePremultiplication) {
    using P = TypeParam;
    World world = filled(2, 1, grey<P>(kWhite<P>, 77));
    at<P>(world, 1, 0) = grey<P>(0, 77);
    ASSERT_EQ(premultiplyWorld(true, world.record()), PF_Err_NONE);
    EXPECT_TRUE(same(at<P>(world, 0, 0), grey<P>(kWhite<P>, 77)));
    EXPECT_TRUE(same(at<P>(world, 1, 0), grey<P>(0, 0)));
}

TYPED_TEST(PixelOpsTest, MattedColoursAreRoundedToTheNearest) {
    using P = TypeParam;
    constexpr std::uint32_t kOne = kWhite<P>;
    constexpr std::uint32_t kHalf = (kOne + 1) / 2;
    struct {
        std::uint32_t alpha, code, matted;
    } const cases[] = {{kHalf, 1, 1}, {kHalf - 1, 1, 0}, {kHalf, 3, 2}, {1, kHalf, 1}};
    for (const auto& [alpha, code, matted] : cases) {
        World world = filled(1, 1, grey<P>(alpha, code));
        ASSERT_EQ(premultiplyWorld(world.record(), grey<P>(kOne, 0), true, world.record()), PF_Err_NONE);
        EXPECT_EQ(at<P>(world, 0, 0).red, matted) << code << " under " << alpha;
    }
}

TYPED_TEST(PixelOpsTest, IdentityIsACopy) {
    World from = opaqueNoise<TypeParam>(7, 5, 1);
    World to = noise<TypeParam>(7, 5, 2);
    ASSERT_EQ(transformWorld(from.record(), scaleBy(1, 1), true, kCopy, nullptr, to.record()), PF_Err_NONE);
    EXPECT_EQ(to.checksum(), from.checksum());
    EXPECT_EQ(to.damage(), "");
}

TYPED_TEST(PixelOpsTest, UniformPictureStaysUniformAtEveryScale) {
    using P = TypeParam;
    const P value = grey<P>(kWhite<P>, kWhite<P> * 2 / 3);
    for (const auto& [width, height] : {std::pair{1, 1}, {5, 9}, {40, 3}, {13, 64}}) {
        World from = filled(11, 7, value);
        World to(width, height, kDeep<P>, 3 * static_cast<std::int32_t>(sizeof(P)));
        ASSERT_EQ(transformWorld(from.record(), scaleBy(width / 11.0, height / 7.0), true, kCopy, nullptr,
                                 to.record()),
                  PF_Err_NONE);
        for (std::int32_t y = 0; y < height; ++y) {
            for (std::int32_t x = 0; x < width; ++x) {
                ASSERT_TRUE(same(at<P>(to, x, y), value))
                    << width << " x " << height << " at " << x << ", " << y;
            }
        }
        EXPECT_EQ(to.damage(), "");
    }
}

TYPED_TEST(PixelOpsTest, HalvingTakesTheMeanOfFour) {
    using P = TypeParam;
    World from = opaqueNoise<P>(8, 6, 5);
    World to(4, 3, kDeep<P>);
    ASSERT_EQ(transformWorld(from.record(), scaleBy(0.5, 0.5), true, kCopy, nullptr, to.record()),
              PF_Err_NONE);
    for (std::int32_t y = 0; y < 3; ++y) {
        for (std::int32_t x = 0; x < 4; ++x) {
            const std::uint32_t sum = 0U + at<P>(from, 2 * x, 2 * y).red + at<P>(from, 2 * x + 1, 2 * y).red +
                                      at<P>(from, 2 * x, 2 * y + 1).red +
                                      at<P>(from, 2 * x + 1, 2 * y + 1).red;
            EXPECT_EQ(at<P>(to, x, y).red, (sum + 2) / 4) << x << ", " << y;
        }
    }
}

TYPED_TEST(PixelOpsTest, DoublingInterpolatesBetweenCentres) {
    using P = TypeParam;
    World from(2, 1, kDeep<P>);
    at<P>(from, 0, 0) = grey<P>(kWhite<P>, 0);
    at<P>(from, 1, 0) = grey<P>(kWhite<P>, 200);
    World to(4, 1, kDeep<P>);
    ASSERT_EQ(transformWorld(from.record(), scaleBy(2, 1), true, kCopy, nullptr, to.record()), PF_Err_NONE);
    const std::uint32_t expected[] = {0, 50, 150, 200};
    for (std::int32_t x = 0; x < 4; ++x)
        EXPECT_EQ(at<P>(to, x, 0).red, expected[x]) << x;
}

TYPED_TEST(PixelOpsTest, TransparentColoursDoNotBleed) {
    using P = TypeParam;
    World from(2, 1, kDeep<P>);
    at<P>(from, 0, 0) = grey<P>(kWhite<P>, 90);
    at<P>(from, 1, 0) = grey<P>(0, 255);
    World to(1, 1, kDeep<P>);
    ASSERT_EQ(transformWorld(from.record(), scaleBy(0.5, 1), true, kCopy, nullptr, to.record()), PF_Err_NONE);
    EXPECT_EQ(at<P>(to, 0, 0).red, 90);
    EXPECT_EQ(at<P>(to, 0, 0).alpha, (kWhite<P> + 1) / 2);
}

TYPED_TEST(PixelOpsTest, QuarterTurnMovesEveryPixel) {
    using P = TypeParam;
    World from = opaqueNoise<P>(4, 4, 3);
    World to(4, 4, kDeep<P>);
    const PF_FloatMatrix turn = {{{0, 1, 0}, {-1, 0, 0}, {4, 0, 1}}};  // (x, y) to (4 - y, x)
    ASSERT_EQ(transformWorld(from.record(), turn, true, kCopy, nullptr, to.record()), PF_Err_NONE);
    for (std::int32_t y = 0; y < 4; ++y) {
        for (std::int32_t x = 0; x < 4; ++x) {
            EXPECT_TRUE(same(at<P>(to, 3 - y, x), at<P>(from, x, y))) << x << ", " << y;
        }
    }
}

TYPED_TEST(PixelOpsTest, MatrixWithoutInverseIsRefused) {
    World from = noise<TypeParam>(4, 4, 3);
    World to = noise<TypeParam>(4, 4, 4);
    const std::uint64_t before = to.checksum();
    EXPECT_EQ(transformWorld(from.record(), scaleBy(0, 1), true, kCopy, nullptr, to.record()),
              PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(to.checksum(), before);
}

TYPED_TEST(PixelOpsTest, CompositeStaysInBothWorlds) {
    using P = TypeParam;
    World from = filled(4, 4, grey<P>(kWhite<P>, 11));
    for (const auto& [x, y] : {std::pair{-2, -3}, {3, 2}, {-9, 0}, {0, 9}}) {
        World to(5, 5, kDeep<P>, 3 * static_cast<std::int32_t>(sizeof(P)));
        ASSERT_EQ(compositeWorld(from.record(), nullptr, kCopy, x, y, to.record()), PF_Err_NONE);
        for (std::int32_t row = 0; row < 5; ++row) {
            for (std::int32_t column = 0; column < 5; ++column) {
                const bool inside = column >= x && column < x + 4 && row >= y && row < y + 4;
                EXPECT_EQ(at<P>(to, column, row).red, inside ? 11 : 0) << column << ", " << row;
            }
        }
        EXPECT_EQ(to.damage(), "");
    }
}

}  // namespace
}  // namespace perch::test
