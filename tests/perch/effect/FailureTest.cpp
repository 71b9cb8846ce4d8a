// What becomes of errors: how they are told, and that everything set up is torn down all the same.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "ScriptedEffect.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct FailureTest : testing::Test {
    ScriptedEffect script;
    std::vector<std::string> commands;
    World picture{4, 3, false};
    FrameRequest request;

    FailureTest() {
        request.input = &picture;
        request.frame = 12;
    }

    HostOptions options() {
        HostOptions options = strictOptions();
        options.onCommand = [this](std::string_view command) { commands.emplace_back(command); };
        return options;
    }
    void failAt(PF_Cmd command, PF_Err code, const char* message = "") {
        script.on(command, [code, message](const EffectCall& call) {
            std::strcpy(call.out->return_msg, message);
            return code;
        });
    }
    // The text of what a whole life throws; empty when it throws nothing.
    std::string liveOnce() {
        try {
            Effect effect(ScriptedEffect::enter, {}, options());
            Sequence sequence(effect);
            sequence.render(request);
        } catch (const Error& error) {
            return error.what();
        }
        return {};
    }
};

struct FailingCommand {
    PF_Cmd command;
    const char* error;
    std::vector<std::string> commands;
};

class FailingCommandTest : public FailureTest, public testing::WithParamInterface<FailingCommand> {};

TEST_P(FailingCommandTest, TearsDownWhatWasSetUp) {
    failAt(GetParam().command, PF_Err_INTERNAL_STRUCT_DAMAGED, "no luck");
    EXPECT_EQ(liveOnce(), GetParam().error);
    EXPECT_EQ(commands, GetParam().commands);
}

INSTANTIATE_TEST_SUITE_P(
    EachCommand, FailingCommandTest,
    testing::Values(FailingCommand{PF_Cmd_GLOBAL_SETUP,
                                   "plug-in returned 512 at GLOBAL_SETUP: \"no luck\"",
                                   {"GLOBAL_SETUP"}},
                    FailingCommand{PF_Cmd_PARAMS_SETUP,
                                   "plug-in returned 512 at PARAMS_SETUP: \"no luck\"",
                                   {"GLOBAL_SETUP", "PARAMS_SETUP", "GLOBAL_SETDOWN"}},
                    FailingCommand{PF_Cmd_SEQUENCE_SETUP,
                                   "plug-in returned 512 at SEQUENCE_SETUP: \"no luck\"",
                                   {"GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_SETUP", "GLOBAL_SETDOWN"}},
                    FailingCommand{PF_Cmd_FRAME_SETUP,
                                   "frame 12: plug-in returned 512 at FRAME_SETUP: \"no luck\"",
                                   {"GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_SETUP", "FRAME_SETUP",
                                    "SEQUENCE_SETDOWN", "GLOBAL_SETDOWN"}},
                    FailingCommand{PF_Cmd_RENDER,
                                   "frame 12: plug-in returned 512 at RENDER: \"no luck\"",
                                   {"GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_SETUP", "FRAME_SETUP", "RENDER",
                                    "FRAME_SETDOWN", "SEQUENCE_SETDOWN", "GLOBAL_SETDOWN"}},
                    FailingCommand{PF_Cmd_FRAME_SETDOWN,
                                   "frame 12: plug-in returned 512 at FRAME_SETDOWN: \"no luck\"",
                                   {"GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_SETUP", "FRAME_SETUP", "RENDER",
                                    "FRAME_SETDOWN", "SEQUENCE_SETDOWN", "GLOBAL_SETDOWN"}}),
    [](const auto& test) { return "Command" + std::to_string(test.param.command); });

TEST_F(FailureTest, FailedSetUpThatLeftDataIsSetDown) {
    const auto leaveData = [](PF_Handle PF_OutData::*field) {
        return [field](const EffectCall& call) {
            call.out->*field = call.utilities().host_new_handle(8);
            return PF_Err{PF_Err_OUT_OF_MEMORY};
        };
    };
    script.on(PF_Cmd_FRAME_SETUP, leaveData(&PF_OutData::frame_data));
    EXPECT_THAT(liveOnce(), HasSubstr("FRAME_SETUP"));
    EXPECT_THAT(commands, ElementsAre("GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_SETUP", "FRAME_SETUP",
                                      "FRAME_SETDOWN", "SEQUENCE_SETDOWN", "GLOBAL_SETDOWN"));
    commands.clear();
    script.on(PF_Cmd_SEQUENCE_SETUP, leaveData(&PF_OutData::sequence_data));
    EXPECT_THAT(liveOnce(), HasSubstr("SEQUENCE_SETUP"));
    EXPECT_THAT(commands, ElementsAre("GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_SETUP", "SEQUENCE_SETDOWN",
                                      "GLOBAL_SETDOWN"));
    commands.clear();
    script.on(PF_Cmd_GLOBAL_SETUP, leaveData(&PF_OutData::global_data));
    EXPECT_THAT(liveOnce(), HasSubstr("GLOBAL_SETUP"));
    EXPECT_THAT(commands, ElementsAre("GLOBAL_SETUP", "GLOBAL_SETDOWN"));
}

TEST_F(FailureTest, FailedResetUpFreesTheSavedBytesAndSetsNothingDown) {
    failAt(PF_Cmd_SEQUENCE_RESETUP, PF_Err_INTERNAL_STRUCT_DAMAGED);
    Effect effect(ScriptedEffect::enter, {}, options());
    EXPECT_THROW(Sequence(effect, {std::byte{1}, std::byte{2}}), EffectError);
    effect.close();
    EXPECT_THAT(commands, ElementsAre("GLOBAL_SETUP", "PARAMS_SETUP", "SEQUENCE_RESETUP", "GLOBAL_SETDOWN"));
    EXPECT_THAT(faults(effect), IsEmpty());
}

TEST_F(FailureTest, EffectThatMayWriteItsInputWritesACopy) {
    script.declareFlags(PF_OutFlag_I_WRITE_INPUT_BUFFER);
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        std::memset(call.params[0]->u.ld.data, 0x5A, 4);
        return PF_Err{PF_Err_NONE};
    });
    const std::uint64_t before = request.input->checksum();
    Effect effect(ScriptedEffect::enter, {}, HostOptions{});
    Sequence(effect).render(request);
    EXPECT_EQ(request.input->checksum(), before);
}

TEST_F(FailureTest, WorldsAreUpTo30000PixelsWideAndHigh) {
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        const auto make = [&](A_long width, A_long height) {
            PF_EffectWorld world{};
            const PF_Err error = call.utilities().new_world(call.in->effect_ref, width, height, 0, &world);
            if (error == PF_Err_NONE) call.utilities().dispose_world(call.in->effect_ref, &world);
            return error;
        };
        EXPECT_EQ(make(30000, 1), PF_Err_NONE);
        EXPECT_EQ(make(1, 30000), PF_Err_NONE);
        EXPECT_NE(make(30001, 1), PF_Err_NONE);
        EXPECT_NE(make(1, 30001), PF_Err_NONE);
        return PF_Err{PF_Err_NONE};
    });
    Effect effect(ScriptedEffect::enter, {}, HostOptions{});
    Sequence(effect).render(request);
}

TEST_F(FailureTest, SuiteIsReleasedAsOftenAsItWasAcquired) {
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        const void* suite = nullptr;
        SPBasicSuite& basic = *call.in->pica_basicP;
        EXPECT_EQ(basic.AcquireSuite("PF World Suite", 2, &suite), 0);
        EXPECT_EQ(basic.ReleaseSuite("PF World Suite", 2), 0);
        EXPECT_NE(basic.ReleaseSuite("PF World Suite", 2), 0);
        return PF_Err{PF_Err_NONE};
    });
    Effect effect(ScriptedEffect::enter, {}, HostOptions{});
    Sequence(effect).render(request);
}

TEST_F(FailureTest, NextFrameRendersAfterAFailedOne) {
    int renders = 0;
    script.on(PF_Cmd_RENDER, [&](const EffectCall&) {
        return ++renders == 1 ? PF_Err{PF_Err_OUT_OF_MEMORY} : PF_Err{PF_Err_NONE};
    });
    Effect effect(ScriptedEffect::enter, {}, options());
    Sequence sequence(effect);
    EXPECT_THROW(sequence.render(request), EffectError);
    EXPECT_NO_THROW(sequence.render(request));
}

TEST_F(FailureTest, FailureTellsCommandFrameCodeAndMessage) {
    failAt(PF_Cmd_RENDER, 4, "short of memory");
    Effect effect(ScriptedEffect::enter, {}, options());
    Sequence sequence(effect);
    try {
        sequence.render(request);
        FAIL() << "the failed render was taken for a good one";
    } catch (const EffectError& error) {
        EXPECT_EQ(error.command, "RENDER");
        EXPECT_EQ(error.code, 4);
        EXPECT_EQ(error.frame, 12);
        EXPECT_EQ(error.message, "short of memory");
    }
}

TEST_F(FailureTest, MessageFlaggedAsAnErrorIsOneWithoutACode) {
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        std::strcpy(call.out->return_msg, "no licence");
        call.out->out_flags = PF_OutFlag_DISPLAY_ERROR_MESSAGE;
        return PF_Err_NONE;
    });
    EXPECT_EQ(liveOnce(), "frame 12: plug-in reported a failure at RENDER: \"no licence\"");
}

TEST_F(FailureTest, PlainMessageIsPassedOn) {
    failAt(PF_Cmd_SEQUENCE_SETUP, PF_Err_NONE, "hello");
    HostOptions options = strictOptions();
    std::string told;
    options.onMessage = [&](std::string_view command, std::string_view message) {
        told = std::string(command) + ": " + std::string(message);
    };
    Effect effect(ScriptedEffect::enter, {}, options);
    Sequence sequence(effect);
    EXPECT_EQ(told, "SEQUENCE_SETUP: hello");
}

TEST_F(FailureTest, CancelReachesAbortAndComesBackAsCancelled) {
    const std::atomic<bool> cancelled{true};
    request.cancelled = &cancelled;
    script.on(PF_Cmd_RENDER,
              [](const EffectCall& call) { return call.in->inter.abort(call.in->effect_ref); });
    Effect effect(ScriptedEffect::enter, {}, options());
    Sequence sequence(effect);
    EXPECT_THROW(sequence.render(request), Cancelled);
    EXPECT_EQ(commands[5], "FRAME_SETDOWN");
}

TEST_F(FailureTest, CancelThatNobodyAskedForIsAFailure) {
    const std::atomic<bool> cancelled{false};
    request.cancelled = &cancelled;
    failAt(PF_Cmd_RENDER, PF_Interrupt_CANCEL);
    EXPECT_EQ(liveOnce(), "frame 12: plug-in returned 517 at RENDER");
    script.on(PF_Cmd_RENDER, {[](const EffectCall&) { return PF_Err_NONE; }});
    failAt(PF_Cmd_GLOBAL_SETUP, PF_Interrupt_CANCEL);
    try {
        Effect effect(ScriptedEffect::enter, {}, options());
        FAIL() << "the set-up was taken for a good one";
    } catch (const Cancelled&) {
        FAIL() << "nobody cancelled";
    } catch (const EffectError& error) {
        EXPECT_STREQ(error.what(), "plug-in returned 517 at GLOBAL_SETUP");
    }
}

TEST_F(FailureTest, ProgressIsPassedOnAsAShare) {
    std::vector<double> shares;
    request.progress = [&](double share) { shares.push_back(share); };
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        PF_Err code = 0;
        for (const A_long current : {0, 1, 4, 9})
            code |= call.in->inter.progress(call.in->effect_ref, current, 4);
        return code;
    });
    Effect effect(ScriptedEffect::enter, {}, options());
    Sequence sequence(effect);
    sequence.render(request);
    EXPECT_THAT(shares, ElementsAre(0.0, 0.25, 1.0, 1.0));
}

TEST_F(FailureTest, DeepPictureIsRefusedWithoutTheFlag) {
    World deep(4, 3, true);
    request.input = &deep;
    EXPECT_EQ(liveOnce(), "the effect does not handle 16 bits per channel; give it 8-bit pictures");
    script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE);
    EXPECT_EQ(liveOnce(), "");
}

TEST_F(FailureTest, PicturesOfOneFrameHaveOneDepth) {
    script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE);
    script.declareParameters({parameterOfType(PF_Param_LAYER, "Layer")});
    const World deep(4, 3, true);
    request.layers[1] = &deep;
    EXPECT_EQ(liveOnce(), "the picture of parameter 1 has another depth than the input; give both the same");
    request.input = &deep;
    EXPECT_EQ(liveOnce(), "");
}

TEST_F(FailureTest, InterruptIsSeenBeforeAFrameThatWasLeftAsItWas) {
    script.declareFlags(0, PF_OutFlag2_SUPPORTS_SMART_RENDER);
    const std::atomic<bool> cancelled = true;
    request.cancelled = &cancelled;
    Effect effect(ScriptedEffect::enter, {}, options());
    Sequence sequence(effect);
    EXPECT_THROW(sequence.render(request), Cancelled);
}

TEST_F(FailureTest, EffectThatLeavesTheFrameToSmartRenderIsDeclined) {
    script.declareFlags(0, PF_OutFlag2_SUPPORTS_SMART_RENDER);
    request.smart = SmartUse::Off;
    EXPECT_THAT(liveOnce(), HasSubstr("smart-render path alone"));
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        call.output->data->red = 1;
        return PF_Err_NONE;
    });
    EXPECT_EQ(liveOnce(), "");
}

TEST_F(FailureTest, NthCallOfACallbackFailsAsAsked) {
    std::vector<PF_Err> codes;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        for (int i = 0; i < 3; ++i)
            codes.push_back(call.in->inter.abort(call.in->effect_ref));
        codes.push_back(call.utilities().host_new_handle(1) == nullptr ? 1 : 0);
        return PF_Err_NONE;
    });
    HostOptions failing = strictOptions();
    failing.failures = {{"abort", 2, 77}, {"host_new_handle", 0, PF_Err_OUT_OF_MEMORY}};
    Effect effect(ScriptedEffect::enter, {}, failing);
    Sequence sequence(effect);
    sequence.render(request);
    EXPECT_THAT(codes, ElementsAre(0, 77, 0, 1));
}

TEST_F(FailureTest, ThrownExceptionIsAnError) {
    script.on(PF_Cmd_RENDER, [](const EffectCall&) -> PF_Err { throw 5; });
    EXPECT_EQ(liveOnce(), "frame 12: the effect let an exception out at RENDER");
    Effect effect(ScriptedEffect::enter, {}, options());
    EXPECT_THROW(Sequence(effect).render(request), EffectBroke);
}

// A tear-down has nobody to answer to, until the effect is closed.
TEST_F(FailureTest, ExceptionOfATearDownIsToldAtTheEnd) {
    for (const auto& [command, name] : {std::pair{PF_Cmd_SEQUENCE_SETDOWN, "SEQUENCE_SETDOWN"},
                                        std::pair{PF_Cmd_GLOBAL_SETDOWN, "GLOBAL_SETDOWN"}}) {
        ScriptedEffect throwing;
        throwing.on(command, [](const EffectCall&) -> PF_Err { throw 5; });
        Effect effect(ScriptedEffect::enter, {}, options());
        Sequence(effect).render(request);
        try {
            effect.close();
            FAIL() << name;
        } catch (const EffectBroke& end) {
            EXPECT_EQ(end.what(), std::string("the effect let an exception out at ") + name);
        }
    }
}

TEST_F(FailureTest, TooManyParametersAreRefusedAlsoWhereTheEffectDoesNotLook) {
    script.on(PF_Cmd_PARAMS_SETUP, [](const EffectCall& call) {
        PF_ParamDef box = parameterOfType(PF_Param_CHECKBOX, "Box");
        for (int i = 0; i < 1001; ++i)
            call.in->inter.add_param(call.in->effect_ref, -1, &box);
        call.out->num_params = 1002;
        return PF_Err{PF_Err_NONE};
    });
    EXPECT_EQ(liveOnce(), "an effect may declare 1000 parameters at most");
    EXPECT_THAT(commands, ElementsAre("GLOBAL_SETUP", "PARAMS_SETUP", "GLOBAL_SETDOWN"));
}

TEST_F(FailureTest, CommandSentAsItIsThrowsNothing) {
    failAt(PF_Cmd_EVENT, 99, "what event");
    Effect effect(ScriptedEffect::enter, {}, options());
    const CommandResult result = effect.send(PF_Cmd_EVENT);
    EXPECT_EQ(result.code, 99);
    EXPECT_EQ(result.message, "what event");
}

TEST_F(FailureTest, RenderWithoutAFrameFindsNoPictures) {
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        EXPECT_EQ(call.output->data, nullptr);
        PF_ParamDef param{};
        const PF_Err code = call.in->inter.checkout_param(call.in->effect_ref, 0, 0, 1, 24, &param);
        EXPECT_EQ(param.u.ld.data, nullptr);
        call.in->inter.checkin_param(call.in->effect_ref, &param);
        return code;
    });
    Effect effect(ScriptedEffect::enter, {}, options());
    Sequence sequence(effect);
    EXPECT_EQ(sequence.send(PF_Cmd_RENDER).code, PF_Err_NONE);
}

}  // namespace
}  // namespace perch::test
