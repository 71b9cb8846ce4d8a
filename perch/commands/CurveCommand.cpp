#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "Commands.h"
#include "Console.h"
#include "CurvePlot.h"
#include "Error.h"
#include "FrameList.h"
#include "ParameterCommand.h"
#include "ParameterText.h"

namespace perch {
namespace {

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

}  // namespace

int runCurveCommand(const std::vector<std::string>& arguments) {
    CLI::App app("Prints the values of an effect's parameters for every frame, as comma-separated values.",
                 "perch curve");
    ParameterCommand command(app);
    std::string list;
    std::string plot;
    app.add_option("--frames", list, "the frames, like 1-24, 1-24x2 or 1,3,5-9")->type_name("LIST");
    app.add_option("--plot", plot, "a drawing of the values to be written, as SVG")->type_name("FILE");
    if (!command.read(arguments)) return kDone;
    if (list.empty()) throw UsageError("--frames is missing; see perch curve --help");
    const std::vector<std::int32_t> frames = parseFrameList(list);
    if (command.given.curves.empty())
        throw UsageError("no parameter is given a value; for example --focal-point 1:20,48:70");

    std::vector<PlottedCurve> curves;
    for (const ParameterCurve& curve : command.given.curves)
        curves.push_back({&*std::ranges::find(command.parameters, curve.index, &Parameter::index), &curve});
    if (!plot.empty()) {
        std::vector<std::int32_t> ascending = frames;
        std::ranges::sort(ascending);
        command.write(plot, plotCurves(curves, ascending), {.name = "a plot", .has = isPlot});
    }
    printResult(csvOf(curves, frames));
    return kDone;
}

}  // namespace perch
