#include "ParameterArguments.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>

#include "Console.h"
#include "CurveText.h"
#include "Error.h"
#include "FrameNumber.h"
#include "ParameterText.h"
#include "PictureFile.h"
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

void addRangeOption(CLI::App& app, const ParameterOption& layer, std::string& text) {
    app.add_option(
           "--" + layer.rangeName, text,
           fmt::format("of depths in the picture of --{}: NEAR:FAR become white and black, by even steps of "
                       "1/Z with :reciprocal; auto finds them in the first frame",
                       layer.name))
        ->group("Parameters of the effect")
        ->type_name("RANGE");
}

void takeParameter(const ParameterOption& option, const std::string& text, ParameterArguments& arguments) {
    if (!isLayer(option.parameter)) {
        // A bare flag is on.
        const bool isBare = isCheckBox(option.parameter) && text.empty();
        arguments.curves.push_back(parseCurve(option.parameter, "--" + option.name, isBare ? "on" : text));
    } else if (text == "none") {
        arguments.emptyLayers.insert(option.parameter.index);
    } else {
        const pictures::ChannelOfFile named = pictures::parseChannelOfFile(text);
        arguments.layers[option.parameter.index].name = named.path;
        arguments.readings[option.parameter.index].channel = named.channel;
    }
}

void takeRange(const ParameterOption& layer, const std::string& text, ParameterArguments& arguments) {
    LayerReading& reading = arguments.readings[layer.parameter.index];
    reading.rangeOption = "--" + layer.rangeName;
    if (text.empty()) return;
    if (!arguments.layers.contains(layer.parameter.index)) {
        throw UsageError(
            fmt::format("{} is of the picture of --{}, which is missing", reading.rangeOption, layer.name));
    }
    reading.hasUsualRange = text == "auto";
    if (reading.hasUsualRange) return;
    reading.range = pictures::parseDepthRange(text);
    if (!reading.range) {
        throw UsageError(
            fmt::format("{} takes two depths, as 2.5:40 or 2.5:40:reciprocal, or auto, not \"{}\"",
                        reading.rangeOption, text));
    }
}

void addOffsetOption(CLI::App& app, const ParameterOption& option, std::string& text) {
    app.add_option("--" + option.offsetName, text,
                   "the layer's picture for a frame is the one numbered so many higher (default 0)")
        ->group("Parameters of the effect")
        ->type_name("N");
}

void takeOffset(const ParameterOption& option, std::string_view text, ParameterArguments& arguments) {
    std::string_view rest = text;
    const std::optional<std::int32_t> offset = takeFrameNumber(rest);
    if (!offset || !rest.empty()) {
        throw UsageError(fmt::format("--{} takes a whole number from {} to {}, like -1001, not \"{}\"",
                                     option.offsetName, kFirstFrame, kLastFrame, text));
    }
    const auto layer = arguments.layers.find(option.parameter.index);
    if (layer == arguments.layers.end()) {
        throw UsageError(
            fmt::format("--{} needs a layer; name its pictures by --{}", option.offsetName, option.name));
    }
    layer->second.offset = *offset;
}

}  // namespace

void addParameterOptions(CLI::App& app, const std::vector<ParameterOption>& options, ParameterTexts& texts) {
    for (const ParameterOption& option : options) {
        addParameterOption(app, option, texts[option.name]);
        if (isLayer(option.parameter)) addRangeOption(app, option, texts[option.rangeName]);
        if (!option.offsetName.empty()) addOffsetOption(app, option, texts[option.offsetName]);
    }
    app.footer(
        "A parameter takes one value, or keys over time with commas between them: FRAME:VALUE, and :hold,\n"
        ":linear (the default) or :smooth behind it. --focal-point 1:20,48:70:smooth pulls focus from 20 at\n"
        "frame 1 to 70 at frame 48, where it comes to rest.");
}

ParameterArguments takeParameterArguments(const CLI::App& app, const std::vector<ParameterOption>& options,
                                          const ParameterTexts& texts, const std::string& preset) {
    ParameterArguments result;
    for (const ParameterOption& option : options) {
        if (app.count("--" + option.name) > 0) {
            const std::string& text = texts.at(option.name);
            takeParameter(option, text, result);
            const bool isPicture = isLayer(option.parameter);
            result.given += fmt::format(" --{} {}", option.name,
                                        isPicture ? std::filesystem::path(text).filename().string() : text);
        }
        if (isLayer(option.parameter)) takeRange(option, texts.at(option.rangeName), result);
        if (!option.offsetName.empty() && app.count("--" + option.offsetName) > 0)
            takeOffset(option, texts.at(option.offsetName), result);
    }
    if (preset.empty()) return result;
    for (ParameterCurve& curve : readPreset(preset, options)) {
        if (std::ranges::find(result.curves, curve.index, &ParameterCurve::index) == result.curves.end())
            result.curves.push_back(std::move(curve));
    }
    return result;
}

}  // namespace perch
