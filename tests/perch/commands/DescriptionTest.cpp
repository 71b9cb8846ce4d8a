#include "Description.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "PF_Values.h"
#include "PiPL.h"

namespace perch {
namespace {

TEST(DescriptionTest, PackedVersionIsUnpacked) {
    const std::pair<std::uint32_t, const char*> cases[] = {
        {PF_VERSION(0, 0, 0, PF_Stage_DEVELOP, 0), "0.0 develop build 0"},
        {PF_VERSION(1, 2, 3, PF_Stage_RELEASE, 4), "1.2.3 release build 4"},
        {PF_VERSION(127, 15, 15, PF_Stage_BETA, 511), "127.15.15 beta build 511"},
        {PF_VERSION(9, 1, 0, PF_Stage_ALPHA, 7), "9.1 alpha build 7"},
    };
    for (const auto& [version, text] : cases)
        EXPECT_EQ(versionText(version), text);
}

TEST(DescriptionTest, FlagsAreNamedAndTheRestIsANumber) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(flagNames(0), Names{});
    EXPECT_EQ(flagNames(PF_OutFlag_DEEP_COLOR_AWARE | PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING),
              (Names{"SEQUENCE_DATA_NEEDS_FLATTENING", "DEEP_COLOR_AWARE"}));
    EXPECT_EQ(flagNames(PF_OutFlag_PIX_INDEPENDENT | 0x8), (Names{"PIX_INDEPENDENT", "0x8"}));
    EXPECT_EQ(flagNames2(PF_OutFlag2_FLOAT_COLOR_AWARE | static_cast<PF_OutFlags2>(0x80000000)),
              (Names{"FLOAT_COLOR_AWARE", "0x80000000"}));
}

TEST(DescriptionTest, EffectWithoutANameIsCalledAsItsFile) {
    EffectDescription description;
    description.path = "folder/Sparkle.so";
    EXPECT_EQ(displayName(description), "Sparkle");
    description.name = "Sparkle Pro";
    EXPECT_EQ(displayName(description), "Sparkle Pro");
}

TEST(DescriptionTest, NamesOfNoEncodingAndWithControlCharactersDoNoHarm) {
    EffectDescription description;
    description.name = "a\xFF\x1B[2J\n";
    description.category = "\xC3";
    Parameter parameter;
    parameter.index = 1;
    parameter.name = "Bad\nName\xFE";
    parameter.definition.param_type = PF_Param_SLIDER;
    description.parameters.push_back(parameter);
    const std::vector<ParameterOption> options = parameterOptions(description.parameters, {});
    const auto json = nlohmann::json::parse(describeAsJson(description, options));
    EXPECT_EQ(json["parameters"][0]["option"], "--bad-name");
    const std::string text = describeAsText(description, options);
    EXPECT_EQ(text.find('\x1B'), std::string::npos) << text;
    EXPECT_NE(text.find("Bad?Name"), std::string::npos) << text;
}

}  // namespace
}  // namespace perch
