// A value that a user gave a parameter.
#pragma once

#include <array>

#include "Parameter.h"
#include "ParameterValues.h"

namespace perch {

struct ParameterSetting {
    PF_ParamIndex index = 0;
    // By the parameter's type:
    //   sliders          the number
    //   angle            degrees
    //   check box        0 or 1
    //   popup            the item's number from 1
    //   colour           red, green, blue, alpha from 0 to 255
    //   point, 3D point  x, y and z in pixels of the full-size layer
    // 16.16 values and whole numbers are rounded to the nearest when they are set.
    std::array<double, 4> numbers{};

    bool operator==(const ParameterSetting&) const = default;
};

// Sets the value in `values`, which must have an entry of that index; the type is that entry's. Types without
// a value, layers among them, stay as they are. Points become pixels of pictures that are `downsample` as
// large as the layer.
void applySetting(const ParameterSetting& setting, ParameterValues& values,
                  const PF_RationalScale& downsample = {1, 1});

}  // namespace perch
