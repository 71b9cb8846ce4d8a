#include "ParameterArguments.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "Console.h"
#include "CurveText.h"
#include "ParameterText.h"
#include "Preset.h"

namespace perch {
namespace {

void addParameterOption(CLI::App& app, const ParameterOption& option, std::string& text) {
    const Parameter& parameter = option.parameter;
    const std::string given = defaultText(parameter);
    std::string help = expectedValue(parameter);
    if (!given.empty()) help += fmt::format(" (default {})", given);
    CLI::Option* const added = app.add_option("--" + option.name, text, printable(help))
                                   ->group("Parameters of the effect")
                                   ->type_name(isLayer(parameter) ? "PICTURE" : "VALUE");
    if (isCheckBox(parameter)) added->expected(0, 1)->type_name("[on|off]");
}

void takeParameter(const ParameterOption& option, const std::string& text, ParameterArguments& arguments) {
    if (!isLayer(option.parameter)) {
        // A bare flag is on.
        const bool isBare = isCheckBox(option.parameter) && text.empty();
        arguments.curves.push_back(parseCurve(option.parameter, "--" + option.name, isBare ? "on" : text));
    } else if (text == "none") {
        arguments.emptyLayers.insert(option.parameter.index);
    } else {
        arguments.layers[option.parameter.index] = text;
    }
}

}  // namespace

void addParameterOptions(CLI::App& app, const std::vector<ParameterOption>& options, ParameterTexts& texts) {
    for (const ParameterOption& option : options)
        addParameterOption(app, option, texts[option.name]);
    app.footer(
        "A parameter takes one value, or keys over time with commas between them: FRAME:VALUE, and :hold,\n"
        ":linear (the default) or :smooth behind it. --focal-point 1:20,48:70:smooth pulls focus from 20 at\n"
        "frame 1 to 70 at frame 48, where it comes to rest.");
}

ParameterArguments takeParameterArguments(const CLI::App& app, const std::vector<ParameterOption>& options,
                                          const ParameterTexts& texts, const std::string& preset) {
    ParameterArguments result;
    for (const ParameterOption& option : options) {
        if (app.count("--" + option.name) > 0) takeParameter(option, texts.at(option.name), result);
    }
    if (preset.empty()) return result;
    for (ParameterCurve& curve : readPreset(preset, options)) {
        if (std::ranges::find(result.curves, curve.index, &ParameterCurve::index) == result.curves.end())
            result.curves.push_back(std::move(curve));
    }
    return result;
}

}  // namespace perch
