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
    bool isGrey = false;  // the first channel is, and no depth or the like
};

int countParts(OIIO::ImageInput& file, FileFormat format);

// The picture of a file's first part. Of files of few channels all, in their order. OpenEXR files name
// theirs: red, green, blue and alpha of all.
PictureSource firstPicture(const OIIO::ImageSpec& layout, FileFormat format);

// The channel that is named, or the picture of the layer; the names may have the part's before them:
//
//     a part    its channels                named
//     "rgba"    R G B A  fog.R fog.G fog.B  R   rgba.R   rgba   fog.G   rgba.fog.G   fog   rgba.fog
//     "depth"   Z                           Z   depth.Z  depth
//
// A layer's picture is its red, green and blue, or its grey, with alpha, or the one channel that it has.
PictureSource namedPicture(OIIO::ImageInput& file, const std::string& wanted, int parts);

// The channel of depths in a file of which others are taken.
std::string depthBeside(const OIIO::ImageSpec& layout, FileFormat format, const Channels& taken);

}  // namespace pictures
