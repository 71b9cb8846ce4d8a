#include "RenderSettings.h"

#include <fmt/format.h>

#include <algorithm>

namespace perch {
namespace {

pictures::SampleType outputType(const RenderSettings& settings, const std::filesystem::path& output,
                                const pictures::Picture& input) {
    using pictures::SampleType;
    if (settings.outputType) return *settings.outputType;
    SampleType type = input.type();
    if (settings.depth && (!isFloat(type) || *settings.depth == Depth::Bits8))
        type = *settings.depth == Depth::Bits16 ? SampleType::Bits16 : SampleType::Bits8;
    const auto format = pictures::formatOfName(output);
    return format ? nearestType(*format, type).value_or(type) : type;
}

}  // namespace

Depth workDepth(const RenderSettings& settings, const Effect& effect, const pictures::Picture& input,
                const std::vector<LayerPictures>& layers) {
    if (settings.depth) return *settings.depth;
    Depth depth = depthOf(input);
    if (!effect.supportsDeepColor()) return depth;
    for (const LayerPictures& some : layers) {
        for (const auto& [index, picture] : some)
            depth = std::max(depth, depthOf(*picture));
    }
    return depth;
}

pictures::Transfer workTransfer(const RenderSettings& settings, const pictures::Picture& input) {
    if (settings.transfer) return *settings.transfer;
    return isFloat(input.type()) ? pictures::Transfer::Srgb : pictures::Transfer::Linear;
}

OutputFormat outputFormat(const RenderSettings& settings, const std::filesystem::path& output,
                          const pictures::Picture& input) {
    return {.type = outputType(settings, output, input),
            .encoding = settings.encoding,
            .isDithered = settings.isDithered};
}

std::string outputNote(const RenderSettings& settings, const std::filesystem::path& output,
                       const pictures::Picture& input) {
    using pictures::SampleType;
    const bool isWidened =
        input.type() == SampleType::Half && outputType(settings, output, input) == SampleType::Float;
    if (!isWidened || settings.outputType) return "";
    return fmt::format(
        "\"{}\" gets floats of 32 bits for the halves of the input, with the same values; .exr "
        "files hold halves",
        output.string());
}

}  // namespace perch
