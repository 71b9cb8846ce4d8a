#include "RecordingHost.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "HostCallbacks.h"

namespace {

constexpr const char* kNames[] = {
    "checkout_param",
    "checkin_param",
    "add_param",
    "abort",
    "progress",
    "blend",
    "new_world",
    "dispose_world",
    "transform_world",
    "get_pixel_data8",
    "get_pixel_data16",
    "host_new_handle",
    "host_lock_handle",
    "host_unlock_handle",
    "host_dispose_handle",
    "host_get_handle_size",
    "host_resize_handle",
    "AcquireSuite",
    "ReleaseSuite",
    "iterate_generic",
    "PF_UpdateParamUI",
    "AEGP_RegisterWithAEGP",
    "AEGP_GetNewEffectForEffect",
    "AEGP_GetNewEffectStreamByIndex",
    "AEGP_SetDynamicStreamFlag",
    "AEGP_DisposeEffect",
    "AEGP_DisposeStream",
};

}  // namespace

const char* NameOf(Callback callback) {
    return kNames[static_cast<std::size_t>(callback)];
}

void Failures::at(Callback callback, int nth, PF_Err code) {
    clear();
    failing = callback;
    failingCall = nth;
    failingCode = code;
}

void Failures::clear() {
    *this = Failures();
}

PF_Err Failures::count(Callback callback) {
    const int call = ++counts[static_cast<std::size_t>(callback)];
    return callback == failing && call == failingCall ? failingCode : PF_Err_NONE;
}

PF_Err RecordingHost::enter(Callback callback) {
    if (std::this_thread::get_id() != mainThread) {
        std::fprintf(stderr, "%s was called on a worker thread\n", NameOf(callback));
        std::abort();
    }
    log.emplace_back(NameOf(callback));
    return failures.count(callback);
}

RecordingHost::RecordingHost(PF_EntryPoint entryPoint) : entryPoint(entryPoint), params(1) {
    HostCallbacks::theHost = this;
    HostCallbacks::fill(in.inter);
    HostCallbacks::fill(utils);
    basic.AcquireSuite = HostCallbacks::acquireSuite;
    basic.ReleaseSuite = HostCallbacks::releaseSuite;
    in.utils = &utils;
    in.pica_basicP = &basic;
    in.effect_ref = kEffectRef;
    in.quality = PF_Quality_HI;
    in.version = {PF_INTERFACE_MAJOR, PF_INTERFACE_MINOR};
    in.time_step = 1001;
    in.local_time_step = 1001;
    in.time_scale = 24000;
    in.current_time = 5005;
    in.total_time = 100100;
    in.downsample_x = in.downsample_y = in.pixel_aspect_ratio = {1, 1};
}

RecordingHost::~RecordingHost() {
    HostCallbacks::theHost = nullptr;
}

PF_Handle RecordingHost::newHandle(A_u_longlong size) {
    auto block = std::make_unique<Block>();
    block->bytes = std::make_unique<char[]>(size);
    block->address = block->bytes.get();
    block->size = size;
    block->locks = 0;
    const PF_Handle handle = &block->address;
    handles.emplace(handle, std::move(block));
    return handle;
}

std::vector<PF_ParamDef*> RecordingHost::paramPointers() {
    std::vector<PF_ParamDef*> pointers;
    for (PF_ParamDef& param : params)
        pointers.push_back(&param);
    return pointers;
}

void RecordingHost::adoptDeclaredParams() {
    params.resize(1);
    for (PF_ParamDef& def : declared) {
        PF_ParamDef& param = params.emplace_back(def);
        param.uu.change_flags = 0;
        if (param.param_type == PF_Param_POPUP) param.u.pd.value = param.u.pd.dephault;
        if (param.param_type == PF_Param_CHECKBOX) param.u.bd.value = param.u.bd.dephault;
    }
    in.num_params = static_cast<A_long>(params.size());
}

PF_Err RecordingHost::call(PF_Cmd command, void* extra) {
    out = PF_OutData{};
    out.global_data = in.global_data;
    out.sequence_data = in.sequence_data;
    out.frame_data = in.frame_data;
    std::vector<PF_ParamDef*> pointers = paramPointers();
    const bool givesOutput = command != PF_Cmd_FRAME_SETUP && command != PF_Cmd_FRAME_SETDOWN;
    const PF_Err error =
        entryPoint(command, &in, &out, pointers.data(), givesOutput ? output : nullptr, extra);
    in.global_data = out.global_data;
    in.sequence_data = out.sequence_data;
    in.frame_data = out.frame_data;
    return error;
}

PF_Err RecordingHost::renderFrame() {
    if (const PF_Err error = call(PF_Cmd_FRAME_SETUP)) return error;
    const PF_Err rendered = call(PF_Cmd_RENDER);
    const std::string text = message();
    const PF_Err ended = call(PF_Cmd_FRAME_SETDOWN);
    if (rendered == PF_Err_NONE) return ended;
    std::memcpy(out.return_msg, text.c_str(), text.size() + 1);
    return rendered;
}

void RecordingHost::tearDown() {
    failures.clear();
    if (in.global_data != nullptr && in.sequence_data != nullptr) call(PF_Cmd_SEQUENCE_SETDOWN);
    if (in.global_data != nullptr) call(PF_Cmd_GLOBAL_SETDOWN);
}

int RecordingHost::lockedHandles() const {
    return static_cast<int>(std::count_if(handles.begin(), handles.end(),
                                          [](const auto& entry) { return entry.second->locks > 0; }));
}

std::string RecordingHost::takeFaults() {
    std::string text = faults();
    faultList.clear();
    return text;
}

void RecordingHost::endLoans() {
    checkedOut.clear();
    worlds.clear();
}

std::string RecordingHost::faults() const {
    std::string text;
    for (const std::string& fault : faultList)
        text += fault + '\n';
    if (!checkedOut.empty()) text += std::to_string(checkedOut.size()) + " checkouts are open\n";
    if (!worlds.empty()) text += std::to_string(worlds.size()) + " worlds are lent\n";
    return text;
}
