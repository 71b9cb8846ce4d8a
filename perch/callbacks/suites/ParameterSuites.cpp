// The suites about parameters and instance data. A value holds for all times here: nothing has key frames.
#include <fmt/format.h>

#include <cstring>
#include <string_view>

#include "CallGuard.h"
#include "PF_Suites.h"
#include "SuiteEntry.h"

namespace perch {
namespace {

bool isParameter(const Host& host, PF_ParamIndex index) {
    return index >= 0 && static_cast<std::size_t>(index) <= host.description.parameters.size();
}

// Serves a call about one parameter.
template <typename F>
PF_Err answerFor(const char* callback, PF_ProgPtr effectRef, PF_ParamIndex index, const F& body) {
    return answer(callback, Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (!isParameter(host, index)) {
            host.ledger.fault(callback, fmt::format("index {} is not that of a parameter", index));
            return PF_Err_INVALID_INDEX;
        }
        return body(host);
    });
}

// The label pointers of a value belong to the host; an effect's definition may carry others or none.
void takeLook(const PF_ParamDef& look, PF_ParamDef& value) {
    value.ui_flags = look.ui_flags;
    value.flags = look.flags;
    std::memcpy(value.name, look.name, sizeof value.name);
    if (look.param_type != value.param_type) return;
    switch (value.param_type) {
        case PF_Param_SLIDER:
            value.u.sd.slider_min = look.u.sd.slider_min;
            value.u.sd.slider_max = look.u.sd.slider_max;
            break;
        case PF_Param_FIX_SLIDER:
            value.u.fd.slider_min = look.u.fd.slider_min;
            value.u.fd.slider_max = look.u.fd.slider_max;
            break;
        case PF_Param_FLOAT_SLIDER:
            value.u.fs_d.slider_min = look.u.fs_d.slider_min;
            value.u.fs_d.slider_max = look.u.fs_d.slider_max;
            break;
        default:
            break;
    }
}

PF_Err updateParamUi(PF_ProgPtr effectRef, PF_ParamIndex index, const PF_ParamDef* look) {
    return answerFor("PF_UpdateParamUI", effectRef, index, [&](Host& host) -> PF_Err {
        if (look == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        if (!host.isDuring(PF_Cmd_USER_CHANGED_PARAM) && !host.isDuring(PF_Cmd_UPDATE_PARAMS_UI)) {
            host.ledger.fault("PF_UpdateParamUI",
                              "controls are updated at USER_CHANGED_PARAM and UPDATE_PARAMS_UI only");
            return PF_Err_INVALID_CALLBACK;
        }
        takeLook(*look, host.call->values[static_cast<std::size_t>(index)]);
        return PF_Err_NONE;
    });
}

// Equal values give equal states.
PF_State stateOf(std::string_view bytes) {
    const std::size_t hash = std::hash<std::string_view>{}(bytes);
    PF_State state{};
    static_assert(sizeof hash <= sizeof state);
    std::memcpy(&state, &hash, sizeof hash);
    return state;
}

std::string_view bytesOf(const PF_ParamDef& value) {
    return {reinterpret_cast<const char*>(&value.u), sizeof value.u};
}

PF_State currentState(const Host& host, PF_ParamIndex index) {
    if (host.call == nullptr) return {};
    return stateOf(bytesOf(host.call->values[static_cast<std::size_t>(index)]));
}

PF_State currentStateOfAll(const Host& host) {
    std::string bytes;
    if (host.call != nullptr)
        for (const PF_ParamDef& value : host.call->values)
            bytes += bytesOf(value);
    return stateOf(bytes);
}

bool areEqual(const PF_State& a, const PF_State& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

PF_Err getCurrentStateOfAll(PF_ProgPtr effectRef, PF_State* state) {
    return answer("PF_GetCurrentStateObsolete", Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (state == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *state = currentStateOfAll(host);
        return PF_Err_NONE;
    });
}

PF_Err hasChanged(const char* callback, PF_ProgPtr effectRef, const PF_State* state, PF_Boolean* changed) {
    return answer(callback, Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (state == nullptr || changed == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *changed = areEqual(*state, currentStateOfAll(host)) ? 0 : 1;
        return PF_Err_NONE;
    });
}

PF_Err hasParamChanged(PF_ProgPtr effectRef, const PF_State* state, PF_ParamIndex, PF_Boolean* changed) {
    return hasChanged("PF_HasParamChangedObsolete", effectRef, state, changed);
}

PF_Err haveInputsChanged(PF_ProgPtr effectRef, const PF_State* state, const A_Time*, const A_Time*,
                         PF_Boolean* changed) {
    return hasChanged("PF_HaveInputsChangedOverTimeSpanObsolete", effectRef, state, changed);
}

PF_Err getCurrentState(PF_ProgPtr effectRef, PF_ParamIndex index, const A_Time*, const A_Time*,
                       PF_State* state) {
    return answerFor("PF_GetCurrentState", effectRef, index, [&](Host& host) -> PF_Err {
        if (state == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *state = currentState(host, index);
        return PF_Err_NONE;
    });
}

PF_Err areStatesIdentical(PF_ProgPtr effectRef, const PF_State* a, const PF_State* b, A_Boolean* same) {
    return answer("PF_AreStatesIdentical", Caller::MainThread, effectRef, [&](Host&) -> PF_Err {
        if (a == nullptr || b == nullptr || same == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *same = areEqual(*a, *b) ? 1 : 0;
        return PF_Err_NONE;
    });
}

PF_Err isIdenticalCheckout(PF_ProgPtr effectRef, PF_ParamIndex index, A_long, A_long, A_u_long, A_long,
                           A_long, A_u_long, PF_Boolean* identical) {
    return answerFor("PF_IsIdenticalCheckout", effectRef, index, [&](Host&) -> PF_Err {
        if (identical == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *identical = 1;
        return PF_Err_NONE;
    });
}

PF_Err findKeyframeTime(PF_ProgPtr effectRef, PF_ParamIndex index, A_long, A_u_long, PF_TimeDir,
                        PF_Boolean* found, PF_KeyIndex*, A_long*, A_u_long*) {
    return answerFor("PF_FindKeyframeTime", effectRef, index, [&](Host&) -> PF_Err {
        if (found == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *found = 0;
        return PF_Err_NONE;
    });
}

PF_Err getKeyframeCount(PF_ProgPtr effectRef, PF_ParamIndex index, PF_KeyIndex* count) {
    return answerFor("PF_GetKeyframeCount", effectRef, index, [&](Host&) -> PF_Err {
        if (count == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *count = 0;
        return PF_Err_NONE;
    });
}

PF_Err noSuchKeyframe(const char* callback, PF_ProgPtr effectRef, PF_ParamIndex index) {
    return answerFor(callback, effectRef, index, [](Host&) -> PF_Err { return PF_Err_INVALID_INDEX; });
}

PF_Err checkoutKeyframe(PF_ProgPtr effectRef, PF_ParamIndex index, PF_KeyIndex, A_long*, A_u_long*,
                        PF_ParamDef*) {
    return noSuchKeyframe("PF_CheckoutKeyframe", effectRef, index);
}

PF_Err checkinKeyframe(PF_ProgPtr, PF_ParamDef*) {
    return refuse("PF_CheckinKeyframe");
}

PF_Err keyIndexToTime(PF_ProgPtr effectRef, PF_ParamIndex index, PF_KeyIndex, A_long*, A_u_long*) {
    return noSuchKeyframe("PF_KeyIndexToTime", effectRef, index);
}

PF_Err getConstSequenceData(PF_ProgPtr effectRef, PF_ConstHandle* data) {
    return answer("PF_GetConstSequenceData", Caller::AnyThread, effectRef, [&](Host& host) -> PF_Err {
        if (data == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        const bool hasData = host.call != nullptr && host.call->sequenceData != nullptr;
        *data = hasData ? *host.call->sequenceData : nullptr;
        return *data != nullptr ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
    });
}

}  // namespace

std::span<const SuiteEntry> parameterSuites() {
    static PF_ParamUtilsSuite1 utilities1{
        updateParamUi,    getCurrentStateOfAll, hasParamChanged,  haveInputsChanged, isIdenticalCheckout,
        findKeyframeTime, getKeyframeCount,     checkoutKeyframe, checkinKeyframe,   keyIndexToTime};
    static PF_ParamUtilsSuite3 utilities3{updateParamUi,       getCurrentState,  areStatesIdentical,
                                          isIdenticalCheckout, findKeyframeTime, getKeyframeCount,
                                          checkoutKeyframe,    checkinKeyframe,  keyIndexToTime};
    static PF_EffectSequenceDataSuite1 sequenceData{getConstSequenceData};
    static const SuiteEntry entries[] = {
        {"PF Param Utils Suite", 1, &utilities1},
        {"PF Param Utils Suite", 2, &utilities1},
        {"PF Param Utils Suite", 3, &utilities3},
        {"PF Effect Sequence Data Suite", 1, &sequenceData},
    };
    return entries;
}

}  // namespace perch
