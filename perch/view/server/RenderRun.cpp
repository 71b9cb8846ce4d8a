#include "RenderRun.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "Child.h"
#include "Console.h"
#include "Error.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

}  // namespace

RenderRun::RenderRun(Events& events) : events(events) {}

RenderRun::~RenderRun() {
    cancel();
    if (following.joinable()) following.join();
}

bool RenderRun::start(const std::vector<std::string>& words) {
    const std::lock_guard lock(mutex);
    if (process >= 0) return false;
    if (following.joinable()) following.join();
    const auto option = std::ranges::find_if(
        words, [](const std::string& word) { return word == "-o" || word == "--output"; });
    outputName = option != words.end() && option + 1 != words.end() ? option[1] : "";
    std::vector<std::string> all = words;
    all.insert(all.end(), {"--progress", "json"});
    int output[2];
    if (pipe2(output, O_CLOEXEC) != 0)
        throw Error(fmt::format("cannot make a pipe: {}", std::generic_category().message(errno)));
    try {
        process = startChild(kThisProgram, all, {{output[1], STDOUT_FILENO}, {output[1], STDERR_FILENO}});
    } catch (const Error&) {
        close(output[0]);
        close(output[1]);
        throw;
    }
    close(output[1]);
    following = std::thread([this, from = output[0]] { follow(from); });
    return true;
}

bool RenderRun::cancel() {
    const std::lock_guard lock(mutex);
    return process >= 0 && kill(process, SIGINT) == 0;
}

void RenderRun::tell(const std::string& state, const std::string& text, const std::string& progress) {
    Json json{{"state", state}, {"text", printable(text)}};
    if (!progress.empty()) json["progress"] = Json::parse(progress, nullptr, false);
    events.publish({"render", json.dump(-1, ' ', false, Json::error_handler_t::replace)});
}

// Progress is JSON, a line each; all else is for people.
void RenderRun::follow(int output) {
    std::string line;
    std::string last;
    char buffer[4096];
    ssize_t size = 0;
    while ((size = read(output, buffer, sizeof buffer)) > 0 || (size < 0 && errno == EINTR)) {
        for (ssize_t i = 0; i < size; ++i) {
            if (buffer[i] != '\n') {
                line += buffer[i];
                continue;
            }
            const bool isProgress = line.starts_with('{');
            if (!isProgress) last = line;
            tell("running", isProgress ? "" : line, isProgress ? line : "");
            line.clear();
        }
    }
    close(output);
    // With the mutex, so that nobody signals the number once it is another's.
    const std::lock_guard lock(mutex);
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    process = -1;
    const bool isDone = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    const bool isCancelled = WIFEXITED(status) && WEXITSTATUS(status) == 130;
    if (isDone && last.empty()) last = fmt::format("\"{}\" is written", outputName);
    tell(isDone ? "done" : isCancelled ? "cancelled" : "failed", last, "");
}

}  // namespace perch
