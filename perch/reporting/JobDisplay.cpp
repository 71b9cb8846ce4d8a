#include "JobDisplay.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "Console.h"
#include "ProgressText.h"
#include "Seconds.h"
#include "Whereabouts.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

constexpr char kClearToTheEnd[] = "\x1B[K";
constexpr double kSecondsBetweenLines = 10;  // of a log

bool isOfFrame(std::string_view command) {
    return command == "RENDER" || command.starts_with("FRAME_");
}

// Names of files have no certain encoding.
std::string lineOf(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

void printLine(const Json& json) {
    printResult(lineOf(json));
}

// What is too long for its place is left out: a part of it would be read as something else.
template <std::size_t N>
void keep(SharedText<N>& place, const std::string& text) {
    place.set(text.size() < N ? text : "");
}

}  // namespace

std::string openJdFailure(std::string_view sentence) {
    return fmt::format("openjd_fail: {}\n", printable(sentence));
}

std::string failureAsJson(std::int32_t frame, const std::string& message) {
    return lineOf({{"frame", frame}, {"state", "failed"}, {"message", message}});
}

JobDisplay::JobDisplay(ProgressForm form, bool isQuiet, bool isVerbose)
    : form(form),
      isQuiet(isQuiet),
      isVerbose(isVerbose),
      isTerminal(!isQuiet && isatty(STDERR_FILENO) == 1) {}

JobDisplay::~JobDisplay() {
    clearLine();
}

void JobDisplay::begin(const FramePlan& planned, const std::string& place, bool fed) {
    plan = &planned;
    output = place;
    isFed = fed;
    counted.skipped = planned.skipped;
    counted.current = planned.current.size();
    start = std::chrono::steady_clock::now();
    whereabouts().isQuiet = isQuiet;
    keepLastLine();
}

void JobDisplay::framesAreAsked(const std::vector<std::size_t>& asked) {
    for (const std::size_t place : asked)
        unanswered.push_back(plan->frames[place].frame);
    keepLastLine();
}

void JobDisplay::frameBegins(std::size_t index) {
    current = index;
    furthest = 0;
    isUnderWay = true;
    keepLastLine();
    showLine();
}

void JobDisplay::frameProgresses(double fraction) {
    if (unprintable != nullptr) return;
    furthest = std::max(furthest, fraction);
    try {
        showLine();
    } catch (...) {
        unprintable = std::current_exception();
    }
}

void JobDisplay::frameEnds(const FrameEnd& end) {
    const FrameFiles& files = plan->frames[end.index];
    const bool isFailed = end.state == FrameEnd::State::Failed;
    if (isFailed) {
        counted.failed.push_back(files.frame);
    } else {
        ++counted.done;
    }
    if (end.retries > 0) ++counted.triedAgain;
    if (end.index == current) isUnderWay = false;
    if (!unanswered.empty()) unanswered.pop_front();
    keepLastLine();
    if (unprintable != nullptr) std::rethrow_exception(std::exchange(unprintable, nullptr));
    if (form == ProgressForm::Json) printJson(end);
    if (form == ProgressForm::OpenJd) printOpenJd(static_cast<double>(counted.done + counted.failed.size()));
    if (isVerbose && !isFailed) return tellFrame(end);
    if (form == ProgressForm::Lines && !isFailed)
        tell(fmt::format("frame {} done, {} of {}", files.frame, end.index + 1, plan->frames.size()));
}

void JobDisplay::tellFrame(const FrameEnd& end) const {
    const FrameFiles& files = plan->frames[end.index];
    std::string read = files.input.string();
    for (const auto& [index, path] : files.layers)
        read += ", " + path.string();
    say(fmt::format(
        "frame {} done, {} of {}: {} -> {}; decoded in {:.3f} s, rendered in {:.3f} s, encoded in {:.3f} s",
        files.frame, end.index + 1, plan->frames.size(), read, files.output.string(),
        secondsOf(end.decodeTime), secondsOf(end.renderTime), secondsOf(end.encodeTime)));
}

// Whole percents, each once, for schedulers that ask somebody at each.
void JobDisplay::printOpenJd(double framesDone) {
    const int percent = static_cast<int>(100 * framesDone / static_cast<double>(plan->frames.size()));
    if (percent <= lastPercent) return;
    lastPercent = percent;
    printResult(fmt::format("openjd_progress: {}\n", percent));
}

void JobDisplay::effectBreaks(const std::string& sentence) {
    for (const std::int32_t frame : lostFrames()) {
        counted.failed.push_back(frame);
        if (form == ProgressForm::Json) printResult(failureAsJson(frame, sentence));
    }
    isUnderWay = false;
    unanswered.clear();
}

void JobDisplay::finish(const std::string& failure) {
    clearLine();
    if (plan->isSequence) tell(lastLineOf(counted));
    Whereabouts& at = whereabouts();
    for (auto* const line : {&at.lastLine, &at.lastLineOfFailure})
        line->set("");
    printTotals();
    if (form == ProgressForm::OpenJd && !failure.empty()) printResult(openJdFailure(failure));
}

void JobDisplay::finishBeforeFailure() {
    clearLine();
    keepLastLine();
    printTotals();
}

// For programs.
void JobDisplay::printTotals() {
    if (form == ProgressForm::Json) printResult(totalsAsJson(counted));
    if (form == ProgressForm::OpenJd)
        printResult(fmt::format("openjd_status: {}\n", printable(lastLineOf(counted))));
    // Nobody is to print them once more.
    for (auto* const answer : {&whereabouts().unanswered, &whereabouts().totals})
        answer->set("");
}

std::string JobDisplay::totalsAsJson(const JobTotals& totals) const {
    return lineOf({{"done", totals.done},
                   {"upToDate", totals.current},
                   {"skipped", totals.skipped},
                   {"failed", totals.failed},
                   {"notRendered", notRendered(totals)},
                   {"refusedLines", totals.refusedLines},
                   {"seconds", seconds()}});
}

// Frames that were asked for come to nothing without the effect. Of others, only the one under way does.
std::vector<std::int32_t> JobDisplay::lostFrames() const {
    if (isFed) return {unanswered.begin(), unanswered.end()};
    if (isUnderWay) return {plan->frames[current].frame};
    return {};
}

void JobDisplay::keepLastLine() const {
    Whereabouts& at = whereabouts();
    const std::vector<std::int32_t> lost = lostFrames();
    JobTotals failing = counted;
    failing.failed.insert(failing.failed.end(), lost.begin(), lost.end());
    if (form == ProgressForm::Json) {
        keep(at.unanswered, fmt::format("{}", fmt::join(lost, ",")));
        keep(at.totals, totalsAsJson(failing));
    }
    if (!plan->isSequence) return;
    at.lastLine.set(lastLineOf(counted));
    at.lastLineOfFailure.set(lastLineOf(failing));
}

std::string JobDisplay::lastLineOf(JobTotals totals) const {
    totals.notRendered = notRendered(totals);
    return summaryText(totals, seconds(), output);
}

std::size_t JobDisplay::notRendered(const JobTotals& totals) const {
    return isFed ? 0 : plan->frames.size() - totals.done - totals.failed.size();
}

void JobDisplay::tellCurrent(const FrameFiles& files) const {
    printLine({{"frame", files.frame}, {"state", "upToDate"}, {"output", files.output.string()}});
}

void JobDisplay::refuseFrame(std::int32_t frame, const std::string& message) {
    counted.failed.push_back(frame);
    printResult(failureAsJson(frame, message));
}

void JobDisplay::refuseLine(const std::string& line, const std::string& message) {
    ++counted.refusedLines;
    printLine({{"line", line}, {"state", "failed"}, {"message", message}});
}

void JobDisplay::tellMessage(std::string_view command, std::string_view message) {
    clearLine();
    const std::optional<std::int32_t> frame = frameOf(command);
    tell(fmt::format("{}{}: \"{}\"", frame ? fmt::format("frame {}: ", *frame) : "", command, message));
}

std::optional<std::int32_t> JobDisplay::frameOf(std::string_view command) const {
    if (plan == nullptr || !isOfFrame(command) || plan->frames.empty()) return std::nullopt;
    return plan->frames[current].frame;
}

void JobDisplay::tellNote(const std::string& sentence) {
    clearLine();
    tell(sentence);
}

void JobDisplay::tell(const std::string& sentence) const {
    if (isQuiet) {
        sayInLog(sentence);
    } else {
        say(sentence);
    }
}

void JobDisplay::tellNotes(const std::vector<Note>& notes) {
    for (const Note& note : notes)
        tellNote((note.isWarning ? "warning: " : "note: ") + note.sentence);
}

void JobDisplay::clearLine() {
    if (!shown.empty()) sayAsItIs(std::string("\r") + kClearToTheEnd);
    shown.clear();
}

void JobDisplay::showLine() {
    if (form == ProgressForm::OpenJd) printOpenJd(static_cast<double>(current) + furthest);
    if (form != ProgressForm::Auto || isVerbose) return;
    const std::string text = progressText(
        {.number = current + 1, .count = plan->frames.size(), .fraction = furthest, .seconds = seconds()});
    if (isTerminal) {
        if (text == shown) return;
        shown = text;
        sayAsItIs('\r' + shown + kClearToTheEnd);
    }
    if (seconds() - lastLine < kSecondsBetweenLines) return;
    lastLine = seconds();
    if (isTerminal) {
        sayInLog(text);
    } else {
        tell(text);
    }
}

void JobDisplay::printJson(const FrameEnd& end) const {
    const FrameFiles& files = plan->frames[end.index];
    const bool isFailed = end.state == FrameEnd::State::Failed;
    Json json{{"frame", files.frame},
              {"state", isFailed ? "failed" : "done"},
              {"number", end.index + 1},
              {"of", plan->frames.size()},
              {"output", files.output.string()},
              {"retries", end.retries},
              {"decodeSeconds", secondsOf(end.decodeTime)},
              {"renderSeconds", secondsOf(end.renderTime)},
              {"encodeSeconds", secondsOf(end.encodeTime)}};
    if (isFailed) json["message"] = end.message;
    printLine(json);
}

double JobDisplay::seconds() const {
    return secondsOf(std::chrono::steady_clock::now() - start);
}

}  // namespace perch
