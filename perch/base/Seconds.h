#pragma once

#include <chrono>

namespace perch {

inline double secondsOf(std::chrono::nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace perch
