// What passes between the host and an effect that renders one frame by rectangles: which parts of which
// layers it asks for at SMART_PRE_RENDER, and their pixels and the output's at SMART_RENDER. Layers are
// handed out as worlds of the size that was promised; private copies in strict mode, wherever a part is asked
// for, and of an input that the effect may write. The effect's calls may come from any thread.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "FrameRequest.h"
#include "Ledger.h"
#include "PF_SmartRender.h"
#include "World.h"

namespace perch {

bool isEmpty(const PF_LRect& rect);
PF_LRect intersection(const PF_LRect& a, const PF_LRect& b);

class SmartExchange {
public:
    // Both must outlive this. The request's values hold the parameters' types.
    SmartExchange(Ledger& ledger, const FrameRequest& request, bool mayWriteInput)
        : ledger(ledger), request(request), mayWriteInput(mayWriteInput) {}

    // At SMART_PRE_RENDER: what the layer can give of what is asked for.
    PF_Err checkOut(PF_ParamIndex index, A_long id, const PF_RenderRequest& asked, PF_CheckoutResult& result);

    // Between the commands: makes the output, of the size of what the effect has promised.
    void makeOutput(const PF_LRect& rect);

    // At SMART_RENDER.
    PF_Err checkOutPixels(A_long id, PF_EffectWorld*& pixels);
    PF_Err checkInPixels(A_long id);
    PF_Err checkOutOutput(PF_EffectWorld*& pixels);

    // After it: checks the guards of what is still out.
    void finish();
    // Whether the effect has asked for the output.
    bool wasOutputTaken() const { return isOutputTaken; }
    const World& rendered() const { return *output; }

private:
    struct Layer {
        PF_ParamIndex index = 0;
        const World* picture = nullptr;  // null: none
        PF_LRect rect{};                 // that was promised
        std::unique_ptr<World> copy;
        PF_EffectWorld record{};  // as handed out
        std::uint64_t checksum = 0;
        bool wasTaken = false;
        bool isTaken = false;  // and not given back yet
        bool isOut = false;    // and has pixels
    };

    const World* pictureOf(PF_ParamIndex index) const;
    bool mayWrite(const Layer& layer) const { return mayWriteInput && layer.index == 0; }
    void fill(Layer& layer) const;
    void check(Layer& layer, const char* callback);

    Ledger& ledger;
    const FrameRequest& request;
    const bool mayWriteInput;
    std::mutex mutex;                // of what follows: workers may check out as well
    std::map<A_long, Layer> layers;  // by the effect's id
    std::optional<World> output;
    PF_EffectWorld outputRecord{};  // as handed out: the effect may write into it
    bool isOutputTaken = false;
};

}  // namespace perch
