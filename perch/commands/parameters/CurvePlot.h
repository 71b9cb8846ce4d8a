// The values of parameters over a range of frames, drawn.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Parameter.h"
#include "ParameterCurve.h"

namespace perch {

struct PlottedCurve {
    const Parameter* parameter = nullptr;
    const ParameterCurve* curve = nullptr;
};

// An SVG picture with a strip for each curve, one under the other; every frame a dot, every key a square.
// Values that are several numbers are a line for each. `frames` has at least one, in ascending order.
std::string plotCurves(const std::vector<PlottedCurve>& curves, const std::vector<std::int32_t>& frames);
// Whether the text begins as such a picture does.
bool isPlot(std::string_view text);

}  // namespace perch
