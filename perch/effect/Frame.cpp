#include "Frame.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "Declined.h"
#include "Host.h"
#include "PF_Values.h"
#include "PixelAccess.h"

namespace perch {
namespace {

// What the output holds before an effect that may not answer RENDER is asked to.
constexpr unsigned char kUntouched = 0x5A;

// Calls visit(begin, bytes) for the pixels of each row.
template <typename F>
void forEachRow(const World& world, const F& visit) {
    const auto size =
        static_cast<std::size_t>(world.width()) * static_cast<std::size_t>(pixelSize(world.depth()));
    for (A_long y = 0; y < world.height(); ++y)
        visit(rowOf<unsigned char>(world.record(), y), size);
}

void markUntouched(World& world) {
    forEachRow(world, [](unsigned char* row, std::size_t size) { std::memset(row, kUntouched, size); });
}

bool isUntouched(const World& world) {
    bool isSame = true;
    forEachRow(world, [&](const unsigned char* row, std::size_t size) {
        isSame =
            isSame && std::all_of(row, row + size, [](unsigned char byte) { return byte == kUntouched; });
    });
    return isSame;
}

}  // namespace

Frame::Frame(Sequence& sequence, const FrameRequest& asked)
    : sequence(sequence), request(sequence.completed(asked)) {
    takeInput();
    Host& host = *sequence.effect.host;
    PF_LayerDef size{};
    size.width = request.outputWidth;
    size.height = request.outputHeight;
    Call call{.command = PF_Cmd_FRAME_SETUP,
              .frame = &request,
              .values = request.values,
              .sequenceData = &sequence.data,
              .frameData = &data,
              .output = &size};
    host.send(call);
    checkPixels();
    // What a failed set-up left behind is torn down as well.
    isSetUp = call.code == PF_Err_NONE || data != nullptr;
    try {
        host.throwIfFailed(call);
        takeOutputSize(call.out);
    } catch (const Error&) {
        setDown();
        throw;
    }
}

Frame::~Frame() {
    setDown();
}

void Frame::takeInput() {
    const Host& host = *sequence.effect.host;
    const bool mayWrite = (host.description.flags & PF_OutFlag_I_WRITE_INPUT_BUFFER) != 0;
    if (host.ledger.isStrict() || mayWrite) inputCopy = std::make_unique<World>(*request.input);
    PF_ParamDef& input = request.values[0];
    input.param_type = PF_Param_LAYER;
    input.u.ld = inputCopy != nullptr ? inputCopy->record() : request.input->record();
}

void Frame::takeOutputSize(const PF_OutData& out) {
    if (out.width <= 0 || out.height <= 0) return;
    if (out.width == request.outputWidth && out.height == request.outputHeight) return;
    Host& host = *sequence.effect.host;
    if ((host.description.flags & PF_OutFlag_I_EXPAND_BUFFER) == 0) {
        host.ledger.fault("", "another output size is asked for without the flag I_EXPAND_BUFFER");
        return;
    }
    if (out.width > kLargestExtent || out.height > kLargestExtent)
        throw EffectFault(
            fmt::format("the effect asks for an output of {} x {} pixels; the largest is {} x {}", out.width,
                        out.height, kLargestExtent, kLargestExtent));
    request.outputWidth = out.width;
    request.outputHeight = out.height;
    request.outputOriginX = out.origin.h;
    request.outputOriginY = out.origin.v;
}

void Frame::render() {
    Host& host = *sequence.effect.host;
    const PixelDepth depth = request.input->depth();
    output = std::make_unique<World>(
        request.outputWidth, request.outputHeight, depth,
        request.outputRowPadding > 0 ? request.outputRowPadding : rowPaddingFor(host.ledger, depth));
    const bool isSmart = (host.description.flags2 & PF_OutFlag2_SUPPORTS_SMART_RENDER) != 0;
    if (isSmart) markUntouched(*output);
    PF_LayerDef record = output->record();
    Call call{.command = PF_Cmd_RENDER,
              .frame = &request,
              .values = request.values,
              .sequenceData = &sequence.data,
              .frameData = &data,
              .output = &record};
    host.send(call);
    checkPixels();
    host.throwIfFailed(call);
    if (!isSmart || !isUntouched(*output)) return;
    // The user's interrupt is a reason of its own to stop early, whether the effect tells it or not.
    if (request.cancelled != nullptr && request.cancelled->load())
        throw Cancelled("RENDER", PF_Interrupt_CANCEL, "", request.frame);
    throw Declined(
        fmt::format("frame {}: the effect left the frame as it was; it renders by the smart-render path "
                    "alone, so let it take that with --smart auto",
                    request.frame));
}

void Frame::finish() {
    if (!isSetUp) return;
    isSetUp = false;
    Host& host = *sequence.effect.host;
    Call call{.command = PF_Cmd_FRAME_SETDOWN,
              .frame = &request,
              .values = request.values,
              .sequenceData = &sequence.data,
              .frameData = &data};
    host.send(call);
    checkPixels();
    data = nullptr;
    host.throwIfFailed(call);
}

void Frame::setDown() noexcept {
    try {
        finish();
    } catch (...) {
        // The frame has an error of its own already, or nobody waits for this one.
    }
}

// Each damage is told once, with the command that did it.
void Frame::checkPixels() {
    checkInput();
    if (output == nullptr || isOutputDamaged) return;
    const std::string damage = output->damage();
    isOutputDamaged = !damage.empty();
    if (isOutputDamaged) sequence.effect.host->ledger.fault("", "the output: " + damage);
}

void Frame::checkInput() {
    if (inputCopy == nullptr) return;
    Host& host = *sequence.effect.host;
    const bool mayWrite = (host.description.flags & PF_OutFlag_I_WRITE_INPUT_BUFFER) != 0;
    const bool isWritten = !mayWrite && inputCopy->checksum() != request.input->checksum();
    const std::string damage = inputCopy->damage();
    if (isWritten)
        host.ledger.fault(
            "", "the input's pixels were written; they are read-only without the flag I_WRITE_INPUT_BUFFER");
    if (!damage.empty()) host.ledger.fault("", "the input: " + damage);
    if (!isWritten && damage.empty()) return;
    inputCopy = std::make_unique<World>(*request.input);
    request.values[0].u.ld = inputCopy->record();
}

const World& Frame::picture() const {
    return *output;
}

RenderedFrame Frame::take() {
    return {std::move(*output), {request.outputOriginX, request.outputOriginY}};
}

}  // namespace perch
