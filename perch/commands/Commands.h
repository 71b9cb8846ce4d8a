// The commands of the program. Each takes the arguments that follow its name and returns the exit status;
// failures are exceptions.
#pragma once

#include <string>
#include <vector>

namespace perch {

enum ExitStatus {
    kDone = 0,
    kFailed = 1,
    kWrongUse = 2,
    kInterrupted = 130,  // as shells report an end by the interrupt signal
    kTerminated = 143,   // and by the one that asks a program to end
};

int runRenderCommand(const std::vector<std::string>& arguments);
int runDescribeCommand(const std::vector<std::string>& arguments);
int runCurveCommand(const std::vector<std::string>& arguments);
int runCheckCommand(const std::vector<std::string>& arguments);

}  // namespace perch
