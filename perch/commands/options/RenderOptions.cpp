#include "RenderOptions.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <limits>
#include <thread>

#include "CommandLine.h"
#include "EncodingArguments.h"
#include "Error.h"
#include "JobOptions.h"
#include "NearestName.h"
#include "PF_Values.h"
#include "SequenceOptions.h"
#include "Words.h"

namespace perch {
namespace {

// The command's own options as they were given.
struct Texts {
    std::string plugin;
    bool wantsHelp = false;
    bool wantsTiming = false;
    bool strict = false;
    bool resizes = false;
    std::string application = "prch";
    std::string input;
    std::string output;
    std::string quality = "best";
    std::string smart = "auto";
    std::string downsample = "1/1";
    std::string depth = "auto";
    std::string outputDepth;
    std::string encode;
    std::string threads = "0";
    EncodingTexts encoding;
    std::string mostPixels;
    std::string mostMemory;
    bool hasNoProvenance = false;
    bool areWarningsErrors = false;
    bool isDithered = false;
    bool acceptsDamage = false;
    SequenceTexts sequence;
    JobTexts job;
    std::string frameLimit = "0";
    std::string preset;
    bool isDryRun = false;
    bool wantsJson = false;
};

// "1/2". The numbers are read as unsigned ones, which takes digits alone: no sign and no space.
PF_RationalScale parseDownsample(const std::string& text) {
    constexpr A_u_long kMostDownsample = 1000;
    const char* const end = text.data() + text.size();
    A_u_long num = 0;
    A_u_long den = 0;
    const auto [slash, numError] = std::from_chars(text.data(), end, num);
    const bool isFraction = numError == std::errc() && slash != end && *slash == '/';
    const auto [rest, denError] = std::from_chars(isFraction ? slash + 1 : end, end, den);
    if (denError != std::errc() || rest != end || num < 1 || num > den || den > kMostDownsample) {
        throw UsageError(fmt::format("--downsample takes a fraction from 1/{} to 1/1, like 1/2, not \"{}\"",
                                     kMostDownsample, text));
    }
    return {static_cast<A_long>(num), den};
}

constexpr std::array<Word<PF_Quality>, 2> kQuality{{{"draft", PF_Quality_LO}, {"best", PF_Quality_HI}}};

constexpr std::array<Word<SmartUse>, 3> kSmart{
    {{"on", SmartUse::On}, {"off", SmartUse::Off}, {"auto", SmartUse::Auto}}};

constexpr std::array<Word<std::optional<Depth>>, 3> kDepth{
    {{"8", Depth::Bits8}, {"16", Depth::Bits16}, {"auto", std::nullopt}}};

constexpr std::array<Word<pictures::SampleType>, 4> kOutputDepth{{{"8", pictures::SampleType::Bits8},
                                                                  {"16", pictures::SampleType::Bits16},
                                                                  {"half", pictures::SampleType::Half},
                                                                  {"float", pictures::SampleType::Float}}};

constexpr std::array<Word<pictures::Transfer>, 3> kEncode{{{"linear", pictures::Transfer::Linear},
                                                           {"srgb", pictures::Transfer::Srgb},
                                                           {"log", pictures::Transfer::Log}}};

A_AppID parseApplication(const std::string& text) {
    const bool isPrintable = std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
    if (text.size() != 4 || !isPrintable)
        throw UsageError(fmt::format("--application takes four characters, like prch, not \"{}\"", text));
    return static_cast<A_AppID>(PF_FOUR_CC(text[0], text[1], text[2], text[3]));
}

int parseThreads(const std::string& text) {
    constexpr int kMostThreads = 1024;
    return parseNumber("--threads", text, 0, kMostThreads);
}

// A picture may take half, as the output has as many samples; how many frames there is room for, the first
// one shows.
void takeLimits(const Texts& texts, RenderOptions& options) {
    constexpr int kMost = std::numeric_limits<int>::max();
    RenderSettings& settings = options.settings;
    if (!texts.mostPixels.empty())
        settings.reading.pixels = parseNumber("--max-pixels", texts.mostPixels, 1, kMost);
    if (texts.mostMemory.empty()) return;
    options.memory = std::int64_t{parseNumber("--max-memory", texts.mostMemory, 1, kMost)} << 20;
    settings.memory = options.memory;
    settings.reading.bytes = *options.memory / 2;
}

// One frame for each thread of the effect, so that reading and writing keep up with it; no more than this,
// for the sake of memory.
std::size_t framesAheadFor(int threads) {
    constexpr int kMostFramesAhead = 8;
    return static_cast<std::size_t>(std::min(threadsMeant(threads), kMostFramesAhead));
}

void addOwnOptions(CLI::App& app, Texts& texts) {
    addHelpFlag(app, texts.wantsHelp);
    app.add_option("-i,--input", texts.input,
                   "the picture to be changed: PNG, TIFF, OpenEXR, DPX, TGA, JPEG or WebP; a sequence by a "
                   "name like in.####.png or in.%04d.png; a layer or a part of an OpenEXR file by its name "
                   "behind, like in.exr:beauty")
        ->type_name("PICTURE");
    app.add_option(
           "-o,--output", texts.output,
           "the picture to be written; the name gives the format, and has a place for the frame number "
           "where the input's has one")
        ->type_name("PICTURE");
    addSequenceOptions(app, texts.sequence);
    addJobOptions(app, texts.job);
    app.add_option("--preset", texts.preset,
                   "values and keys from a file, which perch preset writes; options replace them")
        ->type_name("FILE");
    app.add_option("--plugin", texts.plugin, "the effect; without it, the only one beside the program")
        ->type_name("BUNDLE");
    app.add_option("--threads", texts.threads,
                   "at work at once, reading, rendering and writing; 0 for one per processor (default 0)")
        ->type_name("N");
    addEncodingOptions(app, texts.encoding);
    app.add_option("--max-pixels", texts.mostPixels,
                   "that a picture read may have, against files that claim too much (default 268435456)")
        ->type_name("N");
    app.add_option("--max-memory", texts.mostMemory,
                   "for the pictures of all frames that are in memory at once, in MB; fewer are read ahead "
                   "where it is "
                   "short (default: any)")
        ->type_name("MB");
    app.add_flag("--no-provenance", texts.hasNoProvenance,
                 "do not tell in the files written which program and parameters made them");
    app.add_flag("--dry-run", texts.isDryRun,
                 "print which frames would be rendered, from and to which files; nothing is written");
    app.add_flag("--json", texts.wantsJson, "print what --dry-run does as JSON");
    app.add_flag("--dither", texts.isDithered,
                 "write 8 bits of more in a fixed pattern of dots, against steps in soft gradients");
    app.add_flag("--accept-damaged", texts.acceptsDamage,
                 "take what can be read of damaged pictures, and say so");
    app.add_flag("--warnings-as-errors", texts.areWarningsErrors,
                 "fail where something is likely a mistake instead of only saying so");
    app.add_flag("--timing", texts.wantsTiming, "tell how long reading, rendering and writing took");
    app.add_flag("--strict", texts.strict, "watch for breaches of the interface's rules; any is a failure");
    app.add_option("--quality", texts.quality, "of the effect's work (default best)")
        ->type_name(listOf(kQuality));
    app.add_option("--smart", texts.smart,
                   "smart rendering; auto takes it where the effect does not answer RENDER (default auto)")
        ->type_name(listOf(kSmart));
    app.add_option("--downsample", texts.downsample,
                   "tell the effect that the pictures are that much smaller than the layer, so that it "
                   "scales what it measures in pixels: for a quick look (default 1/1)")
        ->type_name("N/D");
    app.add_flag("--resize", texts.resizes,
                 "make the pictures that much smaller first; without it they are taken to be so already");
    app.add_option("--application", texts.application,
                   "four characters that the host calls itself by, for effects that ask (default prch)")
        ->type_name("CODE");
    app.add_option("--depth", texts.depth,
                   "bits per channel of the effect's work; auto: the deepest picture's (default auto)")
        ->type_name(listOf(kDepth));
    app.add_option("--output-depth", texts.outputDepth, "of the files written (default: that of the input)")
        ->type_name(listOf(kOutputDepth));
    app.add_option("--encode", texts.encode,
                   "how light becomes the effect's codes and back: linear, as stored; srgb; log, up to 64 "
                   "times white (default: srgb for files of floats, else linear)")
        ->type_name(listOf(kEncode));
    app.add_option("--timeout-frame", texts.frameLimit,
                   "that the effect may take for one command; 0 for any time (default 0)")
        ->type_name("SECONDS");
    addInProcessFlag(app);
}

// `others` are the arguments that are not of the command's own options; one of them may be the option
// misspelt.
void requireOption(const std::string& text, const std::string& option,
                   const std::vector<std::string>& others) {
    if (!text.empty()) return;
    for (const std::string& other : others) {
        if (other.starts_with("--") && nearestName(other.substr(2), std::span(&option, 1)))
            refuseExtras({other}, {option});
    }
    throw UsageError(fmt::format("--{} is missing; see perch render --help", option));
}

PlanUse planUse(const Texts& texts) {
    if (texts.wantsJson && !texts.isDryRun)
        throw UsageError("--json is for what --dry-run prints; give both or neither");
    if (!texts.isDryRun) return PlanUse::Render;
    if (!texts.job.framesFrom.empty())
        throw UsageError("--dry-run prints the plan and --frames-from renders; leave one");
    return texts.wantsJson ? PlanUse::PrintJson : PlanUse::PrintText;
}

}  // namespace

const std::vector<std::string>& renderOptionNames() {
    static const std::vector<std::string> names = [] {
        CLI::App app;
        Texts texts;
        addOwnOptions(app, texts);
        return longOptionNames(app);
    }();
    return names;
}

std::vector<ParameterOption> optionsOf(const std::vector<Parameter>& parameters) {
    return parameterOptions(parameters, renderOptionNames());
}

RenderOptions parseRenderOptions(const std::vector<std::string>& arguments) {
    CLI::App app;
    Texts texts;
    addOwnOptions(app, texts);
    RenderOptions options;
    const std::vector<std::string> others = parseArguments(app, arguments);
    options.wantsHelp = texts.wantsHelp;
    options.load.plugin = texts.plugin;
    options.frameLimit = parseSeconds("--timeout-frame", texts.frameLimit);
    if (options.wantsHelp) return options;

    requireOption(texts.input, "input", others);
    requireOption(texts.output, "output", others);
    options.wantsTiming = texts.wantsTiming;
    options.use = planUse(texts);
    options.load.threads = parseThreads(texts.threads);
    options.load.strict = texts.strict;
    options.load.application = parseApplication(texts.application);
    options.names.input = texts.input;
    options.names.output = texts.output;
    takeSequenceOptions(app, texts.sequence, options.names);
    options.settings.selectedInput = takeSelected(options.names);
    options.job = parseJobOptions(texts.job);
    takeFailureOptions(app, texts.job, options.settings);
    if (options.names.shard && !options.job.report.empty())
        options.job.report = reportOfShard(options.job.report, *options.names.shard);
    for (const AccountName& account :
         {AccountName{"--report", options.job.report}, {"--log", options.job.log}})
        if (!account.path.empty()) options.names.accounts.push_back(account);
    options.settings.quality = meaningOf("--quality", texts.quality, kQuality);
    options.settings.smart = meaningOf("--smart", texts.smart, kSmart);
    options.settings.downsample = parseDownsample(texts.downsample);
    options.settings.resizes = texts.resizes;
    options.settings.depth = meaningOf("--depth", texts.depth, kDepth);
    if (!texts.outputDepth.empty())
        options.settings.outputType = meaningOf("--output-depth", texts.outputDepth, kOutputDepth);
    if (!texts.encode.empty()) options.settings.transfer = meaningOf("--encode", texts.encode, kEncode);
    options.settings.encoding.hasChosenDepth = options.settings.depth || options.settings.outputType;
    takeEncodingOptions(texts.encoding, options.settings.encoding);
    options.idleOptions = idleEncodingOptions(texts.encoding, texts.output);
    options.hasProvenance = !texts.hasNoProvenance;
    options.areWarningsErrors = texts.areWarningsErrors;
    options.settings.isDithered = texts.isDithered;
    options.settings.reading.acceptsDamage = texts.acceptsDamage;
    options.settings.framesAhead = framesAheadFor(options.load.threads);
    takeLimits(texts, options);
    for (const std::string& name : longOptionNames(app))
        if (app.count("--" + name) > 0) options.given.insert(name);
    return options;
}

ParameterArguments parseParameterArguments(const std::vector<std::string>& arguments,
                                           const std::vector<Parameter>& parameters) {
    CLI::App app;
    const std::vector<ParameterOption> options = optionsOf(parameters);
    Texts ownTexts;  // understood before
    ParameterTexts texts;
    addOwnOptions(app, ownTexts);
    addParameterOptions(app, options, texts);
    parseAllArguments(app, arguments);

    ParameterArguments result = takeParameterArguments(app, options, texts, ownTexts.preset);
    result.repeated = repeatedOptions(app);
    return result;
}

CommandParts commandParts(const std::vector<std::string>& arguments,
                          const std::vector<Parameter>& parameters) {
    CLI::App app;
    Texts ownTexts;
    ParameterTexts texts;
    addOwnOptions(app, ownTexts);
    const std::vector<ParameterOption> options = optionsOf(parameters);
    addParameterOptions(app, options, texts);
    parseArguments(app, arguments);
    CommandParts parts;
    for (const ParameterOption& option : options) {
        if (!isLayer(option.parameter) || app.count("--" + option.name) == 0) continue;
        parts.layers.push_back({.index = option.parameter.index,
                                .picture = texts[option.name],
                                .range = texts[option.rangeName],
                                .offset = texts[option.offsetName]});
    }
    for (const CLI::Option* const option : app.get_options()) {
        const std::string name = option->get_lnames().front();
        if (option->count() == 0 || name == "preset" || texts.contains(name)) continue;
        const bool hasLetter = !option->get_snames().empty();
        const std::string& text = option->results().back();
        const std::string word = hasLetter ? "-" + option->get_snames().front() : "--" + name;
        if (option->get_expected_max() == 0) {
            parts.words.push_back(word);
        } else if (text.starts_with('-')) {
            parts.words.push_back(fmt::format("--{}={}", name, text));
        } else {
            parts.words.insert(parts.words.end(), {word, text});
        }
    }
    return parts;
}

std::string pixelOptions(const std::vector<std::string>& arguments) {
    CLI::App app;
    Texts texts;
    addOwnOptions(app, texts);
    parseArguments(app, arguments);
    std::string given;
    for (const char* const name : {"--depth", "--output-depth", "--encode", "--dither", "--downsample",
                                   "--resize", "--quality", "--smart"}) {
        const CLI::Option* const option = app.get_option(name);
        if (option->count() == 0) continue;
        const bool isFlag = option->get_expected_max() == 0;
        given += isFlag ? fmt::format(" {}", name) : fmt::format(" {} {}", name, option->results().back());
    }
    return given;
}

std::string helpWithRenderOptions(CLI::App& app, const EffectDescription* effect,
                                  std::span<const char* const> refused) {
    Texts texts;
    ParameterTexts parameterTexts;
    addOwnOptions(app, texts);
    for (const char* const name : refused)
        app.remove_option(app.get_option(name));
    if (effect == nullptr) {
        app.footer("The effect's parameters are options as well; name it with --plugin to list them.");
    } else {
        addParameterOptions(app, optionsOf(effect->parameters), parameterTexts);
    }
    return app.help();
}

}  // namespace perch
