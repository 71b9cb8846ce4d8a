// The command line of pull-focus: three files, one option for each control of the effect, and the threads.
#pragma once

#include <stdexcept>
#include <string>

#include "FocusPipeline.h"
#include "Pictures.h"

struct Options {
    std::string beauty;
    ControlFile control;
    std::string output;
    RenderInputs inputs;
    int threads = 0;   // 0 takes one per processor
    std::string help;  // the text to show instead of working, if help was asked for
};

// A command line that cannot be understood; what() is one sentence that names the option, its value and the
// range.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws UsageError.
Options ParseOptions(int argc, const char* const* argv);
