// The values of an instance's parameters.
#pragma once

#include <cstdint>
#include <vector>

#include "Parameter.h"

namespace perch {

// The values of params[], by index. Entry 0 stands for the input layer; layer entries carry no pixels.
using ParameterValues = std::vector<PF_ParamDef>;

// The values of a fresh instance on a layer of that full-resolution size in pixels, by which points are
// placed. Labels point into `parameters`, which must outlive the values.
ParameterValues defaultParameterValues(const std::vector<Parameter>& parameters, std::int32_t width,
                                       std::int32_t height);

}  // namespace perch
