#include "ViewOptions.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <utility>

#include "Child.h"
#include "Console.h"
#include "Doorway.h"
#include "Error.h"
#include "ExitStatus.h"
#include "JsonAnswers.h"
#include "Page.h"
#include "RenderRun.h"
#include "SaveFolder.h"
#include "Server.h"
#include "SessionProcess.h"
#include "ShallowJson.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

// What the server answers itself, and what it passes on.
class Desk {
public:
    Desk(SessionProcess& session, RenderRun& render, const std::string& saveFolder)
        : session(session), render(render) {
        if (!saveFolder.empty()) folder.emplace(saveFolder);
    }

    ViewAnswer answer(const ViewRequest& request) {
        try {
            if (!request.path.starts_with("/api/")) return page(request);
            if (request.path == "/api/render") return renderAnswer(request);
            if (request.path == "/api/preset" && request.method == "POST") return save(request);
            ViewAnswer answer = session.ask(request);
            if (request.path == "/api/session" && answer.status == 200) addOwn(answer);
            // The session does not know of the one that is answered here.
            if (request.path == "/api/preset" && answer.status == 405) return wrongMethod("GET, POST, PUT");
            return answer;
        } catch (const UsageError& error) {
            return refusal(422, error.what());
        } catch (const std::exception& error) {
            return refusal(500, error.what());
        }
    }

private:
    static ViewAnswer page(const ViewRequest& request) {
        const std::optional<PageFile> file = pageFile(request.path);
        if (!file) return refusal(404, "there is no such page");
        if (request.method != "GET") return wrongMethod("GET");
        return {.type = file->type, .body = std::string(file->bytes)};
    }

    void addOwn(ViewAnswer& answer) const {
        Json json = shallowJson(answer.body, "the session");
        json["canSave"] = folder.has_value();
        answer.body = jsonText(json);
    }

    ViewAnswer save(const ViewRequest& request) {
        if (!folder) return refusal(422, "no folder was given by --save-folder; download the preset");
        const Json asked = shallowObject(request.body, "a name");
        const auto name = asked.find("name");
        if (name == asked.end() || !name->is_string())
            return refusal(422, "a preset is saved by {\"name\": \"look.json\"}");
        const ViewAnswer preset =
            session.ask({.method = "GET", .path = "/api/preset", .query = {}, .body = {}});
        if (preset.status != 200) return preset;
        folder->save(name->get<std::string>(), preset.body);
        return jsonAnswer({{"name", *name}});
    }

    ViewAnswer renderAnswer(const ViewRequest& request) {
        if (request.method == "DELETE")
            return render.cancel() ? jsonAnswer(Json::object()) : refusal(409, "nothing is being rendered");
        if (request.method != "POST") return wrongMethod("DELETE, POST");
        const ViewAnswer words = session.ask({.method = "GET", .path = "/words", .query = {}, .body = {}});
        if (words.status != 200) return words;
        if (!render.start(Json::parse(words.body).get<std::vector<std::string>>()))
            return refusal(409, "a render is under way; cancel it first");
        return jsonAnswer(Json::object());
    }

    SessionProcess& session;
    RenderRun& render;
    std::optional<SaveFolder> folder;
};

// Who has no browser has the address. The file is to stay until the browser has read it.
std::unique_ptr<Doorway> openBrowser(const std::string& address) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    std::unique_ptr<Doorway> doorway;
    try {
        doorway = std::make_unique<Doorway>(address);
        startChild("xdg-open", {"xdg-open", doorway->file().string()},
                   {{nowhere, STDOUT_FILENO}, {nowhere, STDERR_FILENO}});
    } catch (const Error&) {
        doorway.reset();
        say("note: no browser was found; open the address yourself, or leave the search out by --no-open");
    }
    close(nowhere);
    return doorway;
}

// Held back from here on, in all threads that are begun later.
sigset_t holdEndingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

// Waits for the first session, or for a signal that comes before it is there: an effect may not come back
// from its set-up. 0, or the status to end with.
int begin(SessionProcess& session, const sigset_t& signals) {
    constexpr std::chrono::milliseconds kTick{10};
    constexpr timespec kNow{0, 0};
    session.start();
    for (;;) {
        if (const std::optional<int> status = session.waitForStart(kTick)) return *status;
        if (const int signal = sigtimedwait(&signals, nullptr, &kNow); signal > 0) return kSignalled + signal;
    }
}

}  // namespace

int serveView(const ViewOptions& options) {
    const sigset_t signals = holdEndingSignals();
    Events events;
    SessionProcess session(options.arguments, events);
    if (const int status = begin(session, signals); status != kDone) return status;
    RenderRun render(events);
    Desk desk(session, render, options.saveFolder);
    Server server(
        options.port, newToken(), [&](const ViewRequest& request) { return desk.answer(request); }, events);
    server.start();
    if (!hasPage()) say(fmt::format("note: {}", kNoPage));
    printResult(server.gate().address() + '\n');
    std::unique_ptr<Doorway> doorway;
    if (options.opensBrowser) doorway = openBrowser(server.gate().address());
    int signal = 0;
    sigwait(&signals, &signal);
    // First the answers that are waited for, then those who wait.
    session.end();
    events.publish({"end", "{}"});
    events.end();
    server.stop();
    return kSignalled + signal;
}

}  // namespace perch
