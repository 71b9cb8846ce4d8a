// Parameters of every type: declared, described, and given back with their values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "ScriptedEffect.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

PF_ParamDef slider() {
    PF_ParamDef definition = parameterOfType(PF_Param_SLIDER, "Slider");
    definition.u.sd.valid_min = -10;
    definition.u.sd.valid_max = 20;
    definition.u.sd.slider_min = 0;
    definition.u.sd.slider_max = 10;
    definition.u.sd.dephault = 5;
    return definition;
}

PF_ParamDef fixedSlider() {
    PF_ParamDef definition = parameterOfType(PF_Param_FIX_SLIDER, "Fixed");
    definition.u.fd.valid_min = 0;
    definition.u.fd.valid_max = 2 << 16;
    definition.u.fd.slider_min = 0;
    definition.u.fd.slider_max = 1 << 16;
    definition.u.fd.dephault = 3 << 15;
    definition.u.fd.precision = 2;
    return definition;
}

PF_ParamDef floatSlider() {
    PF_ParamDef definition = parameterOfType(PF_Param_FLOAT_SLIDER, "Float");
    definition.u.fs_d.valid_min = 0.0F;
    definition.u.fs_d.valid_max = 100.0F;
    definition.u.fs_d.slider_min = 0.0F;
    definition.u.fs_d.slider_max = 50.0F;
    definition.u.fs_d.dephault = 12.5F;
    definition.u.fs_d.precision = 1;
    definition.u.fs_d.display_flags = PF_ValueDisplayFlag_PERCENT;
    return definition;
}

PF_ParamDef angle() {
    PF_ParamDef definition = parameterOfType(PF_Param_ANGLE, "Angle");
    definition.u.ad.dephault = 90 << 16;
    return definition;
}

// The label strings live on the stack of the declaring effect and are gone afterwards.
PF_ParamDef checkBox(const char* label) {
    PF_ParamDef definition = parameterOfType(PF_Param_CHECKBOX, "Check");
    definition.u.bd.dephault = 1;
    definition.u.bd.u.nameptr = label;
    return definition;
}

PF_ParamDef popup(const char* names) {
    PF_ParamDef definition = parameterOfType(PF_Param_POPUP, "Popup");
    definition.u.pd.num_choices = 3;
    definition.u.pd.dephault = 2;
    definition.u.pd.u.namesptr = names;
    return definition;
}

PF_ParamDef button(const char* label) {
    PF_ParamDef definition = parameterOfType(PF_Param_BUTTON, "Button");
    definition.u.button_d.u.namesptr = label;
    return definition;
}

PF_ParamDef color() {
    PF_ParamDef definition = parameterOfType(PF_Param_COLOR, "Color");
    definition.u.cd.dephault = {255, 1, 2, 3};
    return definition;
}

PF_ParamDef point() {
    PF_ParamDef definition = parameterOfType(PF_Param_POINT, "Point");
    definition.u.td.x_dephault = 50 << 16;
    definition.u.td.y_dephault = 25 << 16;
    return definition;
}

PF_ParamDef point3d() {
    PF_ParamDef definition = parameterOfType(PF_Param_POINT_3D, "Point 3D");
    definition.u.point3d_d.x_dephault = 50.0;
    definition.u.point3d_d.y_dephault = 100.0;
    definition.u.point3d_d.z_dephault = 7.0;
    return definition;
}

struct ParameterTest : testing::Test {
    ScriptedEffect script;

    // Declares every type; the strings are overwritten as soon as add_param has returned.
    void declareEveryType() {
        script.on(PF_Cmd_PARAMS_SETUP, [](const EffectCall& call) {
            char label[] = "On";
            char names[] = "Near|Middle|Far";
            char caption[] = "Press";
            std::vector<PF_ParamDef> definitions{
                slider(),     fixedSlider(),   floatSlider(), angle(), checkBox(label),
                popup(names), button(caption), color(),       point(), point3d(),
            };
            for (const PF_ParamType type :
                 {PF_Param_LAYER, PF_Param_PATH, PF_Param_GROUP_START, PF_Param_GROUP_END, PF_Param_NO_DATA,
                  PF_Param_CUSTOM, PF_Param_ARBITRARY_DATA})
                definitions.push_back(parameterOfType(type, "Other"));
            for (PF_ParamDef& definition : definitions) {
                const PF_Err code = call.in->inter.add_param(call.in->effect_ref, -1, &definition);
                std::memset(&definition, 0xEE, sizeof definition);
                if (code != PF_Err_NONE) return code;
            }
            std::memset(label, 'x', sizeof label - 1);
            std::memset(names, 'x', sizeof names - 1);
            std::memset(caption, 'x', sizeof caption - 1);
            call.out->num_params = static_cast<A_long>(definitions.size()) + 1;
            return PF_Err{PF_Err_NONE};
        });
    }
};

struct Described {
    const char* name;
    const char* type;
    std::optional<Parameter::Range> valid;
    std::optional<Parameter::Range> slider;
    std::optional<double> dephault;
};

TEST_F(ParameterTest, EveryTypeIsDescribed) {
    const std::vector<Described> expected{
        {"Slider", "slider", {{-10, 20}}, {{0, 10}}, 5},
        {"Fixed", "fixed slider", {{0, 2}}, {{0, 1}}, 1.5},
        {"Float", "float slider", {{0, 100}}, {{0, 50}}, 12.5},
        {"Angle", "angle", {}, {}, 90},
        {"Check", "check box", {{0, 1}}, {}, 1},
        {"Popup", "popup", {{1, 3}}, {}, 2},
        {"Button", "button", {}, {}, {}},
        {"Color", "color", {}, {}, {}},
        {"Point", "point", {}, {}, {}},
        {"Point 3D", "3D point", {}, {}, {}},
        {"Other", "layer", {}, {}, {}},
        {"Other", "path", {}, {}, {}},
        {"Other", "group start", {}, {}, {}},
        {"Other", "group end", {}, {}, {}},
        {"Other", "no data", {}, {}, {}},
        {"Other", "custom", {}, {}, {}},
        {"Other", "arbitrary data", {}, {}, {}},
    };
    declareEveryType();
    const Effect effect(ScriptedEffect::enter, {}, strictOptions());
    const std::vector<Parameter>& parameters = effect.description().parameters;
    ASSERT_EQ(parameters.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(expected[i].type);
        EXPECT_EQ(parameters[i].index, static_cast<PF_ParamIndex>(i) + 1);
        EXPECT_EQ(parameters[i].name, expected[i].name);
        EXPECT_EQ(parameters[i].typeName, expected[i].type);
        EXPECT_TRUE(parameters[i].validRange == expected[i].valid);
        EXPECT_TRUE(parameters[i].sliderRange == expected[i].slider);
        EXPECT_EQ(parameters[i].defaultNumber, expected[i].dephault);
    }
    EXPECT_TRUE(parameters[2].isPercent);
    EXPECT_EQ(parameters[2].precision, 1);
    EXPECT_EQ(parameters[4].label, "On");
    EXPECT_THAT(parameters[5].items, ElementsAre("Near", "Middle", "Far"));
    EXPECT_EQ(parameters[6].label, "Press");
    EXPECT_THAT(faults(effect), IsEmpty());
}

TEST_F(ParameterTest, DefaultsAreThePlacesOnTheLayer) {
    declareEveryType();
    const Effect effect(ScriptedEffect::enter, {}, strictOptions());
    const ParameterValues values = effect.defaultValues(200, 80);
    ASSERT_EQ(values.size(), 18U);
    EXPECT_EQ(values[0].param_type, PF_Param_LAYER);
    EXPECT_EQ(values[1].u.sd.value, 5);
    EXPECT_EQ(values[2].u.fd.value, 3 << 15);
    EXPECT_EQ(values[3].u.fs_d.value, 12.5);
    EXPECT_EQ(values[4].u.ad.value, 90 << 16);
    EXPECT_EQ(values[5].u.bd.value, 1);
    EXPECT_EQ(values[6].u.pd.value, 2);
    EXPECT_STREQ(values[6].u.pd.u.namesptr, "Near|Middle|Far");
    EXPECT_EQ(values[8].u.cd.value.green, 2);
    EXPECT_EQ(values[9].u.td.x_value, 100 << 16);
    EXPECT_EQ(values[9].u.td.y_value, 20 << 16);
    EXPECT_EQ(values[10].u.point3d_d.x_value, 100.0);
    EXPECT_EQ(values[10].u.point3d_d.y_value, 80.0);
    EXPECT_EQ(values[11].u.ld.data, nullptr);
}

TEST_F(ParameterTest, NameOfFullLengthNeedsNoTerminator) {
    script.declareParameters({parameterOfType(PF_Param_SLIDER, "12345678901234567890123456789012")});
    const Effect effect(ScriptedEffect::enter, {}, strictOptions());
    EXPECT_EQ(effect.description().parameters[0].name, "12345678901234567890123456789012");
}

TEST_F(ParameterTest, TypeOutsideTheInterfaceIsRefused) {
    script.declareParameters({parameterOfType(77, "Strange")});
    EXPECT_THROW(Effect(ScriptedEffect::enter, {}, strictOptions()), EffectError);
}

TEST_F(ParameterTest, IndexPutsTheParameterInPlace) {
    script.on(PF_Cmd_PARAMS_SETUP, [](const EffectCall& call) {
        PF_ParamDef last = parameterOfType(PF_Param_SLIDER, "Last");
        PF_ParamDef first = parameterOfType(PF_Param_SLIDER, "First");
        call.in->inter.add_param(call.in->effect_ref, -1, &last);
        call.in->inter.add_param(call.in->effect_ref, 1, &first);
        call.out->num_params = 3;
        return call.in->inter.add_param(call.in->effect_ref, 9, &first) == PF_Err_INVALID_INDEX ? PF_Err{0}
                                                                                                : 1;
    });
    const Effect effect(ScriptedEffect::enter, {}, strictOptions());
    ASSERT_EQ(effect.description().parameters.size(), 2U);
    EXPECT_EQ(effect.description().parameters[0].name, "First");
    EXPECT_EQ(effect.description().parameters[1].index, 2);
}

TEST_F(ParameterTest, ChangesOfTheUserInterfaceComeBackInTheValues) {
    script.declareParameters({slider(), floatSlider()});
    script.on(PF_Cmd_USER_CHANGED_PARAM, [](const EffectCall& call) {
        EXPECT_EQ(static_cast<PF_UserChangedParamExtra*>(call.extra)->param_index, 2);
        call.params[1]->u.sd.value = 17;
        call.params[1]->uu.change_flags = PF_ChangeFlag_CHANGED_VALUE;
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    ParameterValues values = effect.defaultValues(4, 3);
    sequence.userChangedParam(2, values);
    EXPECT_EQ(values[1].u.sd.value, 17);
    EXPECT_EQ(values[2].uu.id, 0);
    EXPECT_THROW(sequence.userChangedParam(3, values), Error);
    EXPECT_THAT(faults(effect), IsEmpty());
}

TEST_F(ParameterTest, ChangesAreSentWithAValueForEveryParameterAlone) {
    script.declareParameters({slider(), floatSlider()});
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    for (const std::size_t count : {0U, 2U, 4U}) {
        ParameterValues values(count);
        EXPECT_THROW(sequence.userChangedParam(1, values), Error) << count;
        EXPECT_THROW(sequence.updateParamsUi(values), Error) << count;
    }
}

TEST_F(ParameterTest, ChangeThatTheEffectDoesNotDeclareIsPassedOver) {
    script.declareParameters({slider(), floatSlider()});
    const auto change = [](const EffectCall& call) {
        call.params[1]->u.sd.value = 17;
        return PF_Err_NONE;
    };
    script.on(PF_Cmd_USER_CHANGED_PARAM, change);
    script.on(PF_Cmd_UPDATE_PARAMS_UI, [change](const EffectCall& call) {
        call.params[1]->uu.change_flags = PF_ChangeFlag_CHANGED_VALUE;
        return change(call);
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    const ParameterValues given = effect.defaultValues(4, 3);
    ParameterValues values = given;
    sequence.userChangedParam(2, values);
    EXPECT_EQ(values[1].u.sd.value, given[1].u.sd.value);
    sequence.updateParamsUi(values);
    EXPECT_EQ(values[1].u.sd.value, given[1].u.sd.value);
    EXPECT_THAT(
        faults(effect),
        ElementsAre("USER_CHANGED_PARAM: parameter 1 was changed without PF_ChangeFlag_CHANGED_VALUE; "
                    "hosts pass over that",
                    "UPDATE_PARAMS_UI: parameter 1 was changed outside of USER_CHANGED_PARAM; hosts "
                    "pass over that"));
}

TEST_F(ParameterTest, PointsAreInPixelsOfTheGivenPicture) {
    PF_ParamDef point = parameterOfType(PF_Param_POINT, "Centre");
    point.u.td.x_dephault = 50 * 65536;
    point.u.td.y_dephault = 25 * 65536;
    PF_ParamDef space = parameterOfType(PF_Param_POINT_3D, "Place");
    space.u.point3d_d.x_dephault = 10;
    space.u.point3d_d.y_dephault = 20;
    space.u.point3d_d.z_dephault = 30;
    script.declareParameters({point, space});
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        EXPECT_EQ(call.in->width, 400);
        EXPECT_EQ(call.params[1]->u.td.x_value, 50 * 65536);
        EXPECT_EQ(call.params[1]->u.td.y_value, 10 * 65536);
        EXPECT_EQ(call.params[2]->u.point3d_d.x_value, 10.0);
        EXPECT_EQ(call.params[2]->u.point3d_d.y_value, 8.0);
        EXPECT_EQ(call.params[2]->u.point3d_d.z_value, 12.0);
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence sequence(effect);
    const World input(100, 40, false);
    FrameRequest request;
    request.input = &input;
    request.downsampleX = request.downsampleY = {1, 4};
    sequence.render(request);
}

}  // namespace
}  // namespace perch::test
