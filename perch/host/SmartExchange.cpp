#include "SmartExchange.h"

#include <fmt/format.h>

#include <algorithm>

#include "PF_Values.h"
#include "PixelOps.h"
#include "WorldLedger.h"

namespace perch {
namespace {

PF_LRect boundsOf(const World& world) {
    return {0, 0, world.width(), world.height()};
}

}  // namespace

bool isEmpty(const PF_LRect& rect) {
    return rect.right <= rect.left || rect.bottom <= rect.top;
}

PF_LRect intersection(const PF_LRect& a, const PF_LRect& b) {
    const PF_LRect common{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                          std::min(a.bottom, b.bottom)};
    return isEmpty(common) ? PF_LRect{} : common;
}

const World* SmartExchange::pictureOf(PF_ParamIndex index) const {
    if (index == 0) return request.input;
    const auto layer = request.layers.find(index);
    return layer != request.layers.end() ? layer->second : nullptr;
}

PF_Err SmartExchange::checkOut(PF_ParamIndex index, A_long id, const PF_RenderRequest& asked,
                               PF_CheckoutResult& result) {
    const std::lock_guard lock(mutex);
    const char* const callback = "checkout_layer";
    const auto place = static_cast<std::size_t>(index);
    if (index < 0 || place >= request.values.size() || request.values[place].param_type != PF_Param_LAYER) {
        ledger.fault(callback, fmt::format("index {} is not that of a layer", index));
        return PF_Err_INVALID_INDEX;
    }
    if (layers.contains(id)) {
        ledger.fault(callback, fmt::format("the id {} stands for another checkout already", id));
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    result = {};
    result.par = request.pixelAspectRatio;
    Layer& layer = layers[id];
    layer.index = index;
    layer.picture = pictureOf(index);
    if (layer.picture == nullptr) return PF_Err_NONE;
    layer.rect = intersection(asked.rect, boundsOf(*layer.picture));
    result.result_rect = layer.rect;
    result.max_result_rect = boundsOf(*layer.picture);
    result.ref_width = fullExtent(request.fullWidth, layer.picture->width(), request.downsampleX);
    result.ref_height = fullExtent(request.fullHeight, layer.picture->height(), request.downsampleY);
    return PF_Err_NONE;
}

void SmartExchange::makeOutput(const PF_LRect& rect) {
    const PixelDepth depth = request.input->depth();
    const std::int32_t padding =
        request.outputRowPadding > 0 ? request.outputRowPadding : rowPaddingFor(ledger, depth);
    output.emplace(rect.right - rect.left, rect.bottom - rect.top, depth, padding);
    outputRecord = output->record();
    outputRecord.origin_x = rect.left;
    outputRecord.origin_y = rect.top;
}

// The pixels that were promised: the picture itself where it is all of it, read-only, and nobody watches;
// else a copy.
void SmartExchange::fill(Layer& layer) const {
    const World& picture = *layer.picture;
    const PF_LRect& rect = layer.rect;
    const bool isWhole =
        rect.right - rect.left == picture.width() && rect.bottom - rect.top == picture.height();
    if (isWhole && !ledger.isStrict() && !mayWrite(layer)) {
        layer.record = picture.record();
        return;
    }
    layer.copy = std::make_unique<World>(rect.right - rect.left, rect.bottom - rect.top, picture.depth(),
                                         rowPaddingFor(ledger, picture.depth()));
    copyWorld(picture.record(), &rect, layer.copy->record(), nullptr);
    layer.checksum = layer.copy->checksum();
    layer.record = layer.copy->record();
    layer.record.origin_x = rect.left;
    layer.record.origin_y = rect.top;
}

PF_Err SmartExchange::checkOutPixels(A_long id, PF_EffectWorld*& pixels) {
    const std::lock_guard lock(mutex);
    const char* const callback = "checkout_layer_pixels";
    const auto found = layers.find(id);
    if (found == layers.end()) {
        ledger.fault(callback,
                     fmt::format("nothing was checked out under the id {} at SMART_PRE_RENDER", id));
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    Layer& layer = found->second;
    if (layer.wasTaken)
        ledger.fault(callback, fmt::format("the pixels of id {} are checked out again; once is all", id));
    layer.wasTaken = layer.isTaken = true;
    if (layer.picture == nullptr || isEmpty(layer.rect)) return PF_Err_NONE;  // null: none
    if (!layer.isOut) fill(layer);
    layer.isOut = true;
    pixels = &layer.record;
    return PF_Err_NONE;
}

PF_Err SmartExchange::checkInPixels(A_long id) {
    const std::lock_guard lock(mutex);
    const char* const callback = "checkin_layer_pixels";
    const auto found = layers.find(id);
    if (found == layers.end() || !found->second.isTaken) {
        ledger.fault(callback, fmt::format("the pixels of id {} are not checked out", id));
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    found->second.isTaken = false;
    check(found->second, callback);
    return PF_Err_NONE;
}

PF_Err SmartExchange::checkOutOutput(PF_EffectWorld*& pixels) {
    const std::lock_guard lock(mutex);
    const auto isTaken = [](const auto& entry) { return entry.second.wasTaken; };
    if (!layers.empty() && std::ranges::none_of(layers, isTaken))
        ledger.fault("checkout_output", "the output is checked out before any layer");
    isOutputTaken = true;
    pixels = &outputRecord;
    return PF_Err_NONE;
}

void SmartExchange::check(Layer& layer, const char* callback) {
    if (layer.copy != nullptr && ledger.isStrict()) {
        if (!mayWrite(layer) && layer.copy->checksum() != layer.checksum)
            ledger.fault(callback, fmt::format("the pixels of parameter {} were written; they are read-only",
                                               layer.index));
        if (const std::string damage = layer.copy->damage(); !damage.empty())
            ledger.fault(callback, fmt::format("the picture of parameter {}: {}", layer.index, damage));
    }
    layer.copy.reset();
    layer.record.data = nullptr;
    layer.isOut = false;
}

void SmartExchange::finish() {
    for (auto& [id, layer] : layers)
        if (layer.isOut) check(layer, "checkout_layer_pixels");
    if (!output) return;
    if (const std::string damage = output->damage(); !damage.empty())
        ledger.fault("", "the output: " + damage);
}

}  // namespace perch
