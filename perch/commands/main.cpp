// perch: runs effects without the application they were made for.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "Commands.h"
#include "Error.h"
#include "NearestName.h"

namespace {

struct Command {
    const char* name;
    int (*run)(const std::vector<std::string>& arguments);
    const char* summary;
};

constexpr std::array kCommands{
    Command{"render", perch::runRenderCommand, "apply an effect to a picture or a sequence"},
    Command{"curve", perch::runCurveCommand, "print the values of every frame, before anything is rendered"},
    Command{"describe", perch::runDescribeCommand, "print what an effect says of itself"},
    Command{"check", perch::runCheckCommand, "try an effect against the rules of the interface"},
};

void printHelp() {
    fmt::print(
        "Runs effects without the application they were made for.\n"
        "Usage: perch COMMAND [OPTIONS]\n\nCommands:\n");
    for (const Command& command : kCommands)
        fmt::print("  {:<10}{}\n", command.name, command.summary);
    fmt::print(
        "\nperch COMMAND --help lists the options of a command; perch --version prints the version.\n");
}

int runCommand(const std::string& name, const std::vector<std::string>& arguments) {
    const auto command =
        std::ranges::find(kCommands, name, [](const Command& known) { return std::string(known.name); });
    if (command != kCommands.end()) return command->run(arguments);
    std::vector<std::string> names;
    for (const Command& known : kCommands)
        names.emplace_back(known.name);
    const std::string known = fmt::format("{}", fmt::join(names, ", "));
    names.insert(names.end(), {"--help", "--version"});
    throw perch::UsageError(fmt::format("unknown command \"{}\"{}; the commands are {}", name,
                                        perch::suggestion(name, names), known));
}

int run(std::span<char*> arguments) {
    if (arguments.empty()) throw perch::UsageError("a command is missing; see perch --help");
    const std::string first = arguments.front();
    if (first == "--help" || first == "-h") {
        printHelp();
        return perch::kDone;
    }
    if (first == "--version") {
        fmt::print("perch {}\n", PERCH_VERSION);
        return perch::kDone;
    }
    return runCommand(first, {arguments.begin() + 1, arguments.end()});
}

int fail(int status, const char* sentence) {
    fmt::print(stderr, "perch: {}\n", sentence);
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(std::span(argv, static_cast<std::size_t>(argc)).subspan(1));
    } catch (const perch::UsageError& error) {
        return fail(perch::kWrongUse, error.what());
    } catch (const std::bad_alloc&) {
        return fail(perch::kFailed, "there is not enough memory");
    } catch (const std::exception& error) {
        return fail(perch::kFailed, error.what());
    }
}
