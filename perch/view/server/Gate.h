// Who may ask the server for what. It is reached by this machine alone, but by every program and every open
// page on it:
//
//     another page's script    sends its own Origin, and no cookie of ours (SameSite=Strict)
//     a name that leads here   is the Host then, and not ours
//     another user's program   knows no token
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace perch {

// What of a request matters here.
struct Caller {
    std::string path;
    std::optional<std::string> token;  // in the address
    std::string cookies;
    std::string host;
    std::optional<std::string> origin;
    std::optional<std::string> fetchSite;  // where a browser says that the asking page is from
    bool mayHaveBody = false;              // by its method
    std::optional<std::string> bodySize;
    bool hasTransferCoding = false;
    bool hasContentCoding = false;
};

class Gate {
public:
    Gate(std::string token, int port);

    struct Verdict {
        int status = 200;      // 200: the request may pass; 303: to the page, with the cookie
        std::string sentence;  // why it may not
    };
    Verdict judge(const Caller& caller) const;

    // "perch-view-8080=...; ..." of the page's first visit.
    std::string cookie() const;
    // "http://127.0.0.1:8080/?token=..."
    std::string address() const;

private:
    bool isOurHost(const std::string& host) const;
    bool hasCookie(const std::string& cookies) const;

    const std::string token;
    const std::string port;
};

constexpr std::size_t kLargestBody = std::size_t{1} << 20;

// 128 bits of chance, in hexadecimal. Throws Error where the system has none.
std::string newToken();

}  // namespace perch
