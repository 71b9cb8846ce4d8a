// The values of an instance's parameters.
#pragma once

#include <cstdint>
#include <vector>

#include "Parameter.h"

namespace perch {

// The values of params[], by index. Entry 0 stands for the input layer; layer entries carry no pixels.
using ParameterValues = std::vector<PF_ParamDef>;

// The values of a fresh instance for pictures of that size, by whose pixels points are placed. Labels point
// into `parameters`, which must outlive the values.
ParameterValues defaultParameterValues(const std::vector<Parameter>& parameters, std::int32_t width,
                                       std::int32_t height);

// Whether two records of one parameter hold the same value, whatever they look like; and the value of one put
// into the other. Types without a value of the host's are equal, and nothing is put.
bool isSameValue(const PF_ParamDef& a, const PF_ParamDef& b);
void takeValue(const PF_ParamDef& from, PF_ParamDef& to);

}  // namespace perch
