// The callbacks that come with SMART_PRE_RENDER and SMART_RENDER.
#include "CallGuard.h"
#include "Callbacks.h"
#include "SmartExchange.h"

namespace perch {
namespace {

// Serves a callback of one of the two commands by `body`, a function from SmartExchange& to a code.
template <typename F>
PF_Err answerDuring(PF_Cmd command, const char* callback, PF_ProgPtr effectRef, const F& body) {
    return answer(callback, Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (host.isDuring(command) && host.call->smart != nullptr) return body(*host.call->smart);
        host.refuse(callback, "this is not the command that it came with");
        return PF_Err_INVALID_CALLBACK;
    });
}

PF_Err checkoutLayer(PF_ProgPtr effectRef, PF_ParamIndex index, A_long id, const PF_RenderRequest* request,
                     A_long, A_long, A_u_long, PF_CheckoutResult* result) {
    return answerDuring(PF_Cmd_SMART_PRE_RENDER, "checkout_layer", effectRef,
                        [&](SmartExchange& exchange) -> PF_Err {
                            if (request == nullptr || result == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
                            return exchange.checkOut(index, id, *request, *result);
                        });
}

// Nothing is cached.
PF_Err mixInGuid(PF_ProgPtr effectRef, A_u_long, const void*) {
    return answerDuring(PF_Cmd_SMART_PRE_RENDER, "GuidMixInPtr", effectRef,
                        [](SmartExchange&) -> PF_Err { return PF_Err_NONE; });
}

PF_Err checkoutLayerPixels(PF_ProgPtr effectRef, A_long id, PF_EffectWorld** pixels) {
    return answerDuring(PF_Cmd_SMART_RENDER, "checkout_layer_pixels", effectRef,
                        [&](SmartExchange& exchange) -> PF_Err {
                            if (pixels == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
                            *pixels = nullptr;
                            return exchange.checkOutPixels(id, *pixels);
                        });
}

PF_Err checkinLayerPixels(PF_ProgPtr effectRef, A_long id) {
    return answerDuring(PF_Cmd_SMART_RENDER, "checkin_layer_pixels", effectRef,
                        [&](SmartExchange& exchange) { return exchange.checkInPixels(id); });
}

PF_Err checkoutOutput(PF_ProgPtr effectRef, PF_EffectWorld** output) {
    return answerDuring(PF_Cmd_SMART_RENDER, "checkout_output", effectRef,
                        [&](SmartExchange& exchange) -> PF_Err {
                            if (output == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
                            *output = nullptr;
                            return exchange.checkOutOutput(*output);
                        });
}

}  // namespace

const PF_PreRenderCallbacks& preRenderCallbacks() {
    static constexpr PF_PreRenderCallbacks kTable{checkoutLayer, mixInGuid};
    return kTable;
}

const PF_SmartRenderCallbacks& smartRenderCallbacks() {
    static constexpr PF_SmartRenderCallbacks kTable{checkoutLayerPixels, checkinLayerPixels, checkoutOutput};
    return kTable;
}

}  // namespace perch
