// Strict mode: each breach of the rules is found and named with its command and callback; the same effects
// are put up with otherwise.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "AEGP_Suites.h"
#include "PF_Suites.h"
#include "ScriptedEffect.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Misdeed {
    const char* name;
    PF_Cmd command;
    PF_Err (*commit)(const EffectCall& call);
    std::vector<std::string> faults;
};

void PrintTo(const Misdeed& misdeed, std::ostream* out) {
    *out << misdeed.name;
}

PF_ParamDef checkedOut(const EffectCall& call, PF_ParamIndex index) {
    PF_ParamDef param{};
    call.in->inter.checkout_param(call.in->effect_ref, index, 0, 1, 24, &param);
    return param;
}

PF_EffectWorld newWorld(const EffectCall& call) {
    PF_EffectWorld world{};
    call.utilities().new_world(call.in->effect_ref, 4, 2, PF_NewWorldFlag_NONE, &world);
    return world;
}

// Called on a worker for some of the iterations; the others wait until one has come by.
PF_Err onAWorker(const EffectCall& call, void (*body)(const EffectCall& call)) {
    struct Task {
        const EffectCall& call;
        void (*body)(const EffectCall&);
        std::atomic<bool> isDone{false};
    } task{call, body};
    return call.utilities().iterate_generic(3, &task, [](void* refcon, A_long thread, A_long, A_long) {
        auto& shared = *static_cast<Task*>(refcon);
        if (thread != 0) {
            shared.body(shared.call);
            shared.isDone = true;
        } else {
            while (!shared.isDone)
                std::this_thread::yield();
        }
        return PF_Err{PF_Err_NONE};
    });
}

const Misdeed kMisdeeds[] = {
    {"CheckoutLeftOpen",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         checkedOut(call, 1);
         return PF_Err{0};
     },
     {"RENDER, checkout_param: parameter 1 was checked out and never checked in"}},
    {"FailedCheckoutLeftOpen",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         checkedOut(call, 9);
         return PF_Err{0};
     },
     {"RENDER, checkout_param: index 9 is not from 0 to 1",
      "RENDER, checkout_param: parameter 9 was checked out (the checkout failed) and never checked in"}},
    {"CheckinWithoutCheckout",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         PF_ParamDef param{};
         param.uu.id = 5;
         call.in->inter.checkin_param(call.in->effect_ref, &param);
         return PF_Err{0};
     },
     {"RENDER, checkin_param: the parameter is not checked out"}},
    {"DoubleCheckin",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         PF_ParamDef param = checkedOut(call, 1);
         call.in->inter.checkin_param(call.in->effect_ref, &param);
         call.in->inter.checkin_param(call.in->effect_ref, &param);
         return PF_Err{0};
     },
     {"RENDER, checkin_param: the parameter is not checked out"}},
    {"CheckoutOutsideAFrame",
     PF_Cmd_SEQUENCE_SETUP,
     [](const EffectCall& call) {
         PF_ParamDef param = checkedOut(call, 0);
         call.in->inter.checkin_param(call.in->effect_ref, &param);
         return PF_Err{0};
     },
     {"SEQUENCE_SETUP, checkout_param: parameters are checked out from FRAME_SETUP to FRAME_SETDOWN only"}},
    {"ParameterAddedLate",
     PF_Cmd_SEQUENCE_SETUP,
     [](const EffectCall& call) {
         PF_ParamDef param = parameterOfType(PF_Param_SLIDER, "Late");
         call.in->inter.add_param(call.in->effect_ref, -1, &param);
         return PF_Err{0};
     },
     {"SEQUENCE_SETUP, add_param: parameters are declared at PARAMS_SETUP only"}},
    {"WrongParameterCount",
     PF_Cmd_PARAMS_SETUP,
     [](const EffectCall& call) {
         call.out->num_params = 4;
         return PF_Err{0};
     },
     {"PARAMS_SETUP: num_params is 4, but 1 parameters were declared, the input layer included"}},
    {"WriteToCheckedOutLayer",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         PF_ParamDef param = checkedOut(call, 1);
         param.u.ld.data[3].green ^= 1;
         call.in->inter.checkin_param(call.in->effect_ref, &param);
         return PF_Err{0};
     },
     {"RENDER, checkin_param: the pixels of parameter 1 were written; they are read-only"}},
    {"WriteToInput",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         call.params[0]->u.ld.data[0].alpha ^= 1;
         return PF_Err{0};
     },
     {"RENDER: the input's pixels were written; they are read-only without the flag I_WRITE_INPUT_BUFFER"}},
    {"WriteToInputAtSetDown",
     PF_Cmd_FRAME_SETDOWN,
     [](const EffectCall& call) {
         call.params[0]->u.ld.data[0].alpha ^= 1;
         return PF_Err{0};
     },
     {"FRAME_SETDOWN: the input's pixels were written; they are read-only without the flag "
      "I_WRITE_INPUT_BUFFER"}},
    {"OutputWrittenBehindItsRows",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         call.output->data[call.output->width].blue ^= 1;
         return PF_Err{0};
     },
     {"RENDER: the output: bytes in the gap after row 0 were written"}},
    {"OutputWrittenBeforeItsFirstRow",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         call.output->data[-1].blue ^= 1;
         return PF_Err{0};
     },
     {"RENDER: the output: bytes before the first row were written"}},
    {"WorldWrittenBehindItsLastRow",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         PF_EffectWorld world = newWorld(call);
         *(reinterpret_cast<char*>(world.data) + 2 * world.rowbytes) ^= 1;
         return call.utilities().dispose_world(call.in->effect_ref, &world);
     },
     {"RENDER, dispose_world: bytes after the last row were written"}},
    {"LayerWrittenBeforeItsFirstRow",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         PF_ParamDef param = checkedOut(call, 1);
         param.u.ld.data[-1].red ^= 1;
         return call.in->inter.checkin_param(call.in->effect_ref, &param);
     },
     {"RENDER, checkin_param: the picture of parameter 1: bytes before the first row were written"}},
    {"WorldNotDisposed",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         newWorld(call);
         return PF_Err{0};
     },
     {"RENDER, new_world: a world of 4 x 2 pixels was not disposed by the end of the command"}},
    {"WorldDisposedTwice",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         PF_EffectWorld world = newWorld(call);
         PF_EffectWorld copy = world;
         call.utilities().dispose_world(call.in->effect_ref, &world);
         call.utilities().dispose_world(call.in->effect_ref, &copy);
         return PF_Err{0};
     },
     {"RENDER, dispose_world: the world has been disposed before"}},
    {"ForeignWorldDisposed",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         PF_EffectWorld world = *call.output;
         call.utilities().dispose_world(call.in->effect_ref, &world);
         return PF_Err{0};
     },
     {"RENDER, dispose_world: the world is not one that the effect asked for"}},
    {"WorldWithoutSize",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         PF_EffectWorld world{};
         EXPECT_NE(call.utilities().new_world(call.in->effect_ref, 0, -1, 0, &world), 0);
         return PF_Err{0};
     },
     {"RENDER, new_world: a world of 0 x -1 pixels; each extent is 1 to 30000"}},
    {"HandleNotDisposed",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         call.utilities().host_new_handle(40);
         return PF_Err{0};
     },
     {"GLOBAL_SETDOWN, host_new_handle: a handle of 40 bytes was never disposed"}},
    {"HandleDisposedTwice",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         const PF_Handle handle = call.utilities().host_new_handle(40);
         call.utilities().host_dispose_handle(handle);
         call.utilities().host_dispose_handle(handle);
         return PF_Err{0};
     },
     {"RENDER, host_dispose_handle: the handle has been disposed before"}},
    {"HandleUnlockedTooOften",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         const PF_Handle handle = call.utilities().host_new_handle(40);
         call.utilities().host_lock_handle(handle);
         call.utilities().host_unlock_handle(handle);
         call.utilities().host_unlock_handle(handle);
         call.utilities().host_dispose_handle(handle);
         return PF_Err{0};
     },
     {"RENDER, host_unlock_handle: the handle is not locked; unlock it as often as it was locked"}},
    {"HandleOverrun",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         const PF_Handle handle = call.utilities().host_new_handle(40);
         (*handle)[40] = 1;
         call.utilities().host_dispose_handle(handle);
         return PF_Err{0};
     },
     {"RENDER, host_dispose_handle: bytes after a block of 40 bytes were written"}},
    {"DisposedHandleKept",
     PF_Cmd_SEQUENCE_SETUP,
     [](const EffectCall& call) {
         call.out->sequence_data = call.utilities().host_new_handle(1);
         call.utilities().host_dispose_handle(call.out->sequence_data);
         return PF_Err{0};
     },
     {"SEQUENCE_SETUP: sequence_data is not a handle of the host, or has been disposed",
      "FRAME_SETUP: sequence_data is not a handle of the host, or has been disposed",
      "RENDER: sequence_data is not a handle of the host, or has been disposed",
      "FRAME_SETDOWN: sequence_data is not a handle of the host, or has been disposed",
      "SEQUENCE_SETDOWN: sequence_data is not a handle of the host, or has been disposed"}},
    {"BlockNotFreed",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         void* block = nullptr;
         return PF_Err{call.in->pica_basicP->AllocateBlock(64, &block)};
     },
     {"GLOBAL_SETDOWN, AllocateBlock: a block of 64 bytes was never freed"}},
    {"RegisteredLate",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         AEGP_PluginID plugin = 0;
         call.suite<AEGP_UtilitySuite3>("AEGP Utility Suite", 7)
             ->AEGP_RegisterWithAEGP(nullptr, "Late", &plugin);
         return PF_Err{0};
     },
     {"RENDER, AEGP_RegisterWithAEGP: effects register at GLOBAL_SETUP only"}},
    {"ReferencesNotDisposed",
     PF_Cmd_GLOBAL_SETUP,
     [](const EffectCall& call) {
         AEGP_PluginID plugin = 0;
         AEGP_EffectRefH effect = nullptr;
         AEGP_StreamRefH stream = nullptr;
         call.suite<AEGP_UtilitySuite3>("AEGP Utility Suite", 7)
             ->AEGP_RegisterWithAEGP(nullptr, "Test", &plugin);
         call.suite<AEGP_PFInterfaceSuite1>("AEGP PF Interface Suite", 1)
             ->AEGP_GetNewEffectForEffect(plugin, call.in->effect_ref, &effect);
         return call.suite<AEGP_StreamSuite1>("AEGP Stream Suite", 4)
             ->AEGP_GetNewEffectStreamByIndex(plugin, effect, 0, &stream);
     },
     {"GLOBAL_SETDOWN, AEGP_GetNewEffectForEffect: an effect reference was never disposed",
      "GLOBAL_SETDOWN, AEGP_GetNewEffectStreamByIndex: a stream was never disposed"}},
    {"ControlUpdatedDuringRender",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         call.suite<PF_ParamUtilsSuite1>("PF Param Utils Suite", 1)
             ->PF_UpdateParamUI(call.in->effect_ref, 1, call.params[1]);
         return PF_Err{0};
     },
     {"RENDER, PF_UpdateParamUI: controls are updated at USER_CHANGED_PARAM and UPDATE_PARAMS_UI only"}},
    {"ForeignEffectReference",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         call.in->inter.abort(nullptr);
         return PF_Err{0};
     },
     {"RENDER, abort: the effect reference is not that of the call"}},
    {"UnterminatedMessage",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         std::memset(call.out->return_msg, 'x', sizeof call.out->return_msg);
         return PF_Err{0};
     },
     {"RENDER: return_msg is not terminated within its 256 bytes"}},
    {"AnotherSizeWithoutTheFlag",
     PF_Cmd_FRAME_SETUP,
     [](const EffectCall& call) {
         call.out->width = 50;
         call.out->height = 50;
         return PF_Err{0};
     },
     {"FRAME_SETUP: another output size is asked for without the flag I_EXPAND_BUFFER"}},
    {"FailedTearDown",
     PF_Cmd_SEQUENCE_SETDOWN,
     [](const EffectCall&) { return PF_Err{7}; },
     {"SEQUENCE_SETDOWN: the effect answered 7; nothing can be done about a failed tear-down"}},
    {"HandleFromAWorker",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         return onAWorker(call, [](const EffectCall& outer) {
             outer.utilities().host_dispose_handle(outer.utilities().host_new_handle(1));
         });
     },
     {"RENDER, host_new_handle: called from a worker thread; only the thread of the command may call it",
      "RENDER, host_dispose_handle: called from a worker thread; only the thread of the command may call "
      "it"}},
    {"AbortFromAWorker",
     PF_Cmd_RENDER,
     [](const EffectCall& call) {
         return onAWorker(call, [](const EffectCall& outer) { outer.in->inter.abort(outer.in->effect_ref); });
     },
     {"RENDER, abort: called from a worker thread; only the thread of the command may call it"}},
};

class StrictModeTest : public testing::TestWithParam<Misdeed> {
protected:
    // Lives once, and leaves the faults.
    std::vector<std::string> commit(const Misdeed& misdeed, HostOptions options) {
        ScriptedEffect script;
        script.on(PF_Cmd_PARAMS_SETUP, [](const EffectCall& call) {
            call.out->num_params = 2;
            PF_ParamDef layer = parameterOfType(PF_Param_LAYER, "Layer");
            return call.in->inter.add_param(call.in->effect_ref, -1, &layer);
        });
        script.on(misdeed.command, misdeed.commit);
        const World picture(8, 4, false);
        FrameRequest request;
        request.input = &picture;
        request.layers[1] = &picture;
        Effect effect(ScriptedEffect::enter, {}, std::move(options));
        {
            Sequence sequence(effect);
            sequence.render(request);
        }
        effect.close();
        return faults(effect);
    }
};

// A record is known by its place, so that an effect may calculate in it.
TEST(StrictModeCheckoutTest, RecordThatWasWrittenIsCheckedIn) {
    ScriptedEffect script;
    script.declareParameters({parameterOfType(PF_Param_SLIDER, "S")});
    script.on(PF_Cmd_RENDER, [](const EffectCall& call) {
        PF_ParamDef param = checkedOut(call, 1);
        param.u.sd.value += 7;
        return call.in->inter.checkin_param(call.in->effect_ref, &param);
    });
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    const World input(4, 2, false);
    FrameRequest request;
    request.input = &input;
    Sequence(effect).render(request);
    effect.close();
    EXPECT_THAT(faults(effect), IsEmpty());
}

TEST_P(StrictModeTest, MisdeedIsNamedWithCommandAndCallback) {
    EXPECT_EQ(commit(GetParam(), strictOptions()), GetParam().faults);
}

TEST_P(StrictModeTest, MisdeedIsPutUpWithOtherwise) {
    HostOptions options = strictOptions();
    options.strict = false;
    EXPECT_THAT(commit(GetParam(), options), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Misdeeds, StrictModeTest, testing::ValuesIn(kMisdeeds),
                         [](const auto& test) { return test.param.name; });

// What the effect had in the record is its own as long as no picture was handed out.
TEST(FailedCheckoutTest, CheckinAfterAFailedCheckoutLeavesTheRecordAsItIs) {
    ScriptedEffect script;
    PF_Pixel own{};
    const PF_Pixel* left = nullptr;
    script.on(PF_Cmd_RENDER, [&](const EffectCall& call) {
        PF_ParamDef param = parameterOfType(PF_Param_LAYER, "Own");
        param.u.ld.data = &own;
        call.in->inter.checkout_param(call.in->effect_ref, 9, 0, 1, 24, &param);
        const PF_Err code = call.in->inter.checkin_param(call.in->effect_ref, &param);
        left = param.u.ld.data;
        return code;
    });
    const World picture(8, 4, false);
    FrameRequest request;
    request.input = &picture;
    Effect effect(ScriptedEffect::enter, {}, strictOptions());
    Sequence(effect).render(request);
    EXPECT_EQ(left, &own);
    EXPECT_THAT(faults(effect), ElementsAre("RENDER, checkout_param: index 9 is not from 0 to 0"));
}

TEST(PropertyListTest, FieldsOfGlobalSetUpMustAgreeWithTheList) {
    ScriptedEffect script;
    script.on(PF_Cmd_GLOBAL_SETUP, [](const EffectCall& call) {
        call.out->my_version = 5;
        call.out->out_flags = 0x10;
        call.out->out_flags2 = 0x1;
        return PF_Err_NONE;
    });
    EffectDescription listed;
    listed.hasPropertyList = true;
    listed.propertyListVersion = 5;
    listed.propertyListFlags = 0x2000010;
    const Effect effect(ScriptedEffect::enter, listed, strictOptions());
    EXPECT_THAT(faults(effect),
                ElementsAre("GLOBAL_SETUP: out_flags is 0x10, but the property list says 0x2000010",
                            "GLOBAL_SETUP: out_flags2 is 0x1, but the property list says 0x0"));
}

}  // namespace
}  // namespace perch::test
