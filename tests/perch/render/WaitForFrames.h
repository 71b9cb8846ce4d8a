#pragma once

#include <chrono>
#include <cstddef>
#include <thread>

#include "RenderJob.h"

namespace perch::test {

// Until the job has written so many.
inline void waitForFrames(const RenderReport& report, std::size_t count) {
    while (report.framesWritten < count)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

}  // namespace perch::test
