// The parent of the process in which an effect's code runs. It loads nothing of the effect, and does nothing
// but wait, pass signals on, and tell how the worker ended:
//
//     perch COMMAND ...  --starts-->  perch --worker=3 COMMAND ...      the same program, freshly executed
//          |                              |
//          +---- Whereabouts, shared -----+
//
// Whatever the effect does, the parent says one sentence, and removes what was being written.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "Outcome.h"

namespace perch {

// Runs the program with these arguments as a worker, to its end. `limit` is the time that all of it may
// take, 0 for any. Throws Error where no process can be started.
Outcome superviseWorker(const std::vector<std::string>& arguments,
                        std::chrono::nanoseconds limit = std::chrono::nanoseconds(0));

}  // namespace perch
