// The process that a session runs in, and the next one where it ends: what an effect does to its process does
// not reach the server.
//
//     perch view ...  --starts-->  perch view --session=5 ...  --starts-->  its worker, with the effect
//          |                       (supervises, as perch render does)           |
//          +------------------------------- Wire -------------------------------+
#pragma once

#include <condition_variable>
#include <cstdint>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Events.h"
#include "Exchange.h"
#include "ViewOptions.h"
#include "Wire.h"

namespace perch {

class SessionProcess {
public:
    // Of a session for these arguments of `perch view`.
    SessionProcess(std::vector<std::string> arguments, Events& events);
    ~SessionProcess();
    SessionProcess(const SessionProcess&) = delete;
    SessionProcess& operator=(const SessionProcess&) = delete;

    // Waits until the first session can be asked. 0, or the status that it has ended with, of which it has
    // told the user itself.
    int start();

    // Any thread, several at once. Where the session ends meanwhile the answer says why, and the next request
    // is answered by a new one, which has been told of the newest state.
    ViewAnswer ask(ViewRequest request);

    // Requests that wait and later ones are answered with an error.
    void end();

private:
    struct Life;
    std::shared_ptr<Life> begin();
    void listen(Life& life);
    void readErrors(Life& life);
    void finish(Life& life);
    void remember(const ViewRequest& request, const ViewAnswer& answer);

    const std::vector<std::string> arguments;
    Events& events;
    std::mutex mutex;
    std::condition_variable hasChanged;
    std::shared_ptr<Life> life;
    std::uint64_t lastId = 0;
    std::string newestState;  // as it was answered
    bool hasEnded = false;
};

}  // namespace perch
