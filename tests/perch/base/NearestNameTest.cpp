#include "NearestName.h"

#include <gtest/gtest.h>

namespace perch {
namespace {

TEST(NearestNameTest, MisspeltWordsFindTheirName) {
    const std::vector<std::string> names{"--focal-point", "--blur-type", "--input", "--output", "--blend"};
    const std::pair<const char*, const char*> cases[] = {
        {"--focal-pont", "--focal-point"},    // a letter left out
        {"--focall-point", "--focal-point"},  // one too many
        {"--focal-piont", "--focal-point"},   // two swapped
        {"--Focal-Point", "--focal-point"},   // case
        {"--focal-paint", "--focal-point"},   // another letter
        {"--putput", "--output"},             // the nearer of two
        {"--blent", "--blend"},
    };
    for (const auto& [word, name] : cases)
        EXPECT_EQ(nearestName(word, names).value_or(""), name) << word;
}

TEST(NearestNameTest, WordsFarFromAllNamesFindNone) {
    const std::vector<std::string> names{"Fast", "Fine"};
    for (const char* word : {"", "x", "ab", "polygonal", "3.5"}) {
        EXPECT_FALSE(nearestName(word, names)) << word;
        EXPECT_EQ(suggestion(word, names), "") << word;
    }
    EXPECT_FALSE(nearestName("Fast", {}));
    const std::vector<std::string> shortName{"ab"};
    EXPECT_FALSE(nearestName("xy", shortName)) << "not a letter of it";
}

TEST(NearestNameTest, SuggestionQuotesTheName) {
    const std::vector<std::string> names{"Fast", "Fine"};
    EXPECT_EQ(suggestion("fin", names), " (did you mean \"Fine\"?)");
}

}  // namespace
}  // namespace perch
