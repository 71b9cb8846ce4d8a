#include "Look.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "CurveText.h"
#include "Effect.h"
#include "Error.h"
#include "ParameterText.h"

namespace perch::test {
namespace {

// Of a slider, a popup and a check box.
const std::vector<Parameter>& parameters() {
    static const std::vector<Parameter> all = [] {
        Effect effect(PERCH_EFFECT, HostOptions{});
        return effect.description().parameters;
    }();
    return all;
}

LookReader reader() {
    std::vector<ParameterOption> options = parameterOptions(parameters(), {});
    std::vector<ParameterCurve> defaults;
    for (const ParameterOption& option : options)
        if (const auto setting = parseSetting(option.parameter, defaultText(option.parameter)))
            defaults.push_back(constantCurve(*setting));
    return {
        options, defaults, {1, 2, 3, 24}, {"perch", "render", "-i", "it's.####.png", "-o", "out.####.png"}};
}

std::string state(const std::string& parameters, const std::string& rest = "\"serial\": 1, \"frame\": 2") {
    return "{" + rest + ", \"parameters\": {" + parameters + "}}";
}

TEST(LookTest, TheCommandHoldsWhatIsNotAsByDefault) {
    const LookReader looks = reader();
    struct Case {
        const char* parameters;
        const char* options;
    };
    for (const auto& [parameters, options] :
         {Case{"", ""}, Case{"\"Focal Point\": 0, \"Maximum Blur\": 10, \"Blur Type\": \"Coarse\"", ""},
          Case{"\"Focal Point\": 40.5, \"Blur Type\": \"Fine\"", " --blur-type Fine --focal-point 40.5"},
          Case{"\"Focal Point\": 20.123456789012345", " --focal-point 20.123456789012344"},
          Case{"\"Aspect Ratio\": -0.5", " --aspect-ratio=-0.5"},
          Case{"\"Invert Control\": true", " --invert-control on"},
          Case{R"("Focal Point": [{"frame": 1, "value": 20}, {"frame": 24, "value": 70, "key": "smooth"}])",
               " --focal-point 1:20,24:70:smooth"}}) {
        EXPECT_EQ(looks.command(looks.parse(state(parameters))),
                  R"(perch render -i 'it'\''s.####.png' -o out.####.png)" + std::string(options));
    }
}

TEST(LookTest, TheCommandsValuesAreThoseOfTheLook) {
    const LookReader looks = reader();
    for (const double value : {0.1, 33.3, 1.0 / 3, 99.99999999, 1e-7, 62.0}) {
        const Look look = looks.parse(state("\"Focal Point\": " + nlohmann::json(value).dump()));
        const std::vector<std::string> words = looks.words(look);
        const ParameterOption& option = looks.parameters()[3];
        ASSERT_EQ(option.name, "focal-point");
        EXPECT_EQ(parseCurve(option.parameter, "", words.back()), look.curves.front()) << value;
    }
}

TEST(LookTest, AStateIsReadBack) {
    const LookReader looks = reader();
    const Look look = looks.parse(state(
        R"("Focal Point": [{"frame": 1, "value": 20}, {"frame": 3, "value": 70}], "Maximum Blur": 33)"));
    const auto json = looks.json(look);
    EXPECT_EQ(json["parameters"]["Focal Point"], 45);
    EXPECT_EQ(json["parameters"]["Maximum Blur"], 33);
    EXPECT_EQ(json["parameters"]["Invert Control"], false);
    EXPECT_EQ(json["parameters"]["Blur Type"], "Coarse");
    EXPECT_EQ(json["frame"], 2);
    EXPECT_EQ(looks.parse(json.dump()).curves, look.curves);
}

TEST(LookTest, APresetHoldsTheLook) {
    const LookReader looks = reader();
    const Look look = looks.parse(state("\"Focal Point\": 40.5, \"Blur Type\": \"Fine\""));
    const Look empty = looks.parse(state(""));
    EXPECT_EQ(looks.withPreset(empty, looks.presetText(look)).curves, look.curves);
    EXPECT_THROW(looks.withPreset(empty, "{\"focal-piont\": 1}"), UsageError);
    EXPECT_THROW(looks.withPreset(empty, "no JSON"), UsageError);
}

TEST(LookTest, WhatIsNotUnderstoodIsNamed) {
    const LookReader looks = reader();
    struct Case {
        std::string text;
        const char* named;
    };
    for (const auto& [text, named] :
         {Case{"", "JSON"}, Case{"[]", "JSON"}, Case{"{\"frame\": 1}", "serial"},
          Case{state("", "\"serial\": 1.5, \"frame\": 1"), "serial"},
          Case{state("", "\"serial\": 1, \"frame\": 7"), "no frame 7"},
          Case{"{\"serial\": 1, \"frame\": 1}", "parameters"},
          Case{state("\"Focal Pont\": 1"), "Focal Point"},
          Case{state("\"Focal Point\": 101"), "from 0 to 100"},
          Case{state("\"Focal Point\": null"), "from 0 to 100"},
          Case{state("\"Blur Type\": \"Fin\""), "Coarse"},
          Case{state("\"Control Layer\": \"/etc/passwd\""), "no parameter \"Control Layer\""}}) {
        try {
            looks.parse(text);
            ADD_FAILURE() << text;
        } catch (const UsageError& error) {
            EXPECT_NE(std::string(error.what()).find(named), std::string::npos) << error.what();
        }
    }
}

}  // namespace
}  // namespace perch::test
