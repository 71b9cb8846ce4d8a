#include "FrameReader.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "Error.h"
#include "Fingerprint.h"
#include "NamingFrame.h"

namespace perch {

FramePictures FrameReader::read(std::size_t index) {
    return namingFrame(plan, index, [&] { return picturesOf(index); });
}

FramePictures FrameReader::picturesOf(std::size_t index) {
    const FrameFiles& files = plan.frames[index];
    const SharedPicture picture =
        readNoted(files.input, settings.selectedInput, settings.reading, report.notes, index + 1);
    FramePictures pictures;
    pictures.output = outputFormat(settings, files.output, *picture);
    if (std::string& software = pictures.output.encoding.software; !software.empty())
        software = withFingerprint(software + layerReader.rangesText(), files.fingerprint);
    if (writesFiles) requireOutput(files.output, pictures.output.type, picture->hasAlpha());
    if (const std::string note = outputNote(settings, files.output, *picture); !note.empty())
        report.notes.add("output type", note, index + 1);
    LayerPictures layers;
    for (const auto& [layer, path] : files.layers)
        layers[layer] = layerReader.read(layer, path, index + 1);
    const LayerPictures still = stillLayers.read();
    const Depth depth = workDepth(settings, effect, *picture, {layers, still});
    if (depth == Depth::Bits8) noteSteps(index);
    for (const auto& [layer, layerPicture] : layers)
        layerReader.compareSizes(*picture, *layerPicture, files.layers.at(layer), index + 1);
    for (const auto& [layer, layerPicture] : still)
        layerReader.compareSizes(*picture, *layerPicture, plan.stillLayers.at(layer), index + 1);
    pictures.input =
        std::make_shared<const FileWorld>(resized(worldOf(picture, depth, transferFor(*picture)), scale));
    if (depth == Depth::Bits16 && !effect.supportsDeepColor())
        throw EffectFault("the effect does not declare 16 bits per channel; render with --depth 8");
    if (settings.resizes) {
        pictures.fullWidth = picture->width;
        pictures.fullHeight = picture->height;
    }
    report.pixelsRead += std::int64_t{picture->width} * picture->height;
    report.pixelsAbove += pictures.input->clippedPixels.above;
    report.pixelsBelow += pictures.input->clippedPixels.below;
    pictures.layers = stillLayers.worlds(depth);
    for (const auto& [layer, layerPicture] : layers) {
        pictures.layers[layer] =
            std::make_shared<const FileWorld>(resized(worldOf(layerPicture, depth), scale));
    }
    return pictures;
}

void FrameReader::noteSteps(std::size_t index) {
    if (!plan.isSequence || !writesFiles || !effect.supportsDeepColor()) return;
    if (std::ranges::none_of(parameters, glides)) return;
    report.notes.add(
        "steps",
        "a value moves from frame to frame, and 8 bits per channel show slow moves as steps; --depth "
        "16 renders and writes finer ones",
        index + 1);
}

pictures::Transfer FrameReader::transferFor(const pictures::Picture& input) {
    if (!settings.transfer && isFloat(input.type())) {
        report.notes.add(
            "transfer",
            "the pictures hold light in floats, which the effect gets by the curve of sRGB, as with "
            "--encode srgb");
    }
    return workTransfer(settings, input);
}

}  // namespace perch
