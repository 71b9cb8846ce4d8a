#include "RenderHelp.h"

#include "Bundle.h"
#include "Console.h"
#include "Effect.h"
#include "Error.h"
#include "RenderOptions.h"

namespace perch {

void printRenderHelp(CLI::App& app, const std::filesystem::path& plugin,
                     std::span<const char* const> refused) {
    std::filesystem::path bundle;
    try {
        bundle = chooseBundle(plugin);
    } catch (const Error&) {
        printResult(
            helpWithRenderOptions(app, nullptr, refused));  // without an effect to list the parameters of
        return;
    }
    Effect effect(bundle, HostOptions{});
    effect.close();
    printResult(helpWithRenderOptions(app, &effect.description(), refused));
}

}  // namespace perch
