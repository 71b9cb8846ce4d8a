// The text form of parameter values.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Parameter.h"
#include "ParameterSetting.h"

namespace perch {

// Absent when the text is not a value of the parameter's type within its range.
std::optional<ParameterSetting> parseSetting(const Parameter& parameter, std::string_view text);

// "a number from 0 to 100"
std::string expectedValue(const Parameter& parameter);

// The value in the form that is shown to the user and read back: "40", "Fine", "on", "#ff8000", "640,360".
std::string valueText(const Parameter& parameter, const ParameterSetting& setting);

// "40", "Fine", "on"; empty where the type has no default.
std::string defaultText(const Parameter& parameter);

// "0.5", in as few digits as tell single-precision numbers apart.
std::string formatNumber(double number);

}  // namespace perch
