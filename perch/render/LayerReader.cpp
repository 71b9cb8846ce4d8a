#include "LayerReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string_view>
#include <variant>

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
    const bool isInfinite = hasInfinity(picture);
    if (!isInfinite && (!extent || (extent->least >= 0 && extent->greatest <= 1))) return;
    const pictures::Extent range = extent.value_or(pictures::Extent{0, 1});
    const std::string values = fmt::format("{:.6g} to {:.6g}", range.least, range.greatest);
    throw InputError(
        fmt::format("cannot take \"{}\" for a layer: its values are {}{}{}, not 0 to 1; "
                    "say which are near and far with {} NEAR:FAR, as {:.6g}:{:.6g}",
                    path.string(), extent ? values : "", extent && isInfinite ? " and " : "",
                    isInfinite ? "infinite" : "", reading.rangeOption, range.least, range.greatest));
}

std::string_view nameOf(LayerChannel channel) {
    switch (channel) {
        case LayerChannel::Alpha:
            return "the alpha";
        case LayerChannel::Red:
            return "the red";
        case LayerChannel::Green:
            return "the green";
        case LayerChannel::Blue:
            return "the blue";
        case LayerChannel::Any:
            break;
    }
    return "the colour";
}

// Alpha that a file lacks is full; grey is all colours.
bool isConstant(const pictures::Picture& picture, LayerChannel channel) {
    if (channel == LayerChannel::Alpha && !picture.hasAlpha()) return true;
    const std::size_t colours = picture.channels - (picture.hasAlpha() ? 1 : 0);
    std::size_t first = 0;
    std::size_t end = colours;
    if (channel == LayerChannel::Alpha) {
        first = end++;
    } else if (channel != LayerChannel::Any && colours > 1) {
        first = static_cast<std::size_t>(channel) - static_cast<std::size_t>(LayerChannel::Red);
        end = first + 1;
    }
    return std::visit(
        [&](const auto& samples) {
            for (std::size_t pixel = 0; pixel < samples.size(); pixel += picture.channels) {
                for (std::size_t i = first; i < end; ++i)
                    if (samples[pixel + i] != samples[i]) return false;
            }
            return true;
        },
        picture.samples);
}

}  // namespace

void LayerReader::findRanges(const FramePlan& plan) {
    for (auto& [index, reading] : readings) {
        const fs::path* const path = firstFileOf(plan, index);
        if (!reading.hasUsualRange || path == nullptr) continue;
        reading.range = pictures::usualRange(*readPictureFile(*path, reading.selected, options));
        if (!reading.range) {
            throw InputError(
                fmt::format("cannot find near and far in \"{}\": it has one depth at most; give {} "
                            "NEAR:FAR",
                            path->string(), reading.rangeOption));
        }
        notes.add(reading.rangeOption,
                  fmt::format("{0} auto is {0} {1}", reading.rangeOption, textOf(*reading.range)));
    }
}

std::string LayerReader::rangesText() const {
    std::string text;
    for (const auto& [index, reading] : readings)
        if (reading.range) text += fmt::format(" {} {}", reading.rangeOption, textOf(*reading.range));
    return text;
}

SharedPicture LayerReader::read(PF_ParamIndex index, const fs::path& path, std::size_t place) const {
    const auto found = readings.find(index);
    const LayerReading reading = found != readings.end() ? found->second : LayerReading{};
    const SharedPicture picture = readNoted(path, reading.selected, options, notes, place);
    if (!picture->depthChannel.empty()) {
        notes.warn(
            "depth of " + reading.option,
            fmt::format(
                "\"{0}\" has depths in its channel {1} and its colours are read; for the depths name it as "
                "{0}:{1}",
                path.string(), picture->depthChannel),
            place);
    }
    if (reading.range) {
        if (reading.hasUsualRange) compare(path, *picture, reading, place);
        const auto greys = std::make_shared<const pictures::Picture>(ranged(*picture, *reading.range));
        warnWhereConstant(path, *greys, reading, place);
        return greys;
    }
    if (isFloat(picture->type())) requireShares(path, *picture, reading);
    warnWhereConstant(path, *picture, reading, place);
    return picture;
}

void LayerReader::compareSizes(const pictures::Picture& input, const pictures::Picture& layer,
                               const fs::path& path, std::size_t place) const {
    if (layer.width == input.width && layer.height == input.height) return;
    const bool isStretched =
        std::int64_t{layer.width} * input.height != std::int64_t{input.width} * layer.height;
    notes.warn("size of a layer",
               fmt::format("\"{}\" has {} x {} pixels and the input {} x {}: it is {}, or does not cover it",
                           path.string(), layer.width, layer.height, input.width, input.height,
                           isStretched ? "stretched to another aspect" : "scaled"),
               place);
}

void LayerReader::warnWhereConstant(const fs::path& path, const pictures::Picture& picture,
                                    const LayerReading& reading, std::size_t place) const {
    if (!isConstant(picture, reading.usedChannel)) return;
    const std::string advice = reading.channelOption.empty()
                                   ? "choose another picture"
                                   : fmt::format("choose another {} or picture", reading.channelOption);
    notes.warn("constant " + reading.option,
               fmt::format("{} of \"{}\" is the same everywhere, so that {} makes no difference; {}",
                           nameOf(reading.usedChannel), path.string(), reading.option, advice),
               place);
}

// A frame's own usual range may leave that of the first by a twentieth.
void LayerReader::compare(const fs::path& path, const pictures::Picture& picture, const LayerReading& reading,
                          std::size_t place) const {
    const std::optional<pictures::DepthRange> own = pictures::usualRange(picture);
    if (!own) return;
    const double slack = (reading.range->far - reading.range->near) / 20;
    if (own->near >= reading.range->near - slack && own->far <= reading.range->far + slack) return;
    notes.warn(reading.rangeOption + " left",
               fmt::format("\"{}\" has depths of {}, outside the {} that {} auto found in the first frame",
                           path.string(), textOf(*own), textOf(*reading.range), reading.rangeOption),
               place);
}

SharedPicture readNoted(const fs::path& path, const std::string& selected,
                        const pictures::ReadOptions& options, Notes& notes, std::size_t place) {
    SharedPicture picture = readPictureFile(path, selected, options);
    if (picture->isDamaged) {
        notes.add(
            "damaged",
            fmt::format("\"{}\" is damaged or cut short; what can be read of it is taken", path.string()),
            place);
    }
    if (picture->parts > 1 && selected.empty()) {
        notes.add("parts",
                  fmt::format("\"{}\" has {} parts and the first is read; to read another, put "
                              "its name after the file's, as in NAME.exr:depth",
                              path.string(), picture->parts),
                  place);
    }
    return picture;
}

std::string unheldNote(const fs::path& output, std::vector<std::string> unheld) {
    // What changes how the picture looks, or where and when it belongs, comes first.
    static constexpr std::array<std::string_view, 13> kWeighty{"ICCProfile",
                                                               "gAMA",
                                                               "cHRM",
                                                               "sRGB",
                                                               "cICP",
                                                               "oiio:ColorSpace",
                                                               "Orientation",
                                                               "PixelAspectRatio",
                                                               "XResolution",
                                                               "YResolution",
                                                               "smpte:TimeCode",
                                                               "FramesPerSecond",
                                                               "the display window's place"};
    constexpr std::size_t kMostNamed = 6;
    std::stable_partition(unheld.begin(), unheld.end(), [](const std::string& name) {
        return std::ranges::find(kWeighty, name) != kWeighty.end();
    });
    const std::size_t more = unheld.size() > kMostNamed ? unheld.size() - kMostNamed : 0;
    unheld.resize(unheld.size() - more);
    return fmt::format("\"{}\" does not say all that the input's file does; without {}{}", output.string(),
                       fmt::join(unheld, ", "), more > 0 ? fmt::format(" and {} more", more) : "");
}

}  // namespace perch
