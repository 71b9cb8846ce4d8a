// How a worker has ended.
#pragma once

#include <string>
#include <vector>

namespace perch {

struct Outcome {
    int status = 0;                     // for the program to end with
    std::string sentence;               // why it is not 0; empty where the worker has told it
    bool isEndedFromOutside = false;    // by a signal to the program, the user's interrupt above all
    std::vector<std::string> findings;  // of strict mode, where the worker could not tell them itself
};

}  // namespace perch
