// The basic suite, which hands out all others by name and version.
#pragma once

#include <set>
#include <string>

#include "SP_Basic.h"

namespace perch {

SPBasicSuite* basicSuite();

// Of all suites that the host has, each once.
std::set<std::string> suiteNames();

}  // namespace perch
