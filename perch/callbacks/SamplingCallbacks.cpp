// Single samples of a world, and the colour conversions.
#include <algorithm>
#include <iterator>

#include "CallGuard.h"
#include "Callbacks.h"
#include "ColorConversions.h"
#include "PixelMemory.h"
#include "Sampling.h"

namespace perch {
namespace {

// Whether there is a world to take samples from; strict mode is told of one that cannot be followed.
bool hasSource(Host& host, const char* callback, const PF_SampPB* params) {
    if (params == nullptr || params->src == nullptr) return false;
    const char* const flaw = flawOf(*params->src);
    if (flaw != nullptr) host.ledger.fault(callback, flaw);
    return flaw == nullptr;
}

// Nothing is prepared: samples are taken from the world as it is at each call.
PF_Err announceSampling(const char* callback, PF_ProgPtr effectRef, const PF_SampPB* params) {
    return answer(callback, Caller::MainThread, effectRef, [&](Host& host) -> PF_Err {
        return hasSource(host, callback, params) ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
    });
}

PF_Err beginSampling(PF_ProgPtr effectRef, PF_Quality, PF_ModeFlags, PF_SampPB* params) {
    return announceSampling("begin_sampling", effectRef, params);
}

PF_Err endSampling(PF_ProgPtr effectRef, PF_Quality, PF_ModeFlags, PF_SampPB* params) {
    return announceSampling("end_sampling", effectRef, params);
}

template <typename P>
PF_Err subpixelSample(PF_ProgPtr effectRef, PF_Fixed x, PF_Fixed y, const PF_SampPB* params, P* sample) {
    const char* const name = sizeof(P) == sizeof(PF_Pixel16) ? "subpixel_sample16" : "subpixel_sample";
    return answer(name, Caller::AnyThread, effectRef, [&](Host& host) -> PF_Err {
        if (!hasSource(host, name, params) || sample == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        return sampleLinear(*params->src, x, y, *sample);
    });
}

template <typename P>
PF_Err areaSample(PF_ProgPtr effectRef, PF_Fixed x, PF_Fixed y, const PF_SampPB* params, P* sample) {
    const char* const name = sizeof(P) == sizeof(PF_Pixel16) ? "area_sample16" : "area_sample";
    return answer(name, Caller::AnyThread, effectRef, [&](Host& host) -> PF_Err {
        if (!hasSource(host, name, params) || sample == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        return sampleArea(*params->src, x, y, params->x_radius, params->y_radius, *sample);
    });
}

using Components = PF_Fixed[3];

PF_Err convertFromRgb(const char* callback, PF_ProgPtr effectRef,
                      void (*convert)(const PF_Pixel&, Components&), const PF_Pixel* rgb,
                      PF_Fixed* components) {
    return answer(callback, Caller::AnyThread, effectRef, [&](Host&) -> PF_Err {
        if (rgb == nullptr || components == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        Components converted{};
        convert(*rgb, converted);
        std::copy(std::begin(converted), std::end(converted), components);
        return PF_Err_NONE;
    });
}

PF_Err convertToRgb(const char* callback, PF_ProgPtr effectRef, void (*convert)(const Components&, PF_Pixel&),
                    const PF_Fixed* components, PF_Pixel* rgb) {
    return answer(callback, Caller::AnyThread, effectRef, [&](Host&) -> PF_Err {
        if (rgb == nullptr || components == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        const Components given{components[0], components[1], components[2]};
        convert(given, *rgb);
        return PF_Err_NONE;
    });
}

PF_Err measure(const char* callback, PF_ProgPtr effectRef, A_long (*property)(const PF_Pixel&),
               const PF_Pixel* rgb, A_long* result) {
    return answer(callback, Caller::AnyThread, effectRef, [&](Host&) -> PF_Err {
        if (rgb == nullptr || result == nullptr) return PF_Err_BAD_CALLBACK_PARAM;
        *result = property(*rgb);
        return PF_Err_NONE;
    });
}

PF_Err rgbToHls(PF_ProgPtr effectRef, PF_Pixel* rgb, PF_Fixed* hls) {
    return convertFromRgb("RGBtoHLS", effectRef, toHls, rgb, hls);
}
PF_Err hlsToRgb(PF_ProgPtr effectRef, PF_Fixed* hls, PF_Pixel* rgb) {
    return convertToRgb("HLStoRGB", effectRef, fromHls, hls, rgb);
}
PF_Err rgbToYiq(PF_ProgPtr effectRef, PF_Pixel* rgb, PF_Fixed* yiq) {
    return convertFromRgb("RGBtoYIQ", effectRef, toYiq, rgb, yiq);
}
PF_Err yiqToRgb(PF_ProgPtr effectRef, PF_Fixed* yiq, PF_Pixel* rgb) {
    return convertToRgb("YIQtoRGB", effectRef, fromYiq, yiq, rgb);
}
PF_Err luminance(PF_ProgPtr effectRef, PF_Pixel* rgb, A_long* result) {
    return measure("Luminance", effectRef, luminance100, rgb, result);
}
PF_Err hue(PF_ProgPtr effectRef, PF_Pixel* rgb, A_long* result) {
    return measure("Hue", effectRef, hue255, rgb, result);
}
PF_Err lightness(PF_ProgPtr effectRef, PF_Pixel* rgb, A_long* result) {
    return measure("Lightness", effectRef, lightness255, rgb, result);
}
PF_Err saturation(PF_ProgPtr effectRef, PF_Pixel* rgb, A_long* result) {
    return measure("Saturation", effectRef, saturation255, rgb, result);
}

}  // namespace

void fillSamplingCallbacks(PF_UtilCallbacks& table) {
    table.begin_sampling = beginSampling;
    table.end_sampling = endSampling;
    table.subpixel_sample = subpixelSample<PF_Pixel>;
    table.subpixel_sample16 = subpixelSample<PF_Pixel16>;
    table.area_sample = areaSample<PF_Pixel>;
    table.area_sample16 = areaSample<PF_Pixel16>;
    table.colorCB = {rgbToHls, hlsToRgb, rgbToYiq, yiqToRgb, luminance, hue, lightness, saturation};
}

}  // namespace perch
