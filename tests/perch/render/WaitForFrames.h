#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <thread>

#include "RenderJob.h"

namespace perch::test {

// Until the job has written so many; a test that would wait for ever fails.
inline void waitForFrames(const RenderReport& report, std::size_t count) {
    const auto latest = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (report.framesWritten < count && std::chrono::steady_clock::now() < latest)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_GE(report.framesWritten, count);
}

}  // namespace perch::test
