// The help of the commands that take the options of `perch render`.
#pragma once

#include <filesystem>
#include <span>

namespace CLI {
class App;
}

namespace perch {

// Prints the options that `app` has, those of `perch render` except `refused`, and the parameters of the
// effect in `plugin` or, where that is empty, of the one beside the program. To be called in a worker, as it
// loads the effect.
void printRenderHelp(CLI::App& app, const std::filesystem::path& plugin,
                     std::span<const char* const> refused = {});

}  // namespace perch
