#include "FrameList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Error.h"

namespace perch::test {
namespace {

using testing::HasSubstr;

using Frames = std::vector<std::int32_t>;

struct List {
    const char* text;
    Frames frames;
    const char* shortest;
};

const List kLists[] = {
    {"12", {12}, "12"},
    {"-12", {-12}, "-12"},
    {"-0", {0}, "0"},
    {"0-0", {0}, "0"},
    {"1-4", {1, 2, 3, 4}, "1-4"},
    {"0008-0010", {8, 9, 10}, "8-10"},
    {"1-6x2", {1, 3, 5}, "1-5x2"},
    {"1-6:2", {1, 3, 5}, "1-5x2"},
    {"1-3x5", {1}, "1"},
    {"1-6y2", {2, 4, 6}, "2-6x2"},
    {"1-6y3", {2, 3, 5, 6}, "2-3,5-6"},
    {"4-1", {4, 3, 2, 1}, "4-1"},
    {"9-1x3", {9, 6, 3}, "9-3x3"},
    {"9-1x-3", {9, 6, 3}, "9-3x3"},
    {"5-1y2", {4, 2}, "4,2"},
    {"-5--3", {-5, -4, -3}, "-5--3"},
    {"1--2", {1, 0, -1, -2}, "1--2"},
    {"-4-4x4", {-4, 0, 4}, "-4-4x4"},
    {"1,3,5-7", {1, 3, 5, 6, 7}, "1-5x2,6-7"},
    {"7,1-3,2,7-8", {7, 1, 2, 3, 8}, "7,1-3,8"},
    {"3,1-4", {3, 1, 2, 4}, "3,1-2,4"},
    {"0-999999999x999999999", {0, 999999999}, "0,999999999"},
    {"-999999999-999999999x999999999", {-999999999, 0, 999999999}, "-999999999-999999999x999999999"},
};

TEST(FrameListTest, FramesComeInTheOrderAskedForAndEachOnce) {
    for (const auto& [text, frames, shortest] : kLists)
        EXPECT_EQ(parseFrameList(text), frames) << text;
}

TEST(FrameListTest, ShortTextStandsForTheSameFrames) {
    for (const auto& [text, frames, shortest] : kLists) {
        EXPECT_EQ(frameListText(frames), shortest) << text;
        EXPECT_EQ(parseFrameList(shortest), frames) << text;
    }
    EXPECT_EQ(frameListText({}), "");
}

// What is said of a list; empty where it is taken.
std::string refusalOf(const std::string& text) {
    try {
        parseFrameList(text);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
}

TEST(FrameListTest, OtherTextsAreRefusedByTheirWrongPart) {
    for (const std::string part : {"",
                                   "-",
                                   "a",
                                   "1-",
                                   "1-2x",
                                   "1-2x0",
                                   "1-2y0",
                                   "1-2x-1",
                                   "1-1x-1",
                                   "1-2-3",
                                   "1x2",
                                   "1-2x2 ",
                                   " 1",
                                   "1 ",
                                   "1---2",
                                   "1-+2",
                                   "+1",
                                   "1-2z3",
                                   "1-2xx3",
                                   "1..3",
                                   "1000000000",
                                   "-1000000000",
                                   "1-99999999999999999999"}) {
        const std::string sentence = "--frames: \"" + part + "\" is not a frame or a range";
        EXPECT_THAT(refusalOf(part), HasSubstr(sentence));
        EXPECT_THAT(refusalOf("1-5," + part), HasSubstr(sentence));
        EXPECT_THAT(refusalOf(part + ",7"), HasSubstr(sentence));
    }
}

TEST(FrameListTest, TooManyFramesAndNoneAreRefused) {
    for (const char* const text : {"1-1000001", "1-999999999y999999999", "1-500000,1-500001"})
        EXPECT_THAT(refusalOf(text), HasSubstr("has more than 1000000 frames; ask for fewer at once"))
            << text;
    EXPECT_EQ(parseFrameList("1000000-1").size(), kMostFrames);
    EXPECT_THAT(refusalOf("1-5y1"), HasSubstr("leaves out every frame"));
    EXPECT_THAT(refusalOf("3-3y2"), HasSubstr("leaves out every frame"));
}

}  // namespace
}  // namespace perch::test
