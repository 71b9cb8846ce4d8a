// Tasks that run beside the caller, whose results are taken in the order in which they were started. The
// limit bounds the threads and the results that wait. Used by one thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <future>
#include <utility>

namespace perch {

template <typename T>
class OrderedTasks {
public:
    // `limit` tasks, at least one, are under way or have a result that was not taken.
    explicit OrderedTasks(std::size_t limit) : limit(limit) {}
    // Waits for the tasks under way; their results and exceptions are dropped.
    ~OrderedTasks() = default;
    OrderedTasks(const OrderedTasks&) = delete;
    OrderedTasks& operator=(const OrderedTasks&) = delete;

    bool isFull() const { return tasks.size() >= limit; }
    bool isEmpty() const { return tasks.empty(); }
    // Whether next() has nothing to wait for.
    bool isNextReady() const {
        return !tasks.empty() && tasks.front().wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    }

    // Starts task() on a thread of its own. Not to be called when full.
    template <typename F>
    void start(F task) {
        tasks.push_back(std::async(std::launch::async, std::move(task)));
    }

    // Waits for the oldest task, and returns its result or throws what it threw. Not to be called when empty.
    T next() {
        std::future<T> oldest = std::move(tasks.front());
        tasks.pop_front();
        return oldest.get();
    }

private:
    const std::size_t limit;
    std::deque<std::future<T>> tasks;  // each waits for its thread when it is destroyed
};

}  // namespace perch
