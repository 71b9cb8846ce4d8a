#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Bundle.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Console.h"
#include "Effect.h"
#include "Error.h"
#include "FailingAs.h"
#include "JobDisplay.h"
#include "ParameterText.h"
#include "RenderHelp.h"
#include "RenderOptions.h"
#include "ReplacedFile.h"
#include "SheetAxis.h"
#include "SheetPicture.h"
#include "StartFolder.h"
#include "Whereabouts.h"

namespace perch {
namespace {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

struct SheetOptions {
    bool wantsHelp = false;
    Arguments axes;
    std::string width = "320";
    std::string columns;
    Arguments others;  // options of render
};

// Those of render that ask for what a sheet is not.
constexpr const char* kRefused[] = {"--dry-run", "--json",        "--shard",   "--on-error", "--existing",
                                    "--report",  "--frames-from", "--verbose", "--log",      "--strict"};

void addSheetOptions(CLI::App& app, SheetOptions& options) {
    app.add_option("--over", options.axes,
                   "a parameter and its values, like focal-point=0:100:25 or blur-type=Coarse,Fine; twice "
                   "for a grid, the second downwards")
        ->type_name("NAME=VALUES")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_option("--width", options.width, "of each picture, in pixels (default 320)")->type_name("N");
    app.add_option("--columns", options.columns,
                   "how many pictures stand side by side (default: as many as rows)")
        ->type_name("N");
}

SheetOptions parseSheetOptions(const Arguments& arguments) {
    CLI::App app;
    SheetOptions options;
    addHelpFlag(app, options.wantsHelp);
    addSheetOptions(app, options);
    options.others = parseArguments(app, arguments);
    return options;
}

int printHelp(const Arguments& arguments) {
    CLI::App app(
        "Renders frames of a sequence, or values of one or two parameters, into one labelled picture, the "
        "output. A "
        "sequence is drawn frame by frame, and one frame of it by --frames N.",
        "perch sheet");
    SheetOptions options;
    addSheetOptions(app, options);
    printRenderHelp(app, parseRenderOptions(arguments).load.plugin, kRefused);
    return kDone;
}

void requireSheet(const RenderOptions& options) {
    if (options.use != PlanUse::Render || options.names.shard)
        throw UsageError("--dry-run and --shard are for perch render; a sheet is one picture");
    if (options.settings.goesOn || options.job.existing != ExistingUse::Overwrite ||
        !options.job.report.empty() || options.job.isFed)
        throw UsageError(
            "--on-error continue, --existing, --report and --frames-from are for perch render; a sheet is "
            "whole or not at all");
    if (options.job.isVerbose || !options.job.log.empty())
        throw UsageError("-v and --log are for perch render; leave them out");
    if (options.load.strict)
        throw UsageError("--strict is for perch render, which tells what it finds; leave it out");
}

std::vector<SheetAxis> axesOf(const Arguments& texts, const std::vector<ParameterOption>& options) {
    if (texts.size() > 2) throw UsageError("a sheet has two directions; give --over at most twice");
    std::vector<SheetAxis> axes;
    for (const std::string& text : texts)
        axes.push_back(parseSheetAxis(options, text));
    if (axes.size() == 2 && axes[0].option.name == axes[1].option.name)
        throw UsageError(fmt::format("--over {} is given twice; leave one", axes[0].option.name));
    return axes;
}

// The values of the first axis one after the other, for each of the second.
std::vector<Variant> variantsOf(const std::vector<SheetAxis>& axes) {
    std::vector<Variant> variants{Variant{}};
    for (auto axis = axes.rbegin(); axis != axes.rend(); ++axis) {
        std::vector<Variant> longer;
        for (const Variant& variant : variants) {
            for (const ParameterSetting& value : axis->values) {
                longer.push_back(variant);
                longer.back().push_back(value);
            }
        }
        variants = std::move(longer);
    }
    return variants;
}

std::size_t columnsOf(const std::string& text, const std::vector<SheetAxis>& axes, std::size_t frames) {
    constexpr int kMostColumns = 1000;
    if (axes.size() == 2 && frames > 1)
        throw UsageError("a grid of two parameters is of one frame; name it by --frames");
    const bool isGrid = axes.size() == 2 || (axes.size() == 1 && frames > 1);
    if (isGrid && !text.empty())
        throw UsageError("--columns is not for a grid, whose columns are the values of the first --over");
    if (isGrid) return axes.front().values.size();
    if (!text.empty()) return static_cast<std::size_t>(parseNumber("--columns", text, 1, kMostColumns));
    const std::size_t count = axes.empty() ? frames : axes.front().values.size();
    return static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
}

// What is written below the pictures: the frame, and what differs from one picture to the next.
class Labels {
public:
    Labels(const FramePlan& plan, const std::vector<ParameterOption>& options,
           const std::vector<ParameterCurve>& curves, const std::vector<Variant>& variants)
        : plan(plan), options(options), curves(curves), variants(variants) {}

    std::vector<std::string> of(std::size_t picture) const {
        const Variant& variant = variants[picture % variants.size()];
        const std::int32_t frame = plan.frames[picture / variants.size()].frame;
        std::vector<std::string> lines;
        if (plan.isSequence) lines.push_back(fmt::format("frame {}", frame));
        for (const ParameterCurve& curve : curves)
            if (curve.moves() &&
                std::ranges::find(variant, curve.index, &ParameterSetting::index) == variant.end())
                lines.push_back(line(settingAt(curve, frame)));
        // The one across first.
        for (auto setting = variant.rbegin(); setting != variant.rend(); ++setting)
            lines.push_back(line(*setting));
        return lines;
    }

private:
    std::string line(const ParameterSetting& setting) const {
        const auto option = std::ranges::find_if(
            options, [&](const ParameterOption& known) { return known.parameter.index == setting.index; });
        return fmt::format("{} {}", option->name, valueText(option->parameter, setting));
    }

    const FramePlan& plan;
    const std::vector<ParameterOption>& options;
    const std::vector<ParameterCurve>& curves;
    const std::vector<Variant>& variants;
};

// Before any work.
void requireWritable(const fs::path& sheet, const FramePlan& plan) {
    std::vector<fs::path> inputs;
    for (const FrameFiles& files : plan.frames) {
        inputs.push_back(files.input);
        for (const auto& [index, layer] : files.layers)
            inputs.push_back(layer);
    }
    for (const auto& [index, layer] : plan.stillLayers)
        inputs.push_back(layer);
    failingAs<UsageError>([&] { pictures::requireNotRead(sheet, inputs); });
    prepareOutputs(std::span(&sheet, 1));
    requireOutput(sheet, pictures::SampleType::Bits8, false);
}

}  // namespace

int runSheetCommand(const Arguments& arguments) {
    const SheetOptions own = parseSheetOptions(arguments);
    if (own.wantsHelp) return printHelp(arguments);
    constexpr int kMostWidth = 8192;
    const int width = parseNumber("--width", own.width, 16, kMostWidth);
    const RenderOptions options = parseRenderOptions(own.others);
    requireSheet(options);
    whereabouts().limit = options.frameLimit.count();
    pictures::keepStartFolder();
    HostOptions host;
    ThreadBudget budget(threadsMeant(options.load.threads));
    host.threads = options.load.threads;
    host.budget = &budget;
    host.application = options.load.application;
    JobDisplay display(ProgressForm::None, options.job.isQuiet);
    host.onMessage = [&display](std::string_view command, std::string_view message) {
        display.tellMessage(command, message);
    };
    Effect effect(chooseBundle(options.load.plugin), host);
    const std::vector<Parameter>& declared = effect.description().parameters;
    const ParameterArguments parameters = parseParameterArguments(own.others, declared);
    const std::vector<ParameterOption> parameterOptions = optionsOf(declared);
    const std::vector<SheetAxis> axes = axesOf(own.axes, parameterOptions);

    PictureNames names = options.names;
    names.output.clear();
    FramePlan plan = planFrames(names, parameters.layers);
    plan.emptyLayers = parameters.emptyLayers;
    if (options.areWarningsErrors) refuseWarnings(plan.notes);
    display.tellNotes(plan.notes);
    const fs::path output = options.names.output;
    pictures::watchTemporaryFiles({.appears = noteTemporary, .isGone = forgetTemporary});
    requireWritable(output, plan);
    RenderSettings settings = options.settings;
    settings.layers = parameters.readings;
    settings.budget = &budget;
    settings.variants = variantsOf(axes);

    const Labels labels(plan, parameterOptions, parameters.curves, settings.variants);
    std::size_t made = 0;
    SheetPicture sheet({.count = plan.frames.size() * settings.variants.size(),
                        .columns = columnsOf(own.columns, axes, plan.frames.size()),
                        .pictureWidth = width,
                        .lines = labels.of(0).size()});
    RenderWatch watch;
    watch.takesPicture = [&](const World& picture) {
        sheet.add(picture, labels.of(made));
        ++made;
    };
    RenderReport report;
    report.notes.areWarningsErrors = options.areWarningsErrors;
    renderFrames(effect, settings, parameters.curves, plan, watch, report);
    effect.close();
    display.tellNotes(report.notes.all());
    writeWorld(output, sheet.world(), false, settings.encoding);
    return kDone;
}

}  // namespace perch
