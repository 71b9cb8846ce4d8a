// The text form of a parameter's value over time: FRAME:VALUE[:hold|linear|smooth], with a comma between
// keys.
//
//   1:20,48:70:smooth      1:0,0,24:640,360      1:Coarse,10:Fine      40
#pragma once

#include <string>
#include <string_view>

#include "Parameter.h"
#include "ParameterCurve.h"

namespace perch {

// A value alone is a constant. Keys may stand in any order. A key without a kind is linear; those of check
// boxes and popups hold, and have no other kind. Throws UsageError, which says what was expected; `name` is
// what the user knows the parameter by, like "--focal-point". Not for layers.
ParameterCurve parseCurve(const Parameter& parameter, std::string_view name, std::string_view text);

// The text that is read back as this very curve.
std::string curveText(const Parameter& parameter, const ParameterCurve& curve);

// "hold", "linear" or "smooth".
std::string_view kindName(ParameterKey::Kind kind);

}  // namespace perch
