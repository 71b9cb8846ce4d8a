#include "World.h"

#include <gtest/gtest.h>

#include "PF_Values.h"
#include "PixelAccess.h"

namespace perch::test {
namespace {

struct Shape {
    std::int32_t width;
    std::int32_t height;
    bool isDeep;
    std::int32_t padding;
};

class WorldTest : public testing::TestWithParam<Shape> {};

TEST_P(WorldTest, RecordDescribesZeroedPixels) {
    const Shape shape = GetParam();
    const World world(shape.width, shape.height, shape.isDeep, shape.padding);
    const PF_EffectWorld& record = world.record();
    EXPECT_EQ(record.width, shape.width);
    EXPECT_EQ(record.height, shape.height);
    EXPECT_EQ(record.rowbytes, shape.width * (shape.isDeep ? 8 : 4) + shape.padding);
    EXPECT_EQ(isDeep(record), shape.isDeep);
    EXPECT_EQ(world.damage(), "");
    EXPECT_EQ(record.data == nullptr, shape.width == 0 || shape.height == 0);
}

TEST_P(WorldTest, CopyHasPixelsOfItsOwn) {
    const Shape shape = GetParam();
    if (shape.width == 0 || shape.height == 0) return;
    World world(shape.width, shape.height, shape.isDeep, shape.padding);
    const World copy(world);
    const std::uint64_t before = copy.checksum();
    world.record().data[0].red = 1;
    EXPECT_NE(world.checksum(), before);
    EXPECT_EQ(copy.checksum(), before);
}

INSTANTIATE_TEST_SUITE_P(Shapes, WorldTest,
                         testing::Values(Shape{0, 0, false, 0}, Shape{0, 3, true, 8}, Shape{1, 1, false, 4},
                                         Shape{5, 3, false, 12}, Shape{5, 3, true, 0},
                                         Shape{7, 1, true, 24}));

unsigned char* bytesOf(World& world) {
    return static_cast<unsigned char*>(static_cast<void*>(world.record().data));
}

TEST(WorldDamageTest, WritesOutsideThePixelsAreNamed) {
    struct Case {
        std::ptrdiff_t offset;
        const char* damage;
    };
    constexpr std::int32_t kRowBytes = 3 * 4 + 8;
    for (const Case& c : {Case{-1, "bytes before the first row were written"},
                          Case{3 * 4, "bytes in the gap after row 0 were written"},
                          Case{kRowBytes + 3 * 4 + 7, "bytes in the gap after row 1 were written"},
                          Case{2 * kRowBytes, "bytes after the last row were written"}}) {
        World world(3, 2, false, 8);
        bytesOf(world)[c.offset] ^= 0xFFU;
        EXPECT_EQ(world.damage(), c.damage) << c.offset;
    }
}

TEST(WorldDamageTest, ChecksumLooksAtPixelsAlone) {
    World world(3, 2, false, 8);
    const std::uint64_t before = world.checksum();
    bytesOf(world)[3 * 4] = 0;
    EXPECT_EQ(world.checksum(), before);
}

}  // namespace
}  // namespace perch::test
