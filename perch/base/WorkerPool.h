// Threads that stay for the life of the effect and share out the iterations of one call.
// The calling thread takes part as thread 0, whatever a budget leaves; the others take part where it leaves
// them a share. A call from within an iteration runs on its own thread alone.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "ThreadBudget.h"

namespace perch {

class WorkerPool {
public:
    // Threads that take part, the caller included; 0: one per processor. The threads start at the first run.
    // A budget outlives the pool.
    explicit WorkerPool(int threads, ThreadBudget* budget = nullptr);
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    int threadCount() const { return threads; }
    // The workers that have started, by the numbers that the system has for them; on Linux.
    std::set<std::int32_t> systemThreads() const;
    // Calls task(thread, i) once for each i from 0 to count - 1, in any order. Where a task throws, no
    // further iteration begins, and the first exception comes back once those under way have ended.
    using Task = std::function<void(std::int32_t thread, std::int32_t i)>;
    void run(std::int32_t count, const Task& task);

private:
    void start();
    void work(std::int32_t thread);
    void takeIterations(std::int32_t thread) noexcept;

    const int threads;
    ThreadBudget* const budget;
    std::vector<std::thread> workers;
    std::mutex runMutex;       // held by the call that the workers serve
    mutable std::mutex mutex;  // guards what follows
    std::condition_variable wake;
    std::condition_variable done;
    std::uint64_t generation = 0;
    bool isOpen = false;  // a run that has iterations left
    int busy = 0;         // workers that take part in it
    bool isStopping = false;
    const Task* task = nullptr;
    std::exception_ptr failure;  // the first of the run
    std::set<std::int32_t> systemNumbers;
    std::int32_t count = 0;
    std::atomic<std::int64_t> next{0};  // runs past count by up to one per thread
};

}  // namespace perch
