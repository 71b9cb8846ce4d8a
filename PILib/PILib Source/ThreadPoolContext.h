// A processing context for programs without a host: threads, handles, progress and cancel.
//
//   PILib::ThreadPoolContext context;                        // one thread per processor
//   context.onProgress([](float done) { ... });              // optional
//   Kestrel(context, output, input, map, fine, 20, 20);      // throws PILib::kUserCancelled after cancel()
//
// The threads are started once and kept until the context is destroyed. One thread uses the context at a
// time; only cancel() may be called from any thread, or from the progress function. Handles live until they
// are disposed, and must be disposed before the context goes.
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "PIContext.h"

namespace PILib {

class ThreadPoolContext final : public PIContext {
public:
    // Receives the share of the job that is done, from 0 to 1 (the tent blur's tables run a little ahead of
    // it). Called on the thread that entered the library. An int that it throws ends the job with that code.
    using ProgressFunction = std::function<void(float done)>;

    // `threads` counts the calling thread; 0 takes one per processor.
    explicit ThreadPoolContext(int threads = 0);
    ~ThreadPoolContext() override;

    void onProgress(ProgressFunction function);

    // The running job, or the next one, ends with kUserCancelled at its next progress report or abort check.
    void cancel() { cancelled.store(true, std::memory_order_relaxed); }
    void clearCancel() { cancelled.store(false, std::memory_order_relaxed); }

    bool isDraftMode() const override { return false; }
    void checkAbort() const override;
    void progress(int i, int n, float base, float span) const override;
    void setProgress(float start, float end) override;
    float getPixelAspectRatio() const override { return 1.0F; }
    char** newHandle(std::size_t size) const override;
    char** newLockedHandle(std::size_t size) const override;
    char* lockHandle(char** handle) const override;
    void unlockHandle(char** handle) const override;
    void disposeHandle(char** handle) const override;
    std::size_t getHandleSize(char** handle) const override;
    void resizeHandle(std::size_t size, char*** handle) const override;
    int getCurrentTime() const override { return 0; }
    int numProcessors() const override;

    // An exception that leaves `fn` is carried back and thrown here after all iterations have returned; where
    // several iterations fail, the lowest one's result counts.
    int multiThread(int count, void* refcon,
                    int (*fn)(void* refcon, int thread, int i, int iterations)) const override;

private:
    class Pool;

    std::unique_ptr<Pool> pool;
    ProgressFunction progressFunction;
    std::atomic<bool> cancelled = false;
    float progressStart = 0.0F;
    float progressEnd = 1.0F;
};

}  // namespace PILib
