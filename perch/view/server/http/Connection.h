// What a browser sends over one connection, and what it is answered. A request has to be there whole within a
// time, and an answer to be taken, so that one that comes byte by byte holds its thread no longer.
#pragma once

#include <httplib.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <string>

namespace perch {

class Connection : public httplib::Stream {
public:
    // The socket stays the caller's.
    Connection(int descriptor, std::chrono::milliseconds patience)
        : descriptor(descriptor), patience(patience) {}

    // Waits for the next request to begin, whose time runs from then on. False where none comes.
    bool waitForRequest(std::chrono::milliseconds idle);

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* bytes, std::size_t size) override;
    ssize_t write(const char* bytes, std::size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return descriptor; }

private:
    using Clock = std::chrono::steady_clock;
    bool isThere(short events, Clock::time_point end) const;
    bool fill();

    const int descriptor;
    const std::chrono::milliseconds patience;
    Clock::time_point deadline;  // of the request
    std::size_t taken = 0;       // bytes of the request
    std::array<char, 4096> buffer{};
    std::size_t next = 0;  // in the buffer
    std::size_t last = 0;
};

}  // namespace perch
