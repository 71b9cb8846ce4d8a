#include "PictureSource.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <string_view>

#include "PictureError.h"

namespace pictures {
namespace {

int channelNamed(const OIIO::ImageSpec& layout, std::string_view name) {
    const auto found = std::ranges::find(layout.channelnames, name);
    return found == layout.channelnames.end() ? -1 : static_cast<int>(found - layout.channelnames.begin());
}

std::string partName(const OIIO::ImageSpec& layout) {
    return layout.get_string_attribute("oiio:subimagename");
}

// The name that tells a channel from those of other parts.
std::string fullName(const OIIO::ImageSpec& layout, const std::string& channel, bool hasParts) {
    const std::string part = hasParts ? partName(layout) : "";
    return part.empty() || channel.starts_with(part + ".") ? channel : part + "." + channel;
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

bool isGrey(const OIIO::ImageSpec& layout, const Channels& channels) {
    return channels.front() == channelNamed(layout, "Y");
}

Channels firstChannels(const OIIO::ImageSpec& layout, FileFormat format) {
    constexpr int kMostChannels = 4;
    if (format == FileFormat::OpenExr) {
        Channels channels;
        for (const char* const name : {"R", "G", "B"}) {
            if (const int channel = channelNamed(layout, name); channel >= 0) channels.push_back(channel);
        }
        const int grey = channelNamed(layout, "Y");
        if (channels.empty() && grey >= 0) {
            if (channelNamed(layout, "RY") >= 0 || channelNamed(layout, "BY") >= 0)
                throw PictureError("its colours are luminance and chroma; save it as red, green and blue");
            channels.push_back(grey);
        }
        const int alpha = channelNamed(layout, "A");
        const bool isWhole = channels.size() == 3 || channels.size() == 1;
        if (isWhole && alpha >= 0) channels.push_back(alpha);
        if (isWhole) return channels;
        if (layout.nchannels > 1) {
            throw PictureError(
                fmt::format("it has the channels {} and not R, G and B; save it with these, or for a layer "
                            "name one of them after the file, as :{}",
                            fmt::join(layout.channelnames, ", "), layout.channelnames.front()));
        }
    }
    if (layout.nchannels < 1 || layout.nchannels > kMostChannels) {
        throw PictureError(fmt::format("it has {} channels; convert it to grey or RGB, with or without alpha",
                                       layout.nchannels));
    }
    Channels channels(static_cast<std::size_t>(layout.nchannels));
    std::iota(channels.begin(), channels.end(), 0);
    return channels;
}

PictureSource findChannel(OIIO::ImageInput& file, const std::string& wanted, int parts) {
    std::vector<std::string> names;
    for (int part = 0; part < parts && file.seek_subimage(part, 0); ++part) {
        const OIIO::ImageSpec& layout = file.spec();
        for (int channel = 0; channel < layout.nchannels; ++channel) {
            const std::string& name = layout.channelnames[static_cast<std::size_t>(channel)];
            names.push_back(fullName(layout, name, parts > 1));
            if (wanted == name || wanted == names.back()) return {part, {channel}};
        }
    }
    throw PictureError(fmt::format("it has no channel \"{}\"; it has {}", wanted, fmt::join(names, ", ")));
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
