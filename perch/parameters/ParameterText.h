// The text form of parameter values.
#pragma once

#include <string>
#include <string_view>

#include "Parameter.h"

namespace perch {

// False, and `value` as it was, when the text is no value of the parameter's type within its range.
bool setValueFromText(const Parameter& parameter, std::string_view text, PF_ParamDef& value);

// "a number from 0 to 100"
std::string expectedValue(const Parameter& parameter);

// "40", "Fine", "on"; empty where the type has no default.
std::string defaultText(const Parameter& parameter);

// "0.5", in as few digits as tell single-precision numbers apart.
std::string formatNumber(double number);

}  // namespace perch
