// The frames of a job, where somebody asks for them while it is under way: lines like those of --frames.
//
//     standard input        the job              standard output
//     1          ------->   renders frame 1  ->  {"frame":1,"state":"done",...}
//     2,3        ------->   renders both     ->  {"frame":2,...}  {"frame":3,...}
//     x          ------->                    ->  {"line":"x","state":"failed","message":...}
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "FramePlan.h"
#include "InputLines.h"
#include "JobDisplay.h"

namespace perch {

class FrameFeed {
public:
    // `plan` and `display` outlive the feed.
    FrameFeed(const FramePlan& plan, const InputLines& lines, JobDisplay& display);

    // Waits for a line with frames of the plan, and returns their places in it, with those of all lines that
    // are there by then, 1000 at most, so that reading, rendering and writing overlap. What cannot be
    // rendered is answered at once. Absent at the end.
    std::optional<std::vector<std::size_t>> next();

private:
    void take(const std::string& line);
    void take(std::int32_t frame);

    InputLines lines;
    JobDisplay& display;
    std::deque<std::size_t> asked;                          // and not handed out
    std::map<std::int32_t, std::size_t> places;             // in the plan, by number
    std::map<std::int32_t, const FrameFiles*> currentOnes;  // that are up to date
};

}  // namespace perch
