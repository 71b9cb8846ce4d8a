// The basic suite and the tables behind it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "AEGP_Suites.h"
#include "Callbacks.h"
#include "PF_AppSuite.h"
#include "PF_ChannelSuite.h"
#include "PF_CustomUI.h"
#include "PF_FloatSuites.h"
#include "PF_Suites.h"
#include "PF_ValueSuites.h"
#include "ScriptedEffect.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct SuitesTest : testing::Test {
    ScriptedEffect script;
    World picture{4, 3, false};
    FrameRequest request;
    std::vector<std::string> found;

    SuitesTest() { request.input = &picture; }

    // Runs `body` at one command of a whole life; the faults end up in `found`.
    template <typename F>
    void runAt(PF_Cmd command, const F& body, HostOptions options = strictOptions()) {
        script.on(command, [&](const EffectCall& call) {
            body(call);
            return PF_Err_NONE;
        });
        Effect effect(ScriptedEffect::enter, {}, std::move(options));
        {
            Sequence sequence(effect);
            sequence.render(request);
            ParameterValues values = effect.defaultValues(4, 3);
            sequence.updateParamsUi(values);
        }
        effect.close();
        found = faults(effect);
    }
};

struct SuiteCase {
    const char* name;
    A_long version;
    int slots;
};

constexpr SuiteCase kSuites[] = {
    {"PF Iterate8 Suite", 1, 5},
    {"PF Iterate8 Suite", 2, 5},
    {"PF iterate16 Suite", 1, 3},
    {"PF iterate16 Suite", 2, 3},
    {"PF Param Utils Suite", 1, 10},
    {"PF Param Utils Suite", 2, 10},
    {"PF Param Utils Suite", 3, 9},
    {"PF iterateFloat Suite", 1, 3},
    {"PF iterateFloat Suite", 2, 3},
    {"PF Effect UI Suite", 1, 1},
    {"PF ColorParamSuite", 1, 1},
    {"PF PointParamSuite", 1, 1},
    {"PF AngleParamSuite", 1, 1},
    {"PF AE Channel Suite", 1, 5},
    {"PF AE App Suite", 6, 11},
    {"PF AE App Suite", 7, 12},
    {"PF AE App Suite", 1, 15},
    {"AEGP Effect Suite", 2, 17},
    {"AEGP Effect Suite", 3, 17},
    {"AEGP Effect Suite", 5, 23},
    {"PF ANSI Suite", 1, 19},
    {"PF Handle Suite", 2, 6},
    {"PF World Suite", 2, 3},
    {"PF World Transform Suite", 1, 7},
    {"PF Fill Matte Suite", 2, 7},
    {"PF Pixel Data Suite", 1, 3},
    {"PF Effect Sequence Data Suite", 1, 1},
    {"AEGP Utility Suite", 3, 9},
    {"AEGP Utility Suite", 5, 19},
    {"AEGP Utility Suite", 7, 25},
    {"AEGP Utility Suite", 13, 40},
    {"AEGP PF Interface Suite", 1, 5},
    {"AEGP Stream Suite", 4, 20},
    {"AEGP Stream Suite", 11, 40},
    {"AEGP Dynamic Stream Suite", 1, 17},
    {"AEGP Dynamic Stream Suite", 5, 40},
    {"AEGP Effect Suite", 1, 16},
    {"AEGP Effect Suite", 4, 40},
};

TEST_F(SuitesTest, EveryListedSuiteIsHandedOutWithoutNullSlots) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        for (const SuiteCase& suite : kSuites) {
            SCOPED_TRACE(std::string(suite.name) + " " + std::to_string(suite.version));
            const void* table = nullptr;
            ASSERT_EQ(call.in->pica_basicP->AcquireSuite(suite.name, suite.version, &table), 0);
            const auto* slots = static_cast<void* const*>(table);
            for (int slot = 0; slot < suite.slots; ++slot)
                EXPECT_NE(slots[slot], nullptr) << "slot " << slot;
            EXPECT_EQ(call.in->pica_basicP->ReleaseSuite(suite.name, suite.version), 0);
        }
    });
    EXPECT_THAT(found, IsEmpty());
}

// The parts between separators, without the spaces about them.
std::vector<std::string> partsOf(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        const std::size_t first = part.find_first_not_of(' ');
        if (first != std::string::npos)
            parts.push_back(part.substr(first, part.find_last_not_of(' ') - first + 1));
    }
    return parts;
}

// Rows as "| PF Iterate8 Suite, PF iterate16 Suite | 1, 2 | all |".
TEST_F(SuitesTest, TheTableInTheDocumentsListsEverySuiteAndVersion) {
    std::ifstream document(PERCH_SOURCES "/docs/perch.md");
    std::set<std::pair<std::string, int>> documented;
    for (std::string line; std::getline(document, line);) {
        const std::vector<std::string> cells = partsOf(line, '|');
        if (cells.size() != 3 || cells[0].find("Suite") == std::string::npos) continue;
        for (const std::string& name : partsOf(cells[0], ','))
            for (const std::string& version : partsOf(cells[1], ','))
                documented.emplace(name, std::stoi(version));
    }
    std::set<std::pair<std::string, int>> listed;
    std::set<std::string> names;
    for (const SuiteCase& suite : kSuites) {
        listed.emplace(suite.name, suite.version);
        names.insert(suite.name);
    }
    EXPECT_EQ(documented, listed);
    EXPECT_EQ(suiteNames(), names);
}

TEST_F(SuitesTest, OtherNamesAndVersionsAreRefused) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        for (const auto& [name, version] : {SuiteName{"PF Iterate8 Suite", 3}, SuiteName{"PF Iterate8", 1},
                                            SuiteName{"", 1}, SuiteName{"AEGP Layer Suite", 1}}) {
            const void* table = &table;
            EXPECT_NE(call.in->pica_basicP->AcquireSuite(name.c_str(), version, &table), 0) << name;
        }
        const void* table = nullptr;
        EXPECT_NE(call.in->pica_basicP->AcquireSuite(nullptr, 1, &table), 0);
    });
}

TEST_F(SuitesTest, WithheldSuitesAreRefused) {
    HostOptions options = strictOptions();
    options.withheldSuites = {{"PF Iterate8 Suite", 1}, {"PF Handle Suite", 0}};
    runAt(
        PF_Cmd_RENDER,
        [](const EffectCall& call) {
            EXPECT_EQ(call.suite<PF_Iterate8Suite1>("PF Iterate8 Suite", 1), nullptr);
            EXPECT_NE(call.suite<PF_Iterate8Suite1>("PF Iterate8 Suite", 2), nullptr);
            EXPECT_EQ(call.suite<PF_HandleSuite1>("PF Handle Suite", 2), nullptr);
        },
        options);
}

TEST_F(SuitesTest, HostWithoutSuitesGivesNoBasicSuite) {
    HostOptions options = strictOptions();
    options.offersSuites = false;
    runAt(
        PF_Cmd_RENDER, [](const EffectCall& call) { EXPECT_EQ(call.in->pica_basicP, nullptr); }, options);
}

TEST_F(SuitesTest, HostVersionIsAsAsked) {
    HostOptions options = strictOptions();
    options.interfaceVersion = {12, 10};
    runAt(
        PF_Cmd_RENDER,
        [](const EffectCall& call) {
            EXPECT_EQ(call.in->version.major, 12);
            EXPECT_EQ(call.in->version.minor, 10);
        },
        options);
}

TEST_F(SuitesTest, SuiteHeldAtTheEndIsANoteAndReleasedTooOftenAFault) {
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        call.suite<PF_HandleSuite1>("PF Handle Suite", 2);
        EXPECT_NE(call.in->pica_basicP->ReleaseSuite("PF World Suite", 2), 0);
        return PF_Err_NONE;
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    {
        Sequence sequence(effect);
        sequence.render(request);
    }
    effect.close();
    std::vector<std::string> lines;
    for (const Finding& finding : effect.findings())
        lines.push_back(describe(finding));
    EXPECT_THAT(lines,
                ElementsAre("RENDER, ReleaseSuite: \"PF World Suite\" version 2 is released more often than "
                            "acquired",
                            "note: GLOBAL_SETDOWN, AcquireSuite: \"PF Handle Suite\" version 2 is acquired 1 "
                            "more times than released"));
}

TEST_F(SuitesTest, BlocksKeepTheirBytesWhenTheyGrow) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const SPBasicSuite& basic = *call.in->pica_basicP;
        void* block = nullptr;
        ASSERT_EQ(basic.AllocateBlock(3, &block), 0);
        std::memcpy(block, "xyz", 3);
        void* grown = nullptr;
        ASSERT_EQ(basic.ReallocateBlock(block, 5000, &grown), 0);
        EXPECT_EQ(std::memcmp(grown, "xyz", 3), 0);
        EXPECT_EQ(basic.FreeBlock(grown), 0);
        EXPECT_NE(basic.FreeBlock(grown), 0);
        EXPECT_NE(basic.AllocateBlock(~std::size_t{0}, &block), 0);
        EXPECT_NE(basic.IsEqual("a", "a"), 0);
        EXPECT_EQ(basic.IsEqual("a", "b"), 0);
        EXPECT_NE(basic.Undefined(), 0);
    });
    EXPECT_THAT(
        found,
        ElementsAre("RENDER, FreeBlock: the block is not one of the host's, or has been freed before"));
}

TEST_F(SuitesTest, EffectHidesItsParameterThroughTheProjectSuites) {
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

TEST_F(SuitesTest, UnusedSlotsAnswerWithAnError) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const auto* suite = call.suite<AEGP_UtilitySuite13>("AEGP Utility Suite", 13);
        EXPECT_NE(reinterpret_cast<PF_Err (*)(void)>(suite->unused_0[0])(), 0);
        const auto* slots = reinterpret_cast<PF_Err (*const*)(void)>(suite);
        EXPECT_NE(slots[50](), 0);
    });
}

TEST_F(SuitesTest, ParameterUtilitiesKnowNoKeyFrames) {
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

TEST_F(SuitesTest, WorldSuiteMakesEveryDepth) {
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
TEST_F(SuitesTest, FloatWorldsGoThroughTheirSuites) {
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

TEST_F(SuitesTest, ProgramWithoutWindowsSaysSo) {
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

TEST_F(SuitesTest, ThereAreNoChannelsBesideColourNoLayerAndNoCamera) {
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

TEST_F(SuitesTest, ValuesAreReadAsFloatingPoint) {
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

TEST_F(SuitesTest, EffectWithItsOwnInterfaceMayRegisterIt) {
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

TEST_F(SuitesTest, EveryUtilityCallbackIsThere) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        // All but the last entry, which is reserved, and the number that ends the text functions.
        const auto* slots = reinterpret_cast<void* const*>(&call.utilities());
        for (std::size_t slot = 0; slot < offsetof(PF_UtilCallbacks, reserved) / sizeof(void*); ++slot) {
            const std::size_t offset = slot * sizeof(void*);
            if (offset == offsetof(PF_UtilCallbacks, ansi) + offsetof(PF_ANSICallbacksBlock, unused_longA))
                continue;
            EXPECT_NE(slots[slot], nullptr) << "at " << offset;
        }
        const auto* interactions = reinterpret_cast<void* const*>(&call.in->inter);
        for (int slot = 0; slot < 9; ++slot)
            EXPECT_NE(interactions[slot], nullptr) << "slot " << slot;
    });
}

TEST_F(SuitesTest, WhatIsNotOfferedAnswersWithAnError) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const PF_ProgPtr effect = call.in->effect_ref;
        PF_CallbackFunc function = nullptr;
        EXPECT_NE(call.in->inter.register_ui(effect, nullptr), 0);
        EXPECT_NE(call.in->inter.checkin_layer_audio(effect, nullptr), 0);
        EXPECT_NE(call.utilities().get_callback_addr(effect, 0, 0, 1, &function), 0);
        EXPECT_NE(call.utilities().get_platform_data(effect, 1, nullptr), 0);
        EXPECT_NE(call.utilities().app(effect, 1), 0);
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(SuitesTest, TextIsFormattedAsByTheCFunction) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        char text[64] = "";
        EXPECT_EQ(call.utilities().ansi.sprintf(text, "%s %d %.2f %c", "frame", 12, 0.5, 'x'), 15);
        EXPECT_STREQ(text, "frame 12 0.50 x");
        EXPECT_EQ(call.utilities().ansi.hypot(3.0, 4.0), 5.0);
        EXPECT_EQ(call.utilities().ansi.strcpy(text, "short"), text);
        EXPECT_STREQ(text, "short");
    });
}

}  // namespace
}  // namespace perch::test
