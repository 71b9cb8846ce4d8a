// The commands of the program. Each takes the arguments that follow its name and returns the exit status;
// failures are exceptions.
#pragma once

#include <string>
#include <vector>

#include "ExitStatus.h"

namespace perch {

int runRenderCommand(const std::vector<std::string>& arguments);
int runMergeReportCommand(const std::vector<std::string>& arguments);
int runViewCommand(const std::vector<std::string>& arguments);
int runDescribeCommand(const std::vector<std::string>& arguments);
int runPresetCommand(const std::vector<std::string>& arguments);
int runCurveCommand(const std::vector<std::string>& arguments);
int runJobCommand(const std::vector<std::string>& arguments);
int runSheetCommand(const std::vector<std::string>& arguments);
int runCheckCommand(const std::vector<std::string>& arguments);

}  // namespace perch
