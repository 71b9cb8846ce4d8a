#include "Check.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "Error.h"

namespace perch::test {
namespace {

TEST(CheckTest, TheEffectIsWell) {
    testing::internal::CaptureStdout();
    const bool passes = runCheck(PERCH_EFFECT);
    const std::string verdicts = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(passes) << verdicts;
    EXPECT_EQ(verdicts.find("FAILED"), std::string::npos) << verdicts;
}

TEST(CheckTest, EffectThatRendersTheSmartWayAloneIsWell) {
    testing::internal::CaptureStdout();
    const bool isWell = runCheck(std::filesystem::path(PERCH_TEST_PLUGINS) / "Smart.so");
    const std::string verdicts = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(isWell) << verdicts;
}

TEST(CheckTest, AFaultyEffectIsNot) {
    testing::internal::CaptureStdout();
    const bool passes = runCheck(std::filesystem::path(PERCH_TEST_PLUGINS) / "Careless.so");
    const std::string verdicts = testing::internal::GetCapturedStdout();
    EXPECT_FALSE(passes) << verdicts;
    EXPECT_NE(verdicts.find("FAILED: RENDER, "), std::string::npos) << verdicts;
}

TEST(CheckTest, AFileThatIsNoEffectIsAnError) {
    EXPECT_THROW(runCheck("no-such.plugin"), Error);
}

}  // namespace
}  // namespace perch::test
