#include "Events.h"

#include <utility>

namespace perch {

// Of a page that does not read; the oldest are dropped.
constexpr std::size_t kMostWaiting = 1000;

void Events::publish(const ViewEvent& event) {
    const std::lock_guard lock(mutex);
    for (Listener* const listener : listeners) {
        listener->waiting.push_back(event);
        if (listener->waiting.size() > kMostWaiting) listener->waiting.pop_front();
    }
    hasChanged.notify_all();
}

void Events::end() {
    const std::lock_guard lock(mutex);
    isOver = true;
    hasChanged.notify_all();
}

bool Events::hasEnded() const {
    const std::lock_guard lock(mutex);
    return isOver;
}

Events::Listener::Listener(Events& events) : events(events) {
    const std::lock_guard lock(events.mutex);
    events.listeners.insert(this);
}

Events::Listener::~Listener() {
    const std::lock_guard lock(events.mutex);
    events.listeners.erase(this);
}

std::optional<ViewEvent> Events::Listener::next(std::chrono::milliseconds patience) {
    std::unique_lock lock(events.mutex);
    events.hasChanged.wait_for(lock, patience, [this] { return events.isOver || !waiting.empty(); });
    if (waiting.empty()) return std::nullopt;
    ViewEvent event = std::move(waiting.front());
    waiting.pop_front();
    return event;
}

}  // namespace perch
