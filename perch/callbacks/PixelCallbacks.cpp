// What a host does with pictures for an effect, between the tables and the operations.
#include <fmt/format.h>

#include <initializer_list>

#include "CallGuard.h"
#include "Callbacks.h"
#include "PixelAccess.h"
#include "PixelOps.h"
#include "Transform.h"

namespace perch {
namespace {

// Why no operation can work on a world; null where one can.
const char* flawOf(const PF_EffectWorld* world) {
    if (world == nullptr) return "a world is null";
    return lacksPixels(*world) ? "a world has a size and no pixels" : nullptr;
}

// Serves a call that works on worlds, all without a flaw, by `body`, a function from Host& to a code. The
// operations refuse what they cannot do.
template <typename F>
PF_Err answerForWorlds(const char* callback, PF_ProgPtr effectRef,
                       std::initializer_list<const PF_EffectWorld*> worlds, const F& body) {
    return answer(callback, Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        for (const PF_EffectWorld* world : worlds) {
            const char* const flaw = flawOf(world);
            if (flaw == nullptr) continue;
            host.ledger.fault(callback, flaw);
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        const PF_Err code = body(host);
        if (code != PF_Err_NONE)
            host.ledger.fault(callback, fmt::format("answered {}: the arguments do not fit together", code));
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
    const char* const name = sizeof(P) == sizeof(PF_Pixel16) ? "fill16" : "fill";
    return answerForWorlds(name, effectRef, {world}, [&](Host&) { return fillWorld(color, area, *world); });
}

PF_Err premultiply(PF_ProgPtr effectRef, A_long forward, PF_EffectWorld* dst) {
    return answerForWorlds("premultiply", effectRef, {dst},
                           [&](Host&) { return premultiplyWorld(forward != 0, *dst); });
}

template <typename P>
PF_Err premultiplyColor(PF_ProgPtr effectRef, PF_EffectWorld* src, const P* color, A_long forward,
                        PF_EffectWorld* dst) {
    const char* const name = sizeof(P) == sizeof(PF_Pixel16) ? "premultiply_color16" : "premultiply_color";
    return answerForWorlds(name, effectRef, {src, dst}, [&](Host&) {
        const P black{};
        return premultiplyWorld(*src, color != nullptr ? *color : black, forward != 0, *dst);
    });
}

PF_Err compositeRect(PF_ProgPtr effectRef, PF_Rect* area, A_long opacity, PF_EffectWorld* src, A_long x,
                     A_long y, PF_Field field, PF_XferMode mode, PF_EffectWorld* dst) {
    return answerForWorlds("composite_rect", effectRef, {src, dst}, [&](Host& host) -> PF_Err {
        if (field != PF_Field_FRAME) return PF_Err_BAD_CALLBACK_PARAM;
        return compositeWorld(*src, area, {mode, opacity / 255.0, false}, x, y, *dst, &host.pool);
    });
}

// A null mode is a copy; each depth has an opacity of its own.
Placement placementOf(const PF_CompositeMode* mode, const PF_EffectWorld& dst) {
    if (mode == nullptr) return {PF_Xfer_COPY, 1.0, false};
    const double opacity = isDeep(dst) ? mode->opacitySu / 32768.0 : mode->opacity / 255.0;
    return {mode->xfer, opacity, mode->rgb_only != 0};
}

// Masks and fields are not offered.
bool isOffered(PF_Field field, const PF_MaskWorld* mask) {
    return field == PF_Field_FRAME && mask == nullptr;
}

PF_Err transferRect(PF_ProgPtr effectRef, PF_Quality, PF_ModeFlags, PF_Field field, const PF_Rect* area,
                    const PF_EffectWorld* src, const PF_CompositeMode* mode, const PF_MaskWorld* mask,
                    A_long x, A_long y, PF_EffectWorld* dst) {
    return answerForWorlds("transfer_rect", effectRef, {src, dst}, [&](Host& host) -> PF_Err {
        if (!isOffered(field, mask)) return PF_Err_BAD_CALLBACK_PARAM;
        return compositeWorld(*src, area, placementOf(mode, *dst), x, y, *dst, &host.pool);
    });
}

// Several matrices ask for motion blur, which is not offered.
PF_Err transformPicture(PF_ProgPtr effectRef, PF_Quality, PF_ModeFlags, PF_Field field,
                        const PF_EffectWorld* src, const PF_CompositeMode* mode, const PF_MaskWorld* mask,
                        const PF_FloatMatrix* matrices, A_long matrixCount, PF_Boolean sourceToDestination,
                        const PF_Rect* area, PF_EffectWorld* dst) {
    return answerForWorlds("transform_world", effectRef, {src, dst}, [&](Host& host) -> PF_Err {
        if (!isOffered(field, mask) || matrices == nullptr || matrixCount != 1)
            return PF_Err_BAD_CALLBACK_PARAM;
        return transformWorld(*src, *matrices, sourceToDestination != 0, placementOf(mode, *dst), area, *dst,
                              &host.pool);
    });
}

PF_Err convolve(PF_ProgPtr, PF_EffectWorld*, const PF_Rect*, PF_KernelFlags, A_long, void*, void*, void*,
                void*, PF_EffectWorld*) {
    return refuse("convolve");
}

PF_Err gaussianKernel(PF_ProgPtr, A_FpLong, PF_KernelFlags, A_FpLong, A_long*, void*) {
    return refuse("gaussian_kernel");
}

}  // namespace

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
