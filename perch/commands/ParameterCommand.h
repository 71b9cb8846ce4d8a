// What the commands about an effect's parameters that render nothing have in common.
#pragma once

#include <string>
#include <vector>

#include "ParameterArguments.h"
#include "ParameterOptions.h"

namespace CLI {
class App;
}

namespace perch {

class ParameterCommand {
public:
    // Adds the common options to `app`, to which the command adds its own; it must outlive this.
    explicit ParameterCommand(CLI::App& app);

    // Loads the effect for what it declares, and reads the whole command line. False when help was asked for
    // and has been printed.
    bool read(const std::vector<std::string>& arguments);

    std::vector<Parameter> parameters;
    std::vector<ParameterOption> options;
    ParameterArguments given;

private:
    CLI::App& app;
    bool wantsHelp = false;
    std::string plugin;
    std::string preset;
    std::string timeout = "0";
    ParameterTexts texts;
};

// Replaces the file whole or not at all.
void writeTextFile(const std::string& path, const std::string& text);

}  // namespace perch
