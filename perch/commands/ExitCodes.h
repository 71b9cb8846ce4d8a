// What the program's exit codes mean.
#pragma once

#include <string>

namespace perch {

// A line for each, as --help prints them.
std::string exitCodesText();

}  // namespace perch
