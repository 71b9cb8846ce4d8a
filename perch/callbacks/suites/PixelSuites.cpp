// The suites about pixels, worlds and memory: the utility callbacks under other names, and worlds by format.
#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "CallGuard.h"
#include "Callbacks.h"
#include "PF_Suites.h"
#include "PixelAccess.h"
#include "PixelMemory.h"
#include "SuiteEntry.h"

namespace perch {
namespace {

struct Format {
    PF_PixelFormat format;
    PixelDepth depth;
};

constexpr Format kFormats[] = {{PF_PixelFormat_8BIT, PixelDepth::Bits8},
                               {PF_PixelFormat_16BIT, PixelDepth::Bits16},
                               {PF_PixelFormat_FLOAT, PixelDepth::Float}};

PF_Err newWorld(PF_ProgPtr effectRef, A_long width, A_long height, PF_Boolean, PF_PixelFormat format,
                PF_EffectWorld* world) {
    return answer("PF_NewWorld", Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (world == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *world = {};
        const auto* const found = std::ranges::find(kFormats, format, &Format::format);
        if (found == std::end(kFormats)) {
            host.refuse("PF_NewWorld", fmt::format("the pixel format {} is not offered", format));
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        return host.worlds.allocate(width, height, found->depth, *world, "PF_NewWorld");
    });
}

PF_Err disposeWorld(PF_ProgPtr effectRef, PF_EffectWorld* world) {
    return answer("PF_DisposeWorld", Caller::MainThread, effectRef,
                  [&](Host& host) -> PF_Err { return host.worlds.dispose(world, "PF_DisposeWorld"); });
}

PF_Err getPixelFormat(const PF_EffectWorld* world, PF_PixelFormat* format) {
    return answer("PF_GetPixelFormat", Caller::AnyThread, [&](Host&) -> PF_Err {
        if (!isInMemory(world) || format == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *format = std::ranges::find(kFormats, depthOf(*world), &Format::depth)->format;
        return PF_Err_NONE;
    });
}

}  // namespace

std::span<const SuiteEntry> pixelSuites() {
    static const PF_UtilCallbacks& utilities = *utilityCallbacks();
    static PF_ANSICallbacksSuite1 ansi = utilities.ansi;
    static PF_HandleSuite1 handles{utilities.host_new_handle,      utilities.host_lock_handle,
                                   utilities.host_unlock_handle,   utilities.host_dispose_handle,
                                   utilities.host_get_handle_size, utilities.host_resize_handle};
    static PF_Iterate8Suite1 iterate8{utilities.iterate, utilities.iterate_origin, utilities.iterate_lut,
                                      utilities.iterate_origin_non_clip_src, utilities.iterate_generic};
    static PF_iterate16Suite1 iterate16{utilities.iterate16, utilities.iterate_origin16,
                                        utilities.iterate_origin_non_clip_src16};
    static PF_iterateFloatSuite1 iterateFloat = floatIterateSuite();
    static PF_WorldSuite2 worlds{newWorld, disposeWorld, getPixelFormat};
    static PF_WorldTransformSuite1 transforms{
        utilities.composite_rect, utilities.blend,          utilities.convolve, utilities.copy, copyFiltered,
        utilities.transfer_rect,  utilities.transform_world};
    static PF_FillMatteSuite2 fills{utilities.fill,
                                    utilities.fill16,
                                    fillFloat,
                                    utilities.premultiply,
                                    utilities.premultiply_color,
                                    utilities.premultiply_color16,
                                    premultiplyColorFloat};
    static PF_PixelDataSuite1 pixelData{utilities.get_pixel_data8, utilities.get_pixel_data16,
                                        pixelDataFloat};
    static const SuiteEntry entries[] = {
        {"PF ANSI Suite", 1, &ansi},
        {"PF Fill Matte Suite", 2, &fills},
        {"PF Handle Suite", 2, &handles},
        {"PF Iterate8 Suite", 1, &iterate8},
        {"PF Iterate8 Suite", 2, &iterate8},
        {"PF Pixel Data Suite", 1, &pixelData},
        {"PF World Suite", 2, &worlds},
        {"PF World Transform Suite", 1, &transforms},
        {"PF iterate16 Suite", 1, &iterate16},
        {"PF iterate16 Suite", 2, &iterate16},
        {"PF iterateFloat Suite", 1, &iterateFloat},
        {"PF iterateFloat Suite", 2, &iterateFloat},
    };
    return entries;
}

}  // namespace perch
