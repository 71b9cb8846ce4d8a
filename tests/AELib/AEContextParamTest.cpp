// Parameters through the context: reading by type, and changes to their look.

#include <climits>
#include <cstring>
#include <limits>
#include <utility>

#include "AEContext.h"
#include "TestEffect.h"

namespace {

using AELib::AEContext;

constexpr char kFile[] = "AELib/AELib Source/AEContext";
constexpr int kId = 40;

class AEContextParamTest : public HostedEffectTest {
protected:
    AEContextParamTest() {
        host.declared.resize(3);
        host.adoptDeclaredParams();
        manager.setParamNumber(kId, 2);
    }
    PF_ParamDef& param() { return host.param(2); }
};

struct Value {
    const char* what;
    void (*set)(PF_ParamDef&);
    float asFloat;
    int asInt;
};

TEST_F(AEContextParamTest, EveryNumberReadsAsFloatAndInt) {
    const Value values[] = {
        {"slider", [](PF_ParamDef& p) { p.param_type = PF_Param_SLIDER, p.u.sd.value = -7; }, -7.0F, -7},
        {"fixed 2.5", [](PF_ParamDef& p) { p.param_type = PF_Param_FIX_SLIDER, p.u.fd.value = 163840; }, 2.5F,
         3},
        {"fixed -2.5", [](PF_ParamDef& p) { p.param_type = PF_Param_FIX_SLIDER, p.u.fd.value = -163840; },
         -2.5F, -2},
        {"fixed 2.49", [](PF_ParamDef& p) { p.param_type = PF_Param_FIX_SLIDER, p.u.fd.value = 163839; },
         163839.0F / 65536.0F, 2},
        {"fixed largest", [](PF_ParamDef& p) { p.param_type = PF_Param_FIX_SLIDER, p.u.fd.value = INT_MAX; },
         32768.0F, 32768},
        {"angle 90", [](PF_ParamDef& p) { p.param_type = PF_Param_ANGLE, p.u.ad.value = 90 * 65536; }, 90.0F,
         90},
        {"angle -0.75", [](PF_ParamDef& p) { p.param_type = PF_Param_ANGLE, p.u.ad.value = -49152; }, -0.75F,
         -1},
        {"checkbox off", [](PF_ParamDef& p) { p.param_type = PF_Param_CHECKBOX, p.u.bd.value = 0; }, 0.0F, 0},
        {"checkbox on", [](PF_ParamDef& p) { p.param_type = PF_Param_CHECKBOX, p.u.bd.value = 1; }, 1.0F, 1},
        {"checkbox 17", [](PF_ParamDef& p) { p.param_type = PF_Param_CHECKBOX, p.u.bd.value = 17; }, 1.0F, 1},
        {"popup first", [](PF_ParamDef& p) { p.param_type = PF_Param_POPUP, p.u.pd.value = 1; }, 0.0F, 0},
        {"popup fifth", [](PF_ParamDef& p) { p.param_type = PF_Param_POPUP, p.u.pd.value = 5; }, 4.0F, 4},
        {"float 2.5", [](PF_ParamDef& p) { p.param_type = PF_Param_FLOAT_SLIDER, p.u.fs_d.value = 2.5; },
         2.5F, 3},
        {"float -2.5", [](PF_ParamDef& p) { p.param_type = PF_Param_FLOAT_SLIDER, p.u.fs_d.value = -2.5; },
         -2.5F, -2},
        {"float 0.1", [](PF_ParamDef& p) { p.param_type = PF_Param_FLOAT_SLIDER, p.u.fs_d.value = 0.1; },
         0.1F, 0},
        {"float -0.6", [](PF_ParamDef& p) { p.param_type = PF_Param_FLOAT_SLIDER, p.u.fs_d.value = -0.6; },
         -0.6F, 0},
    };
    for (const Value& value : values) {
        value.set(param());
        const AEContext context = makeContext();
        EXPECT_EQ(value.asFloat, context.getParamFloat(kId)) << value.what;
        EXPECT_EQ(value.asInt, context.getParamInt(kId)) << value.what;
        EXPECT_EQ(value.asInt > 0, context.getParamBool(kId)) << value.what;
    }
}

TEST_F(AEContextParamTest, OtherTypesFail) {
    for (const PF_ParamType type : std::initializer_list<PF_ParamType>{
             PF_Param_LAYER, PF_Param_COLOR, PF_Param_POINT, PF_Param_CUSTOM, PF_Param_NO_DATA,
             PF_Param_ARBITRARY_DATA, PF_Param_PATH, PF_Param_GROUP_START, PF_Param_GROUP_END,
             PF_Param_BUTTON, PF_Param_POINT_3D, 99, -1}) {
        SCOPED_TRACE(type);
        param().param_type = type;
        const AEContext context = makeContext();
        ExpectAssertion(kFile, 309, [&] { context.getParamFloat(kId); });
        ExpectAssertion(kFile, 361, [&] { context.getParamInt(kId); });
        ExpectAssertion(kFile, 309, [&] { context.getParamPercent(kId); });
        ExpectAssertion(kFile, 361, [&] { context.getParamBool(kId); });
    }
}

TEST_F(AEContextParamTest, UnknownIdentifierReadsTheSourceLayer) {
    const AEContext context = makeContext();
    EXPECT_EQ(&host.param(0), context.getParam(1234));
    ExpectAssertion(kFile, 309, [&] { context.getParamFloat(1234); });
}

TEST_F(AEContextParamTest, NumbersOfParametersAreTheGlobalManagers) {
    const AEContext context = makeContext();
    context.setParamNumber(8, 3);
    EXPECT_EQ(3, manager.getParamNumber(8));
    EXPECT_EQ(3, context.getParamNumber(8));
    EXPECT_EQ(&host.param(3), context.getParam(8));
}

TEST_F(AEContextParamTest, PercentagesAreFractions) {
    param().param_type = PF_Param_FLOAT_SLIDER;
    for (int percent = 0; percent <= 100; ++percent) {
        param().u.fs_d.value = percent;
        EXPECT_EQ(static_cast<float>(percent * 0.01), makeContext().getParamPercent(kId)) << percent;
    }
}

TEST_F(AEContextParamTest, ColoursReadInBothDepths) {
    param().param_type = PF_Param_COLOR;
    param().u.cd.value = {255, 1, 2, 51};
    const auto colour8 = makeContext().getParamColor8(kId);
    EXPECT_EQ(255, colour8.alpha);
    EXPECT_EQ(1, colour8.red);
    EXPECT_EQ(2, colour8.green);
    EXPECT_EQ(51, colour8.blue);
    const auto colour = makeContext().getParamColor(kId);
    EXPECT_EQ(1.0F, colour.alpha);
    EXPECT_FLOAT_EQ(1.0F / 255.0F, colour.red);
    EXPECT_FLOAT_EQ(0.2F, colour.blue);
}

TEST_F(AEContextParamTest, PointsReadAsPixelsAndWholePixels) {
    param().param_type = PF_Param_POINT;
    param().u.td.x_value = 163840;   // 2.5
    param().u.td.y_value = -163840;  // -2.5
    const auto point = makeContext().getParamPoint(kId);
    EXPECT_EQ(2.5F, point.x);
    EXPECT_EQ(-2.5F, point.y);
    const auto whole = makeContext().getParamIntPoint(kId);
    EXPECT_EQ(2, whole.x);
    EXPECT_EQ(-3, whole.y) << "the upper 16 bits";
}

TEST_F(AEContextParamTest, SetColourMarksTheParameterChanged) {
    param().uu.change_flags = 4;
    makeContext().setParamColor(kId, {9, 8, 7, 6});
    EXPECT_EQ(9, param().u.cd.value.alpha);
    EXPECT_EQ(8, param().u.cd.value.red);
    EXPECT_EQ(7, param().u.cd.value.green);
    EXPECT_EQ(6, param().u.cd.value.blue);
    EXPECT_EQ(5, param().uu.change_flags);
}

TEST_F(AEContextParamTest, DisableSetsAndClearsItsFlagAlone) {
    param().ui_flags = PF_PUI_TOPIC;
    makeContext().disableParam(kId, true);
    EXPECT_EQ(PF_PUI_TOPIC | PF_PUI_DISABLED, param().ui_flags);
    makeContext().disableParam(kId, false);
    EXPECT_EQ(PF_PUI_TOPIC, param().ui_flags);
}

TEST_F(AEContextParamTest, ChangedParameterComesFromTheExtraRecord) {
    EXPECT_EQ(-1, makeContext(PF_Cmd_USER_CHANGED_PARAM).getChangedParamNumber());
    PF_UserChangedParamExtra extra = {7};
    EXPECT_EQ(7, makeContext(PF_Cmd_USER_CHANGED_PARAM, &extra).getChangedParamNumber());
}

TEST_F(AEContextParamTest, AParameterThatWasNotCopiedIsSentAsZeros) {
    useSuites();
    AEContext context = makeContext(PF_Cmd_UPDATE_PARAMS_UI);
    context.updateParamUI(kId);
    ASSERT_EQ(1U, host.uiUpdates.size());
    PF_ParamDef zeros;
    std::memset(&zeros, 0, sizeof zeros);
    EXPECT_EQ(0, std::memcmp(&zeros, &host.uiUpdates[0].second, sizeof zeros));
}

TEST_F(AEContextParamTest, CopiesAreWholePrivateAndSentToTheHost) {
    useSuites();
    std::memset(&param(), 0x3C, sizeof(PF_ParamDef));
    AEContext context = makeContext(PF_Cmd_UPDATE_PARAMS_UI);
    AELib::AEParam& copy = context.copyParam(kId);
    EXPECT_EQ(&copy, &context.paramCopies.at(kId));
    EXPECT_EQ(0, std::memcmp(&copy, &param(), sizeof(PF_ParamDef)));
    copy.setName("Renamed");
    EXPECT_NE(0, std::memcmp(&copy, &param(), sizeof(PF_ParamDef)));
    context.updateParamUI(kId);
    ASSERT_EQ(1U, host.uiUpdates.size());
    EXPECT_EQ(2, host.uiUpdates[0].first);
    EXPECT_STREQ("Renamed", host.uiUpdates[0].second.name);
    host.failures.at(Callback::kUpdateParamUI, 1, 21);
    EXPECT_EQ(21, CodeOf([&] { context.updateParamUI(kId); }));
}

TEST_F(AEContextParamTest, UpdateWithoutSuitesDoesNothing) {
    AEContext context = makeContext(PF_Cmd_UPDATE_PARAMS_UI);
    context.copyParam(kId);
    context.updateParamUI(kId);
    EXPECT_TRUE(host.log.empty());
}

TEST_F(AEContextParamTest, HidingSetsTheStreamsFlagAndGivesBothReferencesBack) {
    useSuites();
    manager.pluginID = 12;
    host.out.out_flags = 1;
    makeContext().hideParam(kId, true);
    EXPECT_EQ((std::vector<std::string>{"new effect 12", "new stream 12 2", "flag 2 1", "dispose effect",
                                        "dispose stream"}),
              host.streamLog);
    EXPECT_EQ(0x400001, host.out.out_flags);
    host.streamLog.clear();
    makeContext().hideParam(kId, false);
    EXPECT_EQ("flag 2 0", host.streamLog.at(2));
}

TEST_F(AEContextParamTest, HidingNeedsSuitesAndANewerHost) {
    makeContext().hideParam(kId, true);
    useSuites();
    host.in.version = {12, 10};
    makeContext().hideParam(kId, true);
    EXPECT_TRUE(host.log.empty());
    EXPECT_EQ(0, host.out.out_flags);
    host.in.version = {12, 11};
    makeContext().hideParam(kId, true);
    EXPECT_EQ(5U, host.streamLog.size());
}

TEST_F(AEContextParamTest, FailedHidingStopsAndLeavesItsReferences) {
    const std::pair<Callback, std::size_t> steps[] = {{Callback::kGetNewEffect, 1},
                                                      {Callback::kGetNewStream, 2},
                                                      {Callback::kSetStreamFlag, 3},
                                                      {Callback::kDisposeEffect, 4},
                                                      {Callback::kDisposeStream, 5}};
    useSuites();
    for (const auto& [callback, calls] : steps) {
        host.streamLog.clear();
        host.failures.at(callback, 1, 31);
        EXPECT_EQ(31, CodeOf([&] { makeContext().hideParam(kId, true); })) << NameOf(callback);
        EXPECT_EQ(calls, host.streamLog.size()) << NameOf(callback);
        EXPECT_EQ(0, host.out.out_flags) << NameOf(callback);
    }
}

// The code of an operation while a table of the host lacks one of its functions.
template <class Table, class Function, class Operation>
int CodeWithout(const Table* table, Function* Table::*entry, Operation operation) {
    Function* const function = std::exchange(const_cast<Table*>(table)->*entry, nullptr);
    const int code = CodeOf(operation);
    const_cast<Table*>(table)->*entry = function;
    return code;
}

TEST_F(AEContextParamTest, SuitesThatLackAFunctionAreRefused) {
    useSuites();
    AELib::SuiteHandler& suites = *AELib::gSuites;
    AEContext context = makeContext();
    context.copyParam(kId);
    EXPECT_EQ(PF_Err_INVALID_CALLBACK,
              CodeWithout(suites.paramUtils(), &PF_ParamUtilsSuite1::PF_UpdateParamUI,
                          [&] { context.updateParamUI(kId); }));
    const auto hide = [&] { context.hideParam(kId, true); };
    EXPECT_EQ(PF_Err_INVALID_CALLBACK,
              CodeWithout(suites.pfInterface(), &AEGP_PFInterfaceSuite1::AEGP_GetNewEffectForEffect, hide));
    EXPECT_EQ(PF_Err_INVALID_CALLBACK,
              CodeWithout(suites.stream(), &AEGP_StreamSuite1::AEGP_GetNewEffectStreamByIndex, hide));
    EXPECT_EQ(
        PF_Err_INVALID_CALLBACK,
        CodeWithout(suites.dynamicStream(), &AEGP_DynamicStreamSuite1::AEGP_SetDynamicStreamFlag, hide));
    EXPECT_EQ(PF_Err_INVALID_CALLBACK,
              CodeWithout(suites.effect(), &AEGP_EffectSuite1::AEGP_DisposeEffect, hide));
    EXPECT_EQ(PF_Err_INVALID_CALLBACK,
              CodeWithout(suites.stream(), &AEGP_StreamSuite1::AEGP_DisposeStream, hide));
    EXPECT_EQ(0, host.out.out_flags);
    EXPECT_EQ(0, CodeOf(hide));
}

TEST_F(AEContextParamTest, NullParameterFails) {
    AEContext context = makeContext();
    context.params = nullptr;
    ExpectAssertion(kFile, 1, [&] { context.getParam(kId); });
}

}  // namespace
