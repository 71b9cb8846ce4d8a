#include "Sequence.h"

#include <fmt/format.h>

#include <cstring>

#include "ArbitraryData.h"
#include "Declined.h"
#include "Error.h"
#include "Frame.h"
#include "Host.h"
#include "PF_Values.h"
#include "SmartFrame.h"

namespace perch {
namespace {

// They share their place with the identifiers of the declaration.
void clearChangeFlags(ParameterValues& values) {
    for (PF_ParamDef& value : values)
        value.uu.change_flags = 0;
}

}  // namespace

Sequence::Sequence(Effect& effect) : effect(effect) {
    Call call{.command = PF_Cmd_SEQUENCE_SETUP, .sequenceData = &data};
    effect.host->send(call);
    // What a failed set-up left behind is torn down as well.
    isSetUp = call.code == PF_Err_NONE || data != nullptr;
    throwIfFailed(call);
    makeArbitraryValues();
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
    makeArbitraryValues();
}

Sequence::~Sequence() {
    setDown();
}

// An instance has values of its own, copied from what was declared.
void Sequence::makeArbitraryValues() {
    try {
        for (const Parameter& parameter : effect.host->description.parameters)
            if (isArbitrary(parameter))
                arbitraryValues[parameter.index] = ArbitraryData(*effect.host, parameter).makeDefault();
    } catch (...) {
        setDown();
        throw;
    }
}

// As a project does: what is loaded stands for what was saved, and is the same.
void Sequence::saveArbitraryValues() {
    for (auto& [index, value] : arbitraryValues) {
        const auto& parameters = effect.host->description.parameters;
        ArbitraryData arbitrary(*effect.host, parameters[static_cast<std::size_t>(index) - 1]);
        const PF_ArbitraryH loaded = arbitrary.unflatten(arbitrary.flatten(value));
        try {
            if (arbitrary.compare(value, loaded) != PF_ArbCompare_EQUAL)
                effect.host->ledger.fault(
                    "UNFLATTEN_FUNC",
                    fmt::format("the value of parameter {} is another one after it was saved and loaded",
                                index));
        } catch (...) {
            arbitrary.dispose(loaded);
            throw;
        }
        arbitrary.dispose(value);
        value = loaded;
    }
}

void Sequence::disposeArbitraryValues() {
    for (const auto& [index, value] : arbitraryValues) {
        const auto& parameters = effect.host->description.parameters;
        ArbitraryData(*effect.host, parameters[static_cast<std::size_t>(index) - 1]).dispose(value);
    }
    arbitraryValues.clear();
}

void Sequence::giveArbitraryValues(ParameterValues& values) const {
    for (const auto& [index, value] : arbitraryValues)
        values[static_cast<std::size_t>(index)].u.arb_d.value = value;
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
    try {
        disposeArbitraryValues();
        if (!isSetUp) return;
        isSetUp = false;
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
    saveArbitraryValues();
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

namespace {

bool isFloat(const FrameRequest& request) {
    return request.input->depth() == PixelDepth::Float;
}

}  // namespace

// What the caller has left open, filled in; what the effect cannot take, refused.
FrameRequest Sequence::completed(const FrameRequest& asked) const {
    const EffectDescription& description = effect.host->description;
    FrameRequest request = asked;
    if (request.input == nullptr) throw Error("a frame needs an input picture");
    if (request.input->isDeep() && !effect.supportsDeepColor())
        throw EffectFault("the effect does not handle 16 bits per channel; give it 8-bit pictures");
    if (isFloat(request) && !effect.supportsFloatColor())
        throw EffectFault(
            "the effect does not handle floating-point channels; give it pictures of 8 or 16 bits");
    for (const auto& [index, picture] : request.layers)
        if (picture != nullptr && picture->depth() != request.input->depth())
            throw Error(
                fmt::format("the picture of parameter {} has another depth than the input; give "
                            "both the same",
                            index));
    if (request.outputWidth <= 0) request.outputWidth = request.input->width();
    if (request.outputHeight <= 0) request.outputHeight = request.input->height();
    if (request.values.empty())
        request.values = effect.defaultValues(request.input->width(), request.input->height());
    requireEveryValue(request.values);
    giveArbitraryValues(request.values);
    for (const Parameter& parameter : description.parameters)
        if (isOfThisLayer(parameter)) request.layers.try_emplace(parameter.index, request.input);
    return request;
}

void Sequence::requireEveryValue(const ParameterValues& values) const {
    const std::size_t count = effect.host->description.parameters.size();
    if (values.size() != count + 1)
        throw Error(fmt::format("{} values for the input and {} parameters", values.size(), count));
}

RenderedFrame Sequence::render(const FrameRequest& request) {
    const bool knowsSmart = effect.supportsSmartRender();
    if (request.smart == SmartUse::On && !knowsSmart)
        throw EffectFault("the effect does not declare smart rendering; render without it");
    const bool mustBeSmart = request.input != nullptr && isFloat(request);
    if (knowsSmart && (mustBeSmart || request.smart == SmartUse::On ||
                       (request.smart == SmartUse::Auto && declinesRender))) {
        return renderSmart(*effect.host, completed(request), data);
    }
    try {
        Frame frame(*this, request);
        frame.render();
        frame.finish();
        return frame.take();
    } catch (const Declined&) {
        if (request.smart == SmartUse::Off) throw;
        declinesRender = true;
    }
    return renderSmart(*effect.host, completed(request), data);
}

void Sequence::userChangedParam(PF_ParamIndex index, ParameterValues& values) {
    requireEveryValue(values);
    PF_UserChangedParamExtra extra{index};
    const auto place = static_cast<std::size_t>(index);
    if (index < 1 || place >= values.size())
        throw Error(fmt::format("parameter {} is not from 1 to {}", index, values.size() - 1));
    clearChangeFlags(values);
    values[place].uu.change_flags = PF_ChangeFlag_CHANGED_VALUE;
    sendWithValues(PF_Cmd_USER_CHANGED_PARAM, values, &extra);
}

void Sequence::updateParamsUi(ParameterValues& values) {
    requireEveryValue(values);
    clearChangeFlags(values);
    sendWithValues(PF_Cmd_UPDATE_PARAMS_UI, values, nullptr);
}

void Sequence::sendWithValues(PF_Cmd command, ParameterValues& values, void* extra) {
    Call call{.command = command, .values = values, .sequenceData = &data, .extra = extra};
    giveArbitraryValues(call.values);
    effect.host->send(call);
    effect.host->throwIfFailed(call);
    for (const Parameter& parameter : effect.host->description.parameters) {
        const auto place = static_cast<std::size_t>(parameter.index);
        keepUnlessChanged(command, values[place], parameter.index, call.values[place]);
        if (isArbitrary(parameter)) takeArbitraryValue(command, parameter, call.values[place]);
        call.values[place].uu = parameter.definition.uu;
    }
    values = std::move(call.values);
}

// A value that the effect has changed counts where it says so, and while the user changes one.
bool Sequence::mayChange(PF_Cmd command, PF_ParamIndex index, const PF_ParamDef& left) {
    const bool isDeclared = (left.uu.change_flags & PF_ChangeFlag_CHANGED_VALUE) != 0;
    if (command == PF_Cmd_USER_CHANGED_PARAM && isDeclared) return true;
    effect.host->ledger.fault("", fmt::format("parameter {} was changed {}; hosts pass over that", index,
                                              isDeclared ? "outside of USER_CHANGED_PARAM"
                                                         : "without PF_ChangeFlag_CHANGED_VALUE"));
    return false;
}

void Sequence::keepUnlessChanged(PF_Cmd command, const PF_ParamDef& given, PF_ParamIndex index,
                                 PF_ParamDef& left) {
    if (!isSameValue(given, left) && !mayChange(command, index, left)) takeValue(given, left);
}

// The effect may put another instance in the place of its value, whether it disposes of the old one or not.
void Sequence::takeArbitraryValue(PF_Cmd command, const Parameter& parameter, const PF_ParamDef& left) {
    Host& host = *effect.host;
    PF_ArbitraryH& kept = arbitraryValues[parameter.index];
    const PF_ArbitraryH given = left.u.arb_d.value;
    if (given == kept || !mayChange(command, parameter.index, left)) return;
    if (!host.handles.isLive(given)) {
        host.ledger.fault(
            "", fmt::format("the new value of parameter {} is not a handle of the host", parameter.index));
        return;
    }
    if (host.handles.isLive(kept)) ArbitraryData(host, parameter).dispose(kept);
    kept = given;
}

CommandResult Sequence::send(PF_Cmd command, void* extra) {
    Call call{.command = command, .sequenceData = &data, .extra = extra};
    effect.host->send(call);
    return resultOf(call);
}

}  // namespace perch
