#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "Bundle.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Effect.h"
#include "ParameterArguments.h"
#include "ParameterText.h"
#include "Preset.h"
#include "RenderOptions.h"
#include "ReplacedFile.h"
#include "Whereabouts.h"

namespace perch {
namespace {

struct PresetOptions {
    bool wantsHelp = false;
    std::string plugin;
    std::string preset;
    std::string output;
    std::string timeout = "0";
};

void addOwnOptions(CLI::App& app, PresetOptions& options) {
    addHelpFlag(app, options.wantsHelp);
    app.add_option("-o,--output", options.output, "the preset to be written; without it, it is printed")
        ->type_name("FILE");
    app.add_option("--preset", options.preset, "a preset to begin with")->type_name("FILE");
    app.add_option("--plugin", options.plugin, "the effect; without it, the only one beside the program")
        ->type_name("BUNDLE");
    addTimeout(app, options.timeout);
    addInProcessFlag(app);
}

// Adds the defaults of the parameters that are not given. Points have none in pixels.
void complete(std::vector<ParameterCurve>& curves, const std::vector<ParameterOption>& options) {
    for (const ParameterOption& option : options) {
        const Parameter& parameter = option.parameter;
        if (std::ranges::find(curves, parameter.index, &ParameterCurve::index) != curves.end()) continue;
        if (const auto setting = parseSetting(parameter, defaultText(parameter)))
            curves.push_back(constantCurve(*setting));
    }
}

void write(const std::filesystem::path& path, const std::string& text) {
    pictures::prepareToReplace(std::span(&path, 1));
    pictures::replaceFile(path, {reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

}  // namespace

int runPresetCommand(const std::vector<std::string>& arguments) {
    CLI::App app("Writes the values of an effect's parameters, given ones and defaults, as a preset.",
                 "perch preset");
    PresetOptions own;
    addOwnOptions(app, own);
    parseArguments(app, arguments);
    whereabouts().limit = parseSeconds("--timeout", own.timeout).count();
    Effect effect(chooseBundle(own.plugin), HostOptions{});
    effect.close();
    const std::vector<ParameterOption> options = optionsOf(effect.description().parameters);
    ParameterTexts texts;
    addParameterOptions(app, options, texts);
    if (own.wantsHelp) {
        printResult(app.help());
        return kDone;
    }
    app.clear();
    parseAllArguments(app, arguments);
    std::vector<ParameterCurve> curves = takeParameterArguments(app, options, texts, own.preset).curves;
    complete(curves, options);
    const std::string text = presetText(options, curves);
    effect.close();
    if (own.output.empty()) {
        printResult(text);
    } else {
        write(own.output, text);
    }
    return kDone;
}

}  // namespace perch
