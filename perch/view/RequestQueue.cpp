#include "RequestQueue.h"

#include <algorithm>
#include <utility>

namespace perch {

std::vector<ViewRequest> RequestQueue::add(QueuedRequest request) {
    const std::lock_guard lock(mutex);
    std::vector<ViewRequest> overtaken;
    if (!request.kind.empty()) {
        std::int64_t& serial = newest.try_emplace(request.kind, request.serial).first->second;
        if (request.serial < serial) return {std::move(request.request)};
        serial = request.serial;
        std::erase_if(waiting, [&](QueuedRequest& other) {
            const bool isOlder = other.kind == request.kind && other.serial < serial;
            if (isOlder) overtaken.push_back(std::move(other.request));
            return isOlder;
        });
        if (kindUnderWay == request.kind && serialUnderWay < serial) isOvertaken = true;
    }
    waiting.push_back(std::move(request));
    hasChanged.notify_one();
    return overtaken;
}

std::optional<QueuedRequest> RequestQueue::next() {
    std::unique_lock lock(mutex);
    kindUnderWay.clear();
    hasChanged.wait(lock, [this] { return hasEnded || !waiting.empty(); });
    if (hasEnded) return std::nullopt;
    QueuedRequest request = std::move(waiting.front());
    waiting.pop_front();
    kindUnderWay = request.kind;
    serialUnderWay = request.serial;
    isOvertaken = false;
    return request;
}

void RequestQueue::end() {
    const std::lock_guard lock(mutex);
    hasEnded = true;
    isOvertaken = true;
    hasChanged.notify_one();
}

}  // namespace perch
