#include <fmt/format.h>

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
#include "CurvePlot.h"
#include "Effect.h"
#include "Error.h"
#include "FrameList.h"
#include "ParameterArguments.h"
#include "ParameterText.h"
#include "RenderOptions.h"
#include "ReplacedFile.h"
#include "Whereabouts.h"

namespace perch {
namespace {

struct CurveOptions {
    bool wantsHelp = false;
    std::string plugin;
    std::string frames;
    std::string plot;
    std::string preset;
    std::string timeout = "0";
};

void addOwnOptions(CLI::App& app, CurveOptions& options) {
    addHelpFlag(app, options.wantsHelp);
    app.add_option("--frames", options.frames, "the frames, like 1-24, 1-24x2 or 1,3,5-9")->type_name("LIST");
    app.add_option("--plot", options.plot, "a drawing of the values to be written, as SVG")
        ->type_name("FILE");
    app.add_option("--preset", options.preset, "values and keys from a file; options replace them")
        ->type_name("FILE");
    app.add_option("--plugin", options.plugin, "the effect; without it, the only one beside the program")
        ->type_name("BUNDLE");
    addTimeout(app, options.timeout);
    addInProcessFlag(app);
}

// A field of a line of comma-separated values.
std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\n\r") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    return quoted + '"';
}

std::string csvOf(const std::vector<PlottedCurve>& curves, const std::vector<std::int32_t>& frames) {
    std::string csv = "frame";
    for (const PlottedCurve& plotted : curves)
        csv += ',' + csvField(printable(plotted.parameter->name));
    csv += '\n';
    for (const std::int32_t frame : frames) {
        csv += fmt::format("{}", frame);
        for (const PlottedCurve& plotted : curves)
            csv += ',' + csvField(printable(valueText(*plotted.parameter, settingAt(*plotted.curve, frame))));
        csv += '\n';
    }
    return csv;
}

void writePlot(const std::filesystem::path& path, const std::string& svg) {
    pictures::prepareToReplace(std::span(&path, 1));
    pictures::replaceFile(path, {reinterpret_cast<const unsigned char*>(svg.data()), svg.size()});
}

}  // namespace

int runCurveCommand(const std::vector<std::string>& arguments) {
    CLI::App app("Prints the values of an effect's parameters for every frame, as comma-separated values.",
                 "perch curve");
    CurveOptions own;
    addOwnOptions(app, own);
    parseArguments(app, arguments);
    whereabouts().limit = parseSeconds("--timeout", own.timeout).count();
    Effect effect(chooseBundle(own.plugin), HostOptions{});
    effect.close();
    const std::vector<Parameter>& parameters = effect.description().parameters;
    const std::vector<ParameterOption> options = optionsOf(parameters);
    ParameterTexts texts;
    addParameterOptions(app, options, texts);
    if (own.wantsHelp) {
        printResult(app.help());
        return kDone;
    }
    app.clear();
    parseAllArguments(app, arguments);
    if (own.frames.empty()) throw UsageError("--frames is missing; see perch curve --help");
    const std::vector<std::int32_t> frames = parseFrameList(own.frames);
    const ParameterArguments given = takeParameterArguments(app, options, texts, own.preset);
    if (given.curves.empty())
        throw UsageError("no parameter is given a value; for example --focal-point 1:20,48:70");

    std::vector<PlottedCurve> curves;
    for (const ParameterCurve& curve : given.curves)
        curves.push_back({&*std::ranges::find(parameters, curve.index, &Parameter::index), &curve});
    if (!own.plot.empty()) {
        std::vector<std::int32_t> ascending = frames;
        std::ranges::sort(ascending);
        writePlot(own.plot, plotCurves(curves, ascending));
    }
    printResult(csvOf(curves, frames));
    return kDone;
}

}  // namespace perch
