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
    return {options,
            defaults,
            {1, 2, 3, 24},
            {.words = {"perch", "render", "-i", "it's.####.png", "-o", "out.####.png"}}};
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

TEST(LookTest, ValuesThatAreNestedTooDeeplyAreRefused) {
    constexpr std::size_t kLevels = 100'000;
    const LookReader looks = reader();
    const std::string array = std::string(kLevels, '[') + std::string(kLevels, ']');
    std::string object;
    for (std::size_t i = 0; i < kLevels; ++i)
        object += "{\"a\":";
    object += '0' + std::string(kLevels, '}');
    for (const std::string& value : {array, object}) {
        EXPECT_THROW(looks.parse(value), UsageError);
        EXPECT_THROW(looks.parse(state("\"Focal Point\": " + value)), UsageError);
        EXPECT_THROW(looks.withPreset({}, "{\"focal-point\": " + value + "}"), UsageError);
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

ParameterOption layer(PF_ParamIndex index, const std::string& name) {
    ParameterOption option{name, {}, name + "-range", name + "-offset"};
    option.parameter.index = index;
    option.parameter.name = name;
    option.parameter.definition.param_type = PF_Param_LAYER;
    return option;
}

TEST(LookTest, ALayerShowsOneOfThePicturesThatAreGiven) {
    const std::vector<LayerWords> given{
        {.index = 1, .picture = "z.#.exr:Z", .range = "-1.5:-16", .offset = "-1000"},
        {.index = 2, .picture = "none"},
        {.index = 3, .picture = "matte.png"}};
    const LookReader looks({layer(1, "depth"), layer(2, "mask"), layer(3, "matte"), layer(4, "grain")}, {},
                           {1}, {.words = {"render"}, .layers = given});
    struct Case {
        const char* layers;
        const char* command;
    };
    for (const auto& [layers, command] :
         {Case{
              "",
              " --depth z.#.exr:Z --depth-range=-1.5:-16 --depth-offset=-1000 --mask none --matte matte.png"},
          Case{R"("depth": "none", "matte": "none")", " --depth none --mask none --matte none"},
          Case{R"("depth": "matte.png", "matte": "none", "grain": "z.#.exr:Z")",
               " --depth matte.png --mask none --matte none --grain z.#.exr:Z --grain-range=-1.5:-16 "
               "--grain-offset=-1000"}}) {
        const Look look =
            looks.parse("{\"serial\": 1, \"frame\": 1, \"parameters\": {" + std::string(layers) + "}}");
        EXPECT_EQ(looks.command(look), "render" + std::string(command));
        EXPECT_EQ(looks.parse(looks.json(look).dump()).layers, look.layers);
    }
}

TEST(LookTest, ALayerKeepsItsOwnRangeWhereAnotherHasTheSameFile) {
    const LookReader looks({layer(1, "depth"), layer(2, "fog")}, {}, {1},
                           {.words = {"render"},
                            .layers = {{.index = 1, .picture = "z.exr:Z", .range = "1:2"},
                                       {.index = 2, .picture = "z.exr:Z", .range = "3:4"}}});
    const Look look =
        looks.parse(R"({"serial": 1, "frame": 1, "parameters": {"depth": "z.exr:Z", "fog": "z.exr:Z"}})");
    EXPECT_EQ(looks.command(look), "render --depth z.exr:Z --depth-range 1:2 --fog z.exr:Z --fog-range 3:4");
    EXPECT_TRUE(look.layers.empty());
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
          Case{state("\"Control Layer\": \"/etc/passwd\""), "\"Control Layer\" takes one of"},
          Case{state("\"Control Layer\": 1"), "gives to layers: none"}}) {
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
