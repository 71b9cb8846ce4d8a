// Requests that wait for the thread of the effect, in their order. Of pictures of one kind the newest alone
// is rendered:
//
//     kind    waiting        under way       a request of serial 9 of kind "result" arrives:
//     result  7              8               7 is taken out, 8 is cancelled
//     layer                                  requests of other kinds stay
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "Exchange.h"

namespace perch {

struct QueuedRequest {
    ViewRequest request;
    std::string kind{};  // of picture; empty: the request is no picture's, and none overtakes it
    std::int64_t serial = 0;
};

class RequestQueue {
public:
    // Returns the requests that will not be taken, since newer ones are there. Any thread.
    std::vector<ViewRequest> add(QueuedRequest request);

    // Waits for a request, which is under way until the next call. Absent when the queue has ended.
    std::optional<QueuedRequest> next();
    // Set while the request under way is one that nobody waits for any more.
    const std::atomic<bool>& cancelled() const { return isOvertaken; }

    // Nothing is waited for any more, and what is under way is cancelled. Any thread.
    void end();

private:
    std::mutex mutex;
    std::condition_variable hasChanged;
    std::deque<QueuedRequest> waiting;
    std::map<std::string, std::int64_t> newest;  // serial, by kind
    std::string kindUnderWay;
    std::int64_t serialUnderWay = 0;
    std::atomic<bool> isOvertaken{false};
    bool hasEnded = false;
};

}  // namespace perch
