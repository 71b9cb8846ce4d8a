#include <CLI/CLI.hpp>

#include "Bundle.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Description.h"
#include "Effect.h"
#include "RenderOptions.h"
#include "Whereabouts.h"

namespace perch {

int runDescribeCommand(const std::vector<std::string>& arguments) {
    CLI::App app("Prints what an effect says of itself, and its parameters.", "perch describe");
    bool wantsHelp = false;
    bool wantsJson = false;
    std::string plugin;
    std::string timeout = "0";
    addHelpFlag(app, wantsHelp);
    addPlugin(app, plugin);
    app.add_flag("--json", wantsJson, "print JSON");
    addTimeout(app, timeout);
    addInProcessFlag(app);
    parseAllArguments(app, arguments);
    if (wantsHelp) {
        printResult(app.help());
        return kDone;
    }
    requireOnePlugin(app);
    whereabouts().limit = parseSeconds("--timeout", timeout).count();
    Effect effect(chooseBundle(plugin), HostOptions{});
    effect.printDefaults();
    effect.close();
    const EffectDescription& description = effect.description();
    const std::vector<ParameterOption> options = optionsOf(description.parameters);
    printResult(wantsJson ? describeAsJson(description, options) : describeAsText(description, options));
    return kDone;
}

}  // namespace perch
