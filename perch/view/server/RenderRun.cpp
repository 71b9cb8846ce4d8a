#include "RenderRun.h"

#include <fmt/format.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "Console.h"
#include "Error.h"
#include "JsonAnswers.h"
#include "ShallowJson.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

// As the words of a command line have it.
std::string outputNamed(const std::vector<std::string>& words) {
    constexpr std::string_view kWithName = "--output=";
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i].starts_with(kWithName)) return words[i].substr(kWithName.size());
        const bool isBeforeName = words[i] == "-o" || words[i] == "--output";
        if (isBeforeName && i + 1 < words.size()) return words[i + 1];
    }
    return {};
}

// Progress is JSON, a line each; all else is for people, and null here.
Json progressIn(const std::string& line) {
    try {
        return line.starts_with('{') ? shallowObject(line, "progress") : Json();
    } catch (const UsageError&) {
        return nullptr;
    }
}

}  // namespace

RenderRun::RenderRun(Events& events, std::string program, std::chrono::milliseconds grace)
    : events(events), program(std::move(program)), grace(grace) {}

RenderRun::~RenderRun() {
    std::shared_ptr<Child> last;
    {
        const std::lock_guard lock(mutex);
        last = underWay;
    }
    if (last != nullptr) last->end({SIGINT, SIGHUP}, grace);
    if (following.joinable()) following.join();
}

bool RenderRun::start(const std::vector<std::string>& words) {
    const std::lock_guard lock(mutex);
    if (underWay != nullptr) return false;
    if (following.joinable()) following.join();
    std::vector<std::string> all = words;
    all.insert(all.end(), {"--progress", "json"});
    DescriptorPair output = newPipe();
    const int end = output.childs.get();
    auto process = std::make_shared<Child>(program, std::move(all),
                                           PassedDescriptors{{end, STDOUT_FILENO}, {end, STDERR_FILENO}});
    underWay = process;
    following = std::thread([this, process, from = std::move(output.ours), name = outputNamed(words)] {
        follow(*process, from, name);
    });
    return true;
}

bool RenderRun::cancel() {
    const std::lock_guard lock(mutex);
    return underWay != nullptr && underWay->signal(SIGINT);
}

void RenderRun::tell(const std::string& state, const std::string& sentence) {
    events.publish({"render", jsonText({{"state", state}, {"text", printable(sentence)}})});
}

void RenderRun::follow(Child& process, const Descriptor& output, const std::string& outputName) {
    std::string last;
    takeLines(output.get(), process, [&](const std::string& line) {
        const Json progress = progressIn(line);
        if (!progress.is_null())
            return events.publish(
                {"render", jsonText({{"state", "running"}, {"text", ""}, {"progress", progress}})});
        last = line;
        tell("running", line);
    });
    const int status = process.wait();
    const std::lock_guard lock(mutex);
    underWay.reset();
    const bool isDone = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    const bool isCancelled = WIFEXITED(status) && WEXITSTATUS(status) == 128 + SIGINT;
    if (isDone && last.empty()) last = fmt::format("\"{}\" is written", outputName);
    tell(isDone ? "done" : isCancelled ? "cancelled" : "failed", last);
}

}  // namespace perch
