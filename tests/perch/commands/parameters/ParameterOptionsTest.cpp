#include "ParameterOptions.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "CurveText.h"
#include "Error.h"
#include "PF_Values.h"
#include "ParameterText.h"

namespace perch {
namespace {

Parameter named(const std::string& name, PF_ParamType type = PF_Param_SLIDER) {
    static PF_ParamIndex next = 1;
    Parameter parameter;
    parameter.index = next++;
    parameter.name = name;
    parameter.definition.param_type = type;
    return parameter;
}

Parameter ranged(PF_ParamType type, double minimum, double maximum) {
    Parameter parameter = named("Value", type);
    parameter.validRange = {minimum, maximum};
    return parameter;
}

Parameter choice(std::vector<std::string> items) {
    Parameter parameter = named("Choice", PF_Param_POPUP);
    parameter.items = std::move(items);
    return parameter;
}

std::vector<std::string> namesOf(const std::vector<ParameterOption>& options) {
    std::vector<std::string> names;
    for (const ParameterOption& option : options)
        names.push_back(option.name);
    return names;
}

TEST(ParameterOptionsTest, NameIsLowerCaseWithOneDashPerRunOfOtherCharacters) {
    const std::pair<const char*, const char*> cases[] = {
        {"Focal Point", "focal-point"},
        {"Gain (dB)", "gain-db"},
        {"  --X & Y--  ", "x-y"},
        {"3D", "3d"},
        {"Gr\xC3\xB6\xC3\x9F"
         "e",
         "gr-e"},
        {"", ""},
        {"***", ""},
    };
    for (const auto& [name, option] : cases)
        EXPECT_EQ(optionName(name), option) << name;
}

TEST(ParameterOptionsTest, RangesOfLayersGiveWayToOtherNames) {
    const std::vector<Parameter> parameters{named("Control Layer", PF_Param_LAYER),
                                            named("Matte", PF_Param_LAYER), named("Matte Range"),
                                            named("Zoom Layer", PF_Param_LAYER)};
    const std::vector<std::string> reserved{"zoom-range"};
    std::vector<std::string> ranges;
    for (const ParameterOption& option : parameterOptions(parameters, reserved))
        ranges.push_back(option.rangeName);
    EXPECT_EQ(ranges, (std::vector<std::string>{"control-range", "matte-range-2", "", "zoom-range-2"}));
}

TEST(ParameterOptionsTest, ParametersWithoutAValueAreLeftOut) {
    const std::vector<Parameter> parameters{
        named("A", PF_Param_GROUP_START), named("B", PF_Param_FLOAT_SLIDER),   named("C", PF_Param_GROUP_END),
        named("D", PF_Param_NO_DATA),     named("E", PF_Param_ARBITRARY_DATA), named("F", PF_Param_BUTTON),
        named("G", PF_Param_LAYER)};
    EXPECT_EQ(namesOf(parameterOptions(parameters, {})), (std::vector<std::string>{"b", "g"}));
}

TEST(ParameterOptionsTest, EveryOptionHasANameOfItsOwn) {
    const std::vector<std::string> reserved{"input", "output"};
    std::vector<Parameter> parameters{named("Output"), named("Size"),   named("size"),         named("SIZE"),
                                      named("Size 2"), named("OUTPUT"), named("Effect Output")};
    parameters.push_back(named("???"));
    const std::string nameless = "parameter-" + std::to_string(parameters.back().index);
    EXPECT_EQ(namesOf(parameterOptions(parameters, reserved)),
              (std::vector<std::string>{"effect-output", "size", "size-2", "size-3", "size-2-2",
                                        "effect-output-2", "effect-output-3", nameless}));
}

TEST(ParameterOptionsTest, OffsetOfALayerIsCalledAsTheLayerAndNotAsAnythingElse) {
    const std::vector<std::string> reserved{"depth-offset"};
    const std::vector<Parameter> parameters{named("Matte", PF_Param_LAYER), named("Depth", PF_Param_LAYER),
                                            named("Size"), named("Matte", PF_Param_LAYER),
                                            named("Matte Offset")};
    std::vector<std::string> offsets;
    for (const ParameterOption& option : parameterOptions(parameters, reserved))
        offsets.push_back(option.offsetName);
    EXPECT_EQ(offsets,
              (std::vector<std::string>{"matte-offset-2", "depth-offset-2", "", "matte-2-offset", ""}));
}

// Whether the text is accepted.
bool accepts(const Parameter& parameter, const char* text) {
    return parseSetting(parameter, text).has_value();
}

TEST(ParameterTextTest, NumbersOutsideTheValidRangeAreRefused) {
    struct Case {
        Parameter parameter;
        std::vector<const char*> accepted;
        std::vector<const char*> refused;
    };
    const double largest = std::numeric_limits<PF_ParamValue>::max();
    const Case cases[] = {
        {ranged(PF_Param_SLIDER, -5, 100),
         {"-5", "0", "+7", "100"},
         {"-6", "101", "1.5", "", " 1", "1 ", "ten", "+-1"}},
        {ranged(PF_Param_SLIDER, -largest - 1, largest),
         {"2147483647", "-2147483648"},
         {"2147483648", "1e3"}},
        {ranged(PF_Param_FLOAT_SLIDER, 0.1F, 2.5),
         {"0.1", "2.5", "1e0", "+1"},
         {"0.0999", "2.51", "nan", "inf", "1e999"}},
        {ranged(PF_Param_FIX_SLIDER, 0, 10), {"0", "10", "0.00001"}, {"-0.5", "10.1", "40000", "nan"}},
        {named("Angle", PF_Param_ANGLE), {"-720", "0.5", "32767.9"}, {"32768", "-32769", "90deg"}},
        {ranged(PF_Param_FLOAT_SLIDER, 0, 0), {"-9", "9"}, {"x"}},
    };
    for (const Case& c : cases) {
        for (const char* text : c.accepted)
            EXPECT_TRUE(accepts(c.parameter, text)) << expectedValue(c.parameter) << ": " << text;
        for (const char* text : c.refused)
            EXPECT_FALSE(accepts(c.parameter, text)) << expectedValue(c.parameter) << ": " << text;
    }
}

TEST(ParameterTextTest, SeparatorsOfAPopupAreNoValuesAndStillCount) {
    Parameter popup = named("Mode", PF_Param_POPUP);
    popup.items = {"Fast", "(-", "Fine"};
    EXPECT_EQ(parseSetting(popup, "Fine"), (ParameterSetting{popup.index, {3, 0, 0, 0}}));
    EXPECT_TRUE(accepts(popup, "3"));
    EXPECT_FALSE(accepts(popup, "2"));
    EXPECT_FALSE(accepts(popup, "(-"));
    EXPECT_EQ(expectedValue(popup), "one of Fast, Fine, or its number from 1 to 3");
}

TEST(ParameterTextTest, OtherTypesTakeTheirOwnForms) {
    struct Case {
        Parameter parameter;
        std::vector<const char*> accepted;
        std::vector<const char*> refused;
    };
    const Case cases[] = {
        {named("Box", PF_Param_CHECKBOX), {"on", "OFF", "true", "0"}, {"", "2", "onn"}},
        {named("Tint", PF_Param_COLOR),
         {"#ff8000", "#FF8000", "255,128,0", "0,0,0,0"},
         {"#ff80", "#ff80000", "#ff80zz", "#+f8000", "256,0,0", "1,2", "1,2,3,4,5", "1,,3", "-1,0,0", ""}},
        {named("Centre", PF_Param_POINT), {"0,0", "-1.5,20"}, {"1", "1,", "1,2,3", "1;2", "40000,0", ","}},
        {named("Position", PF_Param_POINT_3D), {"0,0,0", "-1e6,2,3"}, {"1,2", "1,2,nan", "1,2,3,4"}},
        {choice({"Fast", "Very fine"}), {"fast", "VERY FINE", "1", "2"}, {"0", "3", "very", "", "-1"}},
        {choice({}), {}, {"1", "0", ""}},
        {named("Group", PF_Param_GROUP_START), {}, {"", "1"}},
    };
    for (const Case& c : cases) {
        for (const char* text : c.accepted)
            EXPECT_TRUE(accepts(c.parameter, text)) << expectedValue(c.parameter) << ": " << text;
        for (const char* text : c.refused)
            EXPECT_FALSE(accepts(c.parameter, text)) << expectedValue(c.parameter) << ": " << text;
    }
}

PF_ParamDef parsed(const Parameter& parameter, const char* text) {
    std::optional<ParameterSetting> setting = parseSetting(parameter, text);
    if (!setting) {
        ADD_FAILURE() << text;
        return {};
    }
    setting->index = 1;
    ParameterValues values{PF_ParamDef{}, parameter.definition};
    applySetting(*setting, values);
    return values[1];
}

TEST(ParameterTextTest, ValuesArriveInTheUnitsOfTheInterface) {
    EXPECT_EQ(parsed(ranged(PF_Param_SLIDER, 0, 100), "40").u.sd.value, 40);
    EXPECT_EQ(parsed(ranged(PF_Param_FIX_SLIDER, 0, 10), "2.5").u.fd.value, 0x28000);
    EXPECT_EQ(parsed(named("A", PF_Param_ANGLE), "-90").u.ad.value, -90 * 65536);
    EXPECT_EQ(parsed(ranged(PF_Param_FLOAT_SLIDER, 0, 1), "0.1").u.fs_d.value, 0.1);
    EXPECT_EQ(parsed(named("B", PF_Param_CHECKBOX), "on").u.bd.value, 1);
    EXPECT_EQ(parsed(choice({"a", "b", "c"}), "c").u.pd.value, 3);
    EXPECT_EQ(parsed(choice({"2", "1"}), "1").u.pd.value, 2) << "an item's name goes before a number";
    EXPECT_EQ(parsed(named("P", PF_Param_POINT), "1.5,-2").u.td.x_value, 0x18000);
    EXPECT_EQ(parsed(named("P", PF_Param_POINT), "1.5,-2").u.td.y_value, -2 * 65536);
    EXPECT_EQ(parsed(named("Q", PF_Param_POINT_3D), "1,2,3.5").u.point3d_d.z_value, 3.5);
    const PF_Pixel opaque = parsed(named("C", PF_Param_COLOR), "#ff8001").u.cd.value;
    EXPECT_EQ(std::vector<int>({opaque.alpha, opaque.red, opaque.green, opaque.blue}),
              std::vector<int>({255, 255, 128, 1}));
    const PF_Pixel glass = parsed(named("C", PF_Param_COLOR), "1,2,3,4").u.cd.value;
    EXPECT_EQ(std::vector<int>({glass.alpha, glass.red, glass.green, glass.blue}),
              std::vector<int>({4, 1, 2, 3}));
}

TEST(ParameterSettingTest, TypesWithoutAValueStayAsTheyAre) {
    for (const PF_ParamType type :
         {PF_Param_LAYER, PF_Param_GROUP_START, PF_Param_BUTTON, PF_Param_NO_DATA}) {
        ParameterValues values(2);
        std::memset(&values[1], 0x55, sizeof values[1]);
        values[1].param_type = type;
        const PF_ParamDef before = values[1];
        applySetting({.index = 1, .numbers = {1, 2, 3, 4}}, values);
        EXPECT_EQ(std::memcmp(&values[1], &before, sizeof before), 0) << "type " << type;
    }
}

TEST(ParameterSettingTest, WholeValuesAreRoundedToTheNearest) {
    const auto set = [](PF_ParamType type, ParameterSetting setting) {
        ParameterValues values(2);
        values[1].param_type = type;
        setting.index = 1;
        applySetting(setting, values);
        return values[1].u;
    };
    EXPECT_EQ(set(PF_Param_SLIDER, {.numbers = {2.5}}).sd.value, 3);
    EXPECT_EQ(set(PF_Param_SLIDER, {.numbers = {-2.4}}).sd.value, -2);
    EXPECT_EQ(set(PF_Param_ANGLE, {.numbers = {0.6 / 65536}}).ad.value, 1);
    EXPECT_EQ(set(PF_Param_COLOR, {.numbers = {0, 254.5, 0, 255}}).cd.value.green, 255);
}

TEST(ParameterTextTest, SmallestSingleOfTheRangeIsNotLeft) {
    // 0.1 is a little less than the single-precision 0.1 of the declaration.
    const Parameter gain = ranged(PF_Param_FLOAT_SLIDER, static_cast<double>(0.1F), 1);
    EXPECT_EQ(parsed(gain, "0.1").u.fs_d.value, static_cast<double>(0.1F));
}

TEST(ParameterOptionsTest, RefusalTellsWhatWasExpected) {
    const std::pair<Parameter, const char*> cases[] = {
        {ranged(PF_Param_SLIDER, 0, 2147483647),
         "--o takes a whole number from 0 to 2147483647, not \"fin\""},
        {ranged(PF_Param_FLOAT_SLIDER, 0.1F, 1), "--o takes a number from 0.1 to 1, not \"fin\""},
        {named("A", PF_Param_ANGLE), "--o takes an angle in degrees, not \"fin\""},
        {named("B", PF_Param_CHECKBOX), "--o takes on or off, not \"fin\""},
        {choice({"Fast", "Fine"}),
         "--o takes one of Fast, Fine, or its number from 1 to 2, not \"fin\" (did you mean \"Fine\"?)"},
    };
    for (const auto& [parameter, sentence] : cases) {
        try {
            parseCurve(parameter, "--o", "fin");
            ADD_FAILURE() << "nothing was thrown for " << sentence;
        } catch (const Error& error) {
            EXPECT_STREQ(error.what(), sentence);
        }
    }
}

}  // namespace
}  // namespace perch
