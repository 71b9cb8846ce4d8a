// What the server of `perch view` and the session behind it, in which the effect's code runs, say to each
// other.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace perch {

struct ViewRequest {
    std::uint64_t id = 0;  // of the server's choice
    std::string method{};  // "GET"
    std::string path{};    // "/api/picture"
    std::map<std::string, std::string> query{};
    std::string body{};

    // Empty where the query has none.
    std::string value(const std::string& name) const {
        const auto found = query.find(name);
        return found != query.end() ? found->second : std::string();
    }
};

constexpr char kJsonType[] = "application/json";

struct ViewAnswer {
    std::uint64_t id = 0;  // of the request
    int status = 200;
    std::string type = kJsonType;
    std::map<std::string, std::string> headers{};
    std::string body{};
};

// What nobody has asked for; see /api/events.
struct ViewEvent {
    std::string name;
    std::string data;  // JSON
};

// An event for the server alone: a state that came with the question for its picture and has been taken.
constexpr char kTakenState[] = "state";

}  // namespace perch
