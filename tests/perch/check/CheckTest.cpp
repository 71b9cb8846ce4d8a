#include "Check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace perch::test {
namespace {

// Why the effect does not keep to each of the rules.
std::vector<std::string> failuresOf(const std::filesystem::path& plugin) {
    std::vector<std::string> failures;
    for (const CheckRule& rule : checkRules())
        failures.push_back(tryRule(rule, plugin));
    return failures;
}

void expectEveryRuleKept(const std::filesystem::path& plugin) {
    const std::vector<std::string> failures = failuresOf(plugin);
    for (std::size_t i = 0; i < failures.size(); ++i)
        EXPECT_EQ(failures[i], "") << checkRules()[i].name;
}

TEST(CheckTest, TheEffectKeepsToEveryRule) {
    expectEveryRuleKept(PERCH_EFFECT);
}

TEST(CheckTest, EffectThatRendersTheSmartWayAloneKeepsToEveryRule) {
    expectEveryRuleKept(std::filesystem::path(PERCH_TEST_PLUGINS) / "Smart.so");
}

TEST(CheckTest, EffectThatMakesFramesLargerByOneWayAloneKeepsToEveryRule) {
    expectEveryRuleKept(std::filesystem::path(PERCH_TEST_PLUGINS) / "Margin.so");
}

TEST(CheckTest, HabitsThatAreAllowedBreakNoRule) {
    expectEveryRuleKept(std::filesystem::path(PERCH_TEST_PLUGINS) / "Whims.so");
}

TEST(CheckTest, EffectWithAnotherPictureByEachWayDoesNot) {
    for (const std::string bits : {"8", "16"}) {
        const std::vector<std::string> failures =
            failuresOf(std::filesystem::path(PERCH_TEST_PLUGINS) / ("TwoPictures" + bits + ".so"));
        EXPECT_EQ(std::ranges::count(failures,
                                     "at " + bits + " bits RENDER gives another picture than SMART_RENDER"),
                  1);
    }
}

TEST(CheckTest, AnglesWithoutARangeAreTurnedFar) {
    const std::filesystem::path dial = std::filesystem::path(PERCH_TEST_PLUGINS) / "Dial.so";
    for (const CheckRule& rule : checkRules())
        EXPECT_EQ(tryRule(rule, dial).empty(),
                  std::string(rule.name) != "every parameter at the ends of its range")
            << rule.name;
}

TEST(CheckTest, AFaultyEffectDoesNot) {
    const std::vector<std::string> failures =
        failuresOf(std::filesystem::path(PERCH_TEST_PLUGINS) / "Careless.so");
    EXPECT_EQ(failures[0], "");
    EXPECT_TRUE(failures[2].starts_with("RENDER, ")) << failures[2];
}

TEST(CheckTest, AFileThatIsNoEffectBreaksTheFirstRule) {
    EXPECT_EQ(tryRule(checkRules()[0], "no-such.plugin"),
              "there is no plug-in \"no-such.plugin\"; name a .plugin folder or a .so file");
}

}  // namespace
}  // namespace perch::test
