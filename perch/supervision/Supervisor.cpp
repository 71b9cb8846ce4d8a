#include "Supervisor.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <sstream>
#include <system_error>

#include "EffectEnd.h"
#include "Error.h"
#include "ExitStatus.h"
#include "Interrupts.h"
#include "Orphans.h"
#include "SharedMemory.h"
#include "Whereabouts.h"
#include "Worker.h"
#include "WorkerEnd.h"

namespace perch {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
// How long the parent sleeps at most while there is a limit to look after.
constexpr std::int64_t kTick = kSecond / 20;

bool isIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Those that whoever has started the program has it ignore, as nohup does, stay ignored.
sigset_t watchedSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGCHLD);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP})
        if (!isIgnored(signal)) sigaddset(&signals, signal);
    return signals;
}

// Holds the signals that the parent waits for while it lives.
class HeldSignals {
public:
    HeldSignals() {
        signal(SIGCHLD, SIG_DFL);  // whoever has started the program may have ignored it
        sigprocmask(SIG_BLOCK, &watched, &before);
    }
    ~HeldSignals() { sigprocmask(SIG_SETMASK, &before, nullptr); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    const sigset_t watched = watchedSignals();
    sigset_t before{};
};

// Whether the worker gets the program's standard input.
bool readsInput(const std::vector<std::string>& arguments) {
    return std::ranges::any_of(arguments,
                               [](const std::string& word) { return word.starts_with(kFramesFromOption); });
}

// In a process group of its own, so that a terminal's interrupt comes here alone, and all that the effect
// starts can be ended with it.
pid_t startWorker(const std::vector<std::string>& arguments, int descriptor, const sigset_t& signals) {
    const std::string option = kWorkerOption + std::to_string(descriptor);
    std::vector<char*> words{const_cast<char*>("perch"), const_cast<char*>(option.c_str())};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setsigmask(&attributes, &signals);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    if (!readsInput(arguments))
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    pid_t worker = -1;
    const int error = posix_spawn(&worker, "/proc/self/exe", &files, &attributes, words.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    if (error != 0)
        throw Error(fmt::format("cannot start a child: {}; --in-process does without one",
                                std::generic_category().message(error)));
    return worker;
}

class Supervisor {
public:
    Supervisor(const std::vector<std::string>& arguments, std::int64_t limit)
        : deadline(limit > 0 ? monotonicNanoseconds() + limit : 0),
          wholeLimit(limit),
          mayHaveLimit(std::ranges::any_of(
              arguments, [](const std::string& word) { return word.starts_with("--timeout"); })),
          worker(startWorker(arguments, shared.descriptor, held.before)) {}

    Outcome run() {
        while (!hasEnded())
            waitForSignal();
        takePending();
        // Whatever the effect has started, before its group's number is free for others.
        sendToWorker(SIGKILL);
        int status = 0;
        waitpid(worker, &status, 0);
        orphans.end();
        removeTemporaries();
        return outcomeOf(status);
    }

private:
    bool hasEnded() const {
        siginfo_t info{};
        return waitid(P_PID, static_cast<id_t>(worker), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
               info.si_pid != 0;
    }

    void waitForSignal() {
        siginfo_t info{};
        const bool hasLimit = mayHaveLimit || deadline != 0;
        const timespec tick{0, kTick};
        const int signal =
            hasLimit ? sigtimedwait(&held.watched, &info, &tick) : sigwaitinfo(&held.watched, &info);
        if (signal > 0 && signal != SIGCHLD) take(signal, info.si_pid);
        if (hasLimit) endWhenLate();
    }

    // What has come since the worker ended: nobody waits for it, and it would end this process instead.
    void takePending() {
        siginfo_t info{};
        const timespec now{0, 0};
        for (int signal = 0; (signal = sigtimedwait(&held.watched, &info, &now)) > 0;)
            if (signal != SIGCHLD) take(signal, info.si_pid);
    }

    void take(int signal, pid_t sender) {
        if (sender == worker) {
            sentByEffect = signal;
            endWorker();
        } else if (signal == SIGINT || signal == SIGTERM) {
            if (!interrupts.take(signal, sender, monotonicNanoseconds())) return;
            if (interrupts.count() == 1) kill(worker, signal);
            if (interrupts.count() == 2) endWorker();
        } else if (signal == SIGTSTP) {
            pause();
        } else {
            endedBy = signal;
            endWorker();
        }
    }

    // The time until somebody has the program go on does not count.
    void pause() {
        sendToWorker(SIGSTOP);
        const std::int64_t begin = monotonicNanoseconds();
        raise(SIGSTOP);
        const std::int64_t length = monotonicNanoseconds() - begin;
        if (deadline != 0) deadline += length;
        if (shared.memory->busySince != 0) shared.memory->busySince += length;
        sendToWorker(SIGCONT);
    }

    void endWhenLate() {
        if (isLate) return;
        const Whereabouts& at = *shared.memory;
        const std::int64_t now = monotonicNanoseconds();
        const std::int64_t limit = at.limit;
        const std::int64_t since = at.busySince;
        isLateAtCommand = limit > 0 && since > 0 && now - since > limit;
        isLate = isLateAtCommand || (deadline != 0 && now > deadline);
        if (isLate) endWorker();
    }

    void endWorker() const { sendToWorker(SIGKILL); }

    // To all of its group, and to itself, which the effect may have moved to another.
    void sendToWorker(int signal) const {
        kill(-worker, signal);
        kill(worker, signal);
    }

    void removeTemporaries() const {
        for (const Whereabouts::Temporary& temporary : shared.memory->temporaries) {
            if (temporary.isWhole) unlink(temporary.path.get().c_str());
        }
    }

    Outcome outcomeOf(int status) const {
        const Whereabouts& at = *shared.memory;
        const int signal = endedBy != 0 ? endedBy : interrupts.last();
        if (at.isFinished)
            return {.status = at.status,
                    .sentence = at.sentence.get(),
                    .signal = signal,
                    .findings = {},
                    .log = at.log.get(),
                    .report = at.report.get(),
                    .frame = {},
                    .lastLine = at.lastLine.get(),
                    .isQuiet = at.isQuiet};
        Outcome outcome{.status = kEffectBroke,
                        .sentence = {},
                        .signal = signal,
                        .findings = findings(),
                        .log = at.log.get(),
                        .report = at.report.get(),
                        .isQuiet = at.isQuiet};
        if (at.frame != Whereabouts::kNoFrame) outcome.frame = static_cast<std::int32_t>(at.frame);
        if (endedBy != 0) {
            outcome.status = kSignalled + endedBy;
            outcome.sentence = fmt::format("ended by SIG{}", sigabbrev_np(endedBy));
        } else if (interrupts.count() > 1) {
            outcome.status = kSignalled + signal;
            outcome.sentence =
                describeEffectEnd(at, "was interrupted twice and ended", "finished frames stay");
        } else if (interrupts.count() == 1 && WIFSIGNALED(status) && WTERMSIG(status) == signal) {
            outcome.status = kSignalled + signal;
            outcome.sentence = interruptSentence();
        } else if (isLate) {
            const std::int64_t limit = isLateAtCommand ? at.limit.load() : wholeLimit;
            outcome.sentence =
                describeEffectEnd(at, "did not come back",
                                  fmt::format("ended after {} s", static_cast<double>(limit) / kSecond));
        } else if (sentByEffect != 0) {
            outcome.sentence = describeEffectEnd(at, "sent the program a signal",
                                                 fmt::format("SIG{}", sigabbrev_np(sentByEffect)));
        } else {
            outcome.sentence = describeWorkerEnd(at, status);
            if (at.effect.get().empty()) outcome.status = kFailed;
        }
        if (outcome.status == kEffectBroke) {
            outcome.lastLine = at.lastLineOfFailure.get();
            outcome.unanswered = at.unanswered.get();
            outcome.totals = at.totals.get();
        } else {
            outcome.lastLine = at.lastLine.get();
        }
        return outcome;
    }

    // Where the worker did not tell it: it was not listening yet, or the effect has seen to that.
    std::string interruptSentence() const {
        return shared.memory->hasWritten ? "interrupted; finished frames stay"
                                         : "interrupted; nothing was written";
    }

    std::vector<std::string> findings() const {
        std::vector<std::string> lines;
        std::istringstream text(shared.memory->findings.get());
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        return lines;
    }

    const HeldSignals held;
    const SharedMemory shared;
    const Orphans orphans;
    std::int64_t deadline;  // of the whole run; 0: none
    const std::int64_t wholeLimit;
    const bool mayHaveLimit;
    const pid_t worker;
    Interrupts interrupts;
    int endedBy = 0;       // another signal from outside
    int sentByEffect = 0;  // signal
    bool isLate = false;
    bool isLateAtCommand = false;
};

}  // namespace

Outcome superviseWorker(const std::vector<std::string>& arguments, std::chrono::nanoseconds limit) {
    return Supervisor(arguments, limit.count()).run();
}

}  // namespace perch
