// A job array of Slurm.
#pragma once

#include <string>

#include "RenderTasks.h"

namespace perch {

// A script for sbatch.
std::string slurmScript(const RenderTasks& tasks);

}  // namespace perch
