// The names of commands, as users and findings tell them.
#pragma once

#include <string>

#include "PF_Entry.h"

namespace perch {

// "RENDER"; "command 99" for numbers without a name.
std::string commandName(PF_Cmd command);

}  // namespace perch
