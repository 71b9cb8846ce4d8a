// The library's only view of its host: draft mode, abort and progress, relocatable memory, time and threads.
//
// A context is given to every operation that may take long. All operations are for the thread that entered
// the library, except progress(), which the iteration with thread index 0 may call inside multiThread.
// Operations that fail, and progress and abort checks after the user has cancelled, throw an int: the host's
// error code.
#pragma once

#include <cstddef>

namespace PILib {

class PIContext {
public:
    // Slot order is given; append only.
    virtual ~PIContext() = default;

    // True when the host asks for a fast render of lower quality.
    virtual bool isDraftMode() const = 0;

    // Throws the host's code if the user has cancelled.
    virtual void checkAbort() const = 0;

    // Step `i` of `n` of a stage is reached. The stage covers [base, base + span] of the range that
    // setProgress chose.
    virtual void progress(int i, int n, float base, float span) const = 0;

    // Later progress calls subdivide [start, end] of the whole job, which runs from 0 to 1.
    virtual void setProgress(float start, float end) = 0;

    // Width over height of one pixel.
    virtual float getPixelAspectRatio() const = 0;

    // Relocatable blocks. A handle points to the block's address; lock it before using the address and unlock
    // it before resizing. The caller owns a handle until disposeHandle. newHandle throws when memory is
    // short.
    virtual char** newHandle(std::size_t size) const = 0;
    virtual char** newLockedHandle(std::size_t size) const = 0;
    virtual char* lockHandle(char** handle) const = 0;
    virtual void unlockHandle(char** handle) const = 0;
    virtual void disposeHandle(char** handle) const = 0;
    virtual std::size_t getHandleSize(char** handle) const = 0;

    // May replace the handle that `handle` points to.
    virtual void resizeHandle(std::size_t size, char*** handle) const = 0;

    // Time of the frame being rendered, in the host's units.
    virtual int getCurrentTime() const = 0;

    // Worker threads that multiThread can use, at least 1.
    virtual int numProcessors() const = 0;

    // Runs fn(refcon, thread, i, iterations) for i = 0 .. iterations - 1, possibly in parallel, and returns
    // when all have returned: 0, or the first non-zero result. `count` is the number of iterations, -1 for
    // one per processor. `thread` is the index of the calling thread, 0 on the one that reports progress. A
    // context that cannot run threads calls fn once with i = 0 and iterations = 1; that call must then do all
    // the work.
    virtual int multiThread(int count, void* refcon,
                            int (*fn)(void* refcon, int thread, int i, int iterations)) const = 0;

protected:
    PIContext() = default;
    PIContext(const PIContext&) = default;
    PIContext& operator=(const PIContext&) = default;
};

}  // namespace PILib
