// A parameter and the values that a sheet shows of it.
//
//   focal-point=0:100:25     0, 25, 50, 75 and 100
//   maximum-blur=10,30       these
//   blur-type=Coarse,Fine
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ParameterOptions.h"
#include "ParameterSetting.h"

namespace perch {

struct SheetAxis {
    ParameterOption option;
    std::vector<ParameterSetting> values;
};

// Throws UsageError, which says what was expected.
SheetAxis parseSheetAxis(const std::vector<ParameterOption>& options, std::string_view text);

}  // namespace perch
