#include "ParameterCommand.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <span>

#include "Bundle.h"
#include "CommandLine.h"
#include "Console.h"
#include "Effect.h"
#include "Error.h"
#include "FailingAs.h"
#include "RenderOptions.h"
#include "ReplacedFile.h"
#include "Whereabouts.h"

namespace perch {

ParameterCommand::ParameterCommand(CLI::App& app) : app(app) {
    addHelpFlag(app, wantsHelp);
    app.add_option("--preset", preset, "values and keys from a file; options replace them")
        ->type_name("FILE");
    app.add_option("--plugin", plugin, "the effect; without it, the only one beside the program")
        ->type_name("BUNDLE");
    addTimeout(app, timeout);
    addInProcessFlag(app);
}

bool ParameterCommand::read(const std::vector<std::string>& arguments) {
    parseArguments(app, arguments);
    whereabouts().limit = parseSeconds("--timeout", timeout).count();
    Effect effect(chooseBundle(plugin), HostOptions{});
    effect.close();
    parameters = effect.description().parameters;
    options = optionsOf(parameters);
    addParameterOptions(app, options, texts);
    if (wantsHelp) {
        printResult(app.help());
        return false;
    }
    app.clear();
    parseAllArguments(app, arguments);
    given = takeParameterArguments(app, options, texts, preset);
    return true;
}

void writeTextFile(const std::string& path, const std::string& text) {
    const std::filesystem::path file = path;
    pictures::watchTemporaryFiles({.appears = noteTemporary, .isGone = forgetTemporary});
    failingAs<OutputError>([&] {
        pictures::prepareToReplace(std::span(&file, 1));
        pictures::replaceFile(file, {reinterpret_cast<const unsigned char*>(text.data()), text.size()});
    });
}

}  // namespace perch
