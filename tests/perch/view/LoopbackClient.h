// A client that sends what it is told to, byte by byte, and keeps what comes back.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <string>
#include <string_view>

namespace perch::test {

class LoopbackClient {
public:
    explicit LoopbackClient(int port) : descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        isConnected = connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    ~LoopbackClient() { close(descriptor); }
    LoopbackClient(const LoopbackClient&) = delete;
    LoopbackClient& operator=(const LoopbackClient&) = delete;

    void send(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t sent = ::send(descriptor, text.data(), text.size(), MSG_NOSIGNAL);
            if (sent <= 0) return;
            text.remove_prefix(static_cast<std::size_t>(sent));
        }
    }

    // One answer: its head, and as much of a body as it announces.
    std::string receive() {
        while (received.find("\r\n\r\n") == std::string::npos)
            if (!readMore()) return received;
        const std::size_t head = received.find("\r\n\r\n") + 4;
        std::size_t size = 0;
        constexpr std::string_view kLength = "Content-Length: ";
        if (const std::size_t at = received.find(kLength); at < head)
            std::from_chars(received.data() + at + kLength.size(), received.data() + head, size);
        while (received.size() < head + size)
            if (!readMore()) break;
        return received;
    }

    // All that has come until that text has, or the other end has gone.
    std::string receiveUntil(std::string_view text) {
        while (received.find(text) == std::string::npos && readMore()) {
        }
        return received;
    }

    // Whether the other end has closed the connection; what has come before is left out.
    bool hasEnded() const {
        char buffer[4096];
        const ssize_t size = recv(descriptor, buffer, sizeof buffer, MSG_DONTWAIT);
        return size == 0 || (size < 0 && errno != EAGAIN && errno != EINTR);
    }

    bool isConnected = false;

private:
    bool readMore() {
        char buffer[4096];
        const ssize_t size = recv(descriptor, buffer, sizeof buffer, 0);
        if (size <= 0) return false;
        received.append(buffer, static_cast<std::size_t>(size));
        return true;
    }

    const int descriptor;
    std::string received;
};

inline int statusOf(const std::string& answer) {
    constexpr std::string_view kVersion = "HTTP/1.1 ";
    int status = 0;
    if (answer.starts_with(kVersion))
        std::from_chars(answer.data() + kVersion.size(), answer.data() + answer.size(), status);
    return status;
}

}  // namespace perch::test
