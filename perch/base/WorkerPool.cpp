#include "WorkerPool.h"

#if defined(__linux__)
#include <pthread.h>
#include <unistd.h>
#endif

#include <utility>

namespace perch {
namespace {

// Set while this thread runs iterations of some pool.
thread_local bool isIterating = false;

}  // namespace

WorkerPool::WorkerPool(int threads, ThreadBudget* budget) : threads(threadsMeant(threads)), budget(budget) {}

WorkerPool::~WorkerPool() {
    {
        const std::lock_guard lock(mutex);
        isStopping = true;
    }
    wake.notify_all();
    for (std::thread& worker : workers)
        worker.join();
}

void WorkerPool::run(std::int32_t iterations, const Task& body) {
    if (iterations <= 0) return;
    if (isIterating || iterations == 1 || threads == 1) {
        for (std::int32_t i = 0; i < iterations; ++i)
            body(0, i);
        return;
    }
    const std::lock_guard serial(runMutex);
    if (workers.empty()) start();
    {
        const std::lock_guard lock(mutex);
        task = &body;
        count = iterations;
        next = 0;
        isOpen = true;
        ++generation;
    }
    wake.notify_all();
    takeIterations(0);
    std::unique_lock lock(mutex);
    isOpen = false;
    done.wait(lock, [this] { return busy == 0; });
    if (failure != nullptr) std::rethrow_exception(std::exchange(failure, nullptr));
}

void WorkerPool::start() {
    workers.reserve(static_cast<std::size_t>(threads - 1));
    for (std::int32_t thread = 1; thread < threads; ++thread)
        workers.emplace_back([this, thread] { work(thread); });
}

std::set<std::int32_t> WorkerPool::systemThreads() const {
    const std::lock_guard lock(mutex);
    return systemNumbers;
}

void WorkerPool::work(std::int32_t thread) {
    std::uint64_t seen = 0;
    std::unique_lock lock(mutex);
#if defined(__linux__)
    pthread_setname_np(pthread_self(), "perch-worker");  // or it has the name of the thread that started it
    systemNumbers.insert(gettid());
#endif
    for (;;) {
        wake.wait(lock, [&] { return isStopping || (isOpen && generation != seen); });
        if (isStopping) return;
        lock.unlock();
        const ThreadShare share(budget);
        lock.lock();
        // The run may have ended while others were at work.
        if (!isOpen || generation == seen) continue;
        seen = generation;
        ++busy;
        lock.unlock();
        takeIterations(thread);
        lock.lock();
        if (--busy == 0) done.notify_one();
    }
}

void WorkerPool::takeIterations(std::int32_t thread) noexcept {
    isIterating = true;
    try {
        for (std::int64_t i = next++; i < count; i = next++)
            (*task)(thread, static_cast<std::int32_t>(i));
    } catch (...) {
        next = count;
        const std::lock_guard lock(mutex);
        if (failure == nullptr) failure = std::current_exception();
    }
    isIterating = false;
}

}  // namespace perch
