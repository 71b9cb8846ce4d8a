// A command of GNU parallel.
#pragma once

#include <string>

#include "RenderTasks.h"

namespace perch {

// A line for a shell, unless a name has a line break.
std::string parallelLine(const RenderTasks& tasks);

}  // namespace perch
