// JSON as the page gets it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "Exchange.h"

namespace perch {

// On one line. Bytes that are not UTF-8, as a file's name may have, are replaced.
inline std::string jsonText(const nlohmann::ordered_json& json) {
    return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

inline ViewAnswer jsonAnswer(const nlohmann::ordered_json& json) {
    return {.body = jsonText(json)};
}

// In one sentence.
inline ViewAnswer refusal(int status, const std::string& sentence) {
    return {.status = status, .body = jsonText({{"error", sentence}})};
}

// What has gone wrong at a frame, in a command of the effect; null where that is not known.
inline ViewAnswer failure(const std::string& sentence, const nlohmann::ordered_json& frame = nullptr,
                          const nlohmann::ordered_json& command = nullptr) {
    return {.status = 500, .body = jsonText({{"error", sentence}, {"frame", frame}, {"command", command}})};
}

// Of a path that takes these methods alone: "GET, POST".
inline ViewAnswer wrongMethod(const std::string& methods) {
    ViewAnswer answer = refusal(405, "this takes " + methods);
    answer.headers["Allow"] = methods;
    return answer;
}

}  // namespace perch
