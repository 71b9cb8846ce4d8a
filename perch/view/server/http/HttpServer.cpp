#include "HttpServer.h"

#include <sys/socket.h>
#include <unistd.h>

#include "Connection.h"

namespace perch {
namespace {

constexpr std::chrono::milliseconds kIdle{2000};   // between two requests
constexpr std::chrono::milliseconds kGrace{2000};  // of answers under way, at the end

}  // namespace

void HttpServer::letMoreWait(int connections) {
    ::listen(svr_sock_, connections);
}

void HttpServer::shutDown(int directions) {
    for (const socket_t socket : open)
        shutdown(socket, directions);
}

void HttpServer::endConnections() {
    std::unique_lock lock(mutex);
    shutDown(SHUT_RD);
    if (!hasClosed.wait_for(lock, kGrace, [this] { return open.empty(); })) shutDown(SHUT_RDWR);
}

bool HttpServer::process_and_close_socket(socket_t socket) {
    {
        const std::lock_guard lock(mutex);
        open.insert(socket);
    }
    serve(socket);
    // Closed with the mutex, so that nobody shuts another's socket of that number down.
    const std::lock_guard lock(mutex);
    open.erase(socket);
    shutdown(socket, SHUT_RDWR);
    close(socket);
    hasClosed.notify_all();
    return true;
}

void HttpServer::serve(socket_t socket) {
    Connection connection(socket, patience);
    // It is open by now: a server that stops after this line shuts it down.
    while (svr_sock_ != INVALID_SOCKET && connection.waitForRequest(kIdle)) {
        bool isClosed = false;
        if (!process_request(connection, false, isClosed, nullptr) || isClosed) return;
    }
}

}  // namespace perch
