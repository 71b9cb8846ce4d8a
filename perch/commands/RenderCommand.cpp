#include <fmt/format.h>
#include <sys/resource.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Bundle.h"
#include "Commands.h"
#include "Console.h"
#include "Effect.h"
#include "Error.h"
#include "ExistingFrames.h"
#include "FrameFeed.h"
#include "FrameList.h"
#include "FrameReader.h"
#include "GivenValues.h"
#include "JobAccount.h"
#include "JobDisplay.h"
#include "NamingFrame.h"
#include "PlanReport.h"
#include "RenderHelp.h"
#include "RenderOptions.h"
#include "ReplacedFile.h"
#include "ReportFile.h"
#include "Seconds.h"
#include "StartFolder.h"
#include "UseNotes.h"
#include "Whereabouts.h"

namespace perch {
namespace {

std::atomic<bool> gWasInterrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

volatile std::sig_atomic_t gEndingSignal = 0;

// The first signal asks the effect to stop, the second ends the program.
void endSoon(int signal) {
    gEndingSignal = signal;
    if (!gWasInterrupted.exchange(true)) return;
    pictures::removeTemporaryFiles();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void catchInterrupts() {
    struct sigaction action {};
    action.sa_handler = endSoon;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM}) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        // Whoever has started the program may have it ignore one.
        if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
    }
}

// Whoever is told of a job.
struct Audience {
    explicit Audience(const JobOptions& options)
        : display(options.progress, options.isQuiet, options.isVerbose) {}

    void tellMessage(std::string_view command, std::string_view message) {
        display.tellMessage(command, message);
        const std::optional<std::int32_t> frame = display.frameOf(command);
        if (report && frame) report->addMessage(*frame, fmt::format("{}: {}", command, message));
    }

    JobDisplay display;
    std::optional<ReportFile> report;
    std::string failure;  // of the job
};

// `audience` and the budget outlive the effect.
HostOptions hostOptions(const LoadOptions& options, ThreadBudget* budget, Audience& audience) {
    HostOptions host;
    host.threads = options.threads;
    host.budget = budget;
    host.strict = options.strict;
    host.application = options.application;
    host.onMessage = [&audience](std::string_view command, std::string_view message) {
        audience.tellMessage(command, message);
    };
    return host;
}

int printHelp(const std::filesystem::path& plugin) {
    CLI::App app("Applies an effect to a picture or a sequence of pictures.", "perch render");
    printRenderHelp(app, plugin);
    return kDone;
}

// Tells what strict mode found and returns whether any of it is a fault.
bool reportFindings(const Effect& effect) {
    bool hasFault = false;
    for (const Finding& finding : effect.findings()) {
        const bool isFault = finding.severity == Finding::Severity::Fault;
        say("strict: " + describe(finding));
        hasFault = hasFault || isFault;
    }
    return hasFault;
}

double secondsIn(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// Reading and writing in processor time, since they wait for processors where there are too few of them.
void reportTiming(const RenderReport& report, std::chrono::steady_clock::duration wall) {
    const auto seconds = [](const RenderReport::Time& time) {
        return secondsOf(std::chrono::nanoseconds(time.load()));
    };
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    sayAsItIs(fmt::format("decode    {:8.2f} s of processor time\n", seconds(report.decodeTime)));
    sayAsItIs(fmt::format("render    {:8.2f} s\n", seconds(report.renderTime)));
    sayAsItIs(fmt::format("encode    {:8.2f} s of processor time\n", seconds(report.encodeTime)));
    sayAsItIs(
        fmt::format("processor {:8.2f} s in all\n", secondsIn(usage.ru_utime) + secondsIn(usage.ru_stime)));
    sayAsItIs(fmt::format("wall      {:8.2f} s\n", secondsOf(wall)));
}

// What did not fail and should be known.
void reportNotes(const RenderReport& report, std::optional<pictures::Transfer> transfer,
                 JobDisplay& display) {
    display.tellNotes(report.notes.all());
    const bool isLog = transfer == pictures::Transfer::Log;
    const auto tellClipped = [&](std::int64_t pixels, std::string_view where, std::string_view mend) {
        if (pixels == 0) return;
        const double share = 100.0 * static_cast<double>(pixels) / static_cast<double>(report.pixelsRead);
        const std::size_t frames = report.framesWritten;
        display.tellNote(fmt::format("note: {} % of the pixels of {} frame{} are {} and were clipped{}",
                                     share < 0.1 ? "less than 0.1" : fmt::format("{:.1f}", share), frames,
                                     frames == 1 ? "" : "s", where, mend));
    };
    tellClipped(report.pixelsAbove, isLog ? "above 64" : "above 1",
                isLog ? "" : "; --encode log keeps light up to 64 in OpenEXR files");
    tellClipped(report.pixelsBelow, "below 0", "");
}

int reportInterrupt(const RenderReport& report, std::size_t count, bool isFed) {
    const std::size_t written = report.framesWritten;
    std::string outcome = "nothing was written";
    if (written > 0)
        outcome = isFed ? fmt::format("{} frames were written", written)
                        : fmt::format("{} of {} frames were written", written, count);
    say(fmt::format("interrupted; {}", outcome));
    return gEndingSignal == SIGTERM ? kTerminated : kInterrupted;
}

RenderWatch watchOf(Audience& audience, const FramePlan& plan, bool goesOn) {
    RenderWatch watch;
    JobDisplay& display = audience.display;
    watch.cancelled = &gWasInterrupted;
    watch.frameBegins = [&display](std::size_t index) { display.frameBegins(index); };
    watch.frameProgresses = [&display](double fraction) { display.frameProgresses(fraction); };
    watch.frameEnds = [&audience, &display, &plan, goesOn](const FrameEnd& end) {
        if (audience.report) audience.report->frameEnds(plan.frames[end.index].frame, end);
        display.frameEnds(end);
        if (end.state != FrameEnd::State::Failed || !goesOn) return;
        display.clearLine();
        say(end.message);
    };
    return watch;
}

// What a job does, and with what.
struct Job {
    Effect& effect;
    const RenderOptions& options;
    const RenderSettings& settings;
    const std::vector<ParameterCurve>& parameters;
    const FramePlan& plan;
    std::chrono::steady_clock::time_point start;
};

void renderPlan(const Job& job, Audience& audience, RenderReport& report) {
    RenderWatch watch = watchOf(audience, job.plan, job.settings.goesOn);
    std::optional<FrameFeed> feed;
    if (job.options.job.isFed) {
        feed.emplace(job.plan, InputLines(inputDescriptor(), gWasInterrupted), audience.display);
        watch.nextFrames = [&audience, &feed, &job] {
            auto asked = feed->next();
            if (!asked) return asked;
            audience.display.framesAreAsked(*asked);
            if (!audience.report) return asked;
            for (const std::size_t place : *asked)
                audience.report->frameIsAsked(job.plan.frames[place].frame);
            return asked;
        };
    }
    renderFrames(job.effect, job.settings, job.parameters, job.plan, watch, report);
    job.effect.close();
}

// Renders, tells how it went, and returns what the program ends with.
int render(const Job& job, Audience& audience, RenderReport& report) {
    JobDisplay& display = audience.display;
    const bool isFed = job.options.job.isFed;
    display.begin(job.plan, job.options.names.output, isFed);
    try {
        renderPlan(job, audience, report);
    } catch (const Cancelled&) {
        display.clearLine();
        const int status = reportInterrupt(report, job.plan.frames.size(), isFed);
        display.finish("interrupted");
        return status;
    } catch (const Error& error) {
        display.clearLine();
        reportFindings(job.effect);
        try {
            if (error.status() == kEffectBroke) display.effectBreaks(error.what());
            display.finishBeforeFailure();
        } catch (const OutputError&) {
            // Nobody reads the results, which may be why the job has failed.
        }
        throw;
    }
    display.clearLine();
    reportNotes(report, job.settings.transfer, display);
    if (job.options.wantsTiming) reportTiming(report, std::chrono::steady_clock::now() - job.start);
    const bool hasFault = reportFindings(job.effect);
    const bool isWhole = display.totals().isWhole();
    display.finish(hasFault ? "the effect broke rules" : isWhole ? "" : "some frames failed");
    return hasFault ? kEffectFailed : isWhole ? kDone : kSomeFailed;
}

// The same, with the end of the report.
int renderReported(const Job& job, Audience& audience, RenderReport& report) {
    const auto finish = [&](const std::string& state) {
        if (audience.report) audience.report->finish(state, audience.failure, report.notes.sentences());
    };
    int status = kFailed;
    try {
        status = render(job, audience, report);
    } catch (const std::exception& error) {
        audience.failure = sentenceOf(error);
        finish("failed");
        throw;
    }
    finish(status == kDone ? "done" : status > kSignalled ? "interrupted" : "failed");
    return status;
}

void setFingerprints(const EffectDescription& effect, const std::string& effectBuild, const LoadOptions& load,
                     const RenderSettings& settings, const std::vector<ParameterCurve>& parameters,
                     FramePlan& plan) {
    const FrameSources sources{.plan = plan,
                               .settings = settings,
                               .parameters = parameters,
                               .mayChangeValues = mayChangeValues(effect),
                               .maker = fmt::format("perch {}, {} {}, {}", PERCH_VERSION, effect.name,
                                                    effectBuild, load.application)};
    for (FrameFiles& files : plan.frames)
        files.fingerprint = frameFingerprint(sources, files);
}

void takeExisting(ExistingUse use, const std::optional<JobRecord>& earlier, const RenderSettings& settings,
                  FramePlan& plan) {
    if (use == ExistingUse::Error) refuseExistingFrames(plan);
    if (use != ExistingUse::Skip) return;
    takeCurrentFrames(plan, earlier ? tracesOf(*earlier) : FrameTraces{}, settings.reading,
                      settings.framesAhead);
}

std::string currentNote(const FramePlan& plan) {
    std::vector<std::int32_t> frames;
    for (const FrameFiles& files : plan.current)
        frames.push_back(files.frame);
    if (!plan.isSequence)
        return fmt::format("\"{}\" is up to date and stays as it is", plan.current.front().output.string());
    return fmt::format("{}, {} up to date and stay{} as {}", countedFrames(frames),
                       frames.size() == 1 ? "is" : "are", frames.size() == 1 ? "s" : "",
                       frames.size() == 1 ? "it is" : "they are");
}

// Finds what a render would before its first frame, and changes nothing.
std::optional<FramePictures> readFirstFrame(const PlannedJob& job, const Effect& effect,
                                            RenderReport& report) {
    if (job.plan.frames.empty()) return std::nullopt;
    FrameReader reader(effect, job.settings, job.parameters.curves, job.plan, true, report);
    reader.prepare();
    requirePlaces(outputsOf(job.plan));
    FramePictures pictures = reader.read(0);
    if (job.settings.memory) namingFrame(job.plan, 0, [&] { requireMemory(*job.settings.memory, pictures); });
    return pictures;
}

int printPlan(const PlannedJob& job, const Effect& effect, PlanUse use, RenderReport& report,
              JobDisplay& display) {
    const std::optional<FramePictures> first = readFirstFrame(job, effect, report);
    const std::vector<Note> notes = report.notes.all();
    display.tellNotes(notes);
    printResult(use == PlanUse::PrintJson ? planAsJson(job, first, notes) : planAsText(job, first));
    return kDone;
}

}  // namespace

int runRenderCommand(const std::vector<std::string>& arguments) {
    const auto start = std::chrono::steady_clock::now();
    const RenderOptions options = parseRenderOptions(arguments);
    whereabouts().limit = options.frameLimit.count();
    if (options.wantsHelp) return printHelp(options.load.plugin);
    if (!options.job.log.empty()) {
        keepLog(options.job.log);
        whereabouts().log.set(std::filesystem::absolute(options.job.log).string());
    }
    pictures::keepStartFolder();
    Audience audience(options.job);
    JobDisplay& display = audience.display;
    const std::filesystem::path bundle = chooseBundle(options.load.plugin);
    ThreadBudget budget(threadsMeant(options.load.threads));
    Effect effect(bundle, hostOptions(options.load, &budget, audience));
    const ParameterArguments parameters = parseParameterArguments(arguments, effect.description().parameters);
    FramePlan plan = planFrames(options.names, parameters.layers);
    if (options.job.isFed && !plan.isSequence)
        throw UsageError("--frames-from is for sequences; give --input a place for the frame number");
    plan.emptyLayers = parameters.emptyLayers;
    if (options.areWarningsErrors) refuseWarnings(plan.notes);
    display.tellNotes(plan.notes);
    RenderSettings settings = options.settings;
    settings.layers = parameters.readings;
    settings.budget = &budget;
    if (options.hasProvenance) {
        settings.encoding.software =
            fmt::format("perch {}, {}:{}{}", PERCH_VERSION, effect.description().name, parameters.given,
                        pixelOptions(arguments));
    }
    const std::string effectBuild = fileFingerprint(openBundle(bundle).library);
    if (options.job.isVerbose) {
        display.tellNote(fmt::format(
            "perch {} renders with the effect \"{}\" from \"{}\", build {}; {} frames are read ahead at most",
            PERCH_VERSION, effect.description().name, bundle.string(), effectBuild, settings.framesAhead));
    }
    setFingerprints(effect.description(), effectBuild, options.load, settings, parameters.curves, plan);
    const std::optional<JobRecord> earlier =
        options.job.report.empty() ? std::nullopt : recordToReplace(options.job.report);
    takeExisting(options.job.existing, earlier, settings, plan);
    if (!plan.current.empty()) display.tellNote(currentNote(plan));
    const std::vector<ParameterOption> parameterOptions = optionsOf(effect.description().parameters);
    const PlannedJob job{
        .plan = plan, .settings = settings, .options = parameterOptions, .parameters = parameters};
    RenderReport report;
    report.notes.areWarningsErrors = options.areWarningsErrors;
    noteUse(options, parameters, plan, report.notes);
    if (options.use != PlanUse::Render) return printPlan(job, effect, options.use, report, display);
    catchInterrupts();
    pictures::watchTemporaryFiles({.appears = noteTemporary, .isGone = forgetTemporary});
    if (!options.job.report.empty()) {
        JobRecord record = accountOf(job, earlier);
        record.version = PERCH_VERSION;
        record.arguments = arguments;
        record.shard = options.names.shard;
        record.effect = effect.description().name;
        record.effectBuild = effectBuild;
        audience.report.emplace(options.job.report, std::move(record), options.job.isFed);
        whereabouts().report.set(options.job.report.string());
    }
    if (plan.isSequence && !plan.frames.empty())
        display.tellNote(planLine(plan, options.names, options.job.isFed));
    return renderReported({.effect = effect,
                           .options = options,
                           .settings = settings,
                           .parameters = parameters.curves,
                           .plan = plan,
                           .start = start},
                          audience, report);
}

}  // namespace perch
