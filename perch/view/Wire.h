// Messages over a socket between two processes. A message is a list of byte strings:
//
//     count | size bytes | size bytes | ...        numbers of 64 bits in this machine's order
//
// Any thread may send; one receives.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Exchange.h"

namespace perch {

class Wire {
public:
    // Takes the socket over.
    explicit Wire(int socket);
    ~Wire();
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    // False when nobody is at the other end.
    bool send(const ViewRequest& request);
    bool send(const ViewAnswer& answer);
    bool send(const ViewEvent& event);

    // Absent at the end: the other side has gone, or has sent what is no message.
    std::optional<ViewRequest> receiveRequest();
    std::optional<std::variant<ViewAnswer, ViewEvent>> receiveAnswer();

    // Ends both directions, so that a receive that waits returns.
    void end();

private:
    using Parts = std::vector<std::string>;
    bool sendParts(const std::vector<std::string_view>& parts);
    std::optional<Parts> receiveParts();

    const int socket;
    std::mutex sending;
};

}  // namespace perch
