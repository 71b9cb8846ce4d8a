#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Bundle.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Effect.h"
#include "Error.h"
#include "FileFormat.h"
#include "PF_Values.h"
#include "PictureFile.h"
#include "RenderHelp.h"
#include "RenderOptions.h"
#include "Session.h"
#include "StartFolder.h"
#include "ViewOptions.h"
#include "Whereabouts.h"
#include "Wire.h"

namespace perch {
namespace {

constexpr std::int64_t kUsualMemory = std::int64_t{1} << 30;  // bytes of pictures that are kept

struct ViewTexts {
    bool opensNoBrowser = false;
    std::string port = "0";
    std::string saveFolder;
};

void addViewOptions(CLI::App& app, ViewTexts& texts) {
    app.add_option("--port", texts.port, "of 127.0.0.1 that the page is at (default: one that is free)")
        ->type_name("PORT");
    app.add_flag("--no-open", texts.opensNoBrowser, "print the page's address and open no browser");
    app.add_option("--save-folder", texts.saveFolder,
                   "where the page may save presets; without it they are downloaded")
        ->type_name("FOLDER");
}

int printHelp(const std::vector<std::string>& arguments) {
    CLI::App app(
        "Shows an effect at work on a picture or a sequence, in the browser and at every move of a control. "
        "Takes the options of perch render; --output may be left out.",
        "perch view");
    ViewTexts texts;
    addViewOptions(app, texts);
    printRenderHelp(app, parseRenderOptions(arguments).load.plugin);
    return kDone;
}

// The value that a parameter has by default, as a curve that does not move; absent where it has none, as a
// layer.
std::optional<ParameterCurve> defaultCurve(const Parameter& parameter, const PF_ParamDef& value) {
    constexpr double kFixedOne = 65536.0;
    const PF_ParamDefUnion& u = value.u;
    switch (value.param_type) {
        case PF_Param_POINT:
            return constantCurve({parameter.index, {u.td.x_value / kFixedOne, u.td.y_value / kFixedOne}});
        case PF_Param_POINT_3D:
            return constantCurve(
                {parameter.index, {u.point3d_d.x_value, u.point3d_d.y_value, u.point3d_d.z_value}});
        case PF_Param_SLIDER:
            return constantCurve({parameter.index, {static_cast<double>(u.sd.value)}});
        case PF_Param_FIX_SLIDER:
            return constantCurve({parameter.index, {u.fd.value / kFixedOne}});
        case PF_Param_ANGLE:
            return constantCurve({parameter.index, {u.ad.value / kFixedOne}});
        case PF_Param_CHECKBOX:
            return constantCurve({parameter.index, {static_cast<double>(u.bd.value)}});
        case PF_Param_POPUP:
            return constantCurve({parameter.index, {static_cast<double>(u.pd.value)}});
        case PF_Param_FLOAT_SLIDER:
            return constantCurve({parameter.index, {u.fs_d.value}});
        case PF_Param_COLOR:
            return constantCurve(
                {parameter.index,
                 {static_cast<double>(u.cd.value.red), static_cast<double>(u.cd.value.green),
                  static_cast<double>(u.cd.value.blue), static_cast<double>(u.cd.value.alpha)}});
        default:
            return std::nullopt;
    }
}

std::vector<ParameterCurve> defaultCurves(const Effect& effect, const pictures::Picture& input) {
    const ParameterValues values = effect.defaultValues(input.width, input.height);
    std::vector<ParameterCurve> curves;
    for (const Parameter& parameter : effect.description().parameters)
        if (auto curve = defaultCurve(parameter, values[static_cast<std::size_t>(parameter.index)]))
            curves.push_back(std::move(*curve));
    return curves;
}

// The same arguments with an output for those that have none: named as the input, with -result behind the
// name, in the current folder.
std::vector<std::string> withOutput(std::vector<std::string> arguments) {
    CLI::App app;
    std::string input;
    std::string output;
    app.add_option("-i,--input", input);
    app.add_option("-o,--output", output);
    parseArguments(app, arguments);
    if (!output.empty() || input.empty()) return arguments;
    std::string name = std::filesystem::path(pictures::parseSelectedPicture(input).path).filename().string();
    name.insert(std::min(name.find('.'), name.size()), "-result");
    const std::optional<pictures::FileFormat> format = pictures::formatOfName(name);
    if (!format || !isWritten(*format)) name = std::filesystem::path(name).replace_extension(".png").string();
    arguments.insert(arguments.end(), {"--output", name});
    return arguments;
}

int socketOf(std::string_view text) {
    int number = -1;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

// The process behind the server, in which the effect's code runs.
int runSession(int socket, const std::vector<std::string>& given) {
    Wire wire(socket);
    const std::vector<std::string> arguments = withOutput(given);
    const RenderOptions options = parseRenderOptions(arguments);
    if (options.use != PlanUse::Render)
        throw UsageError("--dry-run is for perch render; perch view shows pictures");
    if (options.job.isFed)
        throw UsageError(
            "--frames-from is for perch render; the page of perch view asks for its frames itself");
    whereabouts().limit = options.frameLimit.count();
    pictures::keepStartFolder();
    HostOptions host;
    host.threads = options.load.threads;
    host.strict = options.load.strict;
    host.application = options.load.application;
    host.onMessage = [&wire](std::string_view, std::string_view message) {
        wire.send(messageEvent(message));
    };
    Effect effect(chooseBundle(options.load.plugin), host);
    const std::vector<Parameter>& parameters = effect.description().parameters;
    const ParameterArguments values = parseParameterArguments(arguments, parameters);
    FramePlan plan = planFrames(options.names, values.layers);
    plan.emptyLayers = values.emptyLayers;
    if (plan.frames.empty()) throw UsageError("there is no frame to be shown; leave --shard out");
    RenderSettings settings = options.settings;
    settings.layers = values.readings;

    CommandParts parts = commandParts(arguments, parameters);
    std::vector<std::string> words{"perch", "render"};
    std::ranges::move(parts.words, std::back_inserter(words));
    std::vector<std::int32_t> frames;
    for (const FrameFiles& files : plan.frames)
        frames.push_back(files.frame);
    const SharedPicture first =
        readPictureFile(plan.frames.front().input, settings.selectedInput, settings.reading);
    const LookReader looks(optionsOf(parameters), defaultCurves(effect, *first), frames,
                           {.words = words, .layers = parts.layers});
    Notes notes;
    warnOfMistakes(values, notes);
    for (const std::string& sentence : sentencesOf(plan.notes))
        notes.add(sentence, sentence);
    Session session({.effect = effect,
                     .settings = settings,
                     .plan = plan,
                     .looks = looks,
                     .notes = notes,
                     .first = looks.tidied({.frame = frames.front(), .curves = values.curves}),
                     .input = options.names.input,
                     .memory = options.memory.value_or(kUsualMemory)});
    session.run(wire);
    return kDone;
}

}  // namespace

int runViewCommand(const std::vector<std::string>& arguments) {
    if (!arguments.empty() && arguments.front().starts_with(kSessionOption))
        return runSession(socketOf(std::string_view(arguments.front()).substr(sizeof kSessionOption - 1)),
                          {arguments.begin() + 1, arguments.end()});
    CLI::App app;
    bool wantsHelp = false;
    addHelpFlag(app, wantsHelp);
    ViewTexts texts;
    addViewOptions(app, texts);
    ViewOptions options;
    options.arguments = parseArguments(app, arguments);
    if (wantsHelp) return printHelp(arguments);
    constexpr int kLastPort = 65535;
    options.port = parseNumber("--port", texts.port, 0, kLastPort);
    options.opensBrowser = !texts.opensNoBrowser;
    options.saveFolder = texts.saveFolder;
    return serveView(options);
}

}  // namespace perch
