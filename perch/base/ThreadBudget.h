// How many threads of a job are at work at once, whatever they do: in the effect, reading or writing. Any
// thread.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace perch {

// How many are meant by a number of threads that a user gives; 0: one per processor.
inline int threadsMeant(int given) {
    return given > 0 ? given : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

class ThreadBudget {
public:
    explicit ThreadBudget(int threads) : free(threads) {}

    // Waits until one may be at work.
    void take() {
        std::unique_lock lock(mutex);
        given.wait(lock, [this] { return free > 0; });
        --free;
    }
    void give() {
        {
            const std::lock_guard lock(mutex);
            ++free;
        }
        given.notify_one();
    }

private:
    std::mutex mutex;
    std::condition_variable given;
    int free;
};

// This thread is at work for as long as the object lives. Without a budget any number may be.
class ThreadShare {
public:
    explicit ThreadShare(ThreadBudget* budget) : budget(budget) {
        if (budget != nullptr) budget->take();
    }
    ~ThreadShare() {
        if (budget != nullptr) budget->give();
    }
    ThreadShare(const ThreadShare&) = delete;
    ThreadShare& operator=(const ThreadShare&) = delete;

private:
    ThreadBudget* const budget;
};

}  // namespace perch
