// What the user is told of a job under way and at its end, on standard error except for JSON.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "FrameEnd.h"
#include "FramePlan.h"
#include "JobTotals.h"
#include "Notes.h"
#include "ProgressForm.h"

namespace perch {

// The line by which schedulers of Open Job Description are told of a failure.
std::string openJdFailure(std::string_view sentence);
// The line of JSON that tells of a frame that came to nothing.
std::string failureAsJson(std::int32_t frame, const std::string& message);

// On one thread.
class JobDisplay {
public:
    // A quiet one tells of failures alone, and all else to the log, a verbose one of each frame's files and
    // times.
    JobDisplay(ProgressForm form, bool isQuiet, bool isVerbose = false);
    ~JobDisplay();
    JobDisplay(const JobDisplay&) = delete;
    JobDisplay& operator=(const JobDisplay&) = delete;

    // Before the frames, which are where `output` says. `plan` outlives the display. Of a job that is fed
    // they come in any order, several times or never.
    void begin(const FramePlan& plan, const std::string& output, bool isFed = false);
    // Of a job that is fed: places in the plan, in the order in which their frames will end.
    void framesAreAsked(const std::vector<std::size_t>& asked);
    void frameBegins(std::size_t index);  // of the plan's frames
    // Never throws; what cannot be printed is told when the frame ends. An effect may tell less than before,
    // where it begins another part of its work: what is shown stays then.
    void frameProgresses(double fraction);
    void frameEnds(const FrameEnd& end);
    // The effect ends the job in the middle of the frame under way.
    void effectBreaks(const std::string& sentence);
    // Tells what became of the frames, and why the job failed where it did.
    void finish(const std::string& failure = "");
    // The same for a job that an error ends. Its sentence and the last line behind it are left to who starts
    // the program's work: an effect can see to it that nothing can be told from here any more.
    void finishBeforeFailure();

    // Of a frame that was asked for while the job is under way and is not rendered: its file is up to date,
    // or the job does not have it; and of a line that asks for no frames.
    void tellCurrent(const FrameFiles& files) const;
    void refuseFrame(std::int32_t frame, const std::string& message);
    void refuseLine(const std::string& line, const std::string& message);

    // What the effect says at a command.
    void tellMessage(std::string_view command, std::string_view message);
    // What is known to be no failure.
    void tellNote(const std::string& sentence);
    void tellNotes(const std::vector<Note>& notes);
    // Takes the line of progress off the terminal.
    void clearLine();

    const JobTotals& totals() const { return counted; }
    // The number of the frame under way that a command is of; absent where it is of none.
    std::optional<std::int32_t> frameOf(std::string_view command) const;

private:
    void showLine();
    void printTotals();
    void printOpenJd(double framesDone);
    void tellFrame(const FrameEnd& end) const;
    void printJson(const FrameEnd& end) const;
    // To the log alone where the job is quiet.
    void tell(const std::string& sentence) const;
    // For the parent to tell where the program ends before it can.
    void keepLastLine() const;
    // If the effect ends the job now.
    std::vector<std::int32_t> lostFrames() const;
    std::string totalsAsJson(const JobTotals& totals) const;
    std::string lastLineOf(JobTotals totals) const;
    std::size_t notRendered(const JobTotals& totals) const;
    double seconds() const;

    const ProgressForm form;
    const bool isQuiet;
    const bool isVerbose;
    const bool isTerminal;
    const FramePlan* plan = nullptr;
    std::string output;
    bool isFed = false;
    std::exception_ptr unprintable;  // why progress could not be printed
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    double lastLine = 0;  // seconds after the start
    int lastPercent = -1;
    std::size_t current = 0;
    bool isUnderWay = false;              // the current frame
    std::deque<std::int32_t> unanswered;  // frames asked for that have not ended
    double furthest = 0;                  // fraction of the current frame
    std::string shown;                    // on the terminal
    JobTotals counted;
};

}  // namespace perch
