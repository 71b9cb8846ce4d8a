#include "ThreadPoolContext.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <new>
#include <thread>
#include <utility>
#include <vector>

#include "Errors.h"

namespace PILib {

// The calling thread works as thread 0 and always takes the first iteration, so that every job reports
// progress; the others sleep between jobs. The rest is handed out one by one.
class ThreadPoolContext::Pool {
public:
    explicit Pool(int threads) {
        workers.reserve(static_cast<std::size_t>(threads) - 1);
        try {
            for (int index = 1; index < threads; ++index)
                workers.emplace_back([this, index] { serve(index); });
        } catch (...) {
            stop();
            throw;
        }
    }
    ~Pool() { stop(); }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    int threads() const { return static_cast<int>(workers.size()) + 1; }

    int run(int iterations, void* refcon, int (*fn)(void*, int, int, int)) {
        {
            const std::lock_guard lock(mutex);
            job = {fn, refcon, iterations};
            untaken = 1;
            failed = Failure{};
            busy = static_cast<int>(workers.size());
            ++generation;
        }
        wake.notify_all();
        work(0);
        std::unique_lock lock(mutex);
        done.wait(lock, [this] { return busy == 0; });
        if (failed.exception) std::rethrow_exception(std::exchange(failed.exception, nullptr));
        return failed.code;
    }

private:
    struct Job {
        int (*fn)(void*, int, int, int);
        void* refcon;
        int iterations;
    };
    struct Failure {
        int iteration = -1;
        int code = 0;
        std::exception_ptr exception;
    };

    void serve(int index) {
        unsigned served = 0;
        std::unique_lock lock(mutex);
        for (;;) {
            wake.wait(lock, [&] { return stopping || generation != served; });
            if (stopping) return;
            served = generation;
            lock.unlock();
            work(index);
            lock.lock();
            if (--busy == 0) done.notify_one();
        }
    }

    void work(int thread) {
        for (std::int64_t next = thread == 0 ? 0 : take(); next < job.iterations; next = take()) {
            const auto i = static_cast<int>(next);
            Failure outcome{i, 0, nullptr};
            try {
                outcome.code = job.fn(job.refcon, thread, i, job.iterations);
            } catch (...) {
                outcome.exception = std::current_exception();
            }
            if (outcome.code == 0 && !outcome.exception) continue;
            const std::lock_guard lock(mutex);
            if (failed.iteration < 0 || i < failed.iteration) failed = std::move(outcome);
        }
    }

    std::int64_t take() { return untaken.fetch_add(1, std::memory_order_relaxed); }

    void stop() {
        {
            const std::lock_guard lock(mutex);
            stopping = true;
        }
        wake.notify_all();
        for (auto& worker : workers)
            worker.join();
    }

    std::mutex mutex;
    std::condition_variable wake;
    std::condition_variable done;
    Job job{};
    std::atomic<std::int64_t> untaken = 0;  // runs past the count by up to one per thread
    Failure failed;
    int busy = 0;
    unsigned generation = 0;
    bool stopping = false;
    std::vector<std::thread> workers;
};

namespace {

// What a handle points to; its first member is the block's address, as the handle's users expect.
struct HandleBlock {
    char* data;
    std::size_t size;
};

HandleBlock* BlockOf(char** handle) {
    return reinterpret_cast<HandleBlock*>(handle);
}

int ThreadsFor(int requested) {
    if (requested > 0) return requested;
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

}  // namespace

ThreadPoolContext::ThreadPoolContext(int threads) : pool(std::make_unique<Pool>(ThreadsFor(threads))) {}

ThreadPoolContext::~ThreadPoolContext() = default;

void ThreadPoolContext::onProgress(ProgressFunction function) {
    progressFunction = std::move(function);
}

void ThreadPoolContext::checkAbort() const {
    if (cancelled.load(std::memory_order_relaxed)) throw kUserCancelled;
}

void ThreadPoolContext::progress(int i, int n, float base, float span) const {
    if (progressFunction && n > 0) {
        const float stage = base + span * static_cast<float>(i) / static_cast<float>(n);
        progressFunction(progressStart + stage * (progressEnd - progressStart));
    }
    checkAbort();
}

void ThreadPoolContext::setProgress(float start, float end) {
    progressStart = start;
    progressEnd = end;
}

char** ThreadPoolContext::newHandle(std::size_t size) const {
    auto* const block = new (std::nothrow) HandleBlock{nullptr, size};
    if (block == nullptr) throw kOutOfMemory;
    block->data = static_cast<char*>(std::malloc(std::max<std::size_t>(size, 1)));
    if (block->data == nullptr) {
        delete block;
        throw kOutOfMemory;
    }
    return &block->data;
}

// Blocks never move but in resizeHandle, so that locks need no count.
char** ThreadPoolContext::newLockedHandle(std::size_t size) const {
    return newHandle(size);
}

char* ThreadPoolContext::lockHandle(char** handle) const {
    return *handle;
}

void ThreadPoolContext::unlockHandle(char** /*handle*/) const {}

void ThreadPoolContext::disposeHandle(char** handle) const {
    if (handle == nullptr) return;
    std::free(*handle);
    delete BlockOf(handle);
}

std::size_t ThreadPoolContext::getHandleSize(char** handle) const {
    return BlockOf(handle)->size;
}

void ThreadPoolContext::resizeHandle(std::size_t size, char*** handle) const {
    HandleBlock* const block = BlockOf(*handle);
    auto* const moved = static_cast<char*>(std::realloc(block->data, std::max<std::size_t>(size, 1)));
    if (moved == nullptr) throw kOutOfMemory;
    *block = {moved, size};
}

int ThreadPoolContext::numProcessors() const {
    return pool->threads();
}

int ThreadPoolContext::multiThread(int count, void* refcon, int (*fn)(void*, int, int, int)) const {
    const int iterations = count < 1 ? numProcessors() : count;
    if (iterations == 1) return fn(refcon, 0, 0, 1);
    return pool->run(iterations, refcon, fn);
}

}  // namespace PILib
