#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

#include "Notes.h"

namespace perch {

// What a job has done, complete also when it ends by an exception.
struct RenderReport {
    using Time = std::atomic<std::chrono::nanoseconds::rep>;

    std::atomic<std::size_t> framesWritten{0};
    std::atomic<std::int64_t> pixelsRead{0};
    std::atomic<std::int64_t> pixelsAbove{0};  // of those, with light that the codes do not reach
    std::atomic<std::int64_t> pixelsBelow{0};
    Notes notes;
    Time decodeTime{0};  // processor time
    Time renderTime{0};  // elapsed
    Time encodeTime{0};  // processor time
};

}  // namespace perch
