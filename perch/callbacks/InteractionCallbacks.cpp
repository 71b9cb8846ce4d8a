// The callbacks that tie an effect to the user and to the composition.
#include <fmt/format.h>

#include <mutex>

#include "CallGuard.h"
#include "Callbacks.h"
#include "Error.h"

namespace perch {
namespace {

// The picture behind a layer parameter; null for none, and for a command of a frame sent without one.
const World* pictureOf(const FrameRequest* frame, PF_ParamIndex index) {
    if (frame == nullptr) return nullptr;
    if (index == 0) return frame->input;
    const auto layer = frame->layers.find(index);
    return layer != frame->layers.end() ? layer->second : nullptr;
}

PF_Err checkOut(Host& host, PF_ParamIndex index, A_u_long timeScale, PF_ParamDef& param) {
    if (!host.isDuringFrame()) {
        host.ledger.fault("checkout_param",
                          "parameters are checked out from FRAME_SETUP to FRAME_SETDOWN only");
        return PF_Err_INVALID_CALLBACK;
    }
    const ParameterValues& values = host.call->values;
    if (index < 0 || static_cast<std::size_t>(index) >= values.size()) {
        host.ledger.fault("checkout_param",
                          fmt::format("index {} is not from 0 to {}", index, values.size() - 1));
        return PF_Err_INVALID_INDEX;
    }
    if (timeScale == 0) {
        host.ledger.fault("checkout_param", "time_scale is 0");
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    const PF_ParamDef& value = values[static_cast<std::size_t>(index)];
    const World* picture = value.param_type == PF_Param_LAYER ? pictureOf(host.call->frame, index) : nullptr;
    host.checkouts.checkOut(index, value, picture, param);
    return PF_Err_NONE;
}

// A checkout that fails is open all the same until it is checked in.
PF_Err checkoutParam(PF_ProgPtr effectRef, PF_ParamIndex index, A_long, A_long, A_u_long timeScale,
                     PF_ParamDef* param) {
    const PF_Err code = answer("checkout_param", Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        return param == nullptr ? PF_Err_BAD_CALLBACK_PARAM : checkOut(host, index, timeScale, *param);
    });
    Host* host = Host::current();
    if (code != PF_Err_NONE && host != nullptr && param != nullptr)
        host->checkouts.checkOutFailed(index, param);
    return code;
}

PF_Err checkinParam(PF_ProgPtr effectRef, PF_ParamDef* param) {
    return answer("checkin_param", Caller::MainThread, effectRef,
                  [&](Host& host) -> PF_Err { return host.checkouts.checkIn(param); });
}

PF_Err declare(Host& host, PF_ParamIndex index, const PF_ParamDef& definition) {
    if (!host.isDuring(PF_Cmd_PARAMS_SETUP)) {
        host.ledger.fault("add_param", "parameters are declared at PARAMS_SETUP only");
        return PF_Err_INVALID_CALLBACK;
    }
    // Effects may declare them on threads of their own, though they are not to.
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    auto& parameters = host.description.parameters;
    const auto next = static_cast<PF_ParamIndex>(parameters.size()) + 1;
    if (index != -1 && (index < 1 || index > next)) {
        host.ledger.fault("add_param", fmt::format("index {} is neither -1 nor from 1 to {}", index, next));
        return PF_Err_INVALID_INDEX;
    }
    constexpr std::size_t kMostParameters = 1000;
    if (parameters.size() >= kMostParameters) {
        const std::string why = fmt::format("an effect may declare {} parameters at most", kMostParameters);
        host.refuseParameters(why);
        throw EffectFault(why);
    }
    Parameter parameter = describeParameter(definition);
    if (definition.param_type == PF_Param_POPUP &&
        static_cast<std::size_t>(definition.u.pd.num_choices) != parameter.items.size())
        host.ledger.fault("add_param", fmt::format("\"{}\" declares {} choices and names {}", parameter.name,
                                                   definition.u.pd.num_choices, parameter.items.size()));
    const std::size_t place = index == -1 ? parameters.size() : static_cast<std::size_t>(index - 1);
    parameters.insert(parameters.begin() + static_cast<std::ptrdiff_t>(place), std::move(parameter));
    for (std::size_t i = place; i < parameters.size(); ++i)
        parameters[i].index = static_cast<PF_ParamIndex>(i) + 1;
    return PF_Err_NONE;
}

PF_Err addParam(PF_ProgPtr effectRef, PF_ParamIndex index, PF_ParamDefPtr definition) {
    return answer("add_param", Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (definition == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        try {
            return declare(host, index, *definition);
        } catch (const Error& failure) {
            host.ledger.fault("add_param", failure.what());
            if (host.call != nullptr) host.call->refusal = failure.what();
            return PF_Err_UNRECOGNIZED_PARAM_TYPE;
        }
    });
}

PF_Err cancelCode(const Host& host) {
    return host.isCancelled() ? PF_Err{PF_Interrupt_CANCEL} : PF_Err_NONE;
}

PF_Err abortCommand(PF_ProgPtr effectRef) {
    return answer("abort", Caller::MainThread, effectRef, cancelCode);
}

PF_Err progress(PF_ProgPtr effectRef, A_long current, A_long total) {
    return answer("progress", Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (total > 0) host.showProgress(static_cast<double>(current) / total);
        return cancelCode(host);
    });
}

// Accepted and forgotten: there are no windows, and so no events.
PF_Err registerUi(PF_ProgPtr effectRef, PF_CustomUIInfo* info) {
    return answer("register_ui", Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (info == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        if (!host.isDuring(PF_Cmd_PARAMS_SETUP))
            host.ledger.fault("register_ui", "the interface is registered at PARAMS_SETUP only");
        return PF_Err_NONE;
    });
}

PF_Err checkoutLayerAudio(PF_ProgPtr, PF_ParamIndex, A_long, A_long, A_u_long, PF_UFixed, A_long, A_long,
                          A_long, PF_LayerAudio*) {
    return refuse("checkout_layer_audio");
}

PF_Err checkinLayerAudio(PF_ProgPtr, PF_LayerAudio) {
    return refuse("checkin_layer_audio");
}

PF_Err getAudioData(PF_ProgPtr, PF_LayerAudio, PF_SndSamplePtr*, A_long*, PF_UFixed*, A_long*, A_long*,
                    A_long*) {
    return refuse("get_audio_data");
}

PF_InteractCallbacks makeTable() {
    PF_InteractCallbacks table{};
    table.checkout_param = checkoutParam;
    table.checkin_param = checkinParam;
    table.add_param = addParam;
    table.abort = abortCommand;
    table.progress = progress;
    table.register_ui = registerUi;
    table.checkout_layer_audio = checkoutLayerAudio;
    table.checkin_layer_audio = checkinLayerAudio;
    table.get_audio_data = getAudioData;
    return table;
}

}  // namespace

const PF_InteractCallbacks& interactionCallbacks() {
    static const PF_InteractCallbacks table = makeTable();
    return table;
}

}  // namespace perch
