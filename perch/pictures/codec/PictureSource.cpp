#include "PictureSource.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <optional>
#include <string_view>

#include "PictureError.h"

namespace pictures {
namespace {

using Names = std::vector<std::string>;

int channelNamed(const OIIO::ImageSpec& layout, std::string_view name) {
    const auto found = std::ranges::find(layout.channelnames, name);
    return found == layout.channelnames.end() ? -1 : static_cast<int>(found - layout.channelnames.begin());
}

// Y is a grey, and not one number of three or two as those of positions and motion.
int greyOf(const OIIO::ImageSpec& layout, const std::string& prefix) {
    const bool isAxis = channelNamed(layout, prefix + "X") >= 0;
    return isAxis ? -1 : channelNamed(layout, prefix + "Y");
}

bool hasChroma(const OIIO::ImageSpec& layout, const std::string& prefix) {
    return channelNamed(layout, prefix + "RY") >= 0 || channelNamed(layout, prefix + "BY") >= 0;
}

// Red, green and blue, or grey, with alpha where there is one, of the channels whose names begin so. Empty
// where these make no picture.
Channels coloursOf(const OIIO::ImageSpec& layout, const std::string& prefix) {
    Channels channels;
    for (const char* const name : {"R", "G", "B"}) {
        if (const int channel = channelNamed(layout, prefix + name); channel >= 0)
            channels.push_back(channel);
    }
    const int grey = greyOf(layout, prefix);
    if (channels.empty() && grey >= 0 && !hasChroma(layout, prefix)) channels.push_back(grey);
    if (channels.size() != 3 && channels.size() != 1) return {};
    if (const int alpha = channelNamed(layout, prefix + "A"); alpha >= 0) channels.push_back(alpha);
    return channels;
}

PictureSource pictureOf(int part, const OIIO::ImageSpec& layout, Channels channels,
                        const std::string& prefix = "") {
    const bool isGrey = channels.front() == greyOf(layout, prefix);
    return {.part = part, .channels = std::move(channels), .isGrey = isGrey};
}

std::string partName(const OIIO::ImageSpec& layout) {
    return layout.get_string_attribute("oiio:subimagename");
}

// The name that tells a channel from those of other parts.
std::string fullName(const OIIO::ImageSpec& layout, const std::string& channel, bool hasParts) {
    const std::string part = hasParts ? partName(layout) : "";
    return part.empty() || channel.starts_with(part + ".") ? channel : part + "." + channel;
}

// What the names of a layer's channels begin with, in a part of that name. Without the part's name that is
// nothing where the layer is the part.
Names prefixesOf(const std::string& layer, const std::string& part) {
    Names prefixes{layer + "."};
    if (layer == part) prefixes.emplace_back();
    if (!part.empty() && layer.starts_with(part + "."))
        prefixes.push_back(layer.substr(part.size() + 1) + ".");
    return prefixes;
}

std::optional<PictureSource> layerIn(int part, const OIIO::ImageSpec& layout, const std::string& layer) {
    for (const std::string& prefix : prefixesOf(layer, partName(layout))) {
        const Channels colours = coloursOf(layout, prefix);
        if (!colours.empty()) return pictureOf(part, layout, colours, prefix);
        const auto isOfLayer = [&](const std::string& name) { return name.starts_with(prefix); };
        if (std::ranges::count_if(layout.channelnames, isOfLayer) != 1) continue;
        const auto only = std::ranges::find_if(layout.channelnames, isOfLayer);
        return PictureSource{part, {static_cast<int>(only - layout.channelnames.begin())}};
    }
    return std::nullopt;
}

// What namedPicture finds, in the file's order.
struct KnownNames {
    Names layers;
    Names channels;
};

std::string listOf(const KnownNames& known) {
    const std::string layers =
        known.layers.empty() ? "" : fmt::format("the layers {} and ", fmt::join(known.layers, ", "));
    return fmt::format("{}the channels {}", layers, fmt::join(known.channels, ", "));
}

void addNames(const OIIO::ImageSpec& layout, bool hasParts, KnownNames& known) {
    for (const std::string& channel : layout.channelnames) {
        const std::string& name = known.channels.emplace_back(fullName(layout, channel, hasParts));
        const std::size_t dot = name.rfind('.');
        if (dot == std::string::npos) continue;
        const std::string layer = name.substr(0, dot);
        const bool isNew = std::ranges::find(known.layers, layer) == known.layers.end();
        if (isNew && layerIn(0, layout, layer)) known.layers.push_back(layer);
    }
}

KnownNames namesIn(OIIO::ImageInput& file, int parts) {
    KnownNames known;
    for (int part = 0; part < parts && file.seek_subimage(part, 0); ++part)
        addNames(file.spec(), parts > 1, known);
    return known;
}

KnownNames namesIn(const OIIO::ImageSpec& layout) {
    KnownNames known;
    addNames(layout, false, known);
    return known;
}

std::optional<PictureSource> channelIn(int part, const OIIO::ImageSpec& layout, const std::string& wanted,
                                       bool hasParts) {
    for (int channel = 0; channel < layout.nchannels; ++channel) {
        const std::string& name = layout.channelnames[static_cast<std::size_t>(channel)];
        if (wanted == name || wanted == fullName(layout, name, hasParts))
            return pictureOf(part, layout, {channel}, name.substr(0, name.rfind('.') + 1));
    }
    return std::nullopt;
}

}  // namespace

int countParts(OIIO::ImageInput& file, FileFormat format) {
    if (format != FileFormat::Tiff && format != FileFormat::OpenExr) return 1;
    int parts = 1;
    while (file.seek_subimage(parts, 0))
        ++parts;
    file.geterror();  // there is no next part
    return parts;
}

PictureSource firstPicture(const OIIO::ImageSpec& layout, FileFormat format) {
    constexpr int kMostChannels = 4;
    if (format == FileFormat::OpenExr) {
        const Channels colours = coloursOf(layout, "");
        if (!colours.empty()) return pictureOf(0, layout, colours);
        if (hasChroma(layout, ""))
            throw PictureError("its colours are luminance and chroma; save it as red, green and blue");
        if (layout.nchannels > 1) {
            const KnownNames known = namesIn(layout);
            throw PictureError(
                fmt::format("it has {} and not R, G and B; name one of them after the file, as :{}",
                            listOf(known), known.layers.empty() ? known.channels[0] : known.layers[0]));
        }
    }
    if (layout.nchannels < 1 || layout.nchannels > kMostChannels) {
        throw PictureError(fmt::format("it has {} channels; convert it to grey or RGB, with or without alpha",
                                       layout.nchannels));
    }
    Channels channels(static_cast<std::size_t>(layout.nchannels));
    std::iota(channels.begin(), channels.end(), 0);
    return pictureOf(0, layout, channels);
}

PictureSource namedPicture(OIIO::ImageInput& file, const std::string& wanted, int parts) {
    const bool hasParts = parts > 1;
    for (int part = 0; part < parts && file.seek_subimage(part, 0); ++part)
        if (const auto channel = channelIn(part, file.spec(), wanted, hasParts)) return *channel;
    for (int part = 0; part < parts && file.seek_subimage(part, 0); ++part)
        if (const auto layer = layerIn(part, file.spec(), wanted)) return *layer;
    throw PictureError(
        fmt::format("it has no layer or channel \"{}\"; it has {}", wanted, listOf(namesIn(file, parts))));
}

std::string depthBeside(const OIIO::ImageSpec& layout, FileFormat format, const Channels& taken) {
    if (format != FileFormat::OpenExr) return "";
    for (int channel = 0; channel < layout.nchannels; ++channel) {
        const std::string& name = layout.channelnames[static_cast<std::size_t>(channel)];
        const bool isDepth = name == "Z" || name.ends_with(".Z");
        if (isDepth && std::ranges::find(taken, channel) == taken.end()) return name;
    }
    return "";
}

}  // namespace pictures
