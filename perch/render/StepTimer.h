// How long a step of a frame takes, by a clock of the system.
#pragma once

#include <time.h>

#include <atomic>
#include <chrono>

namespace perch {

inline std::chrono::nanoseconds timeBy(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

// Adds the time of its life to a job's and to a frame's.
class StepTimer {
public:
    StepTimer(clockid_t clock, std::atomic<std::chrono::nanoseconds::rep>& ofJob,
              std::chrono::nanoseconds& ofFrame)
        : clock(clock), ofJob(ofJob), ofFrame(ofFrame) {}
    ~StepTimer() {
        const std::chrono::nanoseconds time = timeBy(clock) - start;
        ofJob += time.count();
        ofFrame += time;
    }
    StepTimer(const StepTimer&) = delete;
    StepTimer& operator=(const StepTimer&) = delete;

private:
    const clockid_t clock;
    std::atomic<std::chrono::nanoseconds::rep>& ofJob;
    std::chrono::nanoseconds& ofFrame;
    const std::chrono::nanoseconds start = timeBy(clock);
};

}  // namespace perch
