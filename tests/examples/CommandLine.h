// Runs the built program in a folder.
#pragma once

#include <string>

#include "TestFiles.h"

struct Outcome {
    int exitCode;
    std::string out;
    std::string err;
};

// `arguments` go through the shell, which runs in `folder`; `before` are shell commands to run first.
Outcome PullFocus(const ScratchFolder& folder, const std::string& arguments, const std::string& before = "");
