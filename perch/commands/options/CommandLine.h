// What the commands share in reading their arguments.
#pragma once

#include <CLI/App.hpp>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace perch {

// Replaces the library's help flag, which ends the parsing, with one like all others.
void addHelpFlag(CLI::App& app, bool& wantsHelp);

// Runs the effect in this process. main() acts on it.
constexpr char kInProcessOption[] = "--in-process";
void addInProcessFlag(CLI::App& app);

// The effect of a command that is about it alone: an argument, or --plugin as everywhere else.
void addPlugin(CLI::App& app, std::string& plugin);
// Throws UsageError where both are given. `app` has met them.
void requireOnePlugin(const CLI::App& app);

// The time that the effect may take for one command.
void addTimeout(CLI::App& app, std::string& seconds);
// What an option with seconds, which may have a fraction, says. Throws UsageError.
std::chrono::nanoseconds parseSeconds(std::string_view option, const std::string& text);

// Returns the arguments that belong to no option of `app`, in their order. Throws UsageError with one
// sentence. The last of an option given several times counts.
std::vector<std::string> parseArguments(CLI::App& app, const std::vector<std::string>& arguments);

// Throws UsageError for the first of `extras` where there is one, with the nearest of the options, which are
// named without their dashes, for a misspelt one.
void refuseExtras(const std::vector<std::string>& extras, const std::vector<std::string>& optionNames);

// Parses and refuses what is left over.
void parseAllArguments(CLI::App& app, const std::vector<std::string>& arguments);

// Without their dashes.
std::vector<std::string> longOptionNames(const CLI::App& app);

// A whole number from `least` to `most`. Throws UsageError with what the option takes.
int parseNumber(std::string_view option, const std::string& text, int least, int most);

// The names, with their dashes, of options that were given more than once.
std::vector<std::string> repeatedOptions(const CLI::App& app);

}  // namespace perch
