// Events on their way to the pages that listen. Any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

#include "Exchange.h"

namespace perch {

class Events {
public:
    void publish(const ViewEvent& event);
    // Nothing comes any more.
    void end();
    bool hasEnded() const;

    // From its beginning on. Must not outlive the events.
    class Listener {
    public:
        explicit Listener(Events& events);
        ~Listener();
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;

        // Absent when none came in time.
        std::optional<ViewEvent> next(std::chrono::milliseconds patience);

    private:
        friend class Events;
        Events& events;
        std::deque<ViewEvent> waiting;
    };

private:
    mutable std::mutex mutex;
    std::condition_variable hasChanged;
    std::set<Listener*> listeners;
    bool isOver = false;
};

}  // namespace perch
