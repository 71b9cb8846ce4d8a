#include "LayerReader.h"

#include <fmt/format.h>

#include <memory>
#include <optional>

#include "Error.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

const fs::path* firstFileOf(const FramePlan& plan, PF_ParamIndex index) {
    for (const auto* const files : {&plan.stillLayers, &plan.firstLayers})
        if (const auto found = files->find(index); found != files->end()) return &found->second;
    return nullptr;
}

void requireShares(const fs::path& path, const pictures::Picture& picture, const LayerReading& reading) {
    const std::optional<pictures::Extent> extent = extentOf(picture);
    if (!extent || (extent->least >= 0 && extent->greatest <= 1)) return;
    throw Error(
        fmt::format("cannot take \"{}\" for a layer: its values are {:.6g} to {:.6g}, not 0 to 1; "
                    "say which are near and far with {} NEAR:FAR, as {:.6g}:{:.6g}",
                    path.string(), extent->least, extent->greatest, reading.rangeOption, extent->least,
                    extent->greatest));
}

}  // namespace

void LayerReader::findRanges(const FramePlan& plan) {
    for (auto& [index, reading] : readings) {
        const fs::path* const path = firstFileOf(plan, index);
        if (!reading.hasUsualRange || path == nullptr) continue;
        reading.range = pictures::usualRange(*readPictureFile(*path, reading.channel, limits));
        if (!reading.range) {
            throw Error(
                fmt::format("cannot find near and far in \"{}\": it has one depth at most; give {} "
                            "NEAR:FAR",
                            path->string(), reading.rangeOption));
        }
        notes.add(reading.rangeOption,
                  fmt::format("{0} auto is {0} {1}", reading.rangeOption, textOf(*reading.range)));
    }
}

SharedPicture LayerReader::read(PF_ParamIndex index, const fs::path& path) const {
    const auto found = readings.find(index);
    const LayerReading reading = found != readings.end() ? found->second : LayerReading{};
    const SharedPicture picture = readPictureFile(path, reading.channel, limits);
    if (picture->parts > 1 && reading.channel.empty()) notes.add("parts", partsNote(path, picture->parts));
    if (reading.range) {
        if (reading.hasUsualRange) compare(path, *picture, reading);
        return std::make_shared<const pictures::Picture>(ranged(*picture, *reading.range));
    }
    if (isFloat(picture->type())) requireShares(path, *picture, reading);
    return picture;
}

// A frame's own usual range may leave that of the first by a twentieth.
void LayerReader::compare(const fs::path& path, const pictures::Picture& picture,
                          const LayerReading& reading) const {
    const std::optional<pictures::DepthRange> own = pictures::usualRange(picture);
    if (!own) return;
    const double slack = (reading.range->far - reading.range->near) / 20;
    if (own->near >= reading.range->near - slack && own->far <= reading.range->far + slack) return;
    notes.add(reading.rangeOption + " left",
              fmt::format("\"{}\" has depths of {}, outside the {} that {} auto found in the first frame",
                          path.string(), textOf(*own), textOf(*reading.range), reading.rangeOption));
}

std::string partsNote(const fs::path& path, int parts) {
    return fmt::format(
        "\"{}\" has {} parts and the first is read; a layer's file can be followed by the channel of "
        "another, "
        "as NAME:Z",
        path.string(), parts);
}

}  // namespace perch
