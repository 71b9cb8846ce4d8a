#include "ParameterCurve.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>

#include "CurveText.h"
#include "Error.h"
#include "PF_Values.h"
#include "ParameterText.h"

namespace perch {
namespace {

using Kind = ParameterKey::Kind;

ParameterCurve curveOf(std::vector<ParameterKey> keys) {
    return {1, std::move(keys)};
}

double valueAt(const ParameterCurve& curve, std::int32_t frame) {
    return settingAt(curve, frame).numbers[0];
}

TEST(ParameterCurveTest, ValueGlidesBetweenKeysThatDifferAndDoNotHold) {
    EXPECT_FALSE(glides(curveOf({{0, {5}, Kind::Linear}})));
    EXPECT_FALSE(glides(curveOf({{0, {5}, Kind::Hold}, {8, {6}, Kind::Linear}})));
    EXPECT_FALSE(glides(curveOf({{0, {5}, Kind::Linear}, {8, {5}, Kind::Linear}})));
    EXPECT_TRUE(glides(curveOf({{0, {5}, Kind::Linear}, {8, {6}, Kind::Hold}})));
    EXPECT_TRUE(glides(curveOf({{0, {5}, Kind::Hold}, {8, {5}, Kind::Smooth}, {9, {6}, Kind::Smooth}})));
}

TEST(ParameterCurveTest, ValuesFollowTheKindsOfTheKeysAroundThem) {
    // Between frames 0 and 8 the value goes from 10 to 74, so that an eighth of the way is 8.
    struct Case {
        Kind from;
        Kind to;
        std::vector<double> values;  // at frames 0 to 8
    };
    const Case cases[] = {
        {Kind::Linear, Kind::Linear, {10, 18, 26, 34, 42, 50, 58, 66, 74}},
        {Kind::Linear, Kind::Hold, {10, 18, 26, 34, 42, 50, 58, 66, 74}},
        {Kind::Hold, Kind::Linear, {10, 10, 10, 10, 10, 10, 10, 10, 74}},
        {Kind::Hold, Kind::Smooth, {10, 10, 10, 10, 10, 10, 10, 10, 74}},
        // 64 (3 t^2 - 2 t^3)
        {Kind::Smooth, Kind::Smooth, {10, 12.75, 20, 30.25, 42, 53.75, 64, 71.25, 74}},
        // 64 (2 t^2 - t^3)
        {Kind::Smooth, Kind::Linear, {10, 11.875, 17, 24.625, 34, 44.375, 55, 65.125, 74}},
        // the same from behind
        {Kind::Linear, Kind::Smooth, {10, 18.875, 29, 39.625, 50, 59.375, 67, 72.125, 74}},
    };
    for (const Case& c : cases) {
        const ParameterCurve curve = curveOf(
            {{.frame = 0, .numbers = {10}, .kind = c.from}, {.frame = 8, .numbers = {74}, .kind = c.to}});
        for (std::int32_t frame = 0; frame <= 8; ++frame)
            EXPECT_EQ(c.values[static_cast<std::size_t>(frame)], valueAt(curve, frame))
                << static_cast<int>(c.from) << static_cast<int>(c.to) << " at frame " << frame;
    }
}

TEST(ParameterCurveTest, OutsideItsKeysAValueStays) {
    const ParameterCurve curve = curveOf({{.frame = -3, .numbers = {5}}, {.frame = 7, .numbers = {9}}});
    for (const std::int32_t frame : {std::numeric_limits<std::int32_t>::min(), -4, -3})
        EXPECT_EQ(5, valueAt(curve, frame));
    for (const std::int32_t frame : {7, 8, std::numeric_limits<std::int32_t>::max()})
        EXPECT_EQ(9, valueAt(curve, frame));
    EXPECT_EQ(40, valueAt(constantCurve({1, {40}}), -1000));
    EXPECT_EQ(40, valueAt(constantCurve({1, {40}}), 1000));
}

TEST(ParameterCurveTest, EveryNumberOfAValueMoves) {
    const ParameterCurve curve =
        curveOf({{.frame = 0, .numbers = {0, 100, 7, 255}}, {.frame = 4, .numbers = {100, 0, 7, 255}}});
    EXPECT_EQ((std::array<double, 4>{25, 75, 7, 255}), settingAt(curve, 1).numbers);
}

TEST(ParameterCurveTest, ValuesNeverTurnBackNorLeaveTheKeys) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> number(-1000, 1000);
    std::uniform_int_distribution<int> kind(0, 2);
    for (int round = 0; round < 500; ++round) {
        const double from = number(random);
        const double to = number(random);
        const ParameterCurve curve =
            curveOf({{.frame = 0, .numbers = {from}, .kind = static_cast<Kind>(kind(random))},
                     {.frame = 97, .numbers = {to}, .kind = static_cast<Kind>(kind(random))}});
        for (std::int32_t frame = 0; frame < 97; ++frame) {
            const double step = valueAt(curve, frame + 1) - valueAt(curve, frame);
            ASSERT_GE(step * (to - from), -1e-9) << from << " to " << to << " at frame " << frame;
            ASSERT_GE(valueAt(curve, frame), std::min(from, to));
            ASSERT_LE(valueAt(curve, frame), std::max(from, to));
        }
    }
}

TEST(ParameterCurveTest, TheFarthestKeysAreApartAsFarAsTheyAre) {
    const ParameterCurve curve =
        curveOf({{.frame = std::numeric_limits<std::int32_t>::min(), .numbers = {0}},
                 {.frame = std::numeric_limits<std::int32_t>::max(), .numbers = {1}}});
    EXPECT_NEAR(0.5, valueAt(curve, 0), 1e-9);
}

Parameter parameterOf(PF_ParamType type) {
    Parameter parameter;
    parameter.index = 1;
    parameter.definition.param_type = type;
    if (type == PF_Param_POPUP) parameter.items = {"Coarse", "Fine", "16:9", "a:hold"};
    if (type == PF_Param_FLOAT_SLIDER) parameter.validRange = Parameter::Range{0, 100};
    return parameter;
}

TEST(CurveTextTest, KeysAreFramesValuesAndKinds) {
    struct Case {
        PF_ParamType type;
        const char* text;
        std::vector<ParameterKey> keys;
    };
    const Case cases[] = {
        {PF_Param_FLOAT_SLIDER, "40", {{0, {40}, Kind::Hold}}},
        {PF_Param_FLOAT_SLIDER, "1:20", {{1, {20}, Kind::Linear}}},
        {PF_Param_FLOAT_SLIDER, "1:20,48:70:smooth", {{1, {20}, Kind::Linear}, {48, {70}, Kind::Smooth}}},
        {PF_Param_FLOAT_SLIDER,
         "48:70:hold,-5:20:linear,7:1.5",
         {{-5, {20}, Kind::Linear}, {7, {1.5}, Kind::Linear}, {48, {70}, Kind::Hold}}},
        {PF_Param_POPUP, "1:fine,9:Coarse", {{1, {2}, Kind::Hold}, {9, {1}, Kind::Hold}}},
        {PF_Param_POPUP, "1:2:hold", {{1, {2}, Kind::Hold}}},
        {PF_Param_POPUP, "16:9", {{0, {3}, Kind::Hold}}},
        {PF_Param_POPUP, "a:hold", {{0, {4}, Kind::Hold}}},
        {PF_Param_POPUP, "4:16:9", {{4, {3}, Kind::Hold}}},
        {PF_Param_CHECKBOX, "1:on,5:off", {{1, {1}, Kind::Hold}, {5, {0}, Kind::Hold}}},
        {PF_Param_POINT,
         "1:0,-5.5,24:640,360:smooth",
         {{1, {0, -5.5}, Kind::Linear}, {24, {640, 360}, Kind::Smooth}}},
        {PF_Param_COLOR,
         "1:#ff8000,3:0,1,2",
         {{1, {255, 128, 0, 255}, Kind::Linear}, {3, {0, 1, 2, 255}, Kind::Linear}}},
    };
    for (const Case& c : cases)
        EXPECT_EQ((ParameterCurve{1, c.keys}), parseCurve(parameterOf(c.type), "--o", c.text)) << c.text;
}

TEST(CurveTextTest, TextOfACurveIsReadBackAsTheSameCurve) {
    struct Case {
        PF_ParamType type;
        std::vector<ParameterKey> keys;
        const char* text;
    };
    const Case cases[] = {
        {PF_Param_FLOAT_SLIDER, {{0, {100.0 / 3}, Kind::Hold}}, "33.333333333333336"},
        {PF_Param_FLOAT_SLIDER,
         {{1, {0.1}, Kind::Linear}, {48, {70}, Kind::Smooth}, {50, {16777217.0 / 16777216}, Kind::Hold}},
         "1:0.1,48:70:smooth,50:1.0000000596046448:hold"},
        {PF_Param_POINT, {{0, {0.1, -1234.25}, Kind::Hold}}, "0.1,-1234.25"},
        {PF_Param_COLOR, {{0, {255, 128, 0, 255}, Kind::Hold}}, "#ff8000"},
        {PF_Param_CHECKBOX, {{1, {1}, Kind::Hold}, {5, {0}, Kind::Hold}}, "1:on,5:off"},
        {PF_Param_POPUP, {{1, {2}, Kind::Hold}, {9, {1}, Kind::Hold}}, "1:Fine,9:Coarse"},
        {PF_Param_POPUP, {{0, {4}, Kind::Hold}}, "4"},  // whose name would be taken for a key
    };
    for (const Case& c : cases) {
        const Parameter parameter = parameterOf(c.type);
        const ParameterCurve curve{1, c.keys};
        const std::string text = curveText(parameter, curve);
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(parseCurve(parameter, "--o", text), curve) << text;
    }
}

TEST(CurveTextTest, RefusalsNameTheKeyAndWhatWasExpected) {
    struct Case {
        PF_ParamType type;
        const char* text;
        const char* sentence;
    };
    const Case cases[] = {
        {PF_Param_FLOAT_SLIDER, "x", "--o takes a number from 0 to 100, not \"x\""},
        {PF_Param_FLOAT_SLIDER, "", "--o takes a number from 0 to 100, not \"\""},
        {PF_Param_FLOAT_SLIDER, "1:", "--o takes a number from 0 to 100 at frame 1, not \"\""},
        {PF_Param_FLOAT_SLIDER, "1:20,48:101", "--o takes a number from 0 to 100 at frame 48, not \"101\""},
        {PF_Param_FLOAT_SLIDER, "1:20,x:7", "--o: a key is hold, linear or smooth, not \"7\""},
        {PF_Param_FLOAT_SLIDER, "1:20,48", "--o takes a number from 0 to 100 at frame 1, not \"20,48\""},
        {PF_Param_FLOAT_SLIDER, "1:20,", "--o takes a number from 0 to 100 at frame 1, not \"20,\""},
        {PF_Param_FLOAT_SLIDER, "1:20:smoth",
         "--o: a key is hold, linear or smooth, not \"smoth\" (did you mean \"smooth\"?)"},
        {PF_Param_FLOAT_SLIDER, "3:20,1:5,3:6", "--o has two keys at frame 3"},
        {PF_Param_FLOAT_SLIDER, "99999999999:20", "--o takes a number from 0 to 100, not \"99999999999:20\""},
        {PF_Param_POPUP, "1:fine,2:coarze",
         "--o takes one of Coarse, Fine, 16:9, a:hold, or its number from 1 to 4 at frame 2, not \"coarze\" "
         "(did you mean \"Coarse\"?)"},
        {PF_Param_POPUP, "1:fine:linear",
         "--o: a choice holds until the next key, so the key \"1:fine:linear\" cannot be linear"},
        {PF_Param_CHECKBOX, "1:on:smooth",
         "--o: a choice holds until the next key, so the key \"1:on:smooth\" cannot be smooth"},
        {PF_Param_POINT, "1:4,5,6", "--o takes a point as x,y in pixels at frame 1, not \"4,5,6\""},
    };
    for (const Case& c : cases) {
        try {
            parseCurve(parameterOf(c.type), "--o", c.text);
            ADD_FAILURE() << c.text << " was taken";
        } catch (const UsageError& error) {
            EXPECT_STREQ(c.sentence, error.what());
        }
    }
}

TEST(CurveTextTest, PrintedValuesAreReadBack) {
    const std::pair<PF_ParamType, const char*> cases[] = {
        {PF_Param_SLIDER, "-7"},     {PF_Param_FLOAT_SLIDER, "40.5"}, {PF_Param_CHECKBOX, "on"},
        {PF_Param_CHECKBOX, "off"},  {PF_Param_POPUP, "Fine"},        {PF_Param_COLOR, "#ff8000"},
        {PF_Param_COLOR, "1,2,3,4"}, {PF_Param_POINT, "640,-3.5"},    {PF_Param_POINT_3D, "1,2,3.25"},
        {PF_Param_ANGLE, "-90.5"},
    };
    for (const auto& [type, text] : cases) {
        const Parameter parameter = parameterOf(type);
        EXPECT_EQ(text, valueText(parameter, *parseSetting(parameter, text)));
    }
}

}  // namespace
}  // namespace perch
