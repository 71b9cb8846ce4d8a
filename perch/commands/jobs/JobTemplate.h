// A template of Open Job Description, version 2023-09.
#pragma once

#include <string>

#include "RenderTasks.h"

namespace perch {

// As JSON. Throws UsageError where such a template cannot hold the command.
std::string jobTemplate(const RenderTasks& tasks);

}  // namespace perch
