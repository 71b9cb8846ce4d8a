// Where a click in the picture leads: the value of a layer there is given to a parameter.
#pragma once

#include "PF_Params.h"

namespace perch {

struct Pick {
    PF_ParamIndex layer = 0;
    PF_ParamIndex parameter = 0;
};

}  // namespace perch
