#include "RenderJob.h"

#include <fmt/format.h>

#include <memory>

#include "PF_Values.h"

namespace perch {
namespace {

using LayerPictures = std::map<PF_ParamIndex, Picture>;

void throwIfCancelled(const FrameWatch& watch, std::int32_t frame) {
    if (watch.cancelled != nullptr && watch.cancelled->load()) {
        throw Cancelled("RENDER", PF_Interrupt_CANCEL, "", frame);
    }
}

Depth depthOf(const World& world) {
    return world.isDeep() ? Depth::Bits16 : Depth::Bits8;
}

void requireDepth(const Effect& effect, const World& input) {
    if (!input.isDeep() || effect.supportsDeepColor()) return;
    throw Error("the effect does not declare 16 bits per channel; render with --depth 8");
}

LayerPictures readLayers(const FrameFiles& files, Depth depth) {
    LayerPictures pictures;
    for (const auto& [index, path] : files.layers)
        pictures.emplace(index, readPicture(path, depth));
    return pictures;
}

std::int32_t fullExtent(std::int32_t extent, const PF_RationalScale& scale) {
    return static_cast<std::int32_t>(std::int64_t{extent} * scale.den / scale.num);
}

ParameterValues valuesFor(const Effect& effect, const RenderSettings& settings, const FrameRequest& request) {
    ParameterValues values = effect.defaultValues(request.fullWidth, request.fullHeight);
    for (const auto& [option, text] : settings.assignments) {
        setValue(option, text, values.at(static_cast<std::size_t>(option.parameter.index)));
    }
    return values;
}

}  // namespace

void renderFrame(Effect& effect, Sequence& sequence, const RenderSettings& settings, const FrameFiles& files,
                 const FrameWatch& watch) {
    const Picture input = readPicture(files.input, settings.depth);
    requireDepth(effect, input.pixels);
    const Depth depth = depthOf(input.pixels);
    requireWritable(files.output, depth, input.hasAlpha);
    const LayerPictures layers = readLayers(files, depth);
    throwIfCancelled(watch, files.frame);

    FrameRequest request;
    request.frame = files.frame;
    request.input = &input.pixels;
    for (const auto& [index, picture] : layers)
        request.layers[index] = &picture.pixels;
    request.fullWidth = fullExtent(input.pixels.width(), settings.downsample);
    request.fullHeight = fullExtent(input.pixels.height(), settings.downsample);
    request.downsampleX = request.downsampleY = settings.downsample;
    request.values = valuesFor(effect, settings, request);
    request.time = files.frame * request.timeStep;
    request.quality = settings.quality;
    request.cancelled = watch.cancelled;
    request.progress = watch.progress;
    const RenderedFrame result = sequence.render(request);

    throwIfCancelled(watch, files.frame);
    // An effect may make an opaque picture transparent.
    writePicture(files.output, result.picture, input.hasAlpha || !isOpaque(result.picture));
}

}  // namespace perch
