// The renderer and the frame pipeline by definition, on plain images.
#pragma once

#include "Image.h"

namespace oracle {

struct Controls {
    bool focusView;
    bool fine;
    int channel;  // 0 Alpha, 1 Red, 2 Green, 3 Blue, 4 Luma, 5 Lightness, 6 Brightness
    float focalPoint;
    float inFocusRange;
    float maximumBlur;
    float aspect;
    bool invert;
    float blend;
    float downsampleX;
    float downsampleY;
};

Map ExtractedChannel(const Image& image, int channel);
Map DefocusMap(const Map& control, float focalPoint, float inFocusRange, bool invert);
Image FocusView(const Image& input, const Map& map);

// Every pixel of a width x height frame blurred by its map value's share of the largest radii.
Image Defocused(int width, int height, const Image& input, const Map& map, bool fine, float radiusX,
                float radiusY);

Image Blended(const Image& processed, const Image& original, float fraction);

// `control` is null when no control layer is chosen.
Image RenderedFrame(const Controls& controls, const Image& input, const Image* control);

}  // namespace oracle
