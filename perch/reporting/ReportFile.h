// The report of a job under way, in a file that is whole at any time: it is replaced when frames have ended,
// once a second or less, and at the job's end. Whoever kills the program finds in it what was done before.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "FrameEnd.h"
#include "JobRecord.h"

namespace perch {

// On one thread. Failures are Error, where the file cannot be written.
class ReportFile {
public:
    // Writes the first. Of a job that is fed the frames that wait are left out until they are asked for.
    ReportFile(std::filesystem::path path, JobRecord record, bool isFed = false);

    // It waits, whatever has become of it before.
    void frameIsAsked(std::int32_t frame);

    // Of a frame that the record has.
    void frameEnds(std::int32_t frame, const FrameEnd& end);
    // What the effect says at the frame, which has not ended.
    void addMessage(std::int32_t frame, const std::string& message);
    void finish(const std::string& state, const std::string& error, const std::vector<std::string>& notes);

private:
    using Clock = std::chrono::steady_clock;

    FrameRecord& recordOf(std::int32_t frame) { return record.frames[places.at(frame)]; }
    void write();

    const std::filesystem::path path;
    JobRecord record;
    std::map<std::int32_t, std::size_t> places;  // in the record's frames, by number
    std::set<std::int32_t> unasked;
    const Clock::time_point start = Clock::now();
    Clock::time_point nextWrite;
};

// Brings the report of a job that is running to its end where the program could not: `state` and `why` are
// the job's, and those of the frame where there is one. Throws Error where the file cannot be written.
void closeReport(const std::filesystem::path& path, const std::string& state, const std::string& why,
                 std::optional<std::int32_t> frame);

}  // namespace perch
