// How one frame of a job has ended.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace perch {

struct FrameEnd {
    enum class State { Done, Failed };

    std::size_t index = 0;  // of the plan's frames
    State state = State::Done;
    std::string message{};  // why it failed
    int retries = 0;
    std::chrono::nanoseconds decodeTime{0};  // processor time
    std::chrono::nanoseconds renderTime{0};  // elapsed
    std::chrono::nanoseconds encodeTime{0};  // processor time
};

}  // namespace perch
