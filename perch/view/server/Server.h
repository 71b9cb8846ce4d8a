// The part that speaks HTTP: on 127.0.0.1 alone, and past the Gate.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "Events.h"
#include "Exchange.h"
#include "Gate.h"

namespace perch {

class Server {
public:
    // `answer` is called on several threads at once.
    using Answer = std::function<ViewAnswer(const ViewRequest&)>;

    // Takes a port, one of the system's choice for 0. `patience` is the time that a request may take to come
    // and its answer to be taken. Throws Error where the port cannot be had.
    Server(int port, const std::string& token, Answer answer, Events& events,
           std::chrono::milliseconds patience = std::chrono::seconds(10));
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    int port() const;
    const Gate& gate() const;

    // Serves on threads of its own until it is stopped, by its end at the latest. Events are to be ended
    // before, since pages listen for as long as they come.
    void start();
    void stop();

private:
    struct Http;
    std::unique_ptr<Http> http;
};

}  // namespace perch
