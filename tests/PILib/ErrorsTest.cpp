#include "Errors.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <type_traits>

namespace {

using PILib::TPoint;

static_assert(std::is_same_v<decltype(PILib::AssertLine), std::int32_t>);
static_assert(std::is_same_v<decltype(PILib::gDebugPoint), TPoint<int>>);
static_assert(PILib::kAssertionFailed == 999 && PILib::kEndOfArchive == 512);
static_assert(!std::is_same_v<PILib::LibraryError, int>,
              "a handler of host codes must not see the library's");

// The globals before any test has run.
const char* const fileAtStart = PILib::AssertFile;
const std::int32_t lineAtStart = PILib::AssertLine;
const bool debugAtStart = PILib::gDebugMode || PILib::gDebugHit;
const TPoint<int> pointAtStart = PILib::gDebugPoint;

TEST(ErrorsTest, NoFailureIsRecordedAtTheStart) {
    EXPECT_EQ(nullptr, fileAtStart);
    EXPECT_EQ(0, lineAtStart);
}

TEST(ErrorsTest, DebuggingIsOffAtTheStart) {
    EXPECT_FALSE(debugAtStart);
    EXPECT_EQ((TPoint<int>{0, 0}), pointAtStart);
}

TEST(ErrorsTest, AssertionThatHoldsChangesNothing) {
    const char kBefore[] = "before";
    PILib::AssertFile = kBefore;
    PILib::AssertLine = 7;
    EXPECT_NO_THROW(PILib::_Assert(true, 1598, "other"));
    EXPECT_EQ(kBefore, PILib::AssertFile);
    EXPECT_EQ(7, PILib::AssertLine);
}

TEST(ErrorsTest, FailedAssertionRecordsItsPlaceAndThrows999) {
    const char kFile[] = "PILib/PILib Source/FrameBuffer";
    for (const int line : {1598, 0, -1, std::numeric_limits<int>::max()}) {
        try {
            PILib::_Assert(false, line, kFile);
            ADD_FAILURE() << "line " << line << ": nothing thrown";
        } catch (int code) {
            EXPECT_EQ(999, code);
        }
        EXPECT_EQ(line, PILib::AssertLine);
        EXPECT_EQ(kFile, PILib::AssertFile) << "the pointer itself is kept";
    }
}

TEST(ErrorsTest, LastFailedAssertionWins) {
    EXPECT_THROW(PILib::_Assert(false, 1, "first"), int);
    EXPECT_THROW(PILib::_Assert(false, 2, "second"), int);
    EXPECT_EQ(2, PILib::AssertLine);
    EXPECT_STREQ("second", PILib::AssertFile);
}

TEST(ErrorsTest, ZeroIsNoError) {
    EXPECT_NO_THROW(PILib::ThrowIfErr(0));
}

TEST(ErrorsTest, HostCodeIsThrownAsItIsAndRecordsNoPlace) {
    const std::int32_t lineBefore = PILib::AssertLine;
    for (const int code : {-50, 1, PILib::kOutOfMemory, PILib::kInternalDamage, PILib::kUserCancelled, 999,
                           std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        try {
            PILib::ThrowIfErr(code);
            ADD_FAILURE() << code << ": nothing thrown";
        } catch (int thrown) {
            EXPECT_EQ(code, thrown);
        }
    }
    EXPECT_EQ(lineBefore, PILib::AssertLine);
}

}  // namespace
