#include "FramePattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Error.h"
#include "FrameNumber.h"
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
        {"a.[####].png", 4, 7, "a.0007.png"},
        {"a[#]", 1, 7, "a7"},
        {"[a##]", 2, 7, "[a07]"},
        {"a[##", 2, 7, "a[07"},
        {"a.@@@@.png", 4, 7, "a.0007.png"},
        {"a@2x.@@", 2, 7, "a@2x.07"},
        {"a.$F4.png", 4, 7, "a.0007.png"},
        {"$F04", 4, 7, "0007"},
        {"a.$F.png", 1, 7, "a.7.png"},
        {"a$F", 1, 7, "a7"},
        {"$FF.##", 2, 7, "$FF.07"},
        {"a.####.png", 4, -7, "a.-007.png"},
        {"a.%04d.png", 4, -12345, "a.-12345.png"},
        {"a#", 1, -7, "a-7"},
        {"%09d", 9, kFirstFrame, "-999999999"},
    };
    for (const auto& [name, digits, frame, path] : names) {
        const std::optional<FramePattern> pattern = FramePattern::parse(name);
        ASSERT_TRUE(pattern) << name;
        EXPECT_EQ(pattern->digits(), digits) << name;
        EXPECT_EQ(pattern->pathOf(frame), path) << name;
    }
}

TEST(FramePatternTest, NamesWithoutAPlaceAreOfOneFile) {
    for (const char* const name :
         {"",           "a.png",   "a.0001.png", "a%.png",    "a%0d.png",    "a%04.png", "a%04", "%",
          "####/a.png", "a%x.png", "a%-4d.png",  "a%00d.png", "logo@2x.png", "a[].png",  "a[",   "$FILE",
          "$F_",        "$F0",     "$f4",        "$"})
        EXPECT_FALSE(FramePattern::parse(name)) << name;
}

TEST(FramePatternTest, TwoPlacesAndTooManyDigitsAreRefused) {
    for (const char* const name : {"a.##.##.png", "#a#", "%d%d", "##%04d", "##########", "a%010d", "a%099d",
                                   "[##]##", "@@.@@", "$F4.####", "$F10"})
        EXPECT_THROW(FramePattern::parse(name), UsageError) << name;
}

TEST(FramePatternTest, FilesOfItsFormAreFoundInOrder) {
    const TemporaryFolder folder;
    for (const char* const name :
         {"a.0010.png", "a.0002.png", "a.12345.png", "a.0000.png", "a.7.png", "a.00003.png", "b.0004.png",
          "a.0005.tif", "a.-001.png", "a.-1.png", "a.-000.png", "a.-2000.png", "a.0006.png.bak", "a..png",
          "a.9999999999.png", "a.+008.png"})
        writeBytes(folder / name, "");
    std::filesystem::create_directory(folder / "a.0011.png");
    const auto framesOf = [&](const std::string& name) {
        return FramePattern::parse((folder / name).string())->framesOnDisk();
    };
    EXPECT_THAT(framesOf("a.####.png"), ElementsAre(-2000, -1, 0, 2, 10, 12345));
    EXPECT_THAT(framesOf("a.%04d.png"), ElementsAre(-2000, -1, 0, 2, 10, 12345));
    EXPECT_THAT(framesOf("a.#.png"), ElementsAre(-2000, -1, 7, 12345));
    EXPECT_THAT(framesOf("a.#####.png"), ElementsAre(-2000, 3, 12345));
    EXPECT_THAT(framesOf("c.####.png"), IsEmpty());
    EXPECT_THAT(framesOf("none/a.####.png"), IsEmpty());
}

}  // namespace
}  // namespace perch::test
