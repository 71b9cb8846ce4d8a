#include "Wire.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstring>

namespace perch {
namespace {

constexpr std::uint64_t kMostParts = 256;
constexpr std::uint64_t kLargestPart = std::uint64_t{1} << 33;
// Ahead of the names and values.
constexpr std::size_t kRequestParts = 4;
constexpr std::size_t kAnswerParts = 5;

bool sendAll(int socket, const void* bytes, std::size_t size) {
    const auto* rest = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t sent = ::send(socket, rest, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent <= 0) return false;
        rest += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

bool receiveAll(int socket, void* bytes, std::size_t size) {
    auto* rest = static_cast<char*>(bytes);
    while (size > 0) {
        const ssize_t received = recv(socket, rest, size, MSG_WAITALL);
        if (received < 0 && errno == EINTR) continue;
        if (received <= 0) return false;
        rest += received;
        size -= static_cast<std::size_t>(received);
    }
    return true;
}

// The text grows with what has come: a size alone, which the other side may have wrong, takes no memory.
bool receiveText(int socket, std::uint64_t size, std::string& text) {
    constexpr std::uint64_t kStep = 1 << 20;
    while (text.size() < size) {
        const std::size_t begin = text.size();
        const auto step = static_cast<std::size_t>(std::min(size - begin, kStep));
        text.resize(begin + step);
        if (!receiveAll(socket, text.data() + begin, step)) return false;
    }
    return true;
}

std::optional<std::uint64_t> numberOf(const std::string& text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

using Pairs = std::map<std::string, std::string>;

void append(const Pairs& pairs, std::vector<std::string_view>& parts) {
    for (const auto& [name, value] : pairs) {
        parts.push_back(name);
        parts.push_back(value);
    }
}

Pairs pairsFrom(const std::vector<std::string>& parts, std::size_t first) {
    Pairs pairs;
    for (std::size_t i = first; i + 1 < parts.size(); i += 2)
        pairs[parts[i]] = parts[i + 1];
    return pairs;
}

}  // namespace

Wire::Wire(int socket) : socket(socket) {}

Wire::~Wire() {
    close(socket);
}

void Wire::end() {
    shutdown(socket, SHUT_RDWR);
}

bool Wire::sendParts(const std::vector<std::string_view>& parts) {
    const std::lock_guard lock(sending);
    const auto sendNumber = [this](std::uint64_t number) { return sendAll(socket, &number, sizeof number); };
    if (!sendNumber(parts.size())) return false;
    for (const std::string_view part : parts)
        if (!sendNumber(part.size()) || !sendAll(socket, part.data(), part.size())) return false;
    return true;
}

std::optional<Wire::Parts> Wire::receiveParts() {
    std::uint64_t count = 0;
    if (!receiveAll(socket, &count, sizeof count) || count > kMostParts) return std::nullopt;
    Parts parts(count);
    for (std::string& part : parts) {
        std::uint64_t size = 0;
        if (!receiveAll(socket, &size, sizeof size) || size > kLargestPart) return std::nullopt;
        if (!receiveText(socket, size, part)) return std::nullopt;
    }
    return parts;
}

bool Wire::send(const ViewRequest& request) {
    const std::string id = std::to_string(request.id);
    std::vector<std::string_view> parts{id, request.method, request.path, request.body};
    append(request.query, parts);
    return sendParts(parts);
}

bool Wire::send(const ViewAnswer& answer) {
    const std::string id = std::to_string(answer.id);
    const std::string status = std::to_string(answer.status);
    std::vector<std::string_view> parts{"answer", id, status, answer.type, answer.body};
    append(answer.headers, parts);
    return sendParts(parts);
}

bool Wire::send(const ViewEvent& event) {
    return sendParts({"event", event.name, event.data});
}

std::optional<ViewRequest> Wire::receiveRequest() {
    std::optional<Parts> parts = receiveParts();
    if (!parts || parts->size() < kRequestParts) return std::nullopt;
    const std::optional<std::uint64_t> id = numberOf(parts->front());
    if (!id) return std::nullopt;
    return ViewRequest{.id = *id,
                       .method = std::move((*parts)[1]),
                       .path = std::move((*parts)[2]),
                       .query = pairsFrom(*parts, kRequestParts),
                       .body = std::move((*parts)[3])};
}

std::optional<std::variant<ViewAnswer, ViewEvent>> Wire::receiveAnswer() {
    std::optional<Parts> parts = receiveParts();
    if (!parts) return std::nullopt;
    if (parts->size() == 3 && parts->front() == "event") return ViewEvent{(*parts)[1], (*parts)[2]};
    if (parts->size() < kAnswerParts) return std::nullopt;
    const std::optional<std::uint64_t> id = numberOf((*parts)[1]);
    const std::optional<std::uint64_t> status = numberOf((*parts)[2]);
    if (!id || !status) return std::nullopt;
    return ViewAnswer{.id = *id,
                      .status = static_cast<int>(*status),
                      .type = std::move((*parts)[3]),
                      .headers = pairsFrom(*parts, kAnswerParts),
                      .body = std::move((*parts)[4])};
}

}  // namespace perch
