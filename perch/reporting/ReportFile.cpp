#include "ReportFile.h"

#include <fmt/chrono.h>

#include <algorithm>
#include <ctime>
#include <span>
#include <utility>

#include "Error.h"
#include "FailingAs.h"
#include "ReplacedFile.h"
#include "Seconds.h"

namespace perch {
namespace {

void replace(const std::filesystem::path& path, const JobRecord& record) {
    const std::string text = recordText(record);
    failingAs<OutputError>([&] {
        pictures::replaceFile(path, {reinterpret_cast<const unsigned char*>(text.data()), text.size()});
    });
}

}  // namespace

ReportFile::ReportFile(std::filesystem::path path, JobRecord record, bool isFed)
    : path(std::move(path)), record(std::move(record)) {
    for (std::size_t place = 0; place < this->record.frames.size(); ++place) {
        const FrameRecord& frame = this->record.frames[place];
        places[frame.frame] = place;
        if (isFed && frame.state == FrameRecord::State::Waiting) unasked.insert(frame.frame);
    }
    this->record.begin = fmt::format("{:%FT%TZ}", fmt::gmtime(std::time(nullptr)));
    failingAs<OutputError>([&] { pictures::prepareToReplace(std::span(&this->path, 1)); });
    write();
}

void ReportFile::frameIsAsked(std::int32_t frame) {
    unasked.erase(frame);
    FrameRecord& asked = recordOf(frame);
    asked.state = FrameRecord::State::Waiting;
    asked.outputState.reset();
    asked.retries = 0;
    asked.seconds.reset();
    asked.messages.clear();
    asked.error.clear();
}

void ReportFile::frameEnds(std::int32_t frame, const FrameEnd& end) {
    FrameRecord& ended = recordOf(frame);
    const bool isDone = end.state == FrameEnd::State::Done;
    ended.state = isDone ? FrameRecord::State::Done : FrameRecord::State::Failed;
    ended.error = end.message;
    ended.retries = end.retries;
    ended.seconds = FrameRecord::Times{.decode = secondsOf(end.decodeTime),
                                       .render = secondsOf(end.renderTime),
                                       .encode = secondsOf(end.encodeTime)};
    if (isDone) ended.outputState = fileState(ended.output);
    if (Clock::now() >= nextWrite) write();
}

void ReportFile::addMessage(std::int32_t frame, const std::string& message) {
    recordOf(frame).messages.push_back(message);
}

void ReportFile::finish(const std::string& state, const std::string& error,
                        const std::vector<std::string>& notes) {
    record.state = state;
    record.error = error;
    record.notes.insert(record.notes.end(), notes.begin(), notes.end());
    write();
}

void ReportFile::write() {
    constexpr std::chrono::seconds kPause{1};
    constexpr int kShare = 20;  // writing takes no more than one part in so many of the time
    const Clock::time_point begin = Clock::now();
    record.seconds = secondsOf(begin - start);
    if (unasked.empty()) {
        replace(path, record);
    } else {
        JobRecord asked = record;
        std::erase_if(asked.frames,
                      [this](const FrameRecord& frame) { return unasked.contains(frame.frame); });
        replace(path, asked);
    }
    const Clock::time_point end = Clock::now();
    nextWrite = end + std::max<Clock::duration>(kPause, kShare * (end - begin));
}

void closeReport(const std::filesystem::path& path, const std::string& state, const std::string& why,
                 std::optional<std::int32_t> frame) {
    std::optional<JobRecord> record = readRecord(path);
    if (!record || record->state != "running") return;
    record->state = state;
    record->error = why;
    for (FrameRecord& known : record->frames) {
        if (known.frame != frame || known.state == FrameRecord::State::Done) continue;
        known.state = FrameRecord::State::Failed;
        known.error = why;
    }
    replace(path, *record);
}

}  // namespace perch
