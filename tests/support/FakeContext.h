// A context for tests: notes what it is told, runs iterations in any order or on real threads, fails on
// request, and keeps account of its handles.
//
// Set the public fields before the call under test and read the notes after it. One thread uses a context at
// a time, except iterations on real threads; of those, only iteration 0 may report progress.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Errors.h"
#include "PIContext.h"

struct ProgressCall {
    int i;
    int n;
    float base;
    float span;

    friend bool operator==(const ProgressCall&, const ProgressCall&) = default;
};

class FakeContext : public PILib::PIContext {
public:
    // What the host answers.
    bool draftMode = false;
    float pixelAspectRatio = 1.0F;
    int currentTime = 0;

    // How multiThread runs. Iteration i is given the thread index i.
    int processors = 1;
    std::vector<int> order;    // iterations in the order they are run; empty: ascending
    bool realThreads = false;  // each iteration on a thread of its own, iteration 0 on the caller's
    bool canThread = true;     // false: fn is called once, with i = 0 and iterations = 1
    int multiThreadError = 0;  // what multiThread answers, if not 0, instead of running anything

    // Notes.
    std::vector<std::pair<float, float>> ranges;      // of setProgress
    mutable std::vector<ProgressCall> progressCalls;  // the one that failed included
    mutable int abortChecks = 0;
    mutable int lastIterations = 0;                 // of the last multiThread
    mutable std::vector<std::string> handleFaults;  // each misuse of a handle

    // The call-th such call from the start, counted from 1, throws `code`. 0 means none.
    void failAtProgress(int call, int code) { progressFailure = {call, code}; }
    void failAtCheckAbort(int call, int code) { abortFailure = {call, code}; }
    // The call-th allocation or growth of a handle throws kOutOfMemory.
    void failAtAllocation(int call) { allocationFailure = {call, PILib::kOutOfMemory}; }

    int liveHandles() const { return static_cast<int>(blocks.size()); }
    int lockedHandles() const;

    bool isDraftMode() const override { return draftMode; }
    void checkAbort() const override;
    void progress(int i, int n, float base, float span) const override;
    void setProgress(float start, float end) override { ranges.emplace_back(start, end); }
    float getPixelAspectRatio() const override { return pixelAspectRatio; }
    char** newHandle(std::size_t size) const override;
    char** newLockedHandle(std::size_t size) const override;
    char* lockHandle(char** handle) const override;
    void unlockHandle(char** handle) const override;
    void disposeHandle(char** handle) const override;
    std::size_t getHandleSize(char** handle) const override;
    // Always replaces the handle and moves the block, the most that a host may do.
    void resizeHandle(std::size_t size, char*** handle) const override;
    int getCurrentTime() const override { return currentTime; }
    int numProcessors() const override { return processors; }
    int multiThread(int count, void* refcon,
                    int (*fn)(void* refcon, int thread, int i, int iterations)) const override;

private:
    struct Failure {
        int call = 0;
        int code = 0;
    };
    struct Block {
        std::vector<char> bytes;
        char* address = nullptr;  // a handle points here
        std::size_t size = 0;
        int locks = 0;
    };
    // Null, and a fault noted, where `handle` is none of this context's.
    Block* find(char** handle, const char* operation) const;

    Failure progressFailure;
    Failure abortFailure;
    Failure allocationFailure;
    mutable int allocations = 0;
    mutable std::vector<std::unique_ptr<Block>> blocks;
};
