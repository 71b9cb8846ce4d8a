// What is said of a job under way.
#pragma once

#include <cstddef>
#include <string>

namespace perch {

// How far a job is.
struct JobProgress {
    std::size_t number = 1;  // of the frame under way, from 1
    std::size_t count = 1;
    double fraction = 0;  // of that frame, 0 to 1
    double seconds = 0;   // since the job began
};

// "frame 3 of 24:  10%", and once there is something to go by ", 1.2 per second, 0:18 left".
std::string progressText(const JobProgress& progress);

}  // namespace perch
