// How a worker ended where it did not finish, in a sentence for the user.
#pragma once

#include <string>

#include "Whereabouts.h"

namespace perch {

// From what waitpid tells; see describeEffectEnd.
std::string describeWorkerEnd(const Whereabouts& at, int waitStatus);

}  // namespace perch
