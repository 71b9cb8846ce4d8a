// What became of the frames of a job, counted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace perch {

struct JobTotals {
    std::size_t done = 0;
    std::size_t current = 0;            // up to date before the job
    std::vector<std::int32_t> skipped;  // numbers of frames
    std::vector<std::int32_t> failed;
    std::size_t notRendered = 0;   // as the job ended before
    std::size_t triedAgain = 0;    // frames that needed it
    std::size_t refusedLines = 0;  // that asked for frames and named none

    bool isWhole() const { return failed.empty() && refusedLines == 0; }
};

// The last line of a job: "22 frames done, 1 skipped, 1 failed (12) in 3.2 s, 6.9 per second: out.####.png".
std::string summaryText(const JobTotals& totals, double seconds, const std::string& output);

}  // namespace perch
