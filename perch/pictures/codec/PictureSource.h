// Which part of a file has the picture, and which of its channels the picture is made of.
#pragma once

#include <OpenImageIO/imageio.h>

#include <string>
#include <vector>

#include "FileFormat.h"

namespace pictures {

// The channels of the file that become those of the picture.
using Channels = std::vector<int>;

struct PictureSource {
    int part = 0;
    Channels channels;
};

int countParts(OIIO::ImageInput& file, FileFormat format);

bool isGrey(const OIIO::ImageSpec& layout, const Channels& channels);

// Of files of few channels all, in their order. OpenEXR files name theirs: red, green, blue and alpha of all.
Channels firstChannels(const OIIO::ImageSpec& layout, FileFormat format);

// The part that has the channel, by its own name or with the part's before it.
PictureSource findChannel(OIIO::ImageInput& file, const std::string& wanted, int parts);

// The channel of depths in a file of which others are taken.
std::string depthBeside(const OIIO::ImageSpec& layout, FileFormat format, const Channels& taken);

}  // namespace pictures
