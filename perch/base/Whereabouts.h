// What must be known of the program when the effect's code ends it: where it was, and what it leaves behind.
// A supervising parent shares the memory and reads it after any end, so there are no pointers and no locks in
// it. Without a parent the memory is the process's own and nobody reads it.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "SharedText.h"

namespace perch {

struct Whereabouts {
    static constexpr std::int64_t kNoFrame = std::numeric_limits<std::int64_t>::min();

    std::atomic<std::int32_t> supervisor{0};  // process identifier
    // The job's end, written last of all. Nothing else is an end.
    std::atomic<bool> isFinished{false};
    std::atomic<std::int32_t> status{0};
    SharedText<4096> sentence;  // why the job failed; empty where everything has been told

    std::atomic<std::int64_t> limit{0};  // nanoseconds that one command may take; 0: any time
    // In nanoseconds of the monotonic clock; 0: the effect's code does not run.
    std::atomic<std::int64_t> busySince{0};
    std::atomic<std::int64_t> frame{kNoFrame};  // of the command
    std::atomic<bool> hasWritten{false};        // a frame
    SharedText<256> effect;                     // file name; empty before one is loaded
    SharedText<64> command;                     // the last, also once it has ended
    SharedText<64> callback;                    // the last that the command called; empty without one
    SharedText<65536> findings;                 // of strict mode so far, a line each
    SharedText<4096> log;                       // file; empty without one
    SharedText<4096> report;                    // file of the job under way; empty without one
    // Of the job, if it ends now; empty once it is told. The frame under way has failed where the effect
    // does.
    SharedText<4096> lastLine;
    SharedText<4096> lastLineOfFailure;
    std::atomic<bool> isQuiet{false};  // that line is for the log alone
    // Of a job that answers by lines of JSON, what is to be answered where the effect ends it: the frames,
    // with commas between them, and the line of the whole job. Both are empty once that is done.
    SharedText<65536> unanswered;
    SharedText<65536> totals;

    // Files that are to be removed: those whose path is whole.
    struct Temporary {
        std::atomic<bool> isTaken{false};
        std::atomic<bool> isWhole{false};
        SharedText<4096> path;
    };
    std::array<Temporary, 32> temporaries;
};

// What this process writes to.
Whereabouts& whereabouts();
// From now on that is memory which it shares.
void useWhereabouts(Whereabouts& shared);

// The same clock in both processes.
std::int64_t monotonicNanoseconds();

// The effect's code runs for as long as the object lives. On the thread that sends commands.
class InEffect {
public:
    explicit InEffect(std::string_view command, std::int64_t frame = Whereabouts::kNoFrame);
    ~InEffect();
    InEffect(const InEffect&) = delete;
    InEffect& operator=(const InEffect&) = delete;
};

// A callback is called; the text must stay for the life of the program. Any thread.
void noteCallback(const char* callback);
void noteFinding(std::string_view line);

// The file is to be removed where the program ends before it is forgotten. Any thread. More than there are
// places for stay behind; the next run for the same names removes them.
void noteTemporary(const std::string& path);
void forgetTemporary(const std::string& path);

}  // namespace perch
