// Values and layers that an effect checks out while it renders.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "ScriptedEffect.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CheckoutTest : testing::Test {
    ScriptedEffect script;
    World picture{4, 3, false};
    World layer{2, 2, false};
    FrameRequest request;

    CheckoutTest() {
        script.declareParameters(
            {parameterOfType(PF_Param_FLOAT_SLIDER, "Float"), parameterOfType(PF_Param_LAYER, "Layer")});
        request.input = &picture;
    }
    template <typename F>
    std::vector<std::string> renderAndCheck(const F& body) {
        script.on(PF_Cmd_RENDER, body);
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        Sequence sequence(effect);
        request.values = effect.defaultValues(4, 3);
        request.values[1].u.fs_d.value = 33.0;
        sequence.render(request);
        return faults(effect);
    }
    static PF_Err checkOut(const EffectCall& call, PF_ParamIndex index, PF_ParamDef& param, A_long time = 0) {
        return call.in->inter.checkout_param(call.in->effect_ref, index, time, 1, 24, &param);
    }
    static PF_Err checkIn(const EffectCall& call, PF_ParamDef& param) {
        return call.in->inter.checkin_param(call.in->effect_ref, &param);
    }
};

TEST_F(CheckoutTest, ValuesAndLayersAreHandedOutAtAnyTime) {
    request.layers[2] = &layer;
    layer.record().data[0] = {1, 2, 3, 4};
    const auto found = renderAndCheck([](const EffectCall& call) {
        for (const A_long time : {-5, 0, 100}) {
            PF_ParamDef value{};
            PF_ParamDef picture{};
            PF_ParamDef input{};
            EXPECT_EQ(checkOut(call, 1, value, time), PF_Err_NONE);
            EXPECT_EQ(checkOut(call, 2, picture, time), PF_Err_NONE);
            EXPECT_EQ(checkOut(call, 0, input, time), PF_Err_NONE);
            EXPECT_EQ(value.u.fs_d.value, 33.0);
            EXPECT_EQ(picture.u.ld.width, 2);
            EXPECT_EQ(picture.u.ld.data[0].green, 3);
            EXPECT_EQ(input.u.ld.width, 4);
            EXPECT_EQ(checkIn(call, value), PF_Err_NONE);
            EXPECT_EQ(checkIn(call, picture), PF_Err_NONE);
            EXPECT_EQ(checkIn(call, input), PF_Err_NONE);
        }
        return PF_Err_NONE;
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(CheckoutTest, LayerSetToNoneIsAllZeros) {
    const auto found = renderAndCheck([](const EffectCall& call) {
        PF_ParamDef param;
        std::memset(static_cast<void*>(&param), 0xAB, sizeof param);
        EXPECT_EQ(checkOut(call, 2, param), PF_Err_NONE);
        const PF_ParamDef zeros{};
        EXPECT_EQ(std::memcmp(&param, &zeros, sizeof param), 0);
        return checkIn(call, param);
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(CheckoutTest, ArrayOfParametersHoldsTheValuesAndNoPixels) {
    request.layers[2] = &layer;
    renderAndCheck([](const EffectCall& call) {
        EXPECT_EQ(call.params[1]->u.fs_d.value, 33.0);
        EXPECT_EQ(call.params[2]->u.ld.data, nullptr);
        EXPECT_NE(call.params[0]->u.ld.data, nullptr);
        return PF_Err_NONE;
    });
}

TEST_F(CheckoutTest, LayerMayStandForTheEffectsOwnUntilAnotherIsChosen) {
    const auto redOfLayer = [](const EffectCall& call) {
        PF_ParamDef param{};
        EXPECT_EQ(checkOut(call, 2, param), PF_Err_NONE);
        const int red = param.u.ld.data != nullptr ? param.u.ld.data->red : -1;
        EXPECT_EQ(checkIn(call, param), PF_Err_NONE);
        return red;
    };
    PF_ParamDef own = parameterOfType(PF_Param_LAYER, "Layer");
    own.u.ld.dephault = PF_LayerDefault_MYSELF;
    for (const bool deep : {false, true}) {
        script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE);
        script.declareParameters({parameterOfType(PF_Param_FLOAT_SLIDER, "Float"), own});
        World input(2, 2, deep);
        World other(2, 2, deep);
        std::vector<int> reds;
        script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
            reds.push_back(redOfLayer(call));
            return PF_Err_NONE;
        });
        input.record().data->red = 11;
        other.record().data->red = 22;
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        Sequence sequence(effect);
        FrameRequest ownRequest;
        ownRequest.input = &input;
        sequence.render(ownRequest);
        ownRequest.layers[2] = &other;
        sequence.render(ownRequest);
        ownRequest.layers[2] = nullptr;
        sequence.render(ownRequest);
        EXPECT_THAT(reds, ElementsAre(11, 22, -1)) << deep;
    }
}

TEST_F(CheckoutTest, RecordMayBeMovedBeforeItIsCheckedIn) {
    request.layers[2] = &layer;
    const auto found = renderAndCheck([](const EffectCall& call) {
        PF_ParamDef param{};
        EXPECT_EQ(checkOut(call, 2, param), PF_Err_NONE);
        PF_ParamDef moved = param;
        return checkIn(call, moved);
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(CheckoutTest, TimeWithoutAScaleIsRefusedAndStillBalanced) {
    const auto found = renderAndCheck([](const EffectCall& call) {
        PF_ParamDef param{};
        const PF_Err error = call.in->inter.checkout_param(call.in->effect_ref, 1, 0, 1, 0, &param);
        EXPECT_EQ(error, PF_Err_BAD_CALLBACK_PARAM);
        return checkIn(call, param);
    });
    EXPECT_THAT(found, ElementsAre("RENDER, checkout_param: time_scale is 0"));
}

TEST_F(CheckoutTest, IndexOutsideTheParametersIsRefusedAndStillBalanced) {
    const auto found = renderAndCheck([](const EffectCall& call) {
        PF_ParamDef param{};
        EXPECT_EQ(checkOut(call, 3, param), PF_Err_INVALID_INDEX);
        return checkIn(call, param);
    });
    EXPECT_THAT(found, ElementsAre("RENDER, checkout_param: index 3 is not from 0 to 2"));
}

}  // namespace
}  // namespace perch::test
