#include "Check.h"

#include <gtest/gtest.h>

#include <filesystem>
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
