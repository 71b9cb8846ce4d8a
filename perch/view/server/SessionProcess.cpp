#include "SessionProcess.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <future>
#include <map>
#include <thread>
#include <utility>

#include "Console.h"
#include "Descriptor.h"
#include "JsonAnswers.h"
#include "Wire.h"

namespace perch {
namespace {

constexpr char kPrefix[] = "perch: ";
constexpr char kHasEnded[] = "perch view has ended";
constexpr int kSocket = 3;  // as the session has it

std::vector<std::string> sessionWords(const std::vector<std::string>& program,
                                      const std::vector<std::string>& arguments) {
    std::vector<std::string> words{"perch"};
    words.insert(words.end(), program.begin() + 1, program.end());
    words.insert(words.end(), {"view", kSessionOption + std::to_string(kSocket)});
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

bool isChangeOfState(const ViewRequest& request) {
    return (request.path == "/api/state" && request.method == "POST") ||
           (request.path == "/api/preset" && request.method == "PUT");
}

struct Waiting {
    std::promise<std::optional<ViewAnswer>> answer{};  // absent where the session has ended without one
    bool isChange = false;
};

}  // namespace

// One process, from its start until it has been waited for. What is not const is guarded by the mutex.
struct SessionProcess::Life {
    Life(const std::vector<std::string>& program, const std::vector<std::string>& arguments,
         std::string state, DescriptorPair sockets, DescriptorPair pipe)
        : errors(std::move(pipe.ours)),
          wire(sockets.ours.release()),
          opening(std::move(state)),
          process(program.front(), sessionWords(program, arguments),
                  {{pipe.childs.get(), STDERR_FILENO}, {sockets.childs.get(), kSocket}}) {}

    const Descriptor errors;
    Wire wire;
    const std::string opening;  // the state that it is told of ahead of all requests; may be empty
    std::once_flag isOpened;
    Child process;
    std::map<std::uint64_t, Waiting> waiting;
    std::string lastSentence;
    bool isReady = false;
    bool isOver = false;
    int status = 0;
    std::thread listening;
    std::thread readingErrors;
};

SessionProcess::SessionProcess(std::vector<std::string> arguments, Events& events,
                               std::vector<std::string> program, std::chrono::milliseconds grace)
    : arguments(std::move(arguments)), events(events), program(std::move(program)), grace(grace) {}

SessionProcess::~SessionProcess() {
    end();
}

// With the mutex held.
std::shared_ptr<SessionProcess::Life> SessionProcess::begin() {
    auto begun = std::make_shared<Life>(program, arguments, newestState, newSocketPair(), newPipe());
    begun->readingErrors = std::thread([this, begun] { readErrors(*begun); });
    begun->listening = std::thread([this, begun] { listen(*begun); });
    return begun;
}

void SessionProcess::start() {
    const std::lock_guard lock(mutex);
    life = begin();
}

std::optional<int> SessionProcess::waitForStart(std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex);
    if (!hasChanged.wait_for(lock, patience, [this] { return life->isReady || life->isOver; }))
        return std::nullopt;
    return life->isReady ? 0 : life->status;
}

void SessionProcess::readErrors(Life& at) {
    takeLines(at.errors.get(), at.process, [&](const std::string& line) {
        sayAsItIs(line + '\n');
        if (!line.starts_with(kPrefix)) return;
        const std::lock_guard lock(mutex);
        at.lastSentence = line.substr(sizeof kPrefix - 1);
    });
}

void SessionProcess::listen(Life& at) {
    while (auto received = at.wire.receiveAnswer()) {
        if (auto* const answer = std::get_if<ViewAnswer>(&*received)) {
            take(at, std::move(*answer));
            continue;
        }
        const ViewEvent& event = std::get<ViewEvent>(*received);
        if (event.name != "ready" && event.name != kTakenState) {
            events.publish(event);
            continue;
        }
        const std::lock_guard lock(mutex);
        if (event.name == kTakenState) {
            newestState = event.data;
            continue;
        }
        at.isReady = true;
        hasChanged.notify_all();
    }
    finish(at);
}

// In the order of the session's answers, so that the newest state is the last.
void SessionProcess::take(Life& at, ViewAnswer answer) {
    const std::lock_guard lock(mutex);
    const auto waiting = at.waiting.find(answer.id);
    if (waiting == at.waiting.end()) return;  // nobody's, as that of a state which was set again
    if (waiting->second.isChange && answer.status == 200) newestState = answer.body;
    waiting->second.answer.set_value(std::move(answer));
    at.waiting.erase(waiting);
}

void SessionProcess::finish(Life& at) {
    at.wire.end();
    // An effect that does not come back is ended by the signal that its supervisor passes on.
    at.process.end({0, SIGHUP}, grace);
    const int status = at.process.wait();
    at.readingErrors.join();
    const std::lock_guard lock(mutex);
    at.status = WIFEXITED(status) ? WEXITSTATUS(status) : 1;
    at.isOver = true;
    lastSentence =
        at.lastSentence.empty() ? "the session has ended; the next request begins another" : at.lastSentence;
    for (auto& [id, waiting] : at.waiting)
        waiting.answer.set_value(std::nullopt);
    at.waiting.clear();
    if (!hasEnded) events.publish({"message", jsonText({{"text", lastSentence}})});
    hasChanged.notify_all();
}

ViewAnswer SessionProcess::ask(const ViewRequest& request) {
    const bool isChange = isChangeOfState(request);
    std::optional<ViewAnswer> answer = askOnce(request, isChange);
    if (!answer && isChange) answer = askOnce(request, isChange);
    if (answer) return *std::move(answer);
    const std::lock_guard lock(mutex);
    return failure(hasEnded ? kHasEnded : lastSentence);
}

std::optional<ViewAnswer> SessionProcess::askOnce(ViewRequest request, bool isChange) {
    std::future<std::optional<ViewAnswer>> answer;
    std::shared_ptr<Life> asked;
    {
        const std::lock_guard lock(mutex);
        if (hasEnded || life == nullptr) return failure(kHasEnded);
        if (life->isOver) {
            if (life->listening.joinable()) life->listening.join();
            life = begin();
        }
        request.id = ++lastId;
        Waiting& waiting = life->waiting[request.id];
        waiting.isChange = isChange;
        answer = waiting.answer.get_future();
        asked = life;
    }
    // Not with the mutex held: the session may be waiting for its answers to be taken. Where nobody is there
    // any more, the end of the life answers.
    std::call_once(asked->isOpened, [&] {
        if (!asked->opening.empty())
            asked->wire.send(ViewRequest{
                .id = 0, .method = "POST", .path = "/api/state", .query = {}, .body = asked->opening});
    });
    asked->wire.send(request);
    return answer.get();
}

void SessionProcess::end() {
    std::shared_ptr<Life> last;
    {
        const std::lock_guard lock(mutex);
        if (std::exchange(hasEnded, true) || life == nullptr) return;
        last = life;
    }
    last->wire.end();
    if (last->listening.joinable()) last->listening.join();
}

}  // namespace perch
