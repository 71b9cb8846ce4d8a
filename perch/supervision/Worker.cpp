#include "Worker.h"

#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>

#include "Console.h"
#include "SharedMemory.h"
#include "Whereabouts.h"

namespace perch {
namespace {

pid_t gWorker = 0;

}  // namespace

bool becomeWorker(const std::string& option) {
    if (!option.starts_with(kWorkerOption)) return false;
    const std::string number = option.substr(sizeof kWorkerOption - 1);
    int descriptor = -1;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), descriptor);
    if (error != std::errc() || end != number.data() + number.size() || !SharedMemory::adopt(descriptor))
        return false;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have ended before that line.
    if (getppid() != whereabouts().supervisor) _exit(EXIT_FAILURE);
    keepStreamsApart();
    setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    // A write that cannot be done is an error with a sentence.
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
    // The worker is in a process group of its own, which a terminal may be set to stop when it writes, and
    // stops when it reads.
    signal(SIGTTOU, SIG_IGN);
    signal(SIGTTIN, SIG_IGN);
    gWorker = getpid();
    return true;
}

bool isWorker() {
    return gWorker != 0;
}

void finishWork(int status, const std::string& sentence) {
    // A copy of the worker that the effect has made is not the worker.
    if (getpid() == gWorker) {
        Whereabouts& at = whereabouts();
        at.sentence.set(sentence);
        at.status = status;
        at.isFinished = true;
    }
    _exit(status);
}

}  // namespace perch
