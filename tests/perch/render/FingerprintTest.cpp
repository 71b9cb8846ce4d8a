#include "Fingerprint.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "PictureFiles.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

constexpr PF_ParamIndex kMatte = 2;

// What a frame is made from.
struct Sources {
    explicit Sources(const std::filesystem::path& folder) : folder(folder) {}

    const std::filesystem::path folder;
    RenderSettings settings;
    FramePlan plan{
        .isSequence = true,
        .frames = {{.frame = 2, .input = folder / "in.2.png", .output = "out.2.png", .layers = {}}},
        .firstFrame = 1,
        .lastFrame = 3,
        .stillLayers = {},
        .firstLayers = {{kMatte, folder / "matte.1.exr"}}};
    std::vector<ParameterCurve> parameters{{1, {{1, {10}}, {3, {30}}}}};
    std::string maker = "perch 1, Effect 1";
    bool mayChangeValues = false;

    std::string fingerprint() const {
        return frameFingerprint({.plan = plan,
                                 .settings = settings,
                                 .parameters = parameters,
                                 .mayChangeValues = mayChangeValues,
                                 .maker = maker},
                                plan.frames.front());
    }
};

TEST(FingerprintTest, WhateverChangesPixelsOrBytesChangesIt) {
    struct Case {
        const char* name;
        std::function<void(Sources&)> change;
    };
    const Case cases[] = {
        {"another maker", [](auto& of) { of.maker = "perch 2, Effect 1"; }},
        {"another input", [](auto& of) { of.plan.frames[0].input = of.folder / "other.png"; }},
        {"a value", [](auto& of) { of.parameters[0].keys[0].numbers = {12}; }},
        {"16 bits", [](auto& of) { of.settings.depth = Depth::Bits16; }},
        {"floats written", [](auto& of) { of.settings.outputType = pictures::SampleType::Float; }},
        {"log", [](auto& of) { of.settings.transfer = pictures::Transfer::Log; }},
        {"draft quality", [](auto& of) { of.settings.quality = PF_Quality_LO; }},
        {"smart rendering", [](auto& of) { of.settings.smart = SmartUse::Off; }},
        {"downsampled 2/1",
         [](auto& of) {
             of.settings.downsample = {2, 1};
         }},
        {"downsampled 1/2",
         [](auto& of) {
             of.settings.downsample = {1, 2};
         }},
        {"made smaller", [](auto& of) { of.settings.resizes = true; }},
        {"PNG compression", [](auto& of) { of.settings.encoding.compression = 7; }},
        {"EXR compression", [](auto& of) { of.settings.encoding.openExrCompression = "piz"; }},
        {"JPEG quality", [](auto& of) { of.settings.encoding.jpegQuality = 77; }},
        {"provenance", [](auto& of) { of.settings.encoding.software = "perch 1"; }},
        {"dither", [](auto& of) { of.settings.isDithered = true; }},
        {"damaged input", [](auto& of) { of.settings.reading.acceptsDamage = true; }},
        {"a layer", [](auto& of) { of.plan.frames[0].layers[kMatte] = of.folder / "matte.2.exr"; }},
        {"a layer for all frames", [](auto& of) { of.plan.stillLayers[kMatte] = of.folder / "matte.exr"; }},
        {"a layer without a picture", [](auto& of) { of.plan.frames[0].missingLayers = {kMatte}; }},
        {"another layer without one", [](auto& of) { of.plan.frames[0].missingLayers = {kMatte + 1}; }},
        {"a layer of the input", [](auto& of) { of.settings.selectedInput = "beauty"; }},
        {"another layer of the input", [](auto& of) { of.settings.selectedInput = "fog"; }},
        {"a channel", [](auto& of) { of.settings.layers[kMatte].selected = "Z"; }},
        {"a range",
         [](auto& of) {
             of.settings.layers[kMatte].range = {1, 9, false};
         }},
        {"a range from the other end",
         [](auto& of) {
             of.settings.layers[kMatte].range = {9, 1, false};
         }},
        {"a reciprocal range",
         [](auto& of) {
             of.settings.layers[kMatte].range = {1, 9, true};
         }},
        {"the usual range", [](auto& of) { of.settings.layers[kMatte].hasUsualRange = true; }},
        {"the usual range, found in another file",
         [](auto& of) {
             of.settings.layers[kMatte].hasUsualRange = true;
             of.plan.firstLayers[kMatte] = of.folder / "other.exr";
         }},
        {"values that the effect may change", [](auto& of) { of.mayChangeValues = true; }},
        {"such values, and another first frame",
         [](auto& of) {
             of.mayChangeValues = true;
             of.plan.firstFrame = 2;
         }},
    };
    const TemporaryFolder folder;
    for (const char* const file :
         {"in.2.png", "other.png", "matte.1.exr", "matte.2.exr", "matte.exr", "other.exr"})
        writeBytes(folder / file, file);
    std::map<std::string, std::string> known{{Sources(folder / "").fingerprint(), "nothing"}};
    for (const auto& [name, change] : cases) {
        Sources sources(folder / "");
        change(sources);
        const auto [other, isNew] = known.try_emplace(sources.fingerprint(), name);
        EXPECT_TRUE(isNew) << name << " has the fingerprint of " << other->second;
    }
}

TEST(FingerprintTest, WhatChangesNoBytesDoesNotChangeIt) {
    Sources sources(".");
    sources.settings.framesAhead = 9;
    sources.settings.retries = 3;
    sources.settings.goesOn = true;
    sources.plan.lastFrame = 100;
    sources.plan.frames[0].output = "elsewhere.png";
    EXPECT_EQ(sources.fingerprint(), Sources(".").fingerprint());
}

TEST(FingerprintTest, ItStandsBehindTheProgramsName) {
    const std::string software = withFingerprint("perch 1.0.0, Effect: --text \" [12]\"", "0123456789abcdef");
    EXPECT_EQ(software, "perch 1.0.0 [0123456789abcdef], Effect: --text \" [12]\"");
    EXPECT_EQ(fingerprintIn(software), "0123456789abcdef");
    for (const char* const other : {"", "perch 1.0.0, Effect", "a [0123456789abcdeg]", "a [0123456789abcde]",
                                    "a [0123456789abcdef", "a [0123456789abcdef0]", "a ["})
        EXPECT_EQ(fingerprintIn(other), "") << other;
    EXPECT_EQ(withFingerprint("", "0123456789abcdef"), "");
}

}  // namespace
}  // namespace perch::test
