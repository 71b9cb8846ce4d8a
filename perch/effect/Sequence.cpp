#include "Sequence.h"

#include <fmt/format.h>

#include <cstring>

#include "Error.h"
#include "Frame.h"
#include "Host.h"
#include "PF_Values.h"

namespace perch {

Sequence::Sequence(Effect& effect) : effect(effect) {
    Call call{.command = PF_Cmd_SEQUENCE_SETUP, .sequenceData = &data};
    effect.host->send(call);
    // What a failed set-up left behind is torn down as well.
    isSetUp = call.code == PF_Err_NONE || data != nullptr;
    throwIfFailed(call);
}

Sequence::Sequence(Effect& effect, const std::vector<std::byte>& flattened) : effect(effect) {
    // Settings of no bytes are settings still, where the effect saves any.
    const bool saves = (effect.host->description.flags & PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING) != 0;
    if (saves || !flattened.empty()) {
        data = effect.host->handles.allocate(flattened.size());
        if (data == nullptr)
            throw Error(fmt::format("no memory for {} bytes of saved settings", flattened.size()));
        if (!flattened.empty()) std::memcpy(*data, flattened.data(), flattened.size());
    }
    resetup();
}

Sequence::~Sequence() {
    setDown();
}

// Throws what the effect answered; an instance that was never whole is set down first.
void Sequence::throwIfFailed(const Call& call) {
    try {
        effect.host->throwIfFailed(call);
    } catch (const Error&) {
        setDown();
        throw;
    }
}

void Sequence::setDown() noexcept {
    if (!isSetUp) return;
    isSetUp = false;
    try {
        Call call{.command = PF_Cmd_SEQUENCE_SETDOWN, .sequenceData = &data};
        effect.host->send(call);
        effect.host->reportFailedTearDown(call);
    } catch (...) {
        // An observer that throws, or no memory for a finding: the end of the instance cannot wait for
        // either.
    }
}

// The flat bytes stay the host's own unless the effect disposes of them.
void Sequence::resetup() {
    Host& host = *effect.host;
    const PF_Handle flat = data;
    Call call{.command = PF_Cmd_SEQUENCE_RESETUP, .sequenceData = &data};
    isSetUp = false;
    host.send(call);
    const bool hasFailed = call.code != PF_Err_NONE;
    if (flat != nullptr && (data != flat || hasFailed) && host.handles.isLive(flat))
        host.handles.dispose(flat);
    isSetUp = !hasFailed || (data != nullptr && data != flat);
    throwIfFailed(call);
}

std::vector<std::byte> Sequence::flatten() {
    Host& host = *effect.host;
    if ((host.description.flags & PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING) != 0) {
        Call call{.command = PF_Cmd_SEQUENCE_FLATTEN, .sequenceData = &data};
        host.send(call);
        host.throwIfFailed(call);
    }
    std::vector<std::byte> bytes;
    if (data != nullptr && host.handles.isLive(data)) {
        bytes.resize(static_cast<std::size_t>(host.handles.size(data)));
        if (!bytes.empty()) std::memcpy(bytes.data(), *data, bytes.size());
    }
    resetup();
    return bytes;
}

RenderedFrame Sequence::render(const FrameRequest& request) {
    Frame frame(*this, request);
    frame.render();
    frame.finish();
    return frame.take();
}

void Sequence::userChangedParam(PF_ParamIndex index, ParameterValues& values) {
    PF_UserChangedParamExtra extra{index};
    const auto place = static_cast<std::size_t>(index);
    if (index < 1 || place >= values.size())
        throw Error(fmt::format("parameter {} is not from 1 to {}", index, values.size() - 1));
    values[place].uu.change_flags = PF_ChangeFlag_CHANGED_VALUE;
    sendWithValues(PF_Cmd_USER_CHANGED_PARAM, values, &extra);
}

void Sequence::updateParamsUi(ParameterValues& values) {
    sendWithValues(PF_Cmd_UPDATE_PARAMS_UI, values, nullptr);
}

void Sequence::sendWithValues(PF_Cmd command, ParameterValues& values, void* extra) {
    Call call{.command = command, .values = values, .sequenceData = &data, .extra = extra};
    effect.host->send(call);
    effect.host->throwIfFailed(call);
    values = std::move(call.values);
    // The change flags share their place with the identifiers.
    for (const Parameter& parameter : effect.host->description.parameters)
        values[static_cast<std::size_t>(parameter.index)].uu = parameter.definition.uu;
}

CommandResult Sequence::send(PF_Cmd command, void* extra) {
    Call call{.command = command, .sequenceData = &data, .extra = extra};
    effect.host->send(call);
    return resultOf(call);
}

}  // namespace perch
