// A file descriptor with an owner.
#pragma once

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "Error.h"

namespace perch {

class Descriptor {
public:
    explicit Descriptor(int number) : number(number) {}
    ~Descriptor() {
        if (number >= 0) close(number);
    }
    Descriptor(Descriptor&& other) noexcept : number(other.release()) {}
    Descriptor& operator=(Descriptor&&) = delete;

    int get() const { return number; }
    // To another owner.
    int release() { return std::exchange(number, -1); }

private:
    int number;
};

// Our end and that of a child, which gets no others.
struct DescriptorPair {
    Descriptor ours;
    Descriptor childs;
};

// Throw Error where the system has no more.
inline DescriptorPair newSocketPair() {
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0)
        throw Error(fmt::format("cannot make a socket: {}", std::generic_category().message(errno)));
    return {Descriptor(sockets[0]), Descriptor(sockets[1])};
}

// That the child writes to.
inline DescriptorPair newPipe() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw Error(fmt::format("cannot make a pipe: {}", std::generic_category().message(errno)));
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

}  // namespace perch
