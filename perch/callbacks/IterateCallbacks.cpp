// The iterate calls: the effect's function for every pixel, row by row on the workers.
#include <atomic>
#include <cfenv>

#include "CallGuard.h"
#include "Callbacks.h"
#include "PixelAccess.h"
#include "PixelMemory.h"
#include "SlotName.h"

namespace perch {
namespace {

// The first failure that any worker of a call met; none while all goes well.
class Outcome {
public:
    void fail(PF_Err failure) {
        PF_Err none = PF_Err_NONE;
        code.compare_exchange_strong(none, failure);
    }
    bool hasFailed() const { return code.load(std::memory_order_relaxed) != PF_Err_NONE; }
    PF_Err result() const { return code; }

private:
    std::atomic<PF_Err> code{PF_Err_NONE};
};

// Runs effect code, which is not to throw, and answers for it where it does.
template <typename F>
PF_Err guarded(Host& host, const char* callback, const F& body) {
    const int rounding = std::fegetround();
    PF_Err code = PF_Err_INTERNAL_STRUCT_DAMAGED;
    try {
        code = body();
    } catch (...) {
        host.ledger.fault(callback, "an exception left the effect's function");
        host.hasThrown = true;
    }
    // The thread goes on to other pixels.
    if (std::fegetround() != rounding) {
        std::fesetround(rounding);
        host.ledger.fault(callback, "the rounding mode was changed");
    }
    return code;
}

// The part of the progress bar that a call fills.
struct ProgressSpan {
    A_long base = 0;
    A_long final = 0;

    // `share` of the span is done, 0 to 1. A span that does not advance fills no part.
    void show(const Host& host, double share) const {
        const double whole = final;
        if (whole > base && whole > 0) host.showProgress((base + (whole - base) * share) / whole);
    }
};

// Calls row(y) for every row of the area on the workers; stops early at a failure or the user's cancel.
template <typename F>
PF_Err runRows(Host& host, const char* callback, const PF_Rect& area, const ProgressSpan& span,
               const F& row) {
    const A_long rows = area.bottom - area.top;
    if (rows <= 0 || area.right <= area.left) return PF_Err_NONE;
    Outcome outcome;
    std::atomic<A_long> rowsDone{0};
    host.pool.run(rows, [&](std::int32_t thread, std::int32_t i) {
        if (outcome.hasFailed()) return;
        if (host.isCancelled()) return outcome.fail(PF_Interrupt_CANCEL);
        if (const PF_Err code = guarded(host, callback, [&] { return row(area.top + i); }))
            outcome.fail(code);
        const A_long done = ++rowsDone;
        if (thread == 0) span.show(host, static_cast<double>(done) / rows);
    });
    return outcome.result();
}

template <typename P>
P* pixelAt(const PF_EffectWorld& world, std::int64_t x, std::int64_t y) {
    return rowOf<P>(world, static_cast<std::int32_t>(y)) + x;
}

// Why a call for pixels of this type cannot go over the world; null where it can.
template <typename P>
const char* flawFor(const PF_EffectWorld* world) {
    if (const char* const flaw = flawOf(world)) return flaw;
    if (world->data == nullptr) return "a world has no pixels";
    return depthOf(*world) == kDepthOf<P> ? nullptr : "a world is of another depth than the call";
}

// What becomes of destination pixels that the source, shifted by `origin`, does not lie under: they are left
// alone, or the function is given a transparent pixel.
enum class Source { Clipped, TransparentOutside };

template <typename P>
struct Iteration {
    using Function = PF_Err (*)(void*, A_long, A_long, P*, P*);
    const char* callback;
    ProgressSpan span;
    const PF_EffectWorld* src;  // may be null
    const PF_Rect* area;        // may be null
    PF_Point origin;
    Source outside;
    void* refcon;
    Function function;
    const PF_EffectWorld* dst;
};

template <typename P>
PF_Err iterateRow(const Iteration<P>& iteration, const PF_Rect& area, A_long y) {
    const std::int64_t sourceY = std::int64_t{y} - iteration.origin.v;
    const bool isRowInside = iteration.src != nullptr && sourceY >= 0 && sourceY < iteration.src->height;
    for (A_long x = area.left; x < area.right; ++x) {
        const std::int64_t sourceX = std::int64_t{x} - iteration.origin.h;
        P transparent{};
        P* in = iteration.src != nullptr ? &transparent : nullptr;
        if (isRowInside && sourceX >= 0 && sourceX < iteration.src->width)
            in = pixelAt<P>(*iteration.src, sourceX, sourceY);
        if (const PF_Err code =
                iteration.function(iteration.refcon, x, y, in, pixelAt<P>(*iteration.dst, x, y)))
            return code;
    }
    return PF_Err_NONE;
}

// The destination's pixels that are iterated.
template <typename P>
PF_Rect areaOf(const Iteration<P>& iteration) {
    const PF_Rect area = clipped(iteration.area, *iteration.dst);
    if (iteration.src == nullptr || iteration.outside == Source::TransparentOutside) return area;
    const std::int64_t left = iteration.origin.h;
    const std::int64_t top = iteration.origin.v;
    return clipped({left, top, left + iteration.src->width, top + iteration.src->height}, area);
}

template <typename P>
PF_Err iterateWorld(const Iteration<P>& iteration) {
    return answer(iteration.callback, Caller::MainThread, [&](Host& host) -> PF_Err {
        if (iteration.dst == nullptr || iteration.function == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        const char* flaw = flawFor<P>(iteration.dst);
        if (flaw == nullptr && iteration.src != nullptr) flaw = flawFor<P>(iteration.src);
        if (flaw != nullptr) {
            host.ledger.fault(iteration.callback, flaw);
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        const PF_Rect area = areaOf(iteration);
        return runRows(host, iteration.callback, area, iteration.span,
                       [&](A_long y) { return iterateRow(iteration, area, y); });
    });
}

// A null origin does not shift.
PF_Point shiftOf(const PF_Point* origin) {
    return origin != nullptr ? *origin : PF_Point{};
}

template <typename P>
PF_Err iterate(PF_InData*, A_long base, A_long final, PF_EffectWorld* src, const PF_Rect* area, void* refcon,
               typename Iteration<P>::Function function, PF_EffectWorld* dst) {
    return iterateWorld<P>({.callback = slotName<P>({"iterate", "iterate16", "iterate of floats"}),
                            .span = {base, final},
                            .src = src,
                            .area = area,
                            .origin = {0, 0},
                            .outside = Source::Clipped,
                            .refcon = refcon,
                            .function = function,
                            .dst = dst});
}

template <typename P>
PF_Err iterateOrigin(PF_InData*, A_long base, A_long final, PF_EffectWorld* src, const PF_Rect* area,
                     const PF_Point* origin, void* refcon, typename Iteration<P>::Function function,
                     PF_EffectWorld* dst) {
    return iterateWorld<P>(
        {.callback = slotName<P>({"iterate_origin", "iterate_origin16", "iterate_origin of floats"}),
         .span = {base, final},
         .src = src,
         .area = area,
         .origin = shiftOf(origin),
         .outside = Source::Clipped,
         .refcon = refcon,
         .function = function,
         .dst = dst});
}

template <typename P>
PF_Err iterateOriginNonClip(PF_InData*, A_long base, A_long final, PF_EffectWorld* src, const PF_Rect* area,
                            const PF_Point* origin, void* refcon, typename Iteration<P>::Function function,
                            PF_EffectWorld* dst) {
    return iterateWorld<P>(
        {.callback = slotName<P>({"iterate_origin_non_clip_src", "iterate_origin_non_clip_src16",
                                  "iterate_origin_non_clip_src of floats"}),
         .span = {base, final},
         .src = src,
         .area = area,
         .origin = shiftOf(origin),
         .outside = Source::TransparentOutside,
         .refcon = refcon,
         .function = function,
         .dst = dst});
}

struct Tables {
    const A_u_char* alpha;
    const A_u_char* red;
    const A_u_char* green;
    const A_u_char* blue;
};

A_u_char mapped(const A_u_char* table, A_u_char value) {
    return table != nullptr ? table[value] : value;
}

PF_Err mapPixel(void* refcon, A_long, A_long, PF_Pixel* in, PF_Pixel* out) {
    const auto& tables = *static_cast<const Tables*>(refcon);
    *out = {mapped(tables.alpha, in->alpha), mapped(tables.red, in->red), mapped(tables.green, in->green),
            mapped(tables.blue, in->blue)};
    return PF_Err_NONE;
}

PF_Err iterateLut(PF_InData*, A_long base, A_long final, PF_EffectWorld* src, const PF_Rect* area,
                  A_u_char* alpha, A_u_char* red, A_u_char* green, A_u_char* blue, PF_EffectWorld* dst) {
    Tables tables{alpha, red, green, blue};
    return iterateWorld<PF_Pixel>({.callback = "iterate_lut",
                                   .span = {base, final},
                                   .src = src != nullptr ? src : dst,
                                   .area = area,
                                   .origin = {0, 0},
                                   .outside = Source::Clipped,
                                   .refcon = &tables,
                                   .function = mapPixel,
                                   .dst = dst});
}

PF_Err iterateGeneric(A_long iterations, void* refcon, PF_Err (*function)(void*, A_long, A_long, A_long)) {
    return answer("iterate_generic", Caller::MainThread, [&](Host& host) -> PF_Err {
        if (function == nullptr || iterations < -1) return PF_Err_BAD_CALLBACK_PARAM;
        const A_long count = iterations == -1 ? host.pool.threadCount() : iterations;
        Outcome outcome;
        host.pool.run(count, [&](std::int32_t thread, std::int32_t i) {
            if (const PF_Err code =
                    guarded(host, "iterate_generic", [&] { return function(refcon, thread, i, count); }))
                outcome.fail(code);
        });
        return outcome.result();
    });
}

}  // namespace

PF_iterateFloatSuite1 floatIterateSuite() {
    return {iterate<PF_PixelFloat>, iterateOrigin<PF_PixelFloat>, iterateOriginNonClip<PF_PixelFloat>};
}

void fillIterateCallbacks(PF_UtilCallbacks& table) {
    table.iterate = iterate<PF_Pixel>;
    table.iterate16 = iterate<PF_Pixel16>;
    table.iterate_origin = iterateOrigin<PF_Pixel>;
    table.iterate_origin16 = iterateOrigin<PF_Pixel16>;
    table.iterate_origin_non_clip_src = iterateOriginNonClip<PF_Pixel>;
    table.iterate_origin_non_clip_src16 = iterateOriginNonClip<PF_Pixel16>;
    table.iterate_lut = iterateLut;
    table.iterate_generic = iterateGeneric;
}

}  // namespace perch
