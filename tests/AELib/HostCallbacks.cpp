#include "HostCallbacks.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

RecordingHost* HostCallbacks::theHost = nullptr;

namespace {

bool IsDeep(const PF_EffectWorld& world) {
    return (world.world_flags & PF_WorldFlag_DEEP) != 0;
}

}  // namespace

void HostCallbacks::checkReference(PF_ProgPtr ref, const char* caller) {
    if (ref != kEffectRef) theHost->fault(std::string(caller) + " with another effect reference");
}

PF_Err HostCallbacks::checkoutParam(PF_ProgPtr ref, PF_ParamIndex index, A_long time, A_long step,
                                    A_u_long scale, PF_ParamDef* param) {
    RecordingHost& host = *theHost;
    checkReference(ref, "checkout_param");
    host.checkouts.push_back({index, time, step, scale});
    host.checkedOut.insert(param);
    if (const PF_Err error = host.enter(Callback::kCheckoutParam)) return error;
    std::memset(param, 0, sizeof *param);
    if (host.control != nullptr) param->u.ld = host.control->def;
    return PF_Err_NONE;
}

PF_Err HostCallbacks::checkinParam(PF_ProgPtr ref, PF_ParamDef* param) {
    checkReference(ref, "checkin_param");
    RecordingHost& host = *theHost;
    const auto open = host.checkedOut.find(param);
    if (open == host.checkedOut.end()) {
        host.fault("checkin_param of a record that is not checked out");
    } else {
        host.checkedOut.erase(open);
    }
    return host.enter(Callback::kCheckinParam);
}

PF_Err HostCallbacks::addParam(PF_ProgPtr ref, PF_ParamIndex index, PF_ParamDefPtr def) {
    checkReference(ref, "add_param");
    RecordingHost& host = *theHost;
    if (index != -1) host.fault("add_param at another index than -1");
    if (const PF_Err error = host.enter(Callback::kAddParam)) return error;
    std::memcpy(&host.declared.emplace_back(), def, sizeof *def);
    return PF_Err_NONE;
}

PF_Err HostCallbacks::abort(PF_ProgPtr ref) {
    checkReference(ref, "abort");
    return theHost->enter(Callback::kAbort);
}

PF_Err HostCallbacks::progress(PF_ProgPtr ref, A_long current, A_long total) {
    checkReference(ref, "progress");
    theHost->progress.emplace_back(current, total);
    return theHost->enter(Callback::kProgress);
}

PF_Err HostCallbacks::blend(PF_ProgPtr ref, const PF_EffectWorld* a, const PF_EffectWorld* b, PF_Fixed ratio,
                            PF_EffectWorld* out) {
    checkReference(ref, "blend");
    RecordingHost& host = *theHost;
    host.blends.push_back({a, b, ratio, out});
    if (const PF_Err error = host.enter(Callback::kBlend)) return error;
    for (int y = 0; y < out->height; ++y) {
        for (int x = 0; x < out->width; ++x)
            SetPixel(*out, x, y, HostMix(PixelAt(*a, x, y), PixelAt(*b, x, y), ratio));
    }
    return PF_Err_NONE;
}

PF_Err HostCallbacks::newWorld(PF_ProgPtr ref, A_long width, A_long height, PF_NewWorldFlags flags,
                               PF_EffectWorld* world) {
    checkReference(ref, "new_world");
    RecordingHost& host = *theHost;
    const bool deep = flags == PF_NewWorldFlag_DEEP_PIXELS;
    if (!deep && flags != PF_NewWorldFlag_NONE) host.fault("new_world with other flags than the depth's");
    if (const PF_Err error = host.enter(Callback::kNewWorld)) return error;
    auto made = std::make_unique<HostWorld>(width, height, deep, 16);
    *world = made->def;
    host.worlds.emplace(world->data, std::move(made));
    return PF_Err_NONE;
}

PF_Err HostCallbacks::disposeWorld(PF_ProgPtr ref, PF_EffectWorld* world) {
    checkReference(ref, "dispose_world");
    RecordingHost& host = *theHost;
    const auto found = host.worlds.find(world->data);
    if (found == host.worlds.end()) {
        host.fault("dispose_world of a world that is not lent");
    } else {
        if (!found->second->guardsAreIntact()) host.fault("a lent world was written outside its pixels");
        host.worlds.erase(found);
    }
    return host.enter(Callback::kDisposeWorld);
}

PF_Err HostCallbacks::transformWorld(PF_ProgPtr ref, PF_Quality quality, PF_ModeFlags modeFlags,
                                     PF_Field field, const PF_EffectWorld* source,
                                     const PF_CompositeMode* mode, const PF_MaskWorld* mask,
                                     const PF_FloatMatrix* matrices, A_long count,
                                     PF_Boolean sourceToDestination, const PF_Rect* area,
                                     PF_EffectWorld* out) {
    checkReference(ref, "transform_world");
    RecordingHost& host = *theHost;
    host.transforms.push_back({quality, modeFlags, field, *mode, mask != nullptr, *matrices, count,
                               sourceToDestination, area == nullptr});
    if (const PF_Err error = host.enter(Callback::kTransformWorld)) return error;
    if (IsDeep(*source) != IsDeep(*out)) host.fault("transform_world between depths");
    for (int y = 0; y < out->height; ++y) {
        for (int x = 0; x < out->width; ++x)
            SetPixel(*out, x, y,
                     PixelAt(*source, (2 * x + 1) * source->width / (2 * out->width),
                             (2 * y + 1) * source->height / (2 * out->height)));
    }
    return PF_Err_NONE;
}

template <class Pixel, bool kDeep, Callback kCallback>
PF_Err HostCallbacks::getPixelData(PF_EffectWorld* world, PF_PixelPtr pixel, Pixel** first) {
    if (const PF_Err error = theHost->enter(kCallback)) return error;
    void* const data = pixel != nullptr ? pixel : world->data;
    *first = IsDeep(*world) == kDeep ? static_cast<Pixel*>(data) : nullptr;
    return PF_Err_NONE;
}

RecordingHost::Block* HostCallbacks::blockOf(PF_Handle handle, const char* caller) {
    const auto found = theHost->handles.find(handle);
    if (found != theHost->handles.end()) return found->second.get();
    theHost->fault(std::string(caller) + " of a handle that is not alive");
    return nullptr;
}

PF_Handle HostCallbacks::newHandle(A_u_longlong size) {
    return theHost->enter(Callback::kNewHandle) != PF_Err_NONE ? nullptr : theHost->newHandle(size);
}

void* HostCallbacks::lockHandle(PF_Handle handle) {
    RecordingHost::Block* const block = blockOf(handle, "lock");
    const bool fails = theHost->enter(Callback::kLockHandle) != PF_Err_NONE;
    if (block == nullptr || fails) return nullptr;
    ++block->locks;
    return block->address;
}

void HostCallbacks::unlockHandle(PF_Handle handle) {
    theHost->enter(Callback::kUnlockHandle);
    RecordingHost::Block* const block = blockOf(handle, "unlock");
    if (block != nullptr && --block->locks < 0) theHost->fault("unlock of a handle that is not locked");
}

void HostCallbacks::disposeHandle(PF_Handle handle) {
    theHost->enter(Callback::kDisposeHandle);
    if (blockOf(handle, "dispose") != nullptr) theHost->handles.erase(handle);
}

A_u_longlong HostCallbacks::getHandleSize(PF_Handle handle) {
    theHost->enter(Callback::kGetHandleSize);
    const RecordingHost::Block* const block = blockOf(handle, "size");
    return block == nullptr ? 0 : block->size;
}

PF_Err HostCallbacks::resizeHandle(A_u_longlong size, PF_Handle* handle) {
    RecordingHost& host = *theHost;
    if (const PF_Err error = host.enter(Callback::kResizeHandle)) return error;
    RecordingHost::Block* const block = blockOf(*handle, "resize");
    if (block == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
    const PF_Handle moved = host.newHandle(size);
    std::memcpy(*moved, block->address, std::min<std::size_t>(block->size, size));
    host.handles.at(moved)->locks = block->locks;
    host.handles.erase(*handle);
    *handle = moved;
    return PF_Err_NONE;
}

PF_Err HostCallbacks::iterateGeneric(A_long iterations, void* refcon,
                                     PF_Err (*fn)(void*, A_long thread, A_long i, A_long iterations)) {
    RecordingHost& host = *theHost;
    host.iterations.push_back(iterations);
    if (const PF_Err error = host.enter(Callback::kIterateGeneric)) return error;
    const A_long count = iterations == -1 ? host.threads : iterations;
    const auto run = [&](A_long i) {
        return fn(refcon, i, host.toldIndex.value_or(i), host.toldIterations.value_or(count));
    };
    std::vector<PF_Err> results(static_cast<std::size_t>(std::max(count, 1)));
    std::vector<std::thread> workers;
    for (A_long i = 1; i < count; ++i)
        workers.emplace_back([&, i] { results[static_cast<std::size_t>(i)] = run(i); });
    if (count > 0) results[0] = run(0);
    for (std::thread& worker : workers)
        worker.join();
    const auto failed = std::find_if(results.begin(), results.end(), [](PF_Err e) { return e != 0; });
    return failed == results.end() ? PF_Err_NONE : *failed;
}

void HostCallbacks::fill(PF_InteractCallbacks& inter) {
    inter.checkout_param = checkoutParam;
    inter.checkin_param = checkinParam;
    inter.add_param = addParam;
    inter.abort = abort;
    inter.progress = progress;
}

void HostCallbacks::fill(PF_UtilCallbacks& utils) {
    utils.blend = blend;
    utils.new_world = newWorld;
    utils.dispose_world = disposeWorld;
    utils.transform_world = transformWorld;
    utils.host_new_handle = newHandle;
    utils.host_lock_handle = lockHandle;
    utils.host_unlock_handle = unlockHandle;
    utils.host_dispose_handle = disposeHandle;
    utils.host_get_handle_size = getHandleSize;
    utils.host_resize_handle = resizeHandle;
    utils.iterate_generic = iterateGeneric;
    utils.get_pixel_data8 = getPixelData<PF_Pixel8, false, Callback::kGetPixelData8>;
    utils.get_pixel_data16 = getPixelData<PF_Pixel16, true, Callback::kGetPixelData16>;
    utils.ansi.sprintf = std::sprintf;
}
