// The suites that reach beyond the effect. There is no project here: an effect can register, get at its own
// parameter streams and hide them; every other slot refuses.
#include <fmt/format.h>

#include "CallGuard.h"
#include "SuiteEntry.h"

namespace perch {
namespace {

A_Err registerPlugin(AEGP_GlobalRefcon, const A_char* name, AEGP_PluginID* plugin) {
    return answer("AEGP_RegisterWithAEGP", Caller::MainThread, [&](Host& host) -> PF_Err {
        if (name == nullptr || plugin == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        if (!host.isDuring(PF_Cmd_GLOBAL_SETUP)) {
            host.ledger.fault("AEGP_RegisterWithAEGP", "effects register at GLOBAL_SETUP only");
            return PF_Err_INVALID_CALLBACK;
        }
        *plugin = host.references.registerPlugin();
        return PF_Err_NONE;
    });
}

// Notes an identifier that AEGP_RegisterWithAEGP never gave.
bool isPlugin(Host& host, const char* callback, AEGP_PluginID plugin) {
    if (host.references.isRegistered(plugin)) return true;
    host.ledger.fault(callback, fmt::format("{} is not the identifier of a registered plug-in", plugin));
    return false;
}

A_Err newEffectForEffect(AEGP_PluginID plugin, PF_ProgPtr effectRef, AEGP_EffectRefH* effect) {
    const char* const callback = "AEGP_GetNewEffectForEffect";
    return answer(callback, Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (effect == nullptr || !isPlugin(host, callback, plugin)) return PF_Err_BAD_CALLBACK_PARAM;
        *effect = host.references.newEffect();
        return PF_Err_NONE;
    });
}

// There is neither a layer nor a camera, and the effect's own time is the composition's.
A_Err effectLayer(PF_ProgPtr effectRef, AEGP_LayerH* layer) {
    return answer("AEGP_GetEffectLayer", Caller::MainThread, effectRef, [&](Host&) -> PF_Err {
        if (layer == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *layer = nullptr;
        return PF_Err_NONE;
    });
}

A_Err effectToCompTime(PF_ProgPtr effectRef, A_long time, A_u_long scale, A_Time* compTime) {
    return answer("AEGP_ConvertEffectToCompTime", Caller::MainThread, effectRef, [&](Host&) -> PF_Err {
        if (compTime == nullptr || scale == 0) return PF_Err_BAD_CALLBACK_PARAM;
        *compTime = {time, scale};
        return PF_Err_NONE;
    });
}

A_Err effectCamera(PF_ProgPtr effectRef, const A_Time*, AEGP_LayerH* camera) {
    return answer("AEGP_GetEffectCamera", Caller::MainThread, effectRef, [&](Host&) -> PF_Err {
        if (camera == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *camera = nullptr;
        return PF_Err_NONE;
    });
}

A_Err effectCameraMatrix(PF_ProgPtr, const A_Time*, A_Matrix4*, A_FpLong*, A_short*, A_short*) {
    return refuse("AEGP_GetEffectCameraMatrix");
}

A_Err disposeEffect(AEGP_EffectRefH effect) {
    return answer("AEGP_DisposeEffect", Caller::MainThread,
                  [&](Host& host) -> PF_Err { return host.references.disposeEffect(effect); });
}

A_Err newEffectStream(AEGP_PluginID plugin, AEGP_EffectRefH effect, PF_ParamIndex index,
                      AEGP_StreamRefH* stream) {
    const char* const callback = "AEGP_GetNewEffectStreamByIndex";
    return answer(callback, Caller::MainThread, [&](Host& host) -> PF_Err {
        if (stream == nullptr || !isPlugin(host, callback, plugin)) return PF_Err_BAD_CALLBACK_PARAM;
        if (!host.references.isEffect(effect)) {
            host.ledger.fault(callback,
                              "the effect reference is not one of the host's, or has been disposed");
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        if (index < 0 || static_cast<std::size_t>(index) > host.description.parameters.size())
            return PF_Err_INVALID_INDEX;
        *stream = host.references.newStream(index);
        return PF_Err_NONE;
    });
}

A_Err disposeStream(AEGP_StreamRefH stream) {
    return answer("AEGP_DisposeStream", Caller::MainThread,
                  [&](Host& host) -> PF_Err { return host.references.disposeStream(stream); });
}

A_Err setStreamFlag(AEGP_StreamRefH stream, AEGP_DynStreamFlags flag, A_Boolean set) {
    const char* const callback = "AEGP_SetDynamicStreamFlag";
    return answer(callback, Caller::MainThread, [&](Host& host) -> PF_Err {
        const std::optional<PF_ParamIndex> index = host.references.streamParameter(stream);
        if (!index) {
            host.ledger.fault(callback, "the stream is not one of the host's, or has been disposed");
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        if (flag != AEGP_DynStreamFlag_HIDDEN) return PF_Err_BAD_CALLBACK_PARAM;
        if (host.call == nullptr || static_cast<std::size_t>(*index) >= host.call->values.size())
            return PF_Err_INVALID_INDEX;
        PF_ParamUIFlags& flags = host.call->values[static_cast<std::size_t>(*index)].ui_flags;
        flags = set != 0 ? flags | PF_PUI_INVISIBLE : flags & ~PF_PUI_INVISIBLE;
        return PF_Err_NONE;
    });
}

A_Err setStreamFlagUndoable(AEGP_StreamRefH stream, AEGP_DynStreamFlags flag, A_Boolean, A_Boolean set) {
    return setStreamFlag(stream, flag, set);
}

// A newer table goes on behind the slots that are declared; effects may call any of them.
template <typename Suite>
struct Extended {
    Suite declared;
    std::array<PF_UnusedSlot, 64> behind;
};

template <typename Suite>
Suite utilitySuite() {
    Suite suite = refusingSuite<Suite>();
    suite.AEGP_RegisterWithAEGP = registerPlugin;
    return suite;
}

AEGP_PFInterfaceSuite1 interfaceSuite() {
    auto suite = refusingSuite<AEGP_PFInterfaceSuite1>();
    suite.AEGP_GetEffectLayer = effectLayer;
    suite.AEGP_GetNewEffectForEffect = newEffectForEffect;
    suite.AEGP_ConvertEffectToCompTime = effectToCompTime;
    suite.AEGP_GetEffectCamera = effectCamera;
    suite.AEGP_GetEffectCameraMatrix = effectCameraMatrix;
    return suite;
}

template <typename Suite>
Suite streamSuite() {
    Suite suite = refusingSuite<Suite>();
    suite.AEGP_GetNewEffectStreamByIndex = newEffectStream;
    suite.AEGP_DisposeStream = disposeStream;
    return suite;
}

AEGP_DynamicStreamSuite1 dynamicStreamSuite() {
    auto suite = refusingSuite<AEGP_DynamicStreamSuite1>();
    suite.AEGP_SetDynamicStreamFlag = setStreamFlag;
    return suite;
}

AEGP_DynamicStreamSuite5 newDynamicStreamSuite() {
    auto suite = refusingSuite<AEGP_DynamicStreamSuite5>();
    suite.AEGP_SetDynamicStreamFlag = setStreamFlagUndoable;
    return suite;
}

template <typename Suite>
Suite effectSuite() {
    Suite suite = refusingSuite<Suite>();
    suite.AEGP_DisposeEffect = disposeEffect;
    return suite;
}

template <typename Suite>
Extended<Suite> extend(const Suite& declared) {
    auto table = refusingSuite<Extended<Suite>>();
    table.declared = declared;
    return table;
}

}  // namespace

std::span<const SuiteEntry> projectSuites() {
    static auto utility7 = utilitySuite<AEGP_UtilitySuite3>();
    static auto utility13 = extend(utilitySuite<AEGP_UtilitySuite13>());
    static auto interface1 = interfaceSuite();
    static auto stream4 = streamSuite<AEGP_StreamSuite1>();
    static auto stream11 = extend(streamSuite<AEGP_StreamSuite11>());
    static auto dynamic1 = dynamicStreamSuite();
    static auto dynamic5 = extend(newDynamicStreamSuite());
    static auto effect1 = effectSuite<AEGP_EffectSuite1>();
    static auto effect4 = extend(effectSuite<AEGP_EffectSuite4>());
    // Older versions are the first slots of newer ones.
    static const SuiteEntry entries[] = {
        {"AEGP Utility Suite", 3, &utility7},        {"AEGP Utility Suite", 5, &utility7},
        {"AEGP Utility Suite", 7, &utility7},        {"AEGP Utility Suite", 13, &utility13},
        {"AEGP PF Interface Suite", 1, &interface1}, {"AEGP Stream Suite", 4, &stream4},
        {"AEGP Stream Suite", 11, &stream11},        {"AEGP Dynamic Stream Suite", 1, &dynamic1},
        {"AEGP Dynamic Stream Suite", 5, &dynamic5}, {"AEGP Effect Suite", 1, &effect1},
        {"AEGP Effect Suite", 2, &effect4},          {"AEGP Effect Suite", 3, &effect4},
        {"AEGP Effect Suite", 4, &effect4},          {"AEGP Effect Suite", 5, &effect4},
    };
    return entries;
}

}  // namespace perch
