// Processes that the server starts.
#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace perch {

// A descriptor of ours, and the number that the child has it by.
using PassedDescriptors = std::vector<std::pair<int, int>>;

constexpr char kThisProgram[] = "/proc/self/exe";

// `words` are the arguments from the program's name on. The child is in a process group of its own, so that a
// terminal's interrupt comes to the server alone, and holds no signal back. Throws Error.
pid_t startChild(const char* program, std::vector<std::string> words, const PassedDescriptors& descriptors);

}  // namespace perch
