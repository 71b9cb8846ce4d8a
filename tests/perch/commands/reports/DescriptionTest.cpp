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
    EXPECT_EQ(flagNames(PF_OutFlag_CUSTOM_UI | PF_OutFlag_AUDIO_EFFECT_ONLY),
              (Names{"CUSTOM_UI", "AUDIO_EFFECT_ONLY"}));
    EXPECT_EQ(flagNames2(PF_OutFlag2_I_AM_THREADSAFE | PF_OutFlag2_DOESNT_NEED_EMPTY_PIXELS),
              (Names{"I_AM_THREADSAFE", "DOESNT_NEED_EMPTY_PIXELS"}));
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

Parameter parameterOf(PF_ParamIndex index, PF_ParamType type, const char* name, int depth) {
    Parameter parameter;
    parameter.index = index;
    parameter.name = name;
    parameter.depth = depth;
    parameter.definition.param_type = type;
    return parameter;
}

TEST(DescriptionTest, GroupsAreIndentedAndSeparatorsShownAsThemselves) {
    EffectDescription description;
    description.parameters = {parameterOf(1, PF_Param_GROUP_START, "Colour", 0),
                              parameterOf(2, PF_Param_POPUP, "Mode", 1),
                              parameterOf(3, PF_Param_GROUP_END, "", 0)};
    description.parameters[1].items = {"Fast", "(-", "Fine"};
    description.parameters[1].definition.u.pd.dephault = 3;
    const std::string text = describeAsText(description, {});
    EXPECT_NE(text.find("1      Colour"), std::string::npos) << text;
    EXPECT_NE(text.find("2        Mode"), std::string::npos) << text;
    EXPECT_NE(text.find("Fine     Fast, (separator), Fine"), std::string::npos) << text;
    const auto json = nlohmann::json::parse(describeAsJson(description, {}))["parameters"];
    EXPECT_EQ(json[1]["separators"], nlohmann::json::array({2}));
    EXPECT_EQ(json[1]["groupDepth"], 1);
    EXPECT_FALSE(json[0].contains("separators"));
    EXPECT_FALSE(json[0].contains("groupDepth"));
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
