// Worlds that effects ask for, and the way to their pixels.
#include "CallGuard.h"
#include "Callbacks.h"
#include "PixelAccess.h"
#include "PixelMemory.h"

namespace perch {
namespace {

PF_Err newWorld(PF_ProgPtr effectRef, A_long width, A_long height, PF_NewWorldFlags flags,
                PF_EffectWorld* world) {
    return answer("new_world", Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (world == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        const bool isDeep = (flags & PF_NewWorldFlag_DEEP_PIXELS) != 0;
        return host.worlds.allocate(width, height, isDeep ? PixelDepth::Bits16 : PixelDepth::Bits8, *world,
                                    "new_world");
    });
}

PF_Err disposeWorld(PF_ProgPtr effectRef, PF_EffectWorld* world) {
    return answer("dispose_world", Caller::MainThread, effectRef,
                  [&](Host& host) -> PF_Err { return host.worlds.dispose(world, "dispose_world"); });
}

// The given pixel or the first, and null where the depth is another; neither is an error.
template <typename P>
PF_Err pixelData(const char* callback, PF_EffectWorld* world, PF_PixelPtr pixel, P** address) {
    return answer(callback, Caller::AnyThread, [&](Host&) -> PF_Err {
        if (!isInMemory(world) || address == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        PF_PixelPtr found = pixel != nullptr ? pixel : world->data;
        *address = depthOf(*world) == kDepthOf<P> ? static_cast<P*>(static_cast<void*>(found)) : nullptr;
        return PF_Err_NONE;
    });
}

PF_Err pixelData8(PF_EffectWorld* world, PF_PixelPtr pixel, PF_Pixel8** address) {
    return pixelData("get_pixel_data8", world, pixel, address);
}

PF_Err pixelData16(PF_EffectWorld* world, PF_PixelPtr pixel, PF_Pixel16** address) {
    return pixelData("get_pixel_data16", world, pixel, address);
}

}  // namespace

PF_Err pixelDataFloat(PF_EffectWorld* world, PF_PixelPtr pixel, PF_PixelFloat** address) {
    return pixelData("get_pixel_data_float", world, pixel, address);
}

void fillWorldCallbacks(PF_UtilCallbacks& table) {
    table.new_world = newWorld;
    table.dispose_world = disposeWorld;
    table.get_pixel_data8 = pixelData8;
    table.get_pixel_data16 = pixelData16;
}

}  // namespace perch
