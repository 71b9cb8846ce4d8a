// An effect with a value of its own kind, a gradient of two colours: every function that a host asks of it,
// and what strict mode sees of its handles.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "ArbitraryData.h"
#include "Error.h"
#include "Host.h"
#include "PF_Arbitrary.h"
#include "ParameterText.h"
#include "ScriptedEffect.h"
#include "Sequence.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Gradient {
    double left, right;
};

constexpr A_short kId = 321;
int refcon = 0;

Gradient& gradientIn(PF_ArbitraryH handle) {
    return *static_cast<Gradient*>(static_cast<void*>(*handle));
}

PF_ArbitraryH newGradient(const PF_UtilCallbacks& utilities, const Gradient& value) {
    const PF_ArbitraryH handle = utilities.host_new_handle(sizeof(Gradient));
    gradientIn(handle) = value;
    return handle;
}

// What a careful effect answers.
PF_Err answer(const EffectCall& call) {
    auto& extra = *static_cast<PF_ArbParamsExtra*>(call.extra);
    const PF_UtilCallbacks& utilities = call.utilities();
    EXPECT_EQ(extra.id, kId);
    EXPECT_EQ(extra.u.new_func_params.refconPV, &refcon);
    switch (extra.which_function) {
        case PF_Arbitrary_NEW_FUNC:
            *extra.u.new_func_params.arbPH = newGradient(utilities, {0, 1});
            return PF_Err_NONE;
        case PF_Arbitrary_DISPOSE_FUNC:
            utilities.host_dispose_handle(extra.u.dispose_func_params.arbH);
            return PF_Err_NONE;
        case PF_Arbitrary_COPY_FUNC:
            *extra.u.copy_func_params.dst_arbPH =
                newGradient(utilities, gradientIn(extra.u.copy_func_params.src_arbH));
            return PF_Err_NONE;
        case PF_Arbitrary_FLAT_SIZE_FUNC:
            *extra.u.flat_size_func_params.flat_data_sizePLu = sizeof(Gradient);
            return PF_Err_NONE;
        case PF_Arbitrary_FLATTEN_FUNC:
            std::memcpy(extra.u.flatten_func_params.flat_dataPV,
                        &gradientIn(extra.u.flatten_func_params.arbH), sizeof(Gradient));
            return PF_Err_NONE;
        case PF_Arbitrary_UNFLATTEN_FUNC: {
            Gradient value{};
            EXPECT_EQ(extra.u.unflatten_func_params.buf_sizeLu, sizeof value);
            std::memcpy(&value, extra.u.unflatten_func_params.flat_dataPV, sizeof value);
            *extra.u.unflatten_func_params.arbPH = newGradient(utilities, value);
            return PF_Err_NONE;
        }
        case PF_Arbitrary_INTERP_FUNC: {
            const Gradient& a = gradientIn(extra.u.interp_func_params.left_arbH);
            const Gradient& b = gradientIn(extra.u.interp_func_params.right_arbH);
            const double t = extra.u.interp_func_params.tF;
            *extra.u.interp_func_params.interpPH =
                newGradient(utilities, {a.left + (b.left - a.left) * t, a.right + (b.right - a.right) * t});
            return PF_Err_NONE;
        }
        case PF_Arbitrary_COMPARE_FUNC: {
            const Gradient& a = gradientIn(extra.u.compare_func_params.a_arbH);
            const Gradient& b = gradientIn(extra.u.compare_func_params.b_arbH);
            const bool isSame = a.left == b.left && a.right == b.right;
            *extra.u.compare_func_params.compareP = isSame ? PF_ArbCompare_EQUAL : PF_ArbCompare_NOT_EQUAL;
            return PF_Err_NONE;
        }
        case PF_Arbitrary_PRINT_SIZE_FUNC:
            *extra.u.print_size_func_params.print_sizePLu = 32;
            return PF_Err_NONE;
        case PF_Arbitrary_PRINT_FUNC: {
            const Gradient& value = gradientIn(extra.u.print_func_params.arbH);
            std::snprintf(extra.u.print_func_params.print_bufferPC, extra.u.print_func_params.print_sizeLu,
                          "%g to %g", value.left, value.right);
            return PF_Err_NONE;
        }
        case PF_Arbitrary_SCAN_FUNC: {
            Gradient value{};
            if (std::sscanf(extra.u.scan_func_params.bufPC, "%lf to %lf", &value.left, &value.right) != 2)
                return PF_Err_CANNOT_PARSE_KEYFRAME_TEXT;
            *extra.u.scan_func_params.arbPH = newGradient(utilities, value);
            return PF_Err_NONE;
        }
        default:
            return PF_Err_BAD_CALLBACK_PARAM;
    }
}

struct ArbitraryDataTest : testing::TestWithParam<bool> {
    ScriptedEffect script;
    World picture{4, 3, GetParam()};
    FrameRequest request;
    std::vector<int> asked;  // functions

    ArbitraryDataTest() {
        request.input = &picture;
        script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE);
        script.on(PF_Cmd_PARAMS_SETUP, [](const EffectCall& call) {
            PF_ParamDef definition = parameterOfType(PF_Param_ARBITRARY_DATA, "Gradient");
            definition.ui_flags = PF_PUI_NO_ECW_UI;
            definition.u.arb_d.id = kId;
            definition.u.arb_d.refconPV = &refcon;
            definition.u.arb_d.dephault = newGradient(call.utilities(), {0.25, 0.75});
            call.out->num_params = 2;
            return call.in->inter.add_param(call.in->effect_ref, -1, &definition);
        });
        answerWith(answer);
        // Fills the frame with the gradient's two ends.
        script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
            const Gradient& value = gradientIn(call.params[1]->u.arb_d.value);
            for (A_long y = 0; y < call.output->height; ++y) {
                for (A_long x = 0; x < call.output->width; ++x) {
                    const double end = x < 2 ? value.left : value.right;
                    forDepth(*call.output, [&]<class P>() {
                        const auto level = static_cast<std::uint32_t>(end * kWhite<P>);
                        rowOf<P>(*call.output, y)[x] = grey<P>(kWhite<P>, level);
                    });
                }
            }
            return PF_Err_NONE;
        });
    }

    void answerWith(const ScriptedEffect::Handler& handler) {
        script.on(PF_Cmd_ARBITRARY_CALLBACK, [this, handler](const EffectCall& call) {
            asked.push_back(static_cast<PF_ArbParamsExtra*>(call.extra)->which_function);
            return handler(call);
        });
    }

    std::vector<std::string> liveOnce(bool saves) {
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        {
            Sequence sequence(effect);
            if (saves) sequence.flatten();
            const World frame = sequence.render(request).picture;
            forDepth(frame.record(), [&]<class P>() {
                const auto level = [](double end) { return static_cast<std::uint32_t>(end * kWhite<P>); };
                EXPECT_EQ(rowOf<P>(frame.record(), 1)[1].red, level(0.25));
                EXPECT_EQ(rowOf<P>(frame.record(), 1)[2].red, level(0.75));
            });
        }
        effect.close();
        return faults(effect);
    }
};

TEST_P(ArbitraryDataTest, InstanceHasACopyOfTheDefaultAndAllIsDisposedOf) {
    EXPECT_THAT(liveOnce(false), IsEmpty());
    EXPECT_THAT(asked,
                ElementsAre(PF_Arbitrary_COPY_FUNC, PF_Arbitrary_DISPOSE_FUNC, PF_Arbitrary_DISPOSE_FUNC));
}

TEST_P(ArbitraryDataTest, SavedValueIsLoadedAndCompared) {
    EXPECT_THAT(liveOnce(true), IsEmpty());
    EXPECT_THAT(asked,
                ElementsAre(PF_Arbitrary_COPY_FUNC, PF_Arbitrary_FLAT_SIZE_FUNC, PF_Arbitrary_FLATTEN_FUNC,
                            PF_Arbitrary_UNFLATTEN_FUNC, PF_Arbitrary_COMPARE_FUNC, PF_Arbitrary_DISPOSE_FUNC,
                            PF_Arbitrary_DISPOSE_FUNC, PF_Arbitrary_DISPOSE_FUNC));
}

TEST_P(ArbitraryDataTest, DefaultIsPrintedForTheDescription) {
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    effect.printDefaults();
    EXPECT_EQ(defaultText(effect.description().parameters[0]), "0.25 to 0.75");
    answerWith([](const EffectCall&) { return PF_Err{PF_Err_BAD_CALLBACK_PARAM}; });
    effect.printDefaults();
    EXPECT_EQ(defaultText(effect.description().parameters[0]), "");
    answerWith(answer);
}

// The effect is asked before its sequence is flattened, so nothing has to be put back.
TEST_P(ArbitraryDataTest, SavingThatFailsLeavesTheInstanceAsItWas) {
    script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE | PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING);
    script.on(PF_Cmd_SEQUENCE_FLATTEN, [](const EffectCall&) {
        ADD_FAILURE() << "flattened all the same";
        return PF_Err_NONE;
    });
    for (const PF_FunctionSelector failing : {PF_Arbitrary_FLATTEN_FUNC, PF_Arbitrary_COMPARE_FUNC}) {
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        {
            Sequence sequence(effect);
            answerWith([failing](const EffectCall& call) {
                const auto& extra = *static_cast<PF_ArbParamsExtra*>(call.extra);
                return extra.which_function == failing ? PF_Err{PF_Err_OUT_OF_MEMORY} : answer(call);
            });
            EXPECT_THROW(sequence.flatten(), EffectError);
            sequence.render(request);
        }
        effect.close();
        EXPECT_THAT(faults(effect), IsEmpty()) << failing;
    }
}

TEST_P(ArbitraryDataTest, ValueThatTheEffectPutsInPlaceOfItsOwnIsKept) {
    for (const bool isOldDisposedOf : {false, true}) {
        script.on(PF_Cmd_USER_CHANGED_PARAM, [isOldDisposedOf](const EffectCall& call) {
            PF_ArbitraryH& value = call.params[1]->u.arb_d.value;
            if (isOldDisposedOf) call.utilities().host_dispose_handle(value);
            value = newGradient(call.utilities(), {0.5, 1});
            call.params[1]->uu.change_flags = PF_ChangeFlag_CHANGED_VALUE;
            return PF_Err_NONE;
        });
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        {
            Sequence sequence(effect);
            ParameterValues values = effect.defaultValues(4, 3);
            sequence.userChangedParam(1, values);
            const World frame = sequence.render(request).picture;
            forDepth(frame.record(), [&]<class P>() {
                EXPECT_EQ(rowOf<P>(frame.record(), 0)[0].red, kWhite<P> / 2);
                EXPECT_EQ(rowOf<P>(frame.record(), 0)[3].red, kWhite<P>);
            });
        }
        effect.close();
        EXPECT_THAT(faults(effect), IsEmpty());
    }
}

TEST_P(ArbitraryDataTest, EveryFunctionAnswers) {
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    const Parameter& parameter = effect.description().parameters[0];
    ArbitraryData data(*Host::current(), parameter);
    const PF_ArbitraryH low = data.scan("0 to 2");
    const PF_ArbitraryH high = data.scan("10 to 4");
    const PF_ArbitraryH middle = data.interpolate(low, high, 0.25);
    EXPECT_EQ(data.print(middle), "2.5 to 2.5");
    EXPECT_EQ(data.compare(low, high), PF_ArbCompare_NOT_EQUAL);
    EXPECT_THROW(data.scan("no gradient"), EffectError);
    Parameter withoutDefault = parameter;
    withoutDefault.definition.u.arb_d.dephault = nullptr;
    const PF_ArbitraryH made = ArbitraryData(*Host::current(), withoutDefault).makeDefault();
    EXPECT_EQ(data.print(made), "0 to 1");
    for (const PF_ArbitraryH value : {low, high, middle, made})
        data.dispose(value);
    effect.close();
    EXPECT_THAT(faults(effect), IsEmpty());
}

TEST_P(ArbitraryDataTest, TextBeyondTheSizeThatTheEffectAskedForIsFound) {
    answerWith([](const EffectCall& call) {
        auto& extra = *static_cast<PF_ArbParamsExtra*>(call.extra);
        if (extra.which_function != PF_Arbitrary_PRINT_FUNC) return answer(call);
        std::memset(extra.u.print_func_params.print_bufferPC, 'x',
                    extra.u.print_func_params.print_sizeLu + 1);
        return PF_Err{PF_Err_NONE};
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    effect.printDefaults();
    EXPECT_EQ(defaultText(effect.description().parameters[0]), std::string(32, 'x'));
    EXPECT_THAT(faults(effect), ElementsAre("ARBITRARY_CALLBACK, PRINT_FUNC: bytes behind the 32 that it "
                                            "asked for were written"));
    answerWith(answer);
}

TEST_P(ArbitraryDataTest, CareOfHandlesIsWatched) {
    struct Careless {
        PF_FunctionSelector function;
        PF_Err (*instead)(const EffectCall& call, PF_ArbParamsExtra& extra);
        const char* finding;
    };
    const Careless cases[] = {
        {PF_Arbitrary_DISPOSE_FUNC, [](const EffectCall&, PF_ArbParamsExtra&) { return PF_Err{PF_Err_NONE}; },
         "was not disposed of"},
        {PF_Arbitrary_FLATTEN_FUNC,
         [](const EffectCall& call, PF_ArbParamsExtra& extra) {
             static_cast<char*>(extra.u.flatten_func_params.flat_dataPV)[sizeof(Gradient)] = 'x';
             return answer(call);
         },
         "bytes behind the 16 that it asked for were written"},
        {PF_Arbitrary_COMPARE_FUNC,
         [](const EffectCall&, PF_ArbParamsExtra& extra) {
             *extra.u.compare_func_params.compareP = PF_ArbCompare_LESS;
             return PF_Err{PF_Err_NONE};
         },
         "is another one after it was saved and loaded"},
        {PF_Arbitrary_COPY_FUNC,
         [](const EffectCall&, PF_ArbParamsExtra& extra) {
             *extra.u.copy_func_params.dst_arbPH = extra.u.copy_func_params.src_arbH;
             return PF_Err{PF_Err_NONE};
         },
         "the copy is the value itself"},
    };
    for (const Careless& careless : cases) {
        answerWith([&](const EffectCall& call) {
            auto& extra = *static_cast<PF_ArbParamsExtra*>(call.extra);
            return extra.which_function == careless.function ? careless.instead(call, extra) : answer(call);
        });
        EXPECT_THAT(liveOnce(true), Contains(HasSubstr(careless.finding)));
    }
}

TEST_P(ArbitraryDataTest, SizesBeyondReasonAreRefused) {
    constexpr A_u_long kTooLarge = (1U << 28) + 1;
    answerWith([](const EffectCall& call) {
        auto& extra = *static_cast<PF_ArbParamsExtra*>(call.extra);
        const PF_Err error = answer(call);
        if (extra.which_function == PF_Arbitrary_PRINT_SIZE_FUNC)
            *extra.u.print_size_func_params.print_sizePLu = kTooLarge;
        if (extra.which_function == PF_Arbitrary_FLAT_SIZE_FUNC)
            *extra.u.flat_size_func_params.flat_data_sizePLu = kTooLarge;
        return error;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    effect.printDefaults();
    EXPECT_EQ(defaultText(effect.description().parameters[0]), "");
    Sequence sequence(effect);
    EXPECT_THROW(sequence.flatten(), Error);
}

TEST_P(ArbitraryDataTest, InstanceWithoutAValueIsAFailure) {
    answerWith([](const EffectCall& call) {
        const bool isCopy =
            static_cast<PF_ArbParamsExtra*>(call.extra)->which_function == PF_Arbitrary_COPY_FUNC;
        return isCopy ? PF_Err{PF_Err_NONE} : answer(call);
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    try {
        const Sequence sequence(effect);
        FAIL();
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "COPY_FUNC made no value of parameter 1, \"Gradient\"");
    }
}

INSTANTIATE_TEST_SUITE_P(Depth, ArbitraryDataTest, testing::Bool(),
                         [](const auto& depth) { return depth.param ? "Bits16" : "Bits8"; });

}  // namespace
}  // namespace perch::test
