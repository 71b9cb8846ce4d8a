// The process that a session runs in, and the next one where it ends: what an effect does to its process does
// not reach the server.
//
//     perch view ...  --starts-->  perch view --session=3 ...  --starts-->  its worker, with the effect
//          |                       (supervises, as perch render does)           |
//          +------------------------------- Wire -------------------------------+
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "Child.h"
#include "Events.h"
#include "Exchange.h"
#include "ViewOptions.h"

namespace perch {

class SessionProcess {
public:
    // Of a session for these arguments of `perch view`. `program` may have words ahead of them; `grace` is
    // the time that it gets to end by itself.
    SessionProcess(std::vector<std::string> arguments, Events& events,
                   std::vector<std::string> program = {kThisProgram},
                   std::chrono::milliseconds grace = std::chrono::seconds(2));
    ~SessionProcess();
    SessionProcess(const SessionProcess&) = delete;
    SessionProcess& operator=(const SessionProcess&) = delete;

    // Begins the first session. Throws Error.
    void start();
    // Waits until it can be asked: 0, or the status that it has ended with, of which it has told the user
    // itself. Absent when it takes longer.
    std::optional<int> waitForStart(std::chrono::milliseconds patience);

    // Any thread, several at once. Where the session ends meanwhile the answer says why, and the next request
    // is answered by a new one, which has been told of the newest state. A change of the state is asked of
    // that one once more, so that it is not lost.
    ViewAnswer ask(const ViewRequest& request);

    // Requests that wait and later ones are answered with an error.
    void end();

private:
    struct Life;
    std::shared_ptr<Life> begin();
    std::optional<ViewAnswer> askOnce(ViewRequest request, bool isChange);
    void listen(Life& life);
    void readErrors(Life& life);
    void take(Life& life, ViewAnswer answer);
    void finish(Life& life);

    const std::vector<std::string> arguments;
    Events& events;
    const std::vector<std::string> program;
    const std::chrono::milliseconds grace;
    std::mutex mutex;
    std::condition_variable hasChanged;
    std::shared_ptr<Life> life;
    std::uint64_t lastId = 0;
    std::string newestState;   // as it was answered
    std::string lastSentence;  // of a session that has ended
    bool hasEnded = false;
};

}  // namespace perch
