#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "Bundle.h"
#include "Check.h"
#include "CommandLine.h"
#include "Commands.h"

namespace perch {

int runCheckCommand(const std::vector<std::string>& arguments) {
    CLI::App app("Runs an effect through every command, on generated frames of both depths.", "perch check");
    bool wantsHelp = false;
    std::string plugin;
    addHelpFlag(app, wantsHelp);
    app.add_option("PLUGIN", plugin, "the effect; without it, the only one beside the program")
        ->type_name("");
    parseAllArguments(app, arguments);
    if (wantsHelp) {
        fmt::print("{}", app.help());
        return kDone;
    }
    return runCheck(chooseBundle(plugin)) ? kDone : kFailed;
}

}  // namespace perch
