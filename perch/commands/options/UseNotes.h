#pragma once

#include "FramePlan.h"
#include "Notes.h"
#include "ParameterArguments.h"
#include "RenderOptions.h"

namespace perch {

// What a user should know of a command line before anything is read.
void noteUse(const RenderOptions& options, const ParameterArguments& parameters, const FramePlan& plan,
             Notes& notes);

}  // namespace perch
