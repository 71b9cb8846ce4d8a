#include "ParameterCommand.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <span>
#include <system_error>

#include "Bundle.h"
#include "CommandLine.h"
#include "Console.h"
#include "Effect.h"
#include "Error.h"
#include "FailingAs.h"
#include "FileBytes.h"
#include "RenderOptions.h"
#include "ReplacedFile.h"
#include "Whereabouts.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

// An empty file has nothing to lose, as one from mktemp; a pipe or a device nothing to look at.
void requireKind(const std::string& path, const TextKind& kind) {
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored) || fs::is_empty(path, ignored)) return;
    const auto bytes = failingAs<OutputError>([&] { return pictures::readFile(path); });
    if (!kind.has({reinterpret_cast<const char*>(bytes.data()), bytes.size()}))
        throw UsageError(fmt::format("\"{}\" is there and is not {}; name another file", path, kind.name));
}

}  // namespace

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
    for (const std::string& option : repeatedOptions(app))
        say("warning: " + repetitionText(option));
    return true;
}

void ParameterCommand::write(const std::string& path, const std::string& text, const TextKind& kind) const {
    if (!preset.empty()) requireOtherFile(path, preset);
    requireKind(path, kind);
    writeTextFile(path, text);
}

void requireOtherFile(const std::string& output, const std::string& input) {
    std::error_code ignored;
    if (fs::equivalent(output, input, ignored))
        throw UsageError(
            fmt::format("cannot write \"{}\": it is read by this command; choose another name", output));
}

void writeTextFile(const std::string& path, const std::string& text) {
    const fs::path file = path;
    pictures::watchTemporaryFiles({.appears = noteTemporary, .isGone = forgetTemporary});
    failingAs<OutputError>([&] {
        pictures::prepareToReplace(std::span(&file, 1));
        pictures::replaceFile(file, {reinterpret_cast<const unsigned char*>(text.data()), text.size()});
    });
}

}  // namespace perch
