#include "FramePattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Error.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Name {
    const char* name;
    std::size_t digits;
    std::int32_t frame;
    const char* path;
};

TEST(FramePatternTest, NumberStandsInItsPlaceWithItsDigits) {
    const Name names[] = {
        {"a.####.png", 4, 7, "a.0007.png"},
        {"a.####.png", 4, 12345, "a.12345.png"},
        {"####", 4, 0, "0000"},
        {"#.png", 1, 10, "10.png"},
        {"shot/a.%04d.png", 4, 7, "shot/a.0007.png"},
        {"a%d.png", 1, 7, "a7.png"},
        {"a_%09d", 9, kLastFrame, "a_999999999"},
        {"100%/a##%.png", 2, 3, "100%/a03%.png"},
        {"##/%d", 1, 3, "##/3"},
        {"/top.##", 2, 3, "/top.03"},
        {"a%4d##", 2, 3, "a%4d03"},
    };
    for (const auto& [name, digits, frame, path] : names) {
        const std::optional<FramePattern> pattern = FramePattern::parse(name);
        ASSERT_TRUE(pattern) << name;
        EXPECT_EQ(pattern->digits(), digits) << name;
        EXPECT_EQ(pattern->pathOf(frame), path) << name;
    }
}

TEST(FramePatternTest, NamesWithoutAPlaceAreOfOneFile) {
    for (const char* const name : {"", "a.png", "a.0001.png", "a%.png", "a%0d.png", "a%04.png", "a%04", "%",
                                   "####/a.png", "a%x.png", "a%-4d.png", "a%00d.png"})
        EXPECT_FALSE(FramePattern::parse(name)) << name;
}

TEST(FramePatternTest, TwoPlacesAndTooManyDigitsAreRefused) {
    for (const char* const name : {"a.##.##.png", "#a#", "%d%d", "##%04d", "##########", "a%010d", "a%099d"})
        EXPECT_THROW(FramePattern::parse(name), UsageError) << name;
}

TEST(FramePatternTest, FilesOfItsFormAreFoundInOrder) {
    const TemporaryFolder folder;
    for (const char* const name :
         {"a.0010.png", "a.0002.png", "a.12345.png", "a.0000.png", "a.7.png", "a.00003.png", "b.0004.png",
          "a.0005.tif", "a.-001.png", "a.0006.png.bak", "a..png", "a.9999999999.png", "a.+008.png"})
        writeBytes(folder / name, "");
    std::filesystem::create_directory(folder / "a.0011.png");
    const auto framesOf = [&](const std::string& name) {
        return FramePattern::parse((folder / name).string())->framesOnDisk();
    };
    EXPECT_THAT(framesOf("a.####.png"), ElementsAre(0, 2, 10, 12345));
    EXPECT_THAT(framesOf("a.%04d.png"), ElementsAre(0, 2, 10, 12345));
    EXPECT_THAT(framesOf("a.#.png"), ElementsAre(7, 12345));
    EXPECT_THAT(framesOf("a.#####.png"), ElementsAre(3, 12345));
    EXPECT_THAT(framesOf("c.####.png"), IsEmpty());
    EXPECT_THAT(framesOf("none/a.####.png"), IsEmpty());
}

TEST(FrameRangeTest, FirstLastAndStepAreRead) {
    EXPECT_EQ(parseFrameRange("12"), (FrameRange{12, 12, 1}));
    EXPECT_EQ(parseFrameRange("1-24"), (FrameRange{1, 24, 1}));
    EXPECT_EQ(parseFrameRange("0-0"), (FrameRange{0, 0, 1}));
    EXPECT_EQ(parseFrameRange("0010-0100x5"), (FrameRange{10, 100, 5}));
    EXPECT_EQ(parseFrameRange("0-999999999x999999999"), (FrameRange{0, kLastFrame, kLastFrame}));
}

TEST(FrameRangeTest, OtherTextsAreRefused) {
    for (const char* const text :
         {"", "-", "a", "1-", "-1", "1-2x", "1-2x0", "2-1", "1-2-3", "1x2 ", " 1", "1 ", "1--2", "1-+2",
          "1000000000", "1-99999999999999999999", "1-2x-1", "1-2y3"})
        EXPECT_THROW(parseFrameRange(text), UsageError) << '"' << text << '"';
}

}  // namespace
}  // namespace perch::test
