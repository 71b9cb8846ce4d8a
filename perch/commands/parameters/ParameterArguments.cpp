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
    if (!option.hint.empty()) help += ". " + option.hint;
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
        const pictures::SelectedPicture named = pictures::parseSelectedPicture(text);
        arguments.layers[option.parameter.index].name = named.path;
        arguments.readings[option.parameter.index].selected = named.selected;
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

// The channel that a popup behind the layer names, as "Alpha"; of one with keys the first.
LayerChannel usedChannel(const Parameter& popup, const std::vector<ParameterCurve>& curves) {
    const auto curve = std::ranges::find(curves, popup.index, &ParameterCurve::index);
    const double number =
        curve != curves.end() ? curve->keys.front().numbers[0] : popup.defaultNumber.value_or(0);
    const auto item = static_cast<std::size_t>(number);
    if (item < 1 || item > popup.items.size()) return LayerChannel::Any;
    const std::string& name = popup.items[item - 1];
    if (name == "Alpha") return LayerChannel::Alpha;
    if (name == "Red") return LayerChannel::Red;
    if (name == "Green") return LayerChannel::Green;
    return name == "Blue" ? LayerChannel::Blue : LayerChannel::Any;
}

// Of layers with a picture, what to watch for in it.
void findUsedChannels(const std::vector<ParameterOption>& options, ParameterArguments& arguments) {
    for (std::size_t i = 0; i < options.size(); ++i) {
        const ParameterOption& option = options[i];
        if (!isLayer(option.parameter)) continue;
        LayerReading& reading = arguments.readings[option.parameter.index];
        reading.option = "--" + option.name;
        if (i + 1 == options.size() || options[i + 1].parameter.items.empty()) continue;
        reading.usedChannel = usedChannel(options[i + 1].parameter, arguments.curves);
        reading.channelOption = "--" + options[i + 1].name;
    }
}

// An effect that gets values and no picture at all has nothing to take them for.
std::string missingLayer(const std::vector<ParameterOption>& options, const ParameterArguments& arguments) {
    if (arguments.curves.empty() || !arguments.layers.empty() || !arguments.emptyLayers.empty()) return "";
    const auto needsPicture = [](const ParameterOption& option) {
        return isLayer(option.parameter) && !isOfThisLayer(option.parameter);
    };
    const auto found = std::ranges::find_if(options, needsPicture);
    return found != options.end() ? "--" + found->name : "";
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
    if (!preset.empty()) {
        for (ParameterCurve& curve : readPreset(preset, options)) {
            if (std::ranges::find(result.curves, curve.index, &ParameterCurve::index) == result.curves.end())
                result.curves.push_back(std::move(curve));
        }
    }
    findUsedChannels(options, result);
    result.missingLayer = missingLayer(options, result);
    return result;
}

std::string repetitionText(const std::string& option) {
    return option + " is given more than once; the last one counts";
}

void warnOfMistakes(const ParameterArguments& arguments, Notes& notes) {
    for (const std::string& option : arguments.repeated)
        notes.warnOfUse(option, repetitionText(option));
    if (!arguments.missingLayer.empty()) {
        notes.warnOfUse("layer",
                        fmt::format("the effect gets values and no picture; give one by {0}, or {0} none",
                                    arguments.missingLayer));
    }
}

}  // namespace perch
