// What the commands about an effect's parameters that render nothing have in common.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ParameterArguments.h"
#include "ParameterOptions.h"

namespace CLI {
class App;
}

namespace perch {

// What a text file holds, by a look at it.
struct TextKind {
    const char* name;  // "a preset"
    bool (*has)(std::string_view text);
};

class ParameterCommand {
public:
    // Adds the common options to `app`, to which the command adds its own; it must outlive this.
    explicit ParameterCommand(CLI::App& app);

    // Loads the effect for what it declares, and reads the whole command line. False when help was asked for
    // and has been printed.
    bool read(const std::vector<std::string>& arguments);

    // Writes a result of the command. Throws UsageError where it would replace the preset that was read, or a
    // file that is not of its kind.
    void write(const std::string& path, const std::string& text, const TextKind& kind) const;

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

// Throws UsageError where a file to be written is one that is read, through links too.
void requireOtherFile(const std::string& output, const std::string& input);

// Replaces the file whole or not at all.
void writeTextFile(const std::string& path, const std::string& text);

}  // namespace perch
