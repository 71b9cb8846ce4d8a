// What a host does with pictures for an effect, between the tables and the operations.
#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>

#include "CallGuard.h"
#include "Callbacks.h"
#include "Convolve.h"
#include "PixelAccess.h"
#include "PixelMemory.h"
#include "PixelOps.h"
#include "SlotName.h"
#include "TransferModes.h"
#include "Transform.h"

namespace perch {
namespace {

// Serves a call that works on worlds, all without a flaw, by `body`, a function from Host& to a code. The
// operations refuse what they cannot do.
template <typename F>
PF_Err answerForWorlds(const char* callback, PF_ProgPtr effectRef,
                       std::initializer_list<const PF_EffectWorld*> worlds, const F& body) {
    return answer(callback, Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        for (const PF_EffectWorld* world : worlds) {
            const char* const flaw = flawOf(world);
            if (flaw == nullptr) continue;
            host.refuse(callback, flaw);
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        host.forgetRefusal();
        const PF_Err code = body(host);
        if (code != PF_Err_NONE && !host.hasRefused())
            host.refuse(callback, fmt::format("answered {}: the arguments do not fit together", code));
        return code;
    });
}

PF_Err blend(PF_ProgPtr effectRef, const PF_EffectWorld* a, const PF_EffectWorld* b, PF_Fixed ratio,
             PF_EffectWorld* dst) {
    return answerForWorlds("blend", effectRef, {a, b, dst},
                           [&](Host&) { return blendWorlds(*a, *b, ratio, *dst); });
}

PF_Err copy(PF_ProgPtr effectRef, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* srcArea,
            PF_Rect* dstArea) {
    return answerForWorlds("copy", effectRef, {src, dst},
                           [&](Host&) { return copyWorld(*src, srcArea, *dst, dstArea); });
}

template <typename P>
PF_Err fill(PF_ProgPtr effectRef, const P* color, const PF_Rect* area, PF_EffectWorld* world) {
    const char* const name = slotName<P>({"fill", "fill16", "fill_float"});
    return answerForWorlds(name, effectRef, {world}, [&](Host&) { return fillWorld(color, area, *world); });
}

PF_Err premultiply(PF_ProgPtr effectRef, A_long forward, PF_EffectWorld* dst) {
    return answerForWorlds("premultiply", effectRef, {dst},
                           [&](Host&) { return premultiplyWorld(forward != 0, *dst); });
}

template <typename P>
PF_Err premultiplyColor(PF_ProgPtr effectRef, PF_EffectWorld* src, const P* color, A_long forward,
                        PF_EffectWorld* dst) {
    const char* const name =
        slotName<P>({"premultiply_color", "premultiply_color16", "premultiply_color_float"});
    return answerForWorlds(name, effectRef, {src, dst}, [&](Host&) {
        const P black{};
        return premultiplyWorld(*src, color != nullptr ? *color : black, forward != 0, *dst);
    });
}

// Whether the call can be served; why not is told.
bool isOffered(Host& host, const char* callback, PF_TransferMode mode, PF_Field field) {
    if (transferFunction(mode) == nullptr) {
        host.refuse(callback, fmt::format("the transfer mode {} is not offered", transferModeName(mode)));
        return false;
    }
    if (field == PF_Field_FRAME) return true;
    host.refuse(callback, "single fields are not offered; ask for whole frames");
    return false;
}

PF_Err compositeRect(PF_ProgPtr effectRef, PF_Rect* area, A_long opacity, PF_EffectWorld* src, A_long x,
                     A_long y, PF_Field field, PF_XferMode mode, PF_EffectWorld* dst) {
    const char* const name = "composite_rect";
    return answerForWorlds(name, effectRef, {src, dst}, [&](Host& host) -> PF_Err {
        if (!isOffered(host, name, mode, field)) return PF_Err_BAD_CALLBACK_PARAM;
        const double share = std::clamp(opacity, A_long{0}, A_long{255}) / 255.0;
        return compositeWorld(*src, area, {mode, share, false}, x, y, *dst, &host.pool);
    });
}

// The world of a mask, or one that is looked at anyway where there is none.
const PF_EffectWorld* worldOf(const PF_MaskWorld* mask, const PF_EffectWorld* otherwise) {
    return mask != nullptr && mask->mask.data != nullptr ? &mask->mask : otherwise;
}

// A null mode is a copy; each depth has an opacity of its own. A mask without pixels is none.
Placement placementOf(const PF_CompositeMode* mode, const PF_MaskWorld* mask, const PF_EffectWorld& dst) {
    if (mask != nullptr && mask->mask.data == nullptr) mask = nullptr;
    if (mode == nullptr) return {PF_Xfer_COPY, 1.0, false, mask};
    const double opacity =
        depthOf(dst) == PixelDepth::Bits8 ? mode->opacity / 255.0 : mode->opacitySu / 32768.0;
    return {mode->xfer, std::min(opacity, 1.0), mode->rgb_only != 0, mask};
}

PF_Err transferRect(PF_ProgPtr effectRef, PF_Quality, PF_ModeFlags, PF_Field field, const PF_Rect* area,
                    const PF_EffectWorld* src, const PF_CompositeMode* mode, const PF_MaskWorld* mask,
                    A_long x, A_long y, PF_EffectWorld* dst) {
    const char* const name = "transfer_rect";
    return answerForWorlds(name, effectRef, {src, worldOf(mask, src), dst}, [&](Host& host) -> PF_Err {
        const Placement placement = placementOf(mode, mask, *dst);
        if (!isOffered(host, name, placement.mode, field)) return PF_Err_BAD_CALLBACK_PARAM;
        return compositeWorld(*src, area, placement, x, y, *dst, &host.pool);
    });
}

PF_Err transformPicture(PF_ProgPtr effectRef, PF_Quality, PF_ModeFlags, PF_Field field,
                        const PF_EffectWorld* src, const PF_CompositeMode* mode, const PF_MaskWorld* mask,
                        const PF_FloatMatrix* matrices, A_long matrixCount, PF_Boolean sourceToDestination,
                        const PF_Rect* area, PF_EffectWorld* dst) {
    constexpr A_long kMostMatrices = 1024;
    const char* const name = "transform_world";
    return answerForWorlds(name, effectRef, {src, worldOf(mask, src), dst}, [&](Host& host) -> PF_Err {
        const Placement placement = placementOf(mode, mask, *dst);
        if (!isOffered(host, name, placement.mode, field) || matrices == nullptr || matrixCount < 1 ||
            matrixCount > kMostMatrices) {
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        return transformWorld(*src, {matrices, static_cast<std::size_t>(matrixCount)},
                              sourceToDestination != 0, placement, area, *dst, &host.pool);
    });
}

PF_Err convolve(PF_ProgPtr effectRef, PF_EffectWorld* src, const PF_Rect* area, PF_KernelFlags flags,
                A_long size, void* alpha, void* red, void* green, void* blue, PF_EffectWorld* dst) {
    return answerForWorlds("convolve", effectRef, {src, dst}, [&](Host& host) {
        const Kernels kernels{flags, size, {alpha, red, green, blue}};
        return convolveWorld(*src, area, kernels, *dst, &host.pool);
    });
}

PF_Err gaussianKernel(PF_ProgPtr effectRef, A_FpLong radius, PF_KernelFlags flags, A_FpLong multiplier,
                      A_long* diameter, void* kernel) {
    return answer("gaussian_kernel", Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        if (diameter == nullptr || kernel == nullptr || gaussianDiameter(radius) == 0) {
            host.refuse("gaussian_kernel", fmt::format("there is no kernel of radius {}", radius));
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        *diameter = gaussianDiameter(radius);
        return makeGaussian(radius, flags, multiplier, kernel);
    });
}

}  // namespace

PF_Err fillFloat(PF_ProgPtr effectRef, const PF_PixelFloat* color, const PF_Rect* area,
                 PF_EffectWorld* world) {
    return fill(effectRef, color, area, world);
}

PF_Err premultiplyColorFloat(PF_ProgPtr effectRef, PF_EffectWorld* src, const PF_PixelFloat* color,
                             A_long forward, PF_EffectWorld* dst) {
    return premultiplyColor(effectRef, src, color, forward, dst);
}

PF_Err copyFiltered(PF_ProgPtr effectRef, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* srcArea,
                    PF_Rect* dstArea) {
    return answerForWorlds("copy_hq", effectRef, {src, dst}, [&](Host& host) {
        return copyWorldFiltered(*src, srcArea, *dst, dstArea, &host.pool);
    });
}

void fillPixelCallbacks(PF_UtilCallbacks& table) {
    table.blend = blend;
    table.copy = copy;
    table.fill = fill<PF_Pixel>;
    table.fill16 = fill<PF_Pixel16>;
    table.premultiply = premultiply;
    table.premultiply_color = premultiplyColor<PF_Pixel>;
    table.premultiply_color16 = premultiplyColor<PF_Pixel16>;
    table.composite_rect = compositeRect;
    table.transfer_rect = transferRect;
    table.transform_world = transformPicture;
    table.convolve = convolve;
    table.gaussian_kernel = gaussianKernel;
}

}  // namespace perch
