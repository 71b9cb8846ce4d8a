#include "SmartFrame.h"

#include <fmt/format.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "Callbacks.h"
#include "Error.h"
#include "Host.h"
#include "PF_Values.h"
#include "PixelOps.h"
#include "SmartExchange.h"

namespace perch {
namespace {

// Of each of the four channels.
short bitDepthOf(const World& world) {
    return static_cast<short>(pixelSize(world.depth()) / 4 * CHAR_BIT);
}

PF_RenderRequest wholeFrame(const FrameRequest& request) {
    PF_RenderRequest whole{};
    whole.rect = {0, 0, request.outputWidth, request.outputHeight};
    whole.field = PF_Field_FRAME;
    whole.channel_mask = PF_ChannelMask_ARGB;
    return whole;
}

// What the effect keeps from the first command to the second; released when this ends, whatever happens.
class PreRenderData {
public:
    explicit PreRenderData(Host& host) : host(host) {}
    ~PreRenderData() {
        if (output.pre_render_data == nullptr) return;
        if (output.delete_pre_render_data_func == nullptr) {
            std::free(output.pre_render_data);
            return;
        }
        try {
            host.callOutside("delete_pre_render_data_func",
                             [this] { output.delete_pre_render_data_func(output.pre_render_data); });
        } catch (...) {
            // No memory for a finding.
        }
    }
    PreRenderData(const PreRenderData&) = delete;
    PreRenderData& operator=(const PreRenderData&) = delete;

    PF_PreRenderOutput output{};

private:
    Host& host;
};

bool contains(const PF_LRect& outer, const PF_LRect& inner) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

// Notes promises that do not hold together; throws where no world could be made.
void checkPromise(Host& host, const FrameRequest& request, const PF_PreRenderOutput& output) {
    const PF_LRect& rect = output.result_rect;
    if (isEmpty(rect)) return;
    const bool mayExceed = (output.flags & PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS) != 0;
    if (!mayExceed && !contains(wholeFrame(request).rect, rect))
        host.ledger.fault("", "result_rect exceeds the request without the flag RETURNS_EXTRA_PIXELS");
    if (!contains(output.max_result_rect, rect)) host.ledger.fault("", "result_rect exceeds max_result_rect");
    const std::int64_t width = std::int64_t{rect.right} - rect.left;
    const std::int64_t height = std::int64_t{rect.bottom} - rect.top;
    if (width > kLargestExtent || height > kLargestExtent)
        throw EffectFault(fmt::format("frame {}: the effect promises {} x {} pixels; the largest is {} x {}",
                                      request.frame, width, height, kLargestExtent, kLargestExtent));
}

// Each command has a table of its own, so that what the effect writes there ends with the command.
template <typename Table>
void checkTable(Host& host, const Table& given, const Table& table) {
    static_assert(std::has_unique_object_representations_v<Table>);
    if (std::memcmp(&given, &table, sizeof given) != 0)
        host.ledger.fault("", "a table of callbacks was changed");
}

RenderedFrame emptyFrame(const FrameRequest& request) {
    return {World(request.outputWidth, request.outputHeight, request.input->depth()), {}};
}

}  // namespace

RenderedFrame renderSmart(Host& host, const FrameRequest& request, PF_Handle& sequenceData) {
    const bool mayWriteInput = (host.description.flags & PF_OutFlag_I_WRITE_INPUT_BUFFER) != 0;
    SmartExchange exchange(host.ledger, request, mayWriteInput);
    PreRenderData kept(host);

    PF_PreRenderInput preInput{};
    preInput.output_request = wholeFrame(request);
    preInput.bitdepth = bitDepthOf(*request.input);
    PF_PreRenderCallbacks preCallbacks = preRenderCallbacks();
    PF_PreRenderExtra preExtra{&preInput, &kept.output, &preCallbacks};
    Call preRender{.command = PF_Cmd_SMART_PRE_RENDER,
                   .frame = &request,
                   .values = request.values,
                   .sequenceData = &sequenceData,
                   .extra = &preExtra,
                   .smart = &exchange};
    host.send(preRender);
    checkTable(host, preCallbacks, preRenderCallbacks());
    host.throwIfFailed(preRender);
    checkPromise(host, request, kept.output);
    RenderedFrame frame = emptyFrame(request);
    const PF_LRect rect = kept.output.result_rect;
    if (isEmpty(rect)) return frame;

    exchange.makeOutput(rect);
    PF_SmartRenderInput input{};
    input.output_request = wholeFrame(request);
    input.bitdepth = bitDepthOf(*request.input);
    input.pre_render_data = kept.output.pre_render_data;
    PF_SmartRenderCallbacks callbacks = smartRenderCallbacks();
    PF_SmartRenderExtra extra{&input, &callbacks};
    Call render{.command = PF_Cmd_SMART_RENDER,
                .frame = &request,
                .values = request.values,
                .sequenceData = &sequenceData,
                .extra = &extra,
                .smart = &exchange};
    host.send(render);
    checkTable(host, callbacks, smartRenderCallbacks());
    exchange.finish();
    host.throwIfFailed(render);
    if (!exchange.wasOutputTaken()) {
        if (request.cancelled != nullptr && request.cancelled->load())
            throw Cancelled("SMART_RENDER", PF_Interrupt_CANCEL, "", request.frame);
        throw EffectFault(
            fmt::format("frame {}: the effect promised pixels at SMART_PRE_RENDER and asked for no "
                        "output at SMART_RENDER",
                        request.frame));
    }
    const PF_Rect place{rect.left, rect.top, rect.right, rect.bottom};
    copyWorld(exchange.rendered().record(), nullptr, frame.picture.record(), &place);
    return frame;
}

}  // namespace perch
