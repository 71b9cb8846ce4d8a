#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "Commands.h"
#include "Console.h"
#include "ParameterCommand.h"
#include "ParameterText.h"
#include "Preset.h"

namespace perch {
namespace {

// Adds the defaults of the parameters that are not given. Points have none in pixels.
void complete(std::vector<ParameterCurve>& curves, const std::vector<ParameterOption>& options) {
    for (const ParameterOption& option : options) {
        const Parameter& parameter = option.parameter;
        if (std::ranges::find(curves, parameter.index, &ParameterCurve::index) != curves.end()) continue;
        if (const auto setting = parseSetting(parameter, defaultText(parameter)))
            curves.push_back(constantCurve(*setting));
    }
}

}  // namespace

int runPresetCommand(const std::vector<std::string>& arguments) {
    CLI::App app("Writes the values of an effect's parameters, given ones and defaults, as a preset.",
                 "perch preset");
    ParameterCommand command(app);
    std::string output;
    app.add_option("-o,--output", output, "the preset to be written; without it, it is printed")
        ->type_name("FILE");
    if (!command.read(arguments)) return kDone;
    complete(command.given.curves, command.options);
    const std::string text = presetText(command.options, command.given.curves);
    if (output.empty()) {
        printResult(text);
    } else {
        command.write(output, text, {.name = "a preset", .has = isPreset});
    }
    return kDone;
}

}  // namespace perch
