// The library's server, with an end to what its connections take.
#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>

namespace perch {

class HttpServer : public httplib::Server {
public:
    // `patience` is the time that a request may take to come.
    explicit HttpServer(std::chrono::milliseconds patience) : patience(patience) {}

    // The library has five connections wait to be taken, and the system keeps others waiting for seconds.
    void letMoreWait(int connections);

    // After stop(): nothing is read any more, and answers under way get some time.
    void endConnections();

private:
    bool process_and_close_socket(socket_t socket) override;
    void serve(socket_t socket);
    void shutDown(int directions);

    const std::chrono::milliseconds patience;
    std::mutex mutex;
    std::condition_variable hasClosed;
    std::set<socket_t> open;
};

}  // namespace perch
