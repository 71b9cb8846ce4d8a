// The outcome of a command sent as it is.
#pragma once

#include <string>

#include "PF_Entry.h"
#include "PF_Values.h"

namespace perch {

// Failures are codes here, not exceptions.
struct CommandResult {
    PF_Err code = 0;
    std::string message;
    PF_OutFlags flags = 0;
    PF_OutFlags2 flags2 = 0;
};

}  // namespace perch
