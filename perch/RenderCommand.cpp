#include <fmt/format.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>

#include "Commands.h"
#include "Description.h"
#include "RenderOptions.h"

namespace perch {
namespace {

std::atomic<bool> wasInterrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

// From here on an interrupt asks the effect to stop.
void catchInterrupts() {
    struct sigaction action {};
    action.sa_handler = [](int) { wasInterrupted = true; };
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
}

// One line on the terminal that is written over until the frame is done; nothing when nobody looks.
class ProgressLine {
public:
    explicit ProgressLine(std::int32_t frame) : frame(frame), isShown(isatty(STDERR_FILENO) == 1) {}
    ~ProgressLine() {
        if (percent >= 0) fmt::print(stderr, "\r\x1B[K");
    }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(double fraction) {
        const int now = static_cast<int>(fraction * 100.0);
        if (!isShown || now == percent) return;
        percent = now;
        fmt::print(stderr, "\rframe {}: {:3}%", frame, percent);
        std::fflush(stderr);
    }

private:
    const std::int32_t frame;
    const bool isShown;
    int percent = -1;
};

bool isOfFrame(std::string_view command) {
    return command == "RENDER" || command.starts_with("FRAME_");
}

HostOptions hostOptions(const RenderOptions& options) {
    HostOptions host;
    host.threads = options.threads;
    host.strict = options.strict;
    host.onMessage = [frame = options.files.frame](std::string_view command, std::string_view message) {
        const std::string place = isOfFrame(command) ? fmt::format("frame {}: ", frame) : "";
        fmt::print(stderr, "perch: {}{}: \"{}\"\n", place, command, message);
    };
    return host;
}

int printHelp(const RenderOptions& options) {
    std::filesystem::path bundle;
    try {
        bundle = chooseBundle(options.plugin);
    } catch (const Error&) {
        fmt::print("{}", renderHelp(nullptr));  // without an effect to list the parameters of
        return kDone;
    }
    const Effect effect(bundle, hostOptions(options));
    fmt::print("{}", renderHelp(&effect.description()));
    return kDone;
}

// Tells what strict mode found and returns whether any of it is a fault.
bool reportFindings(const Effect& effect) {
    bool hasFault = false;
    for (const Finding& finding : effect.findings()) {
        const bool isFault = finding.severity == Finding::Severity::Fault;
        fmt::print(stderr, "perch: strict: {}{}\n", isFault ? "" : "note: ", describe(finding));
        hasFault = hasFault || isFault;
    }
    return hasFault;
}

void renderStill(Effect& effect, const RenderOptions& options) {
    Sequence sequence(effect);
    ProgressLine line(options.files.frame);
    const FrameWatch watch{&wasInterrupted, [&](double fraction) { line.show(fraction); }};
    renderFrame(effect, sequence, options.settings, options.files, watch);
}

}  // namespace

int runRenderCommand(const std::vector<std::string>& arguments) {
    const RenderOptions early = parseBeforeEffect(arguments);
    if (early.wantsHelp) return printHelp(early);
    Effect effect(chooseBundle(early.plugin), hostOptions(early));
    const RenderOptions options = parseRenderOptions(arguments, effect.description());
    catchInterrupts();
    renderStill(effect, options);
    effect.close();
    return reportFindings(effect) ? kFailed : kDone;
}

}  // namespace perch
