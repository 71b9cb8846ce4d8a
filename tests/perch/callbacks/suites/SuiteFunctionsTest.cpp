// What the functions of the suites do and answer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "AEGP_Suites.h"
#include "OneCommand.h"
#include "PF_AppSuite.h"
#include "PF_ChannelSuite.h"
#include "PF_CustomUI.h"
#include "PF_FloatSuites.h"
#include "PF_Suites.h"
#include "PF_ValueSuites.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SuiteFunctionsTest = OneCommandTest;

TEST_F(SuiteFunctionsTest, EffectHidesItsParameterThroughTheProjectSuites) {
    script.declareParameters({parameterOfType(PF_Param_SLIDER, "Slider")});
    AEGP_PluginID plugin = 0;
    script.on(PF_Cmd_GLOBAL_SETUP, [&](const EffectCall& call) {
        return call.suite<AEGP_UtilitySuite3>("AEGP Utility Suite", 7)
            ->AEGP_RegisterWithAEGP(nullptr, "Test", &plugin);
    });
    runAt(PF_Cmd_UPDATE_PARAMS_UI, [&](const EffectCall& call) {
        const auto* interface = call.suite<AEGP_PFInterfaceSuite1>("AEGP PF Interface Suite", 1);
        const auto* streams = call.suite<AEGP_StreamSuite1>("AEGP Stream Suite", 4);
        const auto* dynamic = call.suite<AEGP_DynamicStreamSuite1>("AEGP Dynamic Stream Suite", 1);
        const auto* effects = call.suite<AEGP_EffectSuite1>("AEGP Effect Suite", 1);
        AEGP_EffectRefH effect = nullptr;
        AEGP_StreamRefH stream = nullptr;
        ASSERT_EQ(interface->AEGP_GetNewEffectForEffect(plugin, call.in->effect_ref, &effect), 0);
        EXPECT_NE(streams->AEGP_GetNewEffectStreamByIndex(plugin, effect, 2, &stream), 0);
        ASSERT_EQ(streams->AEGP_GetNewEffectStreamByIndex(plugin, effect, 1, &stream), 0);
        EXPECT_EQ(dynamic->AEGP_SetDynamicStreamFlag(stream, AEGP_DynStreamFlag_HIDDEN, 1), 0);
        EXPECT_EQ(call.params[1]->ui_flags, PF_PUI_INVISIBLE);
        const auto* dynamic5 = call.suite<AEGP_DynamicStreamSuite5>("AEGP Dynamic Stream Suite", 5);
        EXPECT_EQ(dynamic5->AEGP_SetDynamicStreamFlag(stream, AEGP_DynStreamFlag_HIDDEN, 0, 0), 0);
        EXPECT_EQ(call.params[1]->ui_flags, 0);
        EXPECT_EQ(streams->AEGP_DisposeStream(stream), 0);
        EXPECT_EQ(effects->AEGP_DisposeEffect(effect), 0);
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(SuiteFunctionsTest, UnusedSlotsAnswerWithAnError) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const auto* suite = call.suite<AEGP_UtilitySuite13>("AEGP Utility Suite", 13);
        EXPECT_NE(reinterpret_cast<PF_Err (*)(void)>(suite->unused_0[0])(), 0);
        const auto* slots = reinterpret_cast<PF_Err (*const*)(void)>(suite);
        EXPECT_NE(slots[50](), 0);
    });
}

TEST_F(SuiteFunctionsTest, ParameterUtilitiesKnowNoKeyFrames) {
    script.declareParameters({parameterOfType(PF_Param_SLIDER, "Slider")});
    runAt(PF_Cmd_UPDATE_PARAMS_UI, [](const EffectCall& call) {
        const auto* utilities = call.suite<PF_ParamUtilsSuite3>("PF Param Utils Suite", 3);
        const PF_ProgPtr effect = call.in->effect_ref;
        PF_KeyIndex keys = -1;
        EXPECT_EQ(utilities->PF_GetKeyframeCount(effect, 1, &keys), 0);
        EXPECT_EQ(keys, 0);
        PF_State before{};
        PF_State after{};
        A_Boolean same = 2;
        EXPECT_EQ(utilities->PF_GetCurrentState(effect, 1, nullptr, nullptr, &before), 0);
        const PF_ParamValue given = call.params[1]->u.sd.value;
        call.params[1]->u.sd.value = 9;
        EXPECT_EQ(utilities->PF_GetCurrentState(effect, 1, nullptr, nullptr, &after), 0);
        call.params[1]->u.sd.value = given;
        EXPECT_EQ(utilities->PF_AreStatesIdentical(effect, &before, &after, &same), 0);
        EXPECT_EQ(same, 0);
        PF_ParamDef look = *call.params[1];
        look.ui_flags = PF_PUI_DISABLED;
        EXPECT_EQ(utilities->PF_UpdateParamUI(effect, 1, &look), 0);
        EXPECT_EQ(call.params[1]->ui_flags, PF_PUI_DISABLED);
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(SuiteFunctionsTest, WorldSuiteMakesEveryDepth) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const auto* worlds = call.suite<PF_WorldSuite2>("PF World Suite", 2);
        for (const PF_PixelFormat format :
             {PF_PixelFormat_8BIT, PF_PixelFormat_16BIT, PF_PixelFormat_FLOAT}) {
            PF_EffectWorld world{};
            PF_PixelFormat found = 0;
            ASSERT_EQ(worlds->PF_NewWorld(call.in->effect_ref, 5, 4, 1, format, &world), 0);
            EXPECT_EQ(worlds->PF_GetPixelFormat(&world, &found), 0);
            EXPECT_EQ(found, format);
            EXPECT_EQ(worlds->PF_DisposeWorld(call.in->effect_ref, &world), 0);
            EXPECT_EQ(world.data, nullptr);
        }
        PF_EffectWorld world{};
        EXPECT_NE(worlds->PF_NewWorld(call.in->effect_ref, 5, 4, 1, 12345, &world), 0);
    });
    EXPECT_THAT(found, ElementsAre("RENDER, PF_NewWorld: the pixel format 12345 is not offered"));
}

// A float world that is filled, iterated, copied, blended, put onto itself, and read back.
TEST_F(SuiteFunctionsTest, FloatWorldsGoThroughTheirSuites) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const PF_ProgPtr effect = call.in->effect_ref;
        const auto* worlds = call.suite<PF_WorldSuite2>("PF World Suite", 2);
        const auto* fills = call.suite<PF_FillMatteSuite2>("PF Fill Matte Suite", 2);
        const auto* iterates = call.suite<PF_iterateFloatSuite1>("PF iterateFloat Suite", 1);
        const auto* transforms = call.suite<PF_WorldTransformSuite1>("PF World Transform Suite", 1);
        const auto* data = call.suite<PF_PixelDataSuite1>("PF Pixel Data Suite", 1);
        PF_EffectWorld a{};
        PF_EffectWorld b{};
        for (PF_EffectWorld* world : {&a, &b})
            ASSERT_EQ(worlds->PF_NewWorld(effect, 5, 4, 1, PF_PixelFormat_FLOAT, world), 0);
        const PF_PixelFloat bright{1, 2.5F, 0.5F, -0.25F};
        EXPECT_EQ(fills->fill_float(effect, &bright, nullptr, &a), 0);
        const auto halve = [](void*, A_long, A_long, PF_PixelFloat* in, PF_PixelFloat* out) -> PF_Err {
            *out = {in->alpha / 2, in->red, in->green, in->blue};
            return PF_Err_NONE;
        };
        EXPECT_EQ(iterates->iterate(call.in, 0, 1, &a, nullptr, nullptr, halve, &b), 0);
        PF_PixelFloat* pixels = nullptr;
        PF_Pixel16* none = nullptr;
        EXPECT_EQ(data->get_pixel_data_float(&b, nullptr, &pixels), 0);
        EXPECT_EQ(data->get_pixel_data16(&b, nullptr, &none), 0);
        EXPECT_EQ(none, nullptr);
        ASSERT_NE(pixels, nullptr);
        EXPECT_EQ(pixels[4].alpha, 0.5F);
        EXPECT_EQ(pixels[4].red, 2.5F);
        EXPECT_EQ(fills->premultiply(effect, 1, &b), 0);
        EXPECT_EQ(pixels[4].red, 1.25F);
        EXPECT_EQ(fills->premultiply(effect, 0, &b), 0);
        EXPECT_EQ(pixels[4].red, 2.5F);
        EXPECT_EQ(transforms->blend(effect, &a, &b, 32768, &b), 0);
        EXPECT_EQ(pixels[0].alpha, 0.75F);
        EXPECT_EQ(pixels[0].green, 0.5F);
        const PF_FloatMatrix half{{{0.5, 0, 0}, {0, 0.5, 0}, {0, 0, 1}}};
        EXPECT_EQ(transforms->transform_world(effect, PF_Quality_HI, 0, PF_Field_FRAME, &a, nullptr, nullptr,
                                              &half, 1, 1, nullptr, &b),
                  0);
        EXPECT_EQ(pixels[0].red, 2.5F);
        EXPECT_EQ(pixels[4].alpha, 0.0F);
        EXPECT_EQ(transforms->copy(effect, &a, &b, nullptr, nullptr), 0);
        const PF_CompositeMode multiply{PF_Xfer_MULTIPLY, 0, 255, 0, 32768};
        EXPECT_EQ(transforms->transfer_rect(effect, PF_Quality_HI, 0, PF_Field_FRAME, nullptr, &a, &multiply,
                                            nullptr, 0, 0, &b),
                  0);
        EXPECT_EQ(pixels[0].green, 0.25F);
        A_long kernel[1] = {128};
        EXPECT_EQ(transforms->convolve(effect, &a, nullptr, PF_KernelFlag_1D, 1, kernel, kernel, kernel,
                                       kernel, &b),
                  0);
        EXPECT_EQ(pixels[0].red, 1.25F);
        EXPECT_NE(transforms->copy(effect, &a, call.output, nullptr, nullptr), 0);
        for (PF_EffectWorld* world : {&a, &b})
            EXPECT_EQ(worlds->PF_DisposeWorld(effect, world), 0);
    });
    EXPECT_THAT(found, ElementsAre("RENDER, copy: answered 516: the arguments do not fit together"));
}

TEST_F(SuiteFunctionsTest, ProgramWithoutWindowsSaysSo) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const auto ask = [](const auto* app) {
            PF_Boolean isEngine = 0;
            EXPECT_EQ(app->PF_IsRenderEngine(&isEngine), 0);
            EXPECT_EQ(isEngine, 1);
            PF_App_Color color{1, 2, 3};
            EXPECT_EQ(app->PF_AppGetBgColor(&color), 0);
            EXPECT_EQ(color.green, 0);
            PF_AppPersonalTextInfo info;
            std::memset(&info, 'x', sizeof info);
            EXPECT_EQ(app->PF_GetPersonalInfo(&info), 0);
            EXPECT_STREQ(info.org, "");
            EXPECT_EQ(app->PF_SetCursor(0), 0);
            EXPECT_NE(app->PF_GetMouse(nullptr), 0);
        };
        ask(call.suite<PF_AEAppSuite6>("PF AE App Suite", 6));
        ask(call.suite<PF_AEAppSuite7>("PF AE App Suite", 7));
        const auto* newest = call.suite<PF_AEAppSuite1>("PF AE App Suite", 1);
        ask(newest);
        char tag[16] = "";
        EXPECT_EQ(newest->PF_AppGetLanguage(tag), 0);
        EXPECT_STREQ(tag, "en_US");
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(SuiteFunctionsTest, ThereAreNoChannelsBesideColourNoLayerAndNoCamera) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const PF_ProgPtr effect = call.in->effect_ref;
        const auto* channels = call.suite<PF_ChannelSuite1>("PF AE Channel Suite", 1);
        A_long count = 5;
        EXPECT_EQ(channels->PF_GetLayerChannelCount(effect, 0, &count), 0);
        EXPECT_EQ(count, 0);
        PF_Boolean isFound = 1;
        PF_ChannelRef reference{};
        PF_ChannelDesc description{};
        EXPECT_EQ(
            channels->PF_GetLayerChannelIndexedRefAndDesc(effect, 0, 0, &isFound, &reference, &description),
            0);
        EXPECT_EQ(isFound, 0);
        const auto* interfaces = call.suite<AEGP_PFInterfaceSuite1>("AEGP PF Interface Suite", 1);
        AEGP_LayerH layer = reinterpret_cast<AEGP_LayerH>(&count);
        EXPECT_EQ(interfaces->AEGP_GetEffectLayer(effect, &layer), 0);
        EXPECT_EQ(layer, nullptr);
        A_Time time{};
        EXPECT_EQ(interfaces->AEGP_ConvertEffectToCompTime(effect, 12, 24, &time), 0);
        EXPECT_EQ(time.value, 12);
        EXPECT_EQ(time.scale, 24U);
        layer = reinterpret_cast<AEGP_LayerH>(&count);
        EXPECT_EQ(interfaces->AEGP_GetEffectCamera(effect, &time, &layer), 0);
        EXPECT_EQ(layer, nullptr);
        EXPECT_NE(interfaces->AEGP_GetEffectCameraMatrix(effect, &time, nullptr, nullptr, nullptr, nullptr),
                  0);
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(SuiteFunctionsTest, ValuesAreReadAsFloatingPoint) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const PF_ProgPtr effect = call.in->effect_ref;
        PF_ParamDef color = parameterOfType(PF_Param_COLOR, "C");
        color.u.cd.value = {255, 51, 0, 102};
        PF_PixelFloat floatColor{};
        const auto* colors = call.suite<PF_ColorParamSuite1>("PF ColorParamSuite", 1);
        EXPECT_EQ(colors->PF_GetFloatingPointColorFromColorDef(effect, &color, &floatColor), 0);
        EXPECT_EQ(floatColor.red, 0.2F);
        EXPECT_EQ(floatColor.blue, 0.4F);
        PF_ParamDef point = parameterOfType(PF_Param_POINT, "P");
        point.u.td.x_value = 3 * 32768;
        A_FloatPoint floatPoint{};
        const auto* points = call.suite<PF_PointParamSuite1>("PF PointParamSuite", 1);
        EXPECT_EQ(points->PF_GetFloatingPointValueFromPointDef(effect, &point, &floatPoint), 0);
        EXPECT_EQ(floatPoint.x, 1.5);
        EXPECT_NE(points->PF_GetFloatingPointValueFromPointDef(effect, &color, &floatPoint), 0);
        PF_ParamDef angle = parameterOfType(PF_Param_ANGLE, "A");
        angle.u.ad.value = -90 * 65536;
        A_FpLong degrees = 0;
        const auto* angles = call.suite<PF_AngleParamSuite1>("PF AngleParamSuite", 1);
        EXPECT_EQ(angles->PF_GetFloatingPointValueFromAngleDef(effect, &angle, &degrees), 0);
        EXPECT_EQ(degrees, -90.0);
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(SuiteFunctionsTest, EffectWithItsOwnInterfaceMayRegisterIt) {
    runAt(PF_Cmd_PARAMS_SETUP, [](const EffectCall& call) {
        call.out->num_params = 1;
        const PF_ProgPtr effect = call.in->effect_ref;
        PF_CustomUIInfo info{};
        info.events = PF_CustomEFlag_COMP | PF_CustomEFlag_LAYER;
        EXPECT_EQ(call.in->inter.register_ui(effect, &info), 0);
        const auto* button = call.suite<PF_EffectUISuite1>("PF Effect UI Suite", 1);
        EXPECT_EQ(button->PF_SetOptionsButtonName(effect, "Options of thirty-one letters."), 0);
        EXPECT_NE(button->PF_SetOptionsButtonName(effect, "A name that does not end within the room"), 0);
    });
    EXPECT_THAT(found, ElementsAre("PARAMS_SETUP, PF_SetOptionsButtonName: the name is longer than 31 "
                                   "characters"));
}

}  // namespace
}  // namespace perch::test
