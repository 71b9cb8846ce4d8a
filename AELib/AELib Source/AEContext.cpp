#include "AEContext.h"

#include <atomic>
#include <cstdint>
#include <type_traits>

#include "Errors.h"
#include "GlobalManager.h"
#include "HandleMemory.h"
#include "HostCallback.h"
#include "HostSites.h"
#include "PF_Values.h"
#include "SuiteHandler.h"

namespace AELib {

PF_UtilCallbacks* gPF_Utils = nullptr;

using PILib::ThrowIfErr;

static_assert(std::is_same_v<A_long, int>, "iteration callbacks of library and host are one type");

namespace {

constexpr float kFixedOne = 65536.0F;

void Require(bool condition, int line) {
    PILib::_Assert(condition, line, site::kAEContextFile);
}

float FromFixed(PF_Fixed value) {
    return static_cast<float>(value) / kFixedOne;
}

// The nearest integer of a 16.16 value.
int Fix2Long(PF_Fixed value) {
    return static_cast<int>((std::int64_t{value} + 0x8000) >> 16);
}

// The item of a popup, counted from 0.
int ItemOf(const PF_PopupDef& popup) {
    Require(popup.value != INT32_MIN, site::kPopupItem);
    return popup.value - 1;
}

PF_Err StoreIterations(void* refcon, A_long /*thread*/, A_long /*i*/, A_long iterations) {
    static_cast<std::atomic<int>*>(refcon)->store(iterations, std::memory_order_relaxed);
    return PF_Err_NONE;
}

}  // namespace

float RatioOf(const PF_RationalScale& scale) {
    return scale.den == 0 ? 1.0F : static_cast<float>(scale.num) / static_cast<float>(scale.den);
}

AEContext::AEContext(int cmd, PF_InData* inData, PF_OutData* outData, PF_ParamDef** params,
                     PF_LayerDef* output, void* extra)
    : cmd(cmd),
      inData(inData),
      outData(outData),
      params(params),
      output(output),
      extra(extra),
      downsampleX(RatioOf(inData->downsample_x)),
      downsampleY(RatioOf(inData->downsample_y)),
      pixelAspectRatio(RatioOf(inData->pixel_aspect_ratio) * downsampleY / downsampleX) {}

bool AEContext::isDraftMode() const {
    return inData->quality != PF_Quality_HI;
}

void AEContext::checkAbort() const {
    ThrowIfErr(HostCallback(&inData->inter, &PF_InteractCallbacks::abort)(inData->effect_ref));
}

void AEContext::setProgress(float start, float end) {
    progressOffset = PILib::TruncToInt32(start * 10000.0F);
    progressScale = PILib::TruncToInt32((end - start) * 10000.0F);
}

void AEContext::progress(int i, int n, float base, float span) const {
    if (i % 16 != 0 || n == 0) return;
    const std::int64_t step =
        PILib::TruncToInt32(static_cast<float>(n) * base + static_cast<float>(i) * span);
    const auto done = static_cast<A_long>(progressOffset + step * progressScale / n);
    ThrowIfErr(
        HostCallback(&inData->inter, &PF_InteractCallbacks::progress)(inData->effect_ref, done, 10000));
}

char** AEContext::newHandle(std::size_t size) const {
    char** const handle = utils() != nullptr && utils()->host_new_handle != nullptr
                              ? utils()->host_new_handle(size)
                              : NewHandle(size);
    if (handle == nullptr) throw int{PF_Err_OUT_OF_MEMORY};
    return handle;
}

char** AEContext::newLockedHandle(std::size_t size) const {
    char** const handle = newHandle(size);
    lockHandle(handle);
    return handle;
}

char* AEContext::lockHandle(char** handle) const {
    Require(handle != nullptr, site::kHandleNotNull);
    if (IsPlatformHandle(handle) || utils() == nullptr || utils()->host_lock_handle == nullptr)
        return HLock(handle);
    return static_cast<char*>(utils()->host_lock_handle(handle));
}

void AEContext::unlockHandle(char** handle) const {
    Require(handle != nullptr, site::kHandleNotNull);
    if (IsPlatformHandle(handle) || utils() == nullptr || utils()->host_unlock_handle == nullptr) {
        HUnlock(handle);
    } else {
        utils()->host_unlock_handle(handle);
    }
}

void AEContext::disposeHandle(char** handle) const {
    if (handle == nullptr) return;
    if (IsPlatformHandle(handle) || utils() == nullptr || utils()->host_dispose_handle == nullptr) {
        DisposeHandle(handle);
    } else {
        utils()->host_dispose_handle(handle);
    }
}

std::size_t AEContext::getHandleSize(char** handle) const {
    Require(handle != nullptr, site::kHandleNotNull);
    if (IsPlatformHandle(handle) || utils() == nullptr || utils()->host_get_handle_size == nullptr) {
        return GetHandleSize(handle);
    }
    return static_cast<std::size_t>(utils()->host_get_handle_size(handle));
}

void AEContext::resizeHandle(std::size_t size, char*** handle) const {
    ThrowIfErr(HostCallback(utils(), &PF_UtilCallbacks::host_resize_handle)(size, handle));
}

int AEContext::numProcessors() const {
    static std::atomic<int> count = 0;
    if (count.load(std::memory_order_relaxed) < 1) {
        if (gSuites != nullptr) {
            ThrowIfErr(HostCallback(gSuites->iterate8(), &PF_Iterate8Suite1::iterate_generic)(
                -1, &count, StoreIterations));
        } else {
            count.store(1, std::memory_order_relaxed);
        }
    }
    Require(count.load(std::memory_order_relaxed) >= 1, site::kProcessorCount);
    return count.load(std::memory_order_relaxed);
}

int AEContext::multiThread(int count, void* refcon, int (*fn)(void*, int, int, int)) const {
    const PF_Iterate8Suite1* const suite =
        gSuites != nullptr && count != 1 ? gSuites->iterate8OrNull() : nullptr;
    if (suite != nullptr) return HostCallback(suite, &PF_Iterate8Suite1::iterate_generic)(count, refcon, fn);
    return fn(refcon, 0, 0, 1);
}

int AEContext::getParamNumber(int id) const {
    return globalManager->getParamNumber(id);
}

void AEContext::setParamNumber(int id, int index) const {
    globalManager->setParamNumber(id, index);
}

int AEContext::getChangedParamNumber() const {
    return extra == nullptr ? -1 : static_cast<const PF_UserChangedParamExtra*>(extra)->param_index;
}

PF_ParamDef* AEContext::getParam(int id) const {
    const int index = getParamNumber(id);
    Require(params != nullptr && params[index] != nullptr, site::kParamIndex);
    return params[index];
}

float AEContext::getParamFloat(int id) const {
    const PF_ParamDef& param = *getParam(id);
    switch (param.param_type) {
        case PF_Param_SLIDER:
            return static_cast<float>(param.u.sd.value);
        case PF_Param_FIX_SLIDER:
            return FromFixed(param.u.fd.value);
        case PF_Param_ANGLE:
            return FromFixed(param.u.ad.value);
        case PF_Param_CHECKBOX:
            return param.u.bd.value != 0 ? 1.0F : 0.0F;
        case PF_Param_POPUP:
            return static_cast<float>(ItemOf(param.u.pd));
        case PF_Param_FLOAT_SLIDER:
            return static_cast<float>(param.u.fs_d.value);
        default:
            Require(false, site::kFloatParamType);
            return 0.0F;
    }
}

int AEContext::getParamInt(int id) const {
    const PF_ParamDef& param = *getParam(id);
    switch (param.param_type) {
        case PF_Param_SLIDER:
            return param.u.sd.value;
        case PF_Param_FIX_SLIDER:
            return Fix2Long(param.u.fd.value);
        case PF_Param_ANGLE:
            return Fix2Long(param.u.ad.value);
        case PF_Param_CHECKBOX:
            return param.u.bd.value != 0 ? 1 : 0;
        case PF_Param_POPUP:
            return ItemOf(param.u.pd);
        case PF_Param_FLOAT_SLIDER:
            return PILib::TruncToInt32(param.u.fs_d.value + 0.5);
        default:
            Require(false, site::kIntParamType);
            return 0;
    }
}

// The product is formed in double precision, so that whole percentages give the nearest fraction.
float AEContext::getParamPercent(int id) const {
    return static_cast<float>(getParamFloat(id) * 0.01);
}

PILib::Pixel<PILib::Channel8> AEContext::getParamColor8(int id) const {
    const PF_Pixel& color = getParam(id)->u.cd.value;
    return {color.alpha, color.red, color.green, color.blue};
}

PILib::Pixel<PILib::Channel32f> AEContext::getParamColor(int id) const {
    return getParamColor8(id);
}

PILib::TPoint<float> AEContext::getParamPoint(int id) const {
    const PF_PointDef& point = getParam(id)->u.td;
    return {FromFixed(point.x_value), FromFixed(point.y_value)};
}

PILib::TPoint<int> AEContext::getParamIntPoint(int id) const {
    const PF_PointDef& point = getParam(id)->u.td;
    return {point.x_value >> 16, point.y_value >> 16};
}

void AEContext::setParamColor(int id, const PILib::Pixel<PILib::Channel8>& color) const {
    PF_ParamDef& param = *getParam(id);
    param.u.cd.value = {color.alpha, color.red, color.green, color.blue};
    param.uu.change_flags |= PF_ChangeFlag_CHANGED_VALUE;
}

void AEContext::disableParam(int id, bool disable) const {
    PF_ParamDef& param = *getParam(id);
    if (disable) {
        param.ui_flags |= PF_PUI_DISABLED;
    } else {
        param.ui_flags &= ~PF_PUI_DISABLED;
    }
}

AEParam& AEContext::copyParam(int id) {
    return paramCopies[id] = *getParam(id);
}

void AEContext::updateParamUI(int id) {
    if (gSuites == nullptr) return;
    const auto update = HostCallback(gSuites->paramUtils(), &PF_ParamUtilsSuite1::PF_UpdateParamUI);
    ThrowIfErr(update(inData->effect_ref, getParamNumber(id), &paramCopies[id]));
}

void AEContext::hideParam(int id, bool hide) const {
    if (gSuites == nullptr || !isAE6Compatible()) return;
    const AEGP_PluginID plugin = globalManager->pluginID;
    AEGP_EffectRefH effect = nullptr;
    ThrowIfErr(HostCallback(gSuites->pfInterface(), &AEGP_PFInterfaceSuite1::AEGP_GetNewEffectForEffect)(
        plugin, inData->effect_ref, &effect));
    AEGP_StreamRefH stream = nullptr;
    ThrowIfErr(HostCallback(gSuites->stream(), &AEGP_StreamSuite1::AEGP_GetNewEffectStreamByIndex)(
        plugin, effect, getParamNumber(id), &stream));
    ThrowIfErr(HostCallback(gSuites->dynamicStream(), &AEGP_DynamicStreamSuite1::AEGP_SetDynamicStreamFlag)(
        stream, AEGP_DynStreamFlag_HIDDEN, hide ? 1 : 0));
    ThrowIfErr(HostCallback(gSuites->effect(), &AEGP_EffectSuite1::AEGP_DisposeEffect)(effect));
    ThrowIfErr(HostCallback(gSuites->stream(), &AEGP_StreamSuite1::AEGP_DisposeStream)(stream));
    outData->out_flags |= PF_OutFlag_FORCE_RERENDER;
}

bool AEContext::isAE6Compatible() const {
    const PF_SpecVersion& version = inData->version;
    return gSuites != nullptr && (version.major > 12 || (version.major == 12 && version.minor > 10));
}

}  // namespace AELib
