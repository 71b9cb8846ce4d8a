// What the commands share in reading their arguments.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace perch {

enum class Extras {
    Ignored,
    Refused,  // with the nearest option for a misspelt one
};

// Replaces the library's help flag, which ends the parsing, with one like all others.
void addHelpFlag(CLI::App& app, bool& wantsHelp);

// Throws UsageError with one sentence. The last of an option given several times counts.
void parseArguments(CLI::App& app, const std::vector<std::string>& arguments, Extras extras);

// Without their dashes.
std::vector<std::string> longOptionNames(const CLI::App& app);

}  // namespace perch
