// How many threads of a job are at work at once, whatever they do: in the effect, reading or writing. Whoever
// asks first is first, so that nothing waits for ever, and a frame is written before a later one renders
// where there is one thread for both. Any thread.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

namespace perch {

// How many are meant by a number of threads that a user gives; 0: one per processor.
inline int threadsMeant(int given) {
    return given > 0 ? given : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

class ThreadBudget {
public:
    explicit ThreadBudget(int threads) : free(threads) {}

private:
    friend class ThreadTurn;
    friend class ThreadShare;

    std::uint64_t queue() {
        const std::lock_guard lock(mutex);
        waiting.insert(++lastPlace);
        return lastPlace;
    }
    void leave(std::uint64_t place) {
        const std::lock_guard lock(mutex);
        waiting.erase(place);
        changed.notify_all();
    }
    void take(std::uint64_t place) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this, place] { return free > 0 && *waiting.begin() == place; });
        waiting.erase(place);
        --free;
        changed.notify_all();
    }
    void give() {
        const std::lock_guard lock(mutex);
        ++free;
        changed.notify_all();
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::set<std::uint64_t> waiting;  // places in the queue
    std::uint64_t lastPlace = 0;
    int free;
};

// A place in the queue, which may be taken on one thread and used on another. It must be used or given up:
// those behind it wait. Without a budget nobody waits.
class ThreadTurn {
public:
    explicit ThreadTurn(ThreadBudget* budget)
        : budget(budget), place(budget != nullptr ? budget->queue() : 0) {}
    ThreadTurn(ThreadTurn&& other) noexcept
        : budget(std::exchange(other.budget, nullptr)), place(other.place) {}
    ThreadTurn& operator=(ThreadTurn&& other) noexcept {
        std::swap(budget, other.budget);
        std::swap(place, other.place);
        return *this;
    }
    ~ThreadTurn() {
        if (budget != nullptr) budget->leave(place);
    }

private:
    friend class ThreadShare;

    ThreadBudget* budget;
    std::uint64_t place;
};

// This thread is at work for as long as the object lives, or until it is given back; to begin with, it waits
// for its turn.
class ThreadShare {
public:
    explicit ThreadShare(ThreadTurn turn) : budget(std::exchange(turn.budget, nullptr)) {
        if (budget != nullptr) budget->take(turn.place);
    }
    explicit ThreadShare(ThreadBudget* budget) : ThreadShare(ThreadTurn(budget)) {}
    ~ThreadShare() { giveBack(); }
    ThreadShare(const ThreadShare&) = delete;
    ThreadShare& operator=(const ThreadShare&) = delete;

    // For a thread whose work goes on and takes no processor to speak of, as where it waits for a disk.
    void giveBack() {
        if (budget != nullptr) std::exchange(budget, nullptr)->give();
    }

private:
    ThreadBudget* budget;
};

}  // namespace perch
