// The order of an effect's life, and the data that it carries from command to command.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "ScriptedEffect.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CommandOrderTest : testing::Test {
    ScriptedEffect script;
    std::vector<std::string> commands;
    World picture{4, 3, false};
    FrameRequest request;

    CommandOrderTest() { request.input = &picture; }

    HostOptions recordingOptions() {
        HostOptions options = strictOptions();
        options.onCommand = [this](std::string_view command) { commands.emplace_back(command); };
        return options;
    }
};

TEST_F(CommandOrderTest, OneFrameGoesThroughTheWholeLife) {
    {
        Effect effect(ScriptedEffect::enter, {}, recordingOptions());
        Sequence sequence(effect);
        sequence.render(request);
    }
    EXPECT_THAT(commands, ElementsAre("GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_SETUP", "FRAME_SETUP",
                                      "RENDER", "FRAME_SETDOWN", "SEQUENCE_SETDOWN", "GLOBAL_SETDOWN"));
}

TEST_F(CommandOrderTest, SavingFlattensAndGoesOn) {
    script.declareFlags(PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING);
    {
        Effect effect(ScriptedEffect::enter, {}, recordingOptions());
        Sequence sequence(effect);
        sequence.flatten();
    }
    EXPECT_THAT(commands, ElementsAre("GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_SETUP", "SEQUENCE_FLATTEN",
                                      "SEQUENCE_RESETUP", "SEQUENCE_SETDOWN", "GLOBAL_SETDOWN"));
}

TEST_F(CommandOrderTest, LoadingSetsUpAgainInsteadOfSettingUp) {
    {
        Effect effect(ScriptedEffect::enter, {}, recordingOptions());
        Sequence sequence(effect, {});
    }
    EXPECT_THAT(commands, ElementsAre("GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_RESETUP", "SEQUENCE_SETDOWN",
                                      "GLOBAL_SETDOWN"));
}

TEST_F(CommandOrderTest, FramesMayBeNested) {
    {
        Effect effect(ScriptedEffect::enter, {}, recordingOptions());
        Sequence sequence(effect);
        Frame outer(sequence, request);
        Frame inner(sequence, request);
        inner.render();
        inner.finish();
        outer.render();
    }
    EXPECT_THAT(commands, ElementsAre("GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_SETUP", "FRAME_SETUP",
                                      "FRAME_SETUP", "RENDER", "FRAME_SETDOWN", "RENDER", "FRAME_SETDOWN",
                                      "SEQUENCE_SETDOWN", "GLOBAL_SETDOWN"));
}

TEST_F(CommandOrderTest, OneEffectAtATimePerProcess) {
    const Effect effect(ScriptedEffect::enter, {}, strictOptions());
    EXPECT_THROW(Effect(ScriptedEffect::enter, {}, strictOptions()), Error);
}

// An effect that keeps a number in a handle of each level, and counts the commands that find it there.
struct CarryOverTest : CommandOrderTest {
    int globalSeen = 0;
    int sequenceSeen = 0;
    int frameSeen = 0;

    static PF_Handle makeHandle(const EffectCall& call, A_u_char content) {
        const PF_Handle handle = call.utilities().host_new_handle(1);
        **handle = static_cast<A_char>(content);
        return handle;
    }
    static bool holds(PF_Handle handle, A_u_char content) {
        return handle != nullptr && static_cast<A_u_char>(**handle) == content;
    }
    static PF_Err dispose(const EffectCall& call, PF_Handle PF_InData::*given, PF_Handle PF_OutData::*left) {
        call.utilities().host_dispose_handle(call.in->*given);
        call.in->*given = nullptr;
        call.out->*left = nullptr;
        return PF_Err_NONE;
    }

    CarryOverTest() {
        script.on(PF_Cmd_GLOBAL_SETUP, [](const EffectCall& call) {
            call.out->global_data = makeHandle(call, 11);
            return PF_Err_NONE;
        });
        script.on(PF_Cmd_SEQUENCE_SETUP, [](const EffectCall& call) {
            call.out->sequence_data = makeHandle(call, 22);
            return PF_Err_NONE;
        });
        script.on(PF_Cmd_FRAME_SETUP, [](const EffectCall& call) {
            call.out->frame_data = makeHandle(call, 33);
            return PF_Err_NONE;
        });
        script.on(PF_Cmd_RENDER, [this](const EffectCall& call) {
            globalSeen += holds(call.in->global_data, 11) && holds(call.out->global_data, 11) ? 1 : 0;
            sequenceSeen += holds(call.in->sequence_data, 22) && holds(call.out->sequence_data, 22) ? 1 : 0;
            frameSeen += holds(call.in->frame_data, 33) && holds(call.out->frame_data, 33) ? 1 : 0;
            return PF_Err_NONE;
        });
        script.on(PF_Cmd_FRAME_SETDOWN, [](const EffectCall& call) {
            return dispose(call, &PF_InData::frame_data, &PF_OutData::frame_data);
        });
        script.on(PF_Cmd_SEQUENCE_SETDOWN, [](const EffectCall& call) {
            return dispose(call, &PF_InData::sequence_data, &PF_OutData::sequence_data);
        });
        script.on(PF_Cmd_GLOBAL_SETDOWN, [](const EffectCall& call) {
            return dispose(call, &PF_InData::global_data, &PF_OutData::global_data);
        });
    }
};

TEST_F(CarryOverTest, HandlesOfEveryLevelComeBackInBothRecords) {
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    {
        Sequence sequence(effect);
        sequence.render(request);
        sequence.render(request);
    }
    effect.close();
    EXPECT_EQ(globalSeen, 2);
    EXPECT_EQ(sequenceSeen, 2);
    EXPECT_EQ(frameSeen, 2);
    EXPECT_THAT(faults(effect), IsEmpty());
}

TEST_F(CarryOverTest, NestedFramesKeepTheirOwnData) {
    script.on(PF_Cmd_FRAME_SETUP, [](const EffectCall& call) {
        call.out->frame_data = makeHandle(call, static_cast<A_u_char>(call.in->current_time));
        return PF_Err_NONE;
    });
    std::vector<int> rendered;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        rendered.push_back(**call.in->frame_data);
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    request.time = 1;
    Frame outer(sequence, request);
    request.time = 2;
    Frame inner(sequence, request);
    outer.render();
    inner.render();
    EXPECT_THAT(rendered, ElementsAre(1, 2));
}

TEST_F(CarryOverTest, HostWithoutFrameDataGivesNone) {
    HostOptions options = strictOptions();
    options.strict = false;
    options.keepsFrameData = false;
    script.on(PF_Cmd_FRAME_SETDOWN, [](const EffectCall&) { return PF_Err_NONE; });
    Effect effect(ScriptedEffect::enter, {}, options);
    Sequence sequence(effect);
    sequence.render(request);
    EXPECT_EQ(frameSeen, 0);
    EXPECT_EQ(sequenceSeen, 1);
}

TEST_F(CarryOverTest, FlattenedBytesComeBackToTheLoadedSequence) {
    script.declareFlags(0);
    std::vector<int> loaded;
    script.on(PF_Cmd_SEQUENCE_RESETUP, [&](const EffectCall& call) {
        loaded.push_back(**call.in->sequence_data);
        loaded.push_back(static_cast<int>(call.utilities().host_get_handle_size(call.in->sequence_data)));
        return PF_Err_NONE;
    });
    script.on(PF_Cmd_GLOBAL_SETDOWN, [](const EffectCall&) { return PF_Err_NONE; });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    {
        std::vector<std::byte> saved;
        {
            Sequence sequence(effect);
            saved = sequence.flatten();
        }
        Sequence restored(effect, saved);
    }
    effect.close();
    EXPECT_THAT(loaded, ElementsAre(22, 1, 22, 1));
    EXPECT_THAT(faults(effect), IsEmpty());
}

TEST_F(CarryOverTest, FlatBytesThatTheEffectReplacesAreFreedByTheHost) {
    script.declareFlags(PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING);
    script.on(PF_Cmd_SEQUENCE_FLATTEN, [](const EffectCall& call) {
        call.utilities().host_dispose_handle(call.in->sequence_data);
        call.out->sequence_data = makeHandle(call, 44);
        return PF_Err_NONE;
    });
    script.on(PF_Cmd_SEQUENCE_RESETUP, [](const EffectCall& call) {
        call.out->sequence_data = makeHandle(call, 22);
        return PF_Err_NONE;
    });
    script.on(PF_Cmd_GLOBAL_SETDOWN, [](const EffectCall&) { return PF_Err_NONE; });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    {
        Sequence sequence(effect);
        EXPECT_THAT(sequence.flatten(), ElementsAre(std::byte{44}));
        sequence.render(request);
    }
    effect.close();
    EXPECT_EQ(sequenceSeen, 1);
    EXPECT_THAT(faults(effect), IsEmpty());
}

TEST_F(CommandOrderTest, FrameIsDescribedToTheEffect) {
    PF_InData seen{};
    A_long layerWidth = 0;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        seen = *call.in;
        layerWidth = call.params[0]->u.ld.width;
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    request.time = 48;
    request.timeScale = 24;
    request.downsampleX = {1, 2};
    request.downsampleY = {1, 3};
    request.outputWidth = 6;
    request.outputOriginX = 1;
    const RenderedFrame frame = sequence.render(request);
    EXPECT_EQ(seen.current_time, 48);
    EXPECT_EQ(seen.time_scale, 24U);
    EXPECT_EQ(seen.width, 8);
    EXPECT_EQ(seen.height, 9);
    EXPECT_EQ(seen.downsample_x.den, 2U);
    EXPECT_EQ(seen.downsample_y.den, 3U);
    EXPECT_EQ(seen.output_origin_x, 1);
    EXPECT_EQ(seen.extent_hint.right, 6);
    EXPECT_EQ(seen.num_params, 1);
    EXPECT_EQ(seen.version.major, 13);
    EXPECT_EQ(seen.version.minor, 29);
    EXPECT_EQ(layerWidth, 4);
    EXPECT_EQ(frame.picture.width(), 6);
    EXPECT_EQ(frame.picture.height(), 3);
}

TEST_F(CommandOrderTest, FullSizeThatNoNumberHoldsIsTheLargest) {
    PF_InData seen{};
    PF_ParamDef point{};
    PF_ParamDef corner = parameterOfType(PF_Param_POINT, "Corner");
    corner.u.td.x_dephault = corner.u.td.y_dephault = 100 << 16;  // percent
    script.declareParameters({corner});
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        seen = *call.in;
        point = *call.params[1];
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    request.downsampleX = {1, std::numeric_limits<A_u_long>::max()};
    request.downsampleY = {1, 100'000};
    sequence.render(request);
    EXPECT_EQ(seen.width, std::numeric_limits<A_long>::max());
    EXPECT_EQ(seen.height, 300'000);
    // Places are those of the picture, in 16.16 fixed point, which ends below 32768 pixels.
    EXPECT_EQ(point.u.td.x_value, 4 << 16);
    EXPECT_EQ(point.u.td.y_value, 3 << 16);
    const ParameterValues far = effect.defaultValues(40'000, 3);
    EXPECT_EQ(far[1].u.td.x_value, std::numeric_limits<PF_Fixed>::max());
}

TEST_F(CommandOrderTest, EffectThatExpandsItsOutputGetsTheSizeItAskedFor) {
    script.declareFlags(PF_OutFlag_I_EXPAND_BUFFER);
    script.on(PF_Cmd_FRAME_SETUP, [](const EffectCall& call) {
        call.out->width = call.output->width + 10;
        call.out->height = call.output->height + 20;
        call.out->origin = {5, 10};
        return PF_Err_NONE;
    });
    PF_Point origin{};
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        origin = {call.in->output_origin_x, call.in->output_origin_y};
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    const RenderedFrame frame = sequence.render(request);
    EXPECT_EQ(frame.picture.width(), 14);
    EXPECT_EQ(frame.picture.height(), 23);
    EXPECT_EQ(frame.origin.h, 5);
    EXPECT_EQ(origin.v, 10);
    EXPECT_THAT(faults(effect), IsEmpty());
}

}  // namespace
}  // namespace perch::test
