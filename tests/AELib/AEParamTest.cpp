// Declaring parameters, and editing copies of them.

#include "AEParam.h"

#include <cstring>
#include <stdexcept>

#include "TestEffect.h"

namespace {

using AELib::AEContext;
using AELib::AEParam;
using AELib::AEParamCreator;

AEParam MakeParam() {
    AEParam param;
    PF_ParamDef def;
    std::memset(&def, 0, sizeof def);
    param = def;
    return param;
}

TEST(AEParamTest, IsTheHostsRecord) {
    PF_ParamDef def;
    std::memset(&def, 0x5A, sizeof def);
    AEParam param;
    param = def;
    EXPECT_EQ(sizeof(PF_ParamDef), sizeof(AEParam));
    EXPECT_EQ(0, std::memcmp(&param, &def, sizeof def));
}

TEST(AEParamTest, EnableClearsTheDisabledFlagAlone) {
    AEParam param = MakeParam();
    param.ui_flags = PF_PUI_CONTROL | PF_PUI_DISABLED;
    param.enable(true);
    EXPECT_EQ(PF_PUI_CONTROL, param.ui_flags);
    param.enable(false);
    EXPECT_EQ(PF_PUI_CONTROL | PF_PUI_DISABLED, param.ui_flags);
}

TEST(AEParamTest, OpenTwirlyIsEnable) {
    AEParam param = MakeParam();
    param.flags = PF_ParamFlag_START_COLLAPSED;
    param.openTwirly(false);
    EXPECT_EQ(PF_PUI_DISABLED, param.ui_flags);
    param.openTwirly(true);
    EXPECT_EQ(0, param.ui_flags);
    EXPECT_EQ(PF_ParamFlag_START_COLLAPSED, param.flags);
}

TEST(AEParamTest, SetColourWritesTheValueAlone) {
    AEParam param = MakeParam();
    param.setColor({1, 2, 3, 4});
    EXPECT_EQ(1, param.u.cd.value.alpha);
    EXPECT_EQ(2, param.u.cd.value.red);
    EXPECT_EQ(3, param.u.cd.value.green);
    EXPECT_EQ(4, param.u.cd.value.blue);
    EXPECT_EQ(0, param.u.cd.dephault.red);
    EXPECT_EQ(0, param.uu.change_flags);
}

TEST(AEParamTest, SetChangedAddsItsFlag) {
    AEParam param = MakeParam();
    param.uu.change_flags = 2;
    param.setChanged();
    EXPECT_EQ(3, param.uu.change_flags);
}

TEST(AEParamTest, LongNamesFillTheFieldUnterminated) {
    const std::string letters(40, 'n');
    for (const std::size_t length : {0U, 1U, 31U, 32U, 40U}) {
        AEParam param = MakeParam();
        std::memset(param.name, 'x', sizeof param.name);
        param.setName(letters.substr(0, length).c_str());
        std::string expected(32, 'x');
        const std::size_t copied = std::min<std::size_t>(length, 32);
        expected.replace(0, copied, letters, 0, copied);
        if (length < 32) expected[length] = '\0';
        EXPECT_EQ(expected, std::string(param.name, 32)) << length;
        EXPECT_EQ(0, param.flags) << "the member behind the name";
    }
}

class AEParamCreatorTest : public HostedEffectTest {
protected:
    // Declares on a creator and returns what reached the host.
    const std::vector<PF_ParamDef>& declare(const std::function<void(AEParamCreator&)>& declarations) {
        host.declared.clear();
        AEContext context = makeContext(PF_Cmd_PARAMS_SETUP);
        AEParamCreator create(context);
        declarations(create);
        create.addParam();
        return host.declared;
    }
};

// A declaration of 13, "Name", before its type's fields are filled.
PF_ParamDef Blank(PF_ParamType type) {
    PF_ParamDef def;
    std::memset(&def, 0, sizeof def);
    def.uu.id = 13;
    std::strcpy(def.name, "Name");
    def.param_type = type;
    def.flags = PF_ParamFlag_START_COLLAPSED;
    return def;
}

PF_ParamDef FloatSlider(float sliderMin, float validMin, float sliderMax, float validMax, float dflt) {
    PF_ParamDef def = Blank(PF_Param_FLOAT_SLIDER);
    def.u.fs_d.value = dflt;
    def.u.fs_d.slider_min = sliderMin;
    def.u.fs_d.valid_min = validMin;
    def.u.fs_d.slider_max = sliderMax;
    def.u.fs_d.valid_max = validMax;
    def.u.fs_d.dephault = dflt;
    def.u.fs_d.precision = 2;
    return def;
}

struct Declaration {
    const char* what;
    std::function<void(AEParamCreator&)> declare;
    std::function<PF_ParamDef()> expected;
};

constexpr char kChoices[] = "One|Two|Three";
constexpr char kLabel[] = "Label";

const Declaration kDeclarations[] = {
    {"layer", [](AEParamCreator& c) { c.layer(13, "Name", 5); },
     [] {
         PF_ParamDef def = Blank(PF_Param_LAYER);
         def.u.ld.dephault = 5;
         return def;
     }},
    {"slider", [](AEParamCreator& c) { c.slider(13, "Name", 1, -2, 3, 4, 0.1F, 2); },
     [] { return FloatSlider(1, -2, 3, 4, 0.1F); }},
    {"percent", [](AEParamCreator& c) { c.percent(13, "Name", 50, 2); },
     [] {
         PF_ParamDef def = FloatSlider(0, 0, 100, 100, 50);
         def.u.fs_d.display_flags = PF_ValueDisplayFlag_PERCENT;
         return def;
     }},
    {"percent of one decimal", [](AEParamCreator& c) { c.percent(13, "Name", 50, 1); },
     [] {
         PF_ParamDef def = FloatSlider(0, 0, 100, 100, 50);
         def.u.fs_d.display_flags = PF_ValueDisplayFlag_PERCENT;
         def.u.fs_d.precision = 1;
         return def;
     }},
    {"angle", [](AEParamCreator& c) { c.angle(13, "Name", 45.5F, 9); },
     [] {
         PF_ParamDef def = Blank(PF_Param_ANGLE);
         def.u.ad.value = def.u.ad.dephault = 2981888;
         return def;
     }},
    {"angle below zero", [](AEParamCreator& c) { c.angle(13, "Name", -0.5F, 9); },
     [] {
         PF_ParamDef def = Blank(PF_Param_ANGLE);
         def.u.ad.value = def.u.ad.dephault = -32767;  // trunc(-32768 + 0.5)
         return def;
     }},
    {"point", [](AEParamCreator& c) { c.point(13, "Name", 50, 25.5F, true); },
     [] {
         PF_ParamDef def = Blank(PF_Param_POINT);
         def.u.td.x_dephault = 3276800;
         def.u.td.y_dephault = 1671168;
         return def;
     }},
    {"color",
     [](AEParamCreator& c) {
         c.color(13, "Name", {0.5F, 1.0F, 0.0F, 0.2F});
     },
     [] {
         PF_ParamDef def = Blank(PF_Param_COLOR);
         def.u.cd.value = def.u.cd.dephault = {255, 255, 0, 51};
         return def;
     }},
    {"checkbox on", [](AEParamCreator& c) { c.checkbox(13, "Name", kLabel, true); },
     [] {
         PF_ParamDef def = Blank(PF_Param_CHECKBOX);
         def.u.bd.dephault = 1;
         def.u.bd.u.nameptr = kLabel;
         return def;
     }},
    {"checkbox off", [](AEParamCreator& c) { c.checkbox(13, "Name", kLabel, false); },
     [] {
         PF_ParamDef def = Blank(PF_Param_CHECKBOX);
         def.u.bd.u.nameptr = kLabel;
         return def;
     }},
    {"popup", [](AEParamCreator& c) { c.popup(13, "Name", 2, kChoices); },
     [] {
         PF_ParamDef def = Blank(PF_Param_POPUP);
         def.u.pd.num_choices = 3;
         def.u.pd.dephault = 3;
         def.u.pd.u.namesptr = kChoices;
         return def;
     }},
    {"group start", [](AEParamCreator& c) { c.groupStart(13, "Name", true); },
     [] { return Blank(PF_Param_GROUP_START); }},
    {"group end", [](AEParamCreator& c) { c.groupEnd(13); },
     [] {
         PF_ParamDef def = Blank(PF_Param_GROUP_END);
         std::memset(def.name, 0, sizeof def.name);
         return def;
     }},
    {"display pixel", [](AEParamCreator& c) { c.slider(13, "Name", 0, 0, 1, 1, 0, 2), c.displayPixel(); },
     [] {
         PF_ParamDef def = FloatSlider(0, 0, 1, 1, 0);
         def.u.fs_d.display_flags = PF_ValueDisplayFlag_PIXEL;
         return def;
     }},
    {"display percent", [](AEParamCreator& c) { c.slider(13, "Name", 0, 0, 1, 1, 0, 2), c.displayPercent(); },
     [] {
         PF_ParamDef def = FloatSlider(0, 0, 1, 1, 0);
         def.u.fs_d.display_flags = PF_ValueDisplayFlag_PERCENT;
         return def;
     }},
    {"want phase", [](AEParamCreator& c) { c.slider(13, "Name", 0, 0, 1, 1, 0, 2), c.wantPhase(); },
     [] {
         PF_ParamDef def = FloatSlider(0, 0, 1, 1, 0);
         def.u.fs_d.fs_flags = PF_FSliderFlag_WANT_PHASE;
         return def;
     }},
    {"disable and supervise", [](AEParamCreator& c) { c.layer(13, "Name", 0), c.disable(), c.supervise(); },
     [] {
         PF_ParamDef def = Blank(PF_Param_LAYER);
         def.ui_flags = PF_PUI_DISABLED;
         def.flags |= PF_ParamFlag_SUPERVISE;
         return def;
     }},
};

TEST_F(AEParamCreatorTest, EveryDeclarationIsOneWholeRecord) {
    for (const Declaration& declaration : kDeclarations) {
        const std::vector<PF_ParamDef>& declared = declare(declaration.declare);
        ASSERT_EQ(1U, declared.size()) << declaration.what;
        const PF_ParamDef expected = declaration.expected();
        EXPECT_EQ(0, std::memcmp(&expected, &declared[0], sizeof expected)) << declaration.what;
        EXPECT_EQ(1, manager.getParamNumber(13)) << declaration.what;
    }
}

TEST_F(AEParamCreatorTest, GroupsStartClosedUnlessTwirledOpen) {
    const auto& declared = declare([](AEParamCreator& create) {
        create.groupStart(1, "Closed", true);
        create.groupStart(2, "Closed too", false);
        create.groupStart(3, "Open", true);
        create.openTwirly();
        create.groupStart(4, "Closed again", false);
    });
    ASSERT_EQ(4U, declared.size());
    EXPECT_EQ(PF_ParamFlag_START_COLLAPSED, declared[0].flags);
    EXPECT_EQ(PF_ParamFlag_START_COLLAPSED, declared[1].flags);
    EXPECT_EQ(0, declared[2].flags);
    EXPECT_EQ(PF_ParamFlag_START_COLLAPSED, declared[3].flags);
}

TEST_F(AEParamCreatorTest, ModifiersKeepTheOtherFlags) {
    constexpr PF_ParamUIFlags kOtherUi = PF_PUI_TOPIC;
    constexpr A_u_long kOtherSliderFlag = 2;
    const auto& declared = declare([](AEParamCreator& create) {
        create.percent(1, "Pixel after percent", 50, 1);
        create.displayPixel();
        create.slider(2, "Percent after pixel", 0, 0, 1, 1, 0, 2);
        create.displayPixel();
        create.displayPercent();
        create.def.ui_flags = kOtherUi;
        create.disable();
        create.def.u.fs_d.fs_flags = kOtherSliderFlag;
        create.wantPhase();
    });
    ASSERT_EQ(2U, declared.size());
    for (const PF_ParamDef& def : declared)
        EXPECT_EQ(PF_ValueDisplayFlag_PERCENT | PF_ValueDisplayFlag_PIXEL, def.u.fs_d.display_flags)
            << def.name;
    EXPECT_EQ(kOtherUi | PF_PUI_DISABLED, declared[1].ui_flags);
    EXPECT_EQ(kOtherSliderFlag | PF_FSliderFlag_WANT_PHASE, declared[1].u.fs_d.fs_flags);
}

TEST_F(AEParamCreatorTest, EachDeclarationHandsOverTheOneBefore) {
    AEContext context = makeContext(PF_Cmd_PARAMS_SETUP);
    AEParamCreator create(context);
    create.layer(7, "First", 0);
    EXPECT_TRUE(host.declared.empty());
    create.groupEnd(9);
    ASSERT_EQ(1U, host.declared.size());
    EXPECT_EQ(7, host.declared[0].uu.id);
    create.disable();
    create.addParam();
    ASSERT_EQ(2U, host.declared.size());
    EXPECT_EQ(0, host.declared[0].ui_flags);
    EXPECT_EQ(PF_PUI_DISABLED, host.declared[1].ui_flags) << "modifiers are the last declaration's";
    create.addParam();
    EXPECT_EQ(2U, host.declared.size()) << "nothing is pending";
    EXPECT_EQ(1, manager.getParamNumber(7));
    EXPECT_EQ(2, manager.getParamNumber(9));
    EXPECT_EQ(3, create.nextIndex);
}

TEST_F(AEParamCreatorTest, DestructionHandsOverTheLastAndPublishesTheCount) {
    AEContext context = makeContext(PF_Cmd_PARAMS_SETUP);
    {
        AEParamCreator create(context);
        create.layer(7, "First", 0);
        create.layer(8, "Second", 0);
    }
    EXPECT_EQ(2U, host.declared.size());
    EXPECT_EQ(3, host.out.num_params);
}

TEST_F(AEParamCreatorTest, CreatorWithoutDeclarationsCountsTheSourceLayer) {
    manager.setParamNumber(0, 5);
    AEContext context = makeContext(PF_Cmd_PARAMS_SETUP);
    { const AEParamCreator create(context); }
    EXPECT_EQ(1, host.out.num_params);
    EXPECT_EQ(0, manager.getParamNumber(0));
    EXPECT_TRUE(host.declared.empty());
}

TEST_F(AEParamCreatorTest, NamesAreCutTo31Characters) {
    const std::string name(40, 'n');
    for (const std::size_t length : {31U, 32U, 40U}) {
        const auto& declared =
            declare([&](AEParamCreator& create) { create.layer(13, name.substr(0, length).c_str(), 0); });
        EXPECT_EQ(name.substr(0, 31), declared.at(0).name) << length;
        EXPECT_EQ(PF_ParamFlag_START_COLLAPSED, declared.at(0).flags) << length;
    }
}

TEST_F(AEParamCreatorTest, HostErrorEndsTheSetupAndTheCountIsNotPublished) {
    for (int failing = 1; failing <= 3; ++failing) {
        host.out.num_params = -1;
        host.declared.clear();
        host.failures.at(Callback::kAddParam, failing, 60 + failing);
        AEContext context = makeContext(PF_Cmd_PARAMS_SETUP);
        const int code = CodeOf([&] {
            AEParamCreator create(context);
            for (int id = 1; id <= 3; ++id)
                create.layer(id, "Layer", 0);
        });
        EXPECT_EQ(60 + failing, code) << failing;
        EXPECT_EQ(-1, host.out.num_params) << failing;
        EXPECT_EQ(static_cast<std::size_t>(failing - 1), host.declared.size()) << "nothing more is declared";
        EXPECT_EQ(failing, host.failures.calls(Callback::kAddParam)) << "nothing is tried again";
    }
}

TEST_F(AEParamCreatorTest, ARefusedDeclarationIsHandedOverAgainAtItsIndex) {
    AEContext context = makeContext(PF_Cmd_PARAMS_SETUP);
    {
        AEParamCreator create(context);
        create.layer(7, "First", 0);
        host.failures.at(Callback::kAddParam, 1, 61);
        EXPECT_EQ(61, CodeOf([&] { create.layer(8, "Never started", 0); }));
        EXPECT_TRUE(create.pending);
        EXPECT_EQ(1, create.nextIndex);
        create.layer(9, "Second", 0);
    }
    ASSERT_EQ(2U, host.declared.size());
    EXPECT_EQ(7, host.declared[0].uu.id);
    EXPECT_EQ(9, host.declared[1].uu.id);
    EXPECT_EQ(1, manager.getParamNumber(7));
    EXPECT_EQ(2, manager.getParamNumber(9));
    EXPECT_EQ(3, host.out.num_params);
}

TEST_F(AEParamCreatorTest, ExceptionOfTheEffectStillDeclaresWhatIsPending) {
    for (const bool refused : {false, true}) {
        host.declared.clear();
        host.out.num_params = -1;
        host.failures.at(Callback::kAddParam, refused ? 1 : 0, 5);
        AEContext context = makeContext(PF_Cmd_PARAMS_SETUP);
        EXPECT_THROW(
            {
                AEParamCreator create(context);
                create.layer(1, "Layer", 0);
                throw std::runtime_error("the effect failed");
            },
            std::runtime_error);
        EXPECT_EQ(refused ? -1 : 2, host.out.num_params);
    }
}

TEST_F(AEParamCreatorTest, CreatorWorksWhileAnotherExceptionIsOnItsWay) {
    struct DeclaresOnDestruction {
        AEContext& context;
        ~DeclaresOnDestruction() {
            AEParamCreator create(context);
            create.layer(1, "Layer", 0);
        }
    };
    AEContext context = makeContext(PF_Cmd_PARAMS_SETUP);
    try {
        const DeclaresOnDestruction declares{context};
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(1U, host.declared.size());
    EXPECT_EQ(2, host.out.num_params);
}

TEST_F(AEParamCreatorTest, FailedSetupReachesTheHostAsItsCode) {
    setUpGlobal();
    script.actions["paramsSetup"] = [](AEContext& context) {
        AEParamCreator create(context);
        create.layer(1, "Layer", 0);
    };
    host.failures.at(Callback::kAddParam, 1, 78);
    EXPECT_EQ(78, host.call(PF_Cmd_PARAMS_SETUP));
    EXPECT_EQ("Error 78 in Test Effect", host.message());
    EXPECT_EQ(0, host.out.num_params);
    host.failures.clear();
    EXPECT_EQ(PF_Err_NONE, host.call(PF_Cmd_PARAMS_SETUP));
    EXPECT_EQ(2, host.out.num_params);
}

}  // namespace
