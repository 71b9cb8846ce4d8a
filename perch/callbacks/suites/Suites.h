// The basic suite, which hands out all others by name and version.
#pragma once

#include <cstddef>
#include <set>
#include <span>
#include <string>

#include "SP_Basic.h"

namespace perch {

SPBasicSuite* basicSuite();

// The memory of all tables that it hands out, those of several versions more than once.
std::span<const std::span<std::byte>> suiteTables();

// Of all suites that the host has, each once.
std::set<std::string> suiteNames();

}  // namespace perch
