#include "Gate.h"

#include <fmt/format.h>
#include <sys/random.h>

#include <array>
#include <charconv>
#include <string_view>
#include <utility>

#include "Error.h"

namespace perch {
namespace {

// In a time that does not tell how much of it is right.
bool isSame(std::string_view given, std::string_view expected) {
    if (given.size() != expected.size()) return false;
    unsigned difference = 0;
    for (std::size_t i = 0; i < given.size(); ++i)
        difference |= static_cast<unsigned>(given[i] ^ expected[i]);
    return difference == 0;
}

bool isTooLarge(const std::string& size) {
    std::size_t bytes = 0;
    const char* const end = size.data() + size.size();
    const auto parsed = std::from_chars(size.data(), end, bytes);
    return parsed.ec != std::errc() || parsed.ptr != end || bytes > kLargestBody;
}

}  // namespace

std::string newToken() {
    std::array<unsigned char, 16> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        throw Error("the system gives no random numbers, without which anybody could use the page");
    std::string token;
    for (const unsigned char byte : bytes)
        token += fmt::format("{:02x}", byte);
    return token;
}

Gate::Gate(std::string token, int port) : token(std::move(token)), port(std::to_string(port)) {}

std::string Gate::cookie() const {
    return fmt::format("perch-view-{}={}; SameSite=Strict; HttpOnly; Path=/", port, token);
}

std::string Gate::address() const {
    return fmt::format("http://127.0.0.1:{}/?token={}", port, token);
}

bool Gate::isOurHost(const std::string& host) const {
    return host == "127.0.0.1:" + port || host == "localhost:" + port;
}

// "a=1; perch-view-8080=..."
bool Gate::hasCookie(const std::string& cookies) const {
    const std::string name = fmt::format("perch-view-{}=", port);
    std::string_view rest = cookies;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        std::string_view one = rest.substr(0, end);
        while (one.starts_with(' '))
            one.remove_prefix(1);
        if (one.starts_with(name) && isSame(one.substr(name.size()), token)) return true;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

Gate::Verdict Gate::judge(const Caller& caller) const {
    if (!isOurHost(caller.host)) return {403, "this server answers to 127.0.0.1 and localhost alone"};
    if (caller.origin && *caller.origin != "http://" + caller.host)
        return {403, "pages from elsewhere may not ask this server"};
    if (caller.path == "/" && caller.token) {
        if (!isSame(*caller.token, token)) return {403, "the token is not that of this server"};
        return {303, ""};
    }
    // A page of another port of this machine has the cookie too.
    if (caller.fetchSite && *caller.fetchSite != "same-origin" && *caller.fetchSite != "none")
        return {403, "pages from elsewhere may not ask this server"};
    if (!hasCookie(caller.cookies)) return {403, "open the address that perch view has printed"};
    if (caller.hasContentCoding) return {415, "a body comes as it is, not compressed"};
    if (caller.hasTransferCoding || (caller.mayHaveBody && !caller.bodySize))
        return {411, "a body needs its size ahead of it"};
    if (caller.bodySize && isTooLarge(*caller.bodySize)) return {413, "a body may have a megabyte"};
    return {};
}

}  // namespace perch
