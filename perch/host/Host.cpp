#include "Host.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "ArbitraryData.h"
#include "CommandName.h"
#include "EffectEnd.h"
#include "Error.h"
#include "PF_Values.h"
#include "PiPL.h"
#include "Whereabouts.h"

namespace perch {
namespace {

std::atomic<Host*> gCurrentHost{nullptr};

// Names the command under way for as long as the object lives.
class UnderWay {
public:
    UnderWay(Call*& place, Call& call) : place(place) { this->place = &call; }
    ~UnderWay() { place = nullptr; }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

private:
    Call*& place;
};

// What an effect leaves in a handle field: hosts know effects that clear only the record they were given.
PF_Handle keptHandle(PF_Handle given, PF_Handle in, PF_Handle out) {
    return in != given && out == given ? in : out;
}

PF_Handle valueOrNull(const PF_Handle* handle) {
    return handle != nullptr ? *handle : nullptr;
}

void describeFrame(const FrameRequest& frame, PF_InData& in) {
    in.quality = frame.quality;
    in.current_time = frame.time;
    in.time_step = frame.timeStep;
    in.local_time_step = frame.localTimeStep;
    in.total_time = frame.totalTime;
    in.time_scale = frame.timeScale;
    const PF_LayerDef& input = frame.input->record();
    in.width = fullExtent(frame.fullWidth, input.width, frame.downsampleX);
    in.height = fullExtent(frame.fullHeight, input.height, frame.downsampleY);
    in.output_origin_x = frame.outputOriginX;
    in.output_origin_y = frame.outputOriginY;
    in.extent_hint = {0, 0, frame.outputWidth > 0 ? frame.outputWidth : input.width,
                      frame.outputHeight > 0 ? frame.outputHeight : input.height};
    in.downsample_x = frame.downsampleX;
    in.downsample_y = frame.downsampleY;
    in.pixel_aspect_ratio = frame.pixelAspectRatio;
}

}  // namespace

Host* Host::current() {
    return gCurrentHost.load(std::memory_order_acquire);
}

Host::Host(PF_EntryPoint entryPoint, EffectDescription description, HostOptions options,
           std::shared_ptr<void> library, const CallbackTables& tables, ProcessWatch watch)
    : library(std::move(library)),
      options(std::move(options)),
      description(std::move(description)),
      ledger(this->options.strict),
      pool(this->options.threads, this->options.budget),
      entryPoint(entryPoint),
      tables(tables),
      process(ledger, tables, std::move(watch)) {
    Host* none = nullptr;
    if (!gCurrentHost.compare_exchange_strong(none, this))
        throw Error("another effect is loaded in this process; close it first");
}

Host::~Host() {
    try {
        close();
    } catch (...) {
        // An observer that throws, or no memory for a finding: the end of the host cannot wait for either.
    }
    gCurrentHost.store(nullptr, std::memory_order_release);
}

void Host::setUp() {
    Call global{.command = PF_Cmd_GLOBAL_SETUP};
    send(global);
    // What a failed set-up left behind is torn down as well.
    isSetUp = global.code == PF_Err_NONE || globalData != nullptr;
    throwIfFailed(global);
    description.version = global.out.my_version;
    description.flags = global.out.out_flags;
    description.flags2 = global.out.out_flags2;
    comparePropertyList();

    Call params{.command = PF_Cmd_PARAMS_SETUP};
    send(params);
    throwIfFailed(params);
    if (!parameterFlaw.empty()) throw EffectFault(parameterFlaw);
    nestInGroups(description.parameters);
    const auto declared = static_cast<A_long>(description.parameters.size()) + 1;
    // Not all effects look at what add_param answers, and it has failed because it was to.
    const bool hasLost =
        std::ranges::find(options.failures, "add_param", &CallFailure::callback) != options.failures.end();
    if (params.out.num_params != declared && !hasLost)
        ledger.fault(
            "", fmt::format("num_params is {}, but {} parameters were declared, the input layer included",
                            params.out.num_params, declared));
}

void Host::close() {
    if (isSetUp) {
        isSetUp = false;
        disposeDeclaredValues();
        Call global{.command = PF_Cmd_GLOBAL_SETDOWN};
        send(global);
        globalData = nullptr;
        reportFailedTearDown(global);
    }
    process.reportThreads(pool);
    handles.reportLeaks();
    memory.reportLeaks();
    references.reportLeaks();
    suites.reportHeld();
    if (!untoldBreakage.empty()) throw EffectBroke(std::exchange(untoldBreakage, {}));
}

// The defaults that the effect has declared are the host's from then on.
void Host::disposeDeclaredValues() {
    for (Parameter& parameter : description.parameters) {
        if (!isArbitrary(parameter)) continue;
        ArbitraryData(*this, parameter).dispose(parameter.definition.u.arb_d.dephault);
        parameter.definition.u.arb_d.dephault = nullptr;
    }
}

void Host::comparePropertyList() {
    std::error_code ignored;
    if (!description.hasPropertyList && std::filesystem::is_directory(description.path, ignored))
        ledger.fault("", "the bundle has no resource file; hosts find effects by it");
    if (!description.hasPropertyList) return;
    const auto compare = [this](const char* field, auto set, auto listed) {
        if (set != listed)
            ledger.fault("",
                         fmt::format("{} is {:#x}, but the property list says {:#x}", field,
                                     static_cast<std::uint32_t>(set), static_cast<std::uint32_t>(listed)));
    };
    compare("my_version", description.version, description.propertyListVersion);
    compare("out_flags", description.flags, description.propertyListFlags);
    compare("out_flags2", description.flags2, description.propertyListFlags2);
}

PF_InData Host::makeInData(const Call& sent) {
    PF_InData in{};
    in.inter = tables.interaction;
    in.utils = tables.utilities;
    in.effect_ref = token();
    in.version = options.interfaceVersion;
    in.appl_id = options.application;
    in.num_params = static_cast<A_long>(description.parameters.size()) + 1;
    in.quality = PF_Quality_HI;
    in.time_scale = 1;
    in.time_step = in.local_time_step = 1;
    in.downsample_x = in.downsample_y = in.pixel_aspect_ratio = {1, 1};
    in.pica_basicP = options.offersSuites ? tables.suites : nullptr;
    if (sent.frame != nullptr) describeFrame(*sent.frame, in);
    in.global_data = globalData;
    in.sequence_data = valueOrNull(sent.sequenceData);
    in.frame_data = options.keepsFrameData ? valueOrNull(sent.frameData) : nullptr;
    return in;
}

void Host::send(Call& sent) {
    if (!isMainThread()) throw Error("commands are sent on the thread that loaded the effect");
    const std::string name = commandName(sent.command);
    if (options.onCommand) options.onCommand(name);
    ledger.enterCommand(name);
    if (sent.values.empty()) sent.values = defaultParameterValues(description.parameters, 0, 0);

    const PF_InData given = makeInData(sent);
    PF_InData in = given;
    sent.out = {};
    sent.out.global_data = in.global_data;
    sent.out.sequence_data = in.sequence_data;
    sent.out.frame_data = in.frame_data;
    {
        const UnderWay underWay(call, sent);
        const InEffect inEffect(name, sent.frame != nullptr ? sent.frame->frame : Whereabouts::kNoFrame);
        process.enterCommand();
        enter(sent, in);
    }
    if (!sent.breakage.empty()) untoldBreakage = sent.breakage;
    process.leaveCommand();
    carryOver(sent, given, in);
    if (sent.out.return_msg[sizeof sent.out.return_msg - 1] != '\0')
        ledger.fault("", "return_msg is not terminated within its 256 bytes");
    checkouts.reportOpen();
    worlds.reportOpen();
}

void Host::enter(Call& sent, PF_InData& in) {
    std::vector<PF_ParamDef*> params;
    for (PF_ParamDef& value : sent.values)
        params.push_back(&value);
    PF_LayerDef noOutput{};
    PF_LayerDef* output = sent.output != nullptr ? sent.output : &noOutput;
    try {
        sent.code = entryPoint(sent.command, &in, &sent.out, params.data(), output, sent.extra);
    } catch (...) {
        ledger.fault("", "an exception left the entry point");
        hasThrown = true;
        sent.code = PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
    if (hasThrown.exchange(false)) sent.breakage = describeException();
}

std::string Host::describeException() const {
    return describeEffectEnd(whereabouts(), "let an exception out", "");
}

void Host::callOutside(const char* function, const std::function<void()>& body) {
    process.enterCommand();
    {
        const InEffect inEffect(function);
        try {
            body();
        } catch (...) {
            ledger.fault(function, "an exception left the effect's function");
            untoldBreakage = describeException();
        }
    }
    process.leaveCommand();
}

void Host::carryOver(Call& sent, const PF_InData& given, const PF_InData& in) {
    const auto keep = [this](const char* field, PF_Handle handle, PF_Handle& kept) {
        kept = handle;
        if (handle != nullptr && !handles.isLive(handle))
            ledger.fault("", fmt::format("{} is not a handle of the host, or has been disposed", field));
    };
    keep("global_data", keptHandle(given.global_data, in.global_data, sent.out.global_data), globalData);
    if (sent.sequenceData != nullptr)
        keep("sequence_data", keptHandle(given.sequence_data, in.sequence_data, sent.out.sequence_data),
             *sent.sequenceData);
    if (sent.frameData != nullptr && options.keepsFrameData)
        keep("frame_data", keptHandle(given.frame_data, in.frame_data, sent.out.frame_data), *sent.frameData);
}

void Host::throwIfFailed(const Call& sent) {
    std::string message = resultOf(sent).message;
    if (message.empty() && sent.code != PF_Err_NONE) message = sent.refusal;
    const std::string name = commandName(sent.command);
    const std::optional<std::int32_t> frame =
        sent.frame != nullptr ? std::optional(sent.frame->frame) : std::nullopt;
    if (!sent.breakage.empty()) {
        untoldBreakage.clear();
        throw EffectBroke(sent.breakage);
    }
    const bool isAskedFor =
        sent.frame != nullptr && sent.frame->cancelled != nullptr && sent.frame->cancelled->load();
    if (sent.code == PF_Interrupt_CANCEL && isAskedFor) throw Cancelled(name, sent.code, message, frame);
    if (sent.code != PF_Err_NONE) throw EffectError(name, sent.code, message, frame);
    if (resultOf(sent).message.empty() || sent.command == PF_Cmd_ABOUT) return;
    if ((sent.out.out_flags & PF_OutFlag_DISPLAY_ERROR_MESSAGE) != 0)
        throw EffectError(name, sent.code, message, frame);
    if (options.onMessage) options.onMessage(name, message);
}

void Host::reportFailedTearDown(const Call& sent) {
    if (sent.code != PF_Err_NONE)
        ledger.fault("", fmt::format("the effect answered {}; nothing can be done about a failed tear-down",
                                     sent.code));
}

bool Host::isDuringFrame() const {
    return isDuring(PF_Cmd_FRAME_SETUP) || isDuring(PF_Cmd_RENDER) || isDuring(PF_Cmd_FRAME_SETDOWN) ||
           isDuring(PF_Cmd_SMART_PRE_RENDER) || isDuring(PF_Cmd_SMART_RENDER);
}

bool Host::isCancelled() const {
    const FrameRequest* frame = call != nullptr ? call->frame : nullptr;
    return frame != nullptr && frame->cancelled != nullptr && frame->cancelled->load();
}

void Host::refuse(std::string_view callback, const std::string& why) {
    ledger.fault(callback, why);
    if (call != nullptr && isMainThread()) call->refusal = fmt::format("{}: {}", callback, why);
}

bool Host::hasRefused() const {
    return call != nullptr && isMainThread() && !call->refusal.empty();
}

void Host::forgetRefusal() {
    if (call != nullptr && isMainThread()) call->refusal.clear();
}

void Host::showProgress(double fraction) const {
    const FrameRequest* frame = call != nullptr ? call->frame : nullptr;
    if (frame != nullptr && frame->progress && isMainThread())
        frame->progress(std::clamp(fraction, 0.0, 1.0));
}

PF_Err Host::countCall(std::string_view callback) {
    if (options.failures.empty()) return PF_Err_NONE;
    const std::lock_guard lock(callCountMutex);
    const int number = ++callCounts.try_emplace(std::string(callback), 0).first->second;
    for (const CallFailure& failure : options.failures)
        if (failure.callback == callback && (failure.call == 0 || failure.call == number))
            return failure.code;
    return PF_Err_NONE;
}

}  // namespace perch
