#include <fmt/format.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "Bundle.h"
#include "Commands.h"
#include "Console.h"
#include "Effect.h"
#include "Error.h"
#include "JobDisplay.h"
#include "PlanReport.h"
#include "RenderOptions.h"
#include "ReplacedFile.h"
#include "StartFolder.h"
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

// `display` outlives the effect.
HostOptions hostOptions(const LoadOptions& options, JobDisplay& display) {
    HostOptions host;
    host.threads = options.threads;
    host.strict = options.strict;
    host.application = options.application;
    host.onMessage = [&display](std::string_view command, std::string_view message) {
        display.tellMessage(command, message);
    };
    return host;
}

int printHelp(const LoadOptions& options) {
    std::filesystem::path bundle;
    try {
        bundle = chooseBundle(options.plugin);
    } catch (const Error&) {
        printResult(renderHelp(nullptr));  // without an effect to list the parameters of
        return kDone;
    }
    JobDisplay display(ProgressForm::None, false);
    Effect effect(bundle, hostOptions(options, display));
    effect.close();
    printResult(renderHelp(&effect.description()));
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

double secondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// Reading and writing in processor time, since they wait for processors where there are too few of them.
void reportTiming(const RenderReport& report, std::chrono::steady_clock::duration wall) {
    using Seconds = std::chrono::duration<double>;
    const auto seconds = [](const RenderReport::Time& time) {
        return Seconds(std::chrono::nanoseconds(time.load())).count();
    };
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    sayAsItIs(fmt::format("decode    {:8.2f} s of processor time\n", seconds(report.decodeTime)));
    sayAsItIs(fmt::format("render    {:8.2f} s\n", seconds(report.renderTime)));
    sayAsItIs(fmt::format("encode    {:8.2f} s of processor time\n", seconds(report.encodeTime)));
    sayAsItIs(
        fmt::format("processor {:8.2f} s in all\n", secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime)));
    sayAsItIs(fmt::format("wall      {:8.2f} s\n", Seconds(wall).count()));
}

// What did not fail and should be known.
void reportNotes(const RenderReport& report, std::optional<pictures::Transfer> transfer,
                 JobDisplay& display) {
    for (const std::string& note : report.notes.all())
        display.tellNote("note: " + note);
    if (report.pixelsClipped == 0) return;
    const bool isLog = transfer == pictures::Transfer::Log;
    display.tellNote(fmt::format(
        "note: {:.2g} % of the pixels of {} frames are below 0 or above {} and were clipped{}",
        100.0 * static_cast<double>(report.pixelsClipped) / static_cast<double>(report.pixelsRead),
        report.framesWritten.load(), isLog ? "64" : "1", isLog ? "" : "; --encode log keeps up to 64"));
}

int reportInterrupt(const RenderReport& report, std::size_t count) {
    const std::size_t written = report.framesWritten;
    const std::string outcome =
        written == 0 ? "nothing was written" : fmt::format("{} of {} frames were written", written, count);
    say(fmt::format("interrupted; {}", outcome));
    return gEndingSignal == SIGTERM ? kTerminated : kInterrupted;
}

RenderWatch watchOf(JobDisplay& display, bool goesOn) {
    RenderWatch watch;
    watch.cancelled = &gWasInterrupted;
    watch.frameBegins = [&display](std::size_t index) { display.frameBegins(index); };
    watch.frameProgresses = [&display](double fraction) { display.frameProgresses(fraction); };
    watch.frameEnds = [&display, goesOn](const FrameEnd& end) {
        display.frameEnds(end);
        if (end.state != FrameEnd::State::Failed || !goesOn) return;
        display.clearLine();
        say(end.message);
    };
    return watch;
}

// Renders, and returns whether the job came to its end.
bool render(Effect& effect, const RenderOptions& options, const RenderSettings& settings,
            const std::vector<ParameterCurve>& parameters, const FramePlan& plan, JobDisplay& display,
            RenderReport& report) {
    display.begin(plan);
    try {
        renderFrames(effect, settings, parameters, plan, watchOf(display, settings.goesOn), report);
        effect.close();
    } catch (const Cancelled&) {
        display.clearLine();
        return false;
    } catch (const Error&) {
        display.clearLine();
        reportFindings(effect);
        if (!display.totals().failed.empty()) display.finish(options.names.output);
        throw;
    }
    display.clearLine();
    return true;
}

int printPlan(const RenderOptions& options, const PlannedJob& job) {
    printResult(options.use == PlanUse::PrintJson ? planAsJson(job) : planAsText(job));
    return kDone;
}

}  // namespace

int runRenderCommand(const std::vector<std::string>& arguments) {
    const auto start = std::chrono::steady_clock::now();
    const RenderOptions options = parseRenderOptions(arguments);
    whereabouts().limit = options.frameLimit.count();
    if (options.wantsHelp) return printHelp(options.load);
    pictures::keepStartFolder();
    JobDisplay display(options.job.progress, options.job.isQuiet);
    Effect effect(chooseBundle(options.load.plugin), hostOptions(options.load, display));
    const ParameterArguments parameters = parseParameterArguments(arguments, effect.description().parameters);
    FramePlan plan = planFrames(options.names, parameters.layers);
    plan.emptyLayers = parameters.emptyLayers;
    for (const std::string& note : plan.notes)
        display.tellNote(note);
    if (options.use != PlanUse::Render)
        return printPlan(options, {.plan = plan,
                                   .settings = options.settings,
                                   .options = optionsOf(effect.description().parameters),
                                   .parameters = parameters});
    RenderSettings settings = options.settings;
    settings.layers = parameters.readings;
    if (options.hasProvenance) {
        settings.encoding.software =
            fmt::format("perch {}, {}:{}", PERCH_VERSION, effect.description().name, parameters.given);
    }
    catchInterrupts();
    pictures::watchTemporaryFiles({.appears = noteTemporary, .isGone = forgetTemporary});
    RenderReport report;
    if (!render(effect, options, settings, parameters.curves, plan, display, report))
        return reportInterrupt(report, plan.frames.size());
    reportNotes(report, settings.transfer, display);
    if (options.wantsTiming) reportTiming(report, std::chrono::steady_clock::now() - start);
    const bool hasFault = reportFindings(effect);
    display.finish(options.names.output);
    if (hasFault) return kFailed;
    return display.totals().failed.empty() ? kDone : kSomeFailed;
}

}  // namespace perch
