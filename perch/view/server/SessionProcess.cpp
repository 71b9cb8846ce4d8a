#include "SessionProcess.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "Child.h"
#include "Console.h"
#include "Error.h"

namespace perch {
namespace {

constexpr char kPrefix[] = "perch: ";
constexpr std::chrono::seconds kGrace{2};  // for a session to end by itself

std::string jsonText(const nlohmann::ordered_json& json) {
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

ViewAnswer failure(const std::string& sentence) {
    return {.status = 500, .body = jsonText({{"error", sentence}, {"frame", nullptr}, {"command", nullptr}})};
}

[[noreturn]] void throwSystemError(const char* what) {
    throw Error(fmt::format("{}: {}", what, std::generic_category().message(errno)));
}

struct Started {
    pid_t process = -1;
    int socket = -1;
    int errors = -1;
};

Started startSession(const std::vector<std::string>& arguments) {
    int sockets[2];
    int errors[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0)
        throwSystemError("cannot make a socket");
    if (pipe2(errors, O_CLOEXEC) != 0) throwSystemError("cannot make a pipe");
    std::vector<std::string> words{"perch", "view", kSessionOption + std::to_string(sockets[1])};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const pid_t process =
        startChild(kThisProgram, words, {{sockets[1], sockets[1]}, {errors[1], STDERR_FILENO}});
    // The child's ends, so that it has the only ones.
    close(sockets[1]);
    close(errors[1]);
    return {.process = process, .socket = sockets[0], .errors = errors[0]};
}

}  // namespace

// One process, from its start until it has been waited for. What is not const is guarded by the mutex.
struct SessionProcess::Life {
    explicit Life(const Started& started)
        : process(started.process), errors(started.errors), wire(started.socket) {}
    ~Life() { close(errors); }

    const pid_t process;
    const int errors;
    Wire wire;
    std::map<std::uint64_t, std::promise<ViewAnswer>> waiting;
    std::string lastSentence;
    bool isReady = false;
    bool isOver = false;
    int status = 0;
    std::thread listening;
    std::thread readingErrors;
};

SessionProcess::SessionProcess(std::vector<std::string> arguments, Events& events)
    : arguments(std::move(arguments)), events(events) {}

SessionProcess::~SessionProcess() {
    end();
}

// With the mutex held.
std::shared_ptr<SessionProcess::Life> SessionProcess::begin() {
    auto begun = std::make_shared<Life>(startSession(arguments));
    begun->readingErrors = std::thread([this, begun] { readErrors(*begun); });
    begun->listening = std::thread([this, begun] { listen(*begun); });
    return begun;
}

int SessionProcess::start() {
    std::unique_lock lock(mutex);
    life = begin();
    hasChanged.wait(lock, [this] { return life->isReady || life->isOver; });
    return life->isReady ? 0 : life->status;
}

void SessionProcess::readErrors(Life& at) {
    std::string line;
    char buffer[4096];
    ssize_t size = 0;
    while ((size = read(at.errors, buffer, sizeof buffer)) > 0 || (size < 0 && errno == EINTR)) {
        for (ssize_t i = 0; i < size; ++i) {
            if (buffer[i] != '\n') {
                line += buffer[i];
                continue;
            }
            sayAsItIs(line + '\n');
            if (line.starts_with(kPrefix)) {
                const std::lock_guard lock(mutex);
                at.lastSentence = line.substr(sizeof kPrefix - 1);
            }
            line.clear();
        }
    }
}

void SessionProcess::listen(Life& at) {
    while (auto received = at.wire.receiveAnswer()) {
        if (const auto* const event = std::get_if<ViewEvent>(&*received)) {
            if (event->name != "ready") {
                events.publish(*event);
                continue;
            }
            const std::lock_guard lock(mutex);
            at.isReady = true;
            hasChanged.notify_all();
            continue;
        }
        ViewAnswer& answer = std::get<ViewAnswer>(*received);
        const std::lock_guard lock(mutex);
        const auto waiting = at.waiting.find(answer.id);
        if (waiting == at.waiting.end()) continue;  // nobody's, as that of a state which was set again
        waiting->second.set_value(std::move(answer));
        at.waiting.erase(waiting);
    }
    finish(at);
}

void SessionProcess::finish(Life& at) {
    int status = 0;
    while (waitpid(at.process, &status, 0) < 0 && errno == EINTR) {
    }
    at.readingErrors.join();
    const std::lock_guard lock(mutex);
    at.status = WIFEXITED(status) ? WEXITSTATUS(status) : 1;
    at.isOver = true;
    const std::string sentence =
        at.lastSentence.empty() ? "the session has ended; the next request begins another" : at.lastSentence;
    for (auto& [id, promise] : at.waiting)
        promise.set_value(failure(sentence));
    at.waiting.clear();
    if (!hasEnded) events.publish({"message", jsonText({{"text", sentence}})});
    hasChanged.notify_all();
}

ViewAnswer SessionProcess::ask(ViewRequest request) {
    std::future<ViewAnswer> answer;
    std::shared_ptr<Life> asked;
    {
        const std::lock_guard lock(mutex);
        if (hasEnded || life == nullptr) return failure("perch view has ended");
        if (life->isOver) {
            life->listening.join();
            life = begin();
            if (!newestState.empty())
                life->wire.send(ViewRequest{
                    .id = 0, .method = "POST", .path = "/api/state", .query = {}, .body = newestState});
        }
        request.id = ++lastId;
        answer = life->waiting[request.id].get_future();
        asked = life;
    }
    // Not with the mutex held: the session may be waiting for its answers to be taken. Where nobody is there
    // any more, the end of the life answers.
    asked->wire.send(request);
    ViewAnswer given = answer.get();
    remember(request, given);
    return given;
}

void SessionProcess::remember(const ViewRequest& request, const ViewAnswer& answer) {
    const bool isState = request.path == "/api/state" && request.method == "POST";
    const bool isPreset = request.path == "/api/preset" && request.method == "PUT";
    if (answer.status != 200 || (!isState && !isPreset)) return;
    const std::lock_guard lock(mutex);
    newestState = answer.body;
}

void SessionProcess::end() {
    std::unique_lock lock(mutex);
    if (std::exchange(hasEnded, true) || life == nullptr) return;
    life->wire.end();
    // A session whose effect does not come back is ended by the signal that its supervisor passes on.
    if (!hasChanged.wait_for(lock, kGrace, [this] { return life->isOver; })) kill(life->process, SIGHUP);
    lock.unlock();
    life->listening.join();
}

}  // namespace perch
