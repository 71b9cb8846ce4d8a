// When an effect is rendered by rectangles, and what it may write into.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Error.h"
#include "ScriptedEffect.h"
#include "Sequence.h"
#include "SmartScript.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct SmartChoiceTest : testing::Test {
    ScriptedEffect script;
    World input = noise<PF_Pixel>(5, 4, 1);
    FrameRequest request;
    std::vector<std::string> seen;

    SmartChoiceTest() {
        script.declareFlags(0, PF_OutFlag2_SUPPORTS_SMART_RENDER);
        script.on(PF_Cmd_SMART_PRE_RENDER, promiseInput);
        script.on(PF_Cmd_SMART_RENDER, invertInput<PF_Pixel>);
        request.input = &input;
    }
    // Every command goes to `seen`.
    HostOptions watchedOptions() {
        HostOptions options = strictOptions();
        options.onCommand = [this](std::string_view command) { seen.emplace_back(command); };
        return options;
    }
    void copyAtRender() {
        script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
            return call.utilities().copy(call.in->effect_ref, &call.params[0]->u.ld, call.output, nullptr,
                                         nullptr);
        });
    }
};

TEST_F(SmartChoiceTest, AutoTakesTheSmartWayOnceRenderHasBeenDeclined) {
    Effect effect(ScriptedEffect::enter, {}, watchedOptions());
    Sequence sequence(effect);
    seen.clear();
    sequence.render(request);
    sequence.render(request);
    EXPECT_THAT(seen, ElementsAre("FRAME_SETUP", "RENDER", "FRAME_SETDOWN", "SMART_PRE_RENDER",
                                  "SMART_RENDER", "SMART_PRE_RENDER", "SMART_RENDER"));
}

TEST_F(SmartChoiceTest, AutoPrefersRender) {
    copyAtRender();
    Effect effect(ScriptedEffect::enter, {}, watchedOptions());
    Sequence sequence(effect);
    seen.clear();
    sequence.render(request);
    EXPECT_THAT(seen, ElementsAre("FRAME_SETUP", "RENDER", "FRAME_SETDOWN"));
    seen.clear();
    request.smart = SmartUse::On;
    sequence.render(request);
    EXPECT_THAT(seen, ElementsAre("SMART_PRE_RENDER", "SMART_RENDER"));
}

TEST_F(SmartChoiceTest, EffectThatMayWriteItsInputWritesACopy) {
    script.declareFlags(PF_OutFlag_I_WRITE_INPUT_BUFFER, PF_OutFlag2_SUPPORTS_SMART_RENDER);
    script.on(PF_Cmd_SMART_RENDER, [](const EffectCall& call) {
        PF_EffectWorld* pixels = nullptr;
        PF_EffectWorld* output = nullptr;
        EXPECT_EQ(renderExtra(call).cb->checkout_layer_pixels(call.in->effect_ref, 0, &pixels), 0);
        EXPECT_EQ(renderExtra(call).cb->checkout_output(call.in->effect_ref, &output), 0);
        pixels->data->red ^= 0xFF;
        return renderExtra(call).cb->checkin_layer_pixels(call.in->effect_ref, 0);
    });
    request.smart = SmartUse::On;
    const std::uint64_t given = input.checksum();
    for (const bool isStrict : {false, true}) {
        HostOptions options;
        options.strict = isStrict;
        Effect effect(ScriptedEffect::enter, {}, options);
        Sequence(effect).render(request);
        EXPECT_EQ(input.checksum(), given);
        EXPECT_THAT(faults(effect), IsEmpty());
    }
}

TEST_F(SmartChoiceTest, TablesThatAnEffectWritesIntoAreWholeForTheNextFrame) {
    script.on(PF_Cmd_SMART_PRE_RENDER, [](const EffectCall& call) {
        const PF_Err code = promiseInput(call);
        preExtra(call).cb->checkout_layer = nullptr;
        return code;
    });
    script.on(PF_Cmd_SMART_RENDER, [](const EffectCall& call) {
        const PF_Err code = invertInput<PF_Pixel>(call);
        renderExtra(call).cb->checkout_output = nullptr;
        return code;
    });
    request.smart = SmartUse::On;
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    sequence.render(request);
    EXPECT_THAT(faults(effect), ElementsAre("SMART_PRE_RENDER: a table of callbacks was changed",
                                            "SMART_RENDER: a table of callbacks was changed"));
    sequence.render(request);
}

TEST_F(SmartChoiceTest, WhatTheEffectDoesNotHaveIsRefusedInWords) {
    const auto wordsOf = [&] {
        try {
            Effect effect(ScriptedEffect::enter, {}, strictOptions());
            Sequence(effect).render(request);
        } catch (const Error& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    request.smart = SmartUse::Off;
    EXPECT_THAT(wordsOf(), HasSubstr("--smart auto"));
    const World floats(5, 4, PixelDepth::Float);
    request.smart = SmartUse::Auto;
    request.input = &floats;
    EXPECT_THAT(wordsOf(), HasSubstr("floating-point"));
    request.input = &input;
    script.declareFlags(0);
    request.smart = SmartUse::On;
    EXPECT_THAT(wordsOf(), HasSubstr("does not declare smart rendering"));
}

}  // namespace
}  // namespace perch::test
