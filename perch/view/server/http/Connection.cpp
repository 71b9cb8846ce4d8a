#include "Connection.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

#include "Gate.h"

namespace perch {
namespace {

constexpr std::size_t kLargestHead = std::size_t{1} << 16;

}  // namespace

bool Connection::isThere(short events, Clock::time_point end) const {
    pollfd waited{descriptor, events, 0};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        const int ready = poll(&waited, 1, static_cast<int>(std::max<std::int64_t>(left, 0)));
        if (ready >= 0 || errno != EINTR) return ready > 0;
    }
}

bool Connection::waitForRequest(std::chrono::milliseconds idle) {
    taken = 0;
    if (next == last && !isThere(POLLIN, Clock::now() + idle)) return false;
    deadline = Clock::now() + patience;
    return true;
}

bool Connection::is_readable() const {
    return next < last || isThere(POLLIN, deadline);
}

bool Connection::is_writable() const {
    return isThere(POLLOUT, Clock::now() + patience);
}

bool Connection::fill() {
    if (!isThere(POLLIN, deadline) || taken > kLargestHead + kLargestBody) return false;
    const ssize_t received = recv(descriptor, buffer.data(), buffer.size(), 0);
    if (received <= 0) return false;
    next = 0;
    last = static_cast<std::size_t>(received);
    taken += last;
    return true;
}

ssize_t Connection::read(char* bytes, std::size_t size) {
    if (next == last && !fill()) return -1;
    const std::size_t count = std::min(size, last - next);
    std::copy_n(buffer.begin() + next, count, bytes);
    next += count;
    return static_cast<ssize_t>(count);
}

ssize_t Connection::write(const char* bytes, std::size_t size) {
    const Clock::time_point end = Clock::now() + patience;
    std::size_t done = 0;
    while (done < size) {
        if (!isThere(POLLOUT, end)) return -1;
        const ssize_t sent = send(descriptor, bytes + done, size - done, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (sent < 0) return -1;
        done += static_cast<std::size_t>(sent);
    }
    return static_cast<ssize_t>(size);
}

// All are this machine's.
void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
    ip = "127.0.0.1";
    port = 0;
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const {
    get_remote_ip_and_port(ip, port);
}

}  // namespace perch
